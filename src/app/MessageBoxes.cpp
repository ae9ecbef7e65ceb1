#include "MessageBoxes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPixmap>
#include <QRegularExpression>
#include <QStyle>

#include <algorithm>

#include "Strings.h"

namespace satwalk::app {

using shell::MessageButtons;
using shell::MessageIcon;

int MessageFontPixels(int baseTextHeight) {
    return std::max(9, (2 * baseTextHeight) / 3);
}

QString WithoutMnemonic(QString text) {
    // CJK translations add the Latin mnemonic in brackets after the word.
    static const QRegularExpression kBracketed(QStringLiteral("\\s*\\(&[^)]\\)"));
    text.remove(kBracketed);
    // A lone '&' marks a mnemonic, "&&" is a literal '&'.
    QString out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == QLatin1Char('&') && i + 1 < text.size())
            ++i;
        out += text[i];
    }
    return out;
}

std::unique_ptr<QMessageBox> MakeMessageBox(QWidget* parent, const std::string& text,
                                            MessageIcon icon, MessageButtons buttons,
                                            int baseTextHeight) {
    auto box = std::make_unique<QMessageBox>(parent);
    box->setWindowTitle(QString::fromUtf8(common::LoadString(common::kStrCaption)));
    box->setText(QString::fromUtf8(text.c_str()));
    QFont font = box->font();
    font.setPixelSize(MessageFontPixels(baseTextHeight));
    box->setFont(font);

    QStyle::StandardPixmap standard = QStyle::SP_MessageBoxInformation;
    switch (icon) {
        case MessageIcon::Error:
            standard = QStyle::SP_MessageBoxCritical;
            break;
        case MessageIcon::Information:
            break;
        case MessageIcon::Question:
            standard = QStyle::SP_MessageBoxQuestion;
            break;
        case MessageIcon::Exclamation:
            standard = QStyle::SP_MessageBoxWarning;
            break;
    }
    // The style's icon drawn at the scale of the text beside it.
    const int iconPixels = std::max(16, (3 * baseTextHeight) / 2);
    QPixmap pixmap = box->style()->standardIcon(standard, nullptr, box.get()).pixmap(iconPixels);
    if (pixmap.width() < iconPixels)  // an icon is never drawn larger than its largest size
        pixmap =
            pixmap.scaled(iconPixels, iconPixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    box->setIconPixmap(pixmap);

    box->setStandardButtons(buttons == MessageButtons::YesNo ? QMessageBox::Yes | QMessageBox::No
                                                             : QMessageBox::Ok);
    for (QAbstractButton* button : box->buttons()) button->setText(WithoutMnemonic(button->text()));
    return box;
}

}  // namespace satwalk::app
