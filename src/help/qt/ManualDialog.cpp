#include "ManualDialog.h"

#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextImageFormat>
#include <QVBoxLayout>

#include <cstdlib>

#include "CommandIds.h"
#include "DataFiles.h"
#include "Manual.h"
#include "Shell.h"
#include "Strings.h"

namespace satwalk::help::qt {

namespace {

QString Q(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

ManualView::ManualView(QWidget* parent) : QTextBrowser(parent) {
    setOpenLinks(false);
    setFrameShape(QFrame::NoFrame);
}

void ManualView::keyPressEvent(QKeyEvent* event) {
    QScrollBar* bar = verticalScrollBar();
    switch (event->key()) {
        case Qt::Key_Up:
            bar->triggerAction(QAbstractSlider::SliderSingleStepSub);
            return;
        case Qt::Key_Down:
            bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
            return;
        case Qt::Key_Left:
        case Qt::Key_PageUp:
            bar->triggerAction(QAbstractSlider::SliderPageStepSub);
            return;
        case Qt::Key_Right:
        case Qt::Key_PageDown:
            bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
            return;
        case Qt::Key_Home:
            bar->triggerAction(QAbstractSlider::SliderToMinimum);
            return;
        case Qt::Key_End:
            bar->triggerAction(QAbstractSlider::SliderToMaximum);
            return;
        default:
            // Tab and Return walk and follow the links; Escape and Back
            // reach the dialog, which closes.
            QTextBrowser::keyPressEvent(event);
    }
}

ManualDialog::ManualDialog(shell::qt::DialogStack& stack, const QString& markdown,
                           const QString& folder, std::string file)
    : FullScreenDialog(stack, kManualDialogId,
                       QString::fromUtf8(common::LoadString(common::kStrMenuUserManual))),
      file_(std::move(file)) {
    auto* layout = new QVBoxLayout(body());
    layout->setContentsMargins(0, 0, 0, 0);
    view_ = new ManualView(body());
    view_->setSearchPaths({folder});
    layout->addWidget(view_);

    const std::string withContents =
        WithContents(markdown.toStdString(), common::LoadString(common::kStrManualContents));
    view_->document()->setDefaultFont(font());
    view_->setMarkdown(Q(withContents));
    NameHeadings(withContents);
    view_->verticalScrollBar()->setSingleStep(baseTextHeight());
    connect(view_, &QTextBrowser::anchorClicked, this, [this](const QUrl& url) {
        if (url.hasFragment() && url.adjusted(QUrl::RemoveFragment).isEmpty())
            JumpTo(url.fragment(QUrl::FullyDecoded));
    });

    SetSoftKeys(
        {QString::fromUtf8(common::LoadString(common::kStrManualContents)),
         [this] { view_->verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMinimum); }},
        {QString::fromUtf8(common::LoadString(common::kStrManualClose)), [this] { Accept(); }});
    view_->setFocus();
}

// Markdown gives headings no names: each heading block gets the anchor the
// table of contents links to, in document order.
void ManualDialog::NameHeadings(const std::string& markdown) {
    const std::vector<ManualHeading> headings = ManualHeadings(markdown);
    std::size_t next = 0;
    for (QTextBlock block = view_->document()->begin(); block.isValid() && next < headings.size();
         block = block.next()) {
        if (block.blockFormat().headingLevel() == 0)
            continue;
        QTextCursor cursor(block);
        cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        QTextCharFormat format;
        format.setAnchor(true);
        format.setAnchorNames({Q(headings[next].anchor)});
        cursor.mergeCharFormat(format);
        if (headings[next].level == 2 || headings[next].level == 3)
            ++contentsEntries_;
        ++next;
    }
}

bool ManualDialog::JumpTo(const QString& anchor) {
    for (QTextBlock block = view_->document()->begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() == 0)
            continue;
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            if (it.fragment().charFormat().anchorNames().contains(anchor)) {
                view_->scrollToAnchor(anchor);
                return true;
            }
        }
    }
    return false;
}

// The screenshots are drawn for a whole screen: two fit side by side.
void ManualDialog::FitImages() {
    const int width = std::max(40, (this->width() * 9) / 20);
    QTextCursor cursor(view_->document());
    for (QTextBlock block = view_->document()->begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            QTextImageFormat image = fragment.charFormat().toImageFormat();
            if (!image.isValid() || static_cast<int>(image.width()) == width)
                continue;
            image.setWidth(width);
            cursor.setPosition(fragment.position());
            cursor.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
            cursor.setCharFormat(image);
        }
    }
}

void ManualDialog::resizeEvent(QResizeEvent* event) {
    FullScreenDialog::resizeEvent(event);
    FitImages();
}

void ManualDialog::WriteExtraState(common::JsonMembers& members) const {
    members.Text("file", file_);
    members.Int("contents", contentsEntries_);
    members.Int("scroll", view_->verticalScrollBar()->value());
    members.Int("scrollMax", view_->verticalScrollBar()->maximum());
}

std::string DataDirectory() {
    return shell::qt::DataFolderOf(kManualFolder).toLocal8Bit().toStdString();
}

namespace {

class HelpFeature final : public shell::Feature {
  public:
    HelpFeature(shell::Shell& shell, shell::qt::DialogStack& dialogs, std::string dataDir,
                std::function<std::string()> language)
        : shell_(shell),
          dialogs_(dialogs),
          dataDir_(std::move(dataDir)),
          language_(std::move(language)) {}

    void Register(shell::FeatureRegistry& registry) override {
        registry.AddCommand(shell::cmd::kUserManual, {[this](int) { Open(); }, {}});
    }

  private:
    void Open() {
        const std::string language = language_ ? language_() : std::string();
        const std::string path =
            FindManual(dataDir_, language.empty() ? kDefaultLanguage : language);
        if (path.empty()) {
            Say(common::LoadString(common::kStrManualMissing),
                dataDir_ + "/" + kManualFolder + "/" +
                    ManualFileName(language.empty() ? kDefaultLanguage : language));
            return;
        }
        QFile file(Q(path));
        if (file.size() > static_cast<qint64>(kManualSizeLimit)) {
            Say(common::LoadString(common::kStrManualTooLarge), path);
            return;
        }
        if (!file.open(QIODevice::ReadOnly)) {
            Say(common::LoadString(common::kStrManualUnreadable), path);
            return;
        }
        // Read no more than the budget, whatever the size said a moment ago.
        const QByteArray bytes = file.read(static_cast<qint64>(kManualSizeLimit) + 1);
        if (bytes.size() > static_cast<qsizetype>(kManualSizeLimit)) {
            Say(common::LoadString(common::kStrManualTooLarge), path);
            return;
        }
        auto* dialog = new ManualDialog(dialogs_, QString::fromUtf8(bytes),
                                        QFileInfo(Q(path)).absolutePath(), path);
        dialogs_.Open(dialog);
    }

    void Say(const char* format, const std::string& path) {
        shell_.ui().ShowMessage(common::FormatString(format, path), shell::MessageIcon::Error,
                                shell::MessageButtons::Ok);
    }

    shell::Shell& shell_;
    shell::qt::DialogStack& dialogs_;
    std::string dataDir_;
    std::function<std::string()> language_;
};

}  // namespace

std::unique_ptr<shell::Feature> MakeHelpFeature(shell::Shell& shell,
                                                shell::qt::DialogStack& dialogs,
                                                std::string dataDir,
                                                std::function<std::string()> language) {
    return std::make_unique<HelpFeature>(shell, dialogs, std::move(dataDir), std::move(language));
}

}  // namespace satwalk::help::qt
