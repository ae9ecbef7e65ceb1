#include "TrackInfoDialog.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QImage>
#include <QLabel>
#include <QPainter>

#include "QtCanvas.h"
#include "Strings.h"
#include "TrackProfilePainter.h"

namespace satwalk::track::qt {

namespace {

QString Q(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

ProfileView::ProfileView(std::vector<ProfileSample> samples, int units, int textHeight,
                         QWidget* parent)
    : QWidget(parent), samples_(std::move(samples)), units_(units), textHeight_(textHeight) {
    setMinimumHeight(6 * textHeight_);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void ProfileView::paintEvent(QPaintEvent*) {
    QImage image(size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    {
        const screens::ScreenBitmaps bitmaps;
        screens::QtCanvas canvas(image, bitmaps);
        const int gap = textHeight_ / 3;
        const int half = (height() - gap) / 2;
        DrawTrackProfile(canvas, screens::Rect{0, 0, width(), half}, samples_,
                         ProfileKind::Elevation, units_, textHeight_);
        DrawTrackProfile(canvas, screens::Rect{0, half + gap, width(), height()}, samples_,
                         ProfileKind::Speed, units_, textHeight_);
    }
    QPainter(this).drawImage(0, 0, image);
}

TrackInfoDialog::TrackInfoDialog(shell::qt::DialogStack& stack, const std::string& name,
                                 const TrackStatistics& stats, int units)
    : FullScreenDialog(stack, kTrackInfoDialogId,
                       QString::fromUtf8(common::LoadString(common::kStrTrackInfo))) {
    const int b = baseTextHeight();
    QFont font(screens::ScreenFontFamily());
    font.setPixelSize(std::max(8, (b * 3) / 5));
    QFont bold = font;
    bold.setBold(true);

    layout_ = new QBoxLayout(QBoxLayout::TopToBottom, body());
    layout_->setContentsMargins(b / 4, b / 6, b / 4, b / 6);
    layout_->setSpacing(b / 4);

    auto* numbers = new QWidget(body());
    auto* grid = new QGridLayout(numbers);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(b / 2);
    grid->setVerticalSpacing(0);
    QLabel* title = AddLabel(kTrackInfoNameId, Q(name));
    title->setParent(numbers);
    title->setFont(bold);
    title->setStyleSheet(QStringLiteral("color: rgb(34,89,172);"));
    grid->addWidget(title, 0, 0, 1, 2);
    const std::vector<StatisticsRow> rows = StatisticsRows(stats, units);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const int row = static_cast<int>(i) + 1;
        QLabel* label = AddLabel(kTrackInfoLabelId + static_cast<int>(i),
                                 QString::fromUtf8(common::LoadString(rows[i].labelId)));
        QLabel* value = AddLabel(kTrackInfoValueId + static_cast<int>(i), Q(rows[i].value));
        label->setParent(numbers);
        value->setParent(numbers);
        label->setFont(font);
        value->setFont(bold);
        value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        grid->addWidget(label, row, 0);
        grid->addWidget(value, row, 1);
    }
    numbers->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    layout_->addWidget(numbers, 0, Qt::AlignTop);
    layout_->addWidget(new ProfileView(stats.Profile(), units, std::max(10, (b * 3) / 5), body()),
                       1);
}

void TrackInfoDialog::resizeEvent(QResizeEvent* event) {
    layout_->setDirection(width() > height() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    FullScreenDialog::resizeEvent(event);
}

}  // namespace satwalk::track::qt
