#include "SatelliteDataDialog.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

#include "MainWindow.h"
#include "QtCanvas.h"
#include "SatelliteTable.h"
#include "Strings.h"

namespace satwalk::app {

namespace {

constexpr int kStrOk = 40005;

}  // namespace

SatelliteDataDialog::SatelliteDataDialog(MainWindow& main, int b)
    : QWidget(&main), main_(main), table_(new screens::SatelliteDataTable(this)) {
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, Qt::white);
    setPalette(pal);
    setFocusPolicy(Qt::StrongFocus);

    QFont font(screens::ScreenFontFamily());
    font.setPixelSize(std::max(8, (2 * b) / 3));
    QFont titleFont = font;
    titleFont.setPixelSize(std::max(9, (4 * b) / 5));
    titleFont.setBold(true);

    auto* title = new QLabel(QStringLiteral("卫星数据"), this);
    title->setFont(titleFont);
    title->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    title->setStyleSheet(QStringLiteral("color: rgb(34,89,172);"));

    table_->setFont(font);
    QTableWidget* t = table_->Table();
    t->setFont(font);
    QFont headerFont = font;
    headerFont.setBold(true);
    t->horizontalHeader()->setFont(headerFont);
    t->setShowGrid(true);
    t->setAlternatingRowColors(true);
    t->setStyleSheet(
        QStringLiteral("QTableWidget { gridline-color: rgb(200,208,220);"
                       " alternate-background-color: rgb(238,244,252);"
                       " background: white; color: black; }"
                       "QHeaderView::section { background: rgb(214,233,250);"
                       " color: rgb(34,89,172); border: 0px;"
                       " border-bottom: 1px solid rgb(160,180,210); }"));

    // All twelve rows are always in view: the rows share the height and
    // the text follows the row height (see resizeEvent).
    t->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    t->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    t->verticalHeader()->setMinimumSectionSize(1);
    t->horizontalHeader()->setMinimumSectionSize(1);

    auto* ok = new QPushButton(QString::fromUtf8(shell::LoadString(kStrOk)), this);
    ok->setFont(font);
    ok->setFocusPolicy(Qt::NoFocus);
    ok->setMinimumWidth(3 * b);
    connect(ok, &QPushButton::clicked, this, [this] { main_.shell().OnSatelliteDialogClosed(); });

    // Title on the left, the OK button on the right, the table below.
    auto* layout = new QVBoxLayout(this);
    const int m = std::max(2, b / 5);
    layout->setContentsMargins(m, m, m, m);
    layout->setSpacing(m);
    auto* top = new QHBoxLayout;
    top->addWidget(title, 1);
    top->addWidget(ok);
    layout->addLayout(top);
    layout->addWidget(table_, 1);
    baseTextHeight_ = b;
}

void SatelliteDataDialog::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // Thirteen lines (the header and twelve rows) share the table's height.
    QTableWidget* t = table_->Table();
    const int row = std::max(1, table_->height() / (gps::kSatelliteRows + 1));
    const int px = std::clamp(row * 3 / 5, 8, std::max(8, (2 * baseTextHeight_) / 3));
    QFont f = t->font();
    if (f.pixelSize() != px) {
        f.setPixelSize(px);
        t->setFont(f);
        f.setBold(true);
        t->horizontalHeader()->setFont(f);
    }
    t->horizontalHeader()->setFixedHeight(row);
}

void SatelliteDataDialog::Fill(const gps::GpsState& gps) {
    table_->Fill(gps);
}

QStringList SatelliteDataDialog::RowTexts(int row) const {
    QStringList texts;
    QTableWidget* t = table_->Table();
    for (int c = 0; c < t->columnCount(); ++c) texts << t->item(row, c)->text();
    return texts;
}

void SatelliteDataDialog::HandleGpsData() {
    main_.HandleGpsData();
}

void SatelliteDataDialog::HandleGpsTime() {
    main_.HandleGpsTime();
}

void SatelliteDataDialog::keyPressEvent(QKeyEvent* event) {
    // Escape and Back close the dialog; every other key is the main window's.
    if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Back ||
        event->key() == Qt::Key_Backspace) {
        main_.shell().OnSatelliteDialogClosed();
        return;
    }
    if (!main_.HandleKeyEvent(event))
        QWidget::keyPressEvent(event);
}

}  // namespace satwalk::app
