#include "SatelliteDataDialog.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

#include "QtCanvas.h"
#include "SatelliteTable.h"
#include "Shell.h"
#include "Strings.h"

namespace satwalk::shell::qt {

SatelliteDataDialog::SatelliteDataDialog(QWidget* parent, int b)
    : QWidget(parent), table_(new screens::SatelliteDataTable(this)) {
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

    auto* title =
        new QLabel(QString::fromUtf8(common::LoadString(common::kStrSatelliteData)), this);
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

    auto* ok = new QPushButton(QString::fromUtf8(common::LoadString(common::kStrOk)), this);
    ok->setFont(font);
    ok->setFocusPolicy(Qt::NoFocus);
    ok->setMinimumWidth(3 * b);
    connect(ok, &QPushButton::clicked, this, [this] {
        if (onClose)
            onClose();
    });

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

void SatelliteDataDialog::keyPressEvent(QKeyEvent* event) {
    // Escape and Back close the dialog; every other key is the main window's.
    if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Back ||
        event->key() == Qt::Key_Backspace) {
        if (onClose)
            onClose();
        return;
    }
    if (!onKey || !onKey(event))
        QWidget::keyPressEvent(event);
}

namespace {

// The dialog as the feature sees it.
class DialogView final : public SatelliteDataView {
  public:
    explicit DialogView(ScreenAreaHost& host) : host_(host) {}

    std::function<void()> onClose;

    void Show(bool show) override {
        if (show && dialog_ == nullptr) {
            dialog_ = new SatelliteDataDialog(host_.HostWidget(), host_.BaseTextHeight());
            dialog_->onClose = [this] { onClose(); };
            dialog_->onKey = [this](QKeyEvent* event) { return host_.HandleProgramKey(event); };
        }
        if (dialog_ != nullptr)
            host_.SetScreenAreaWidget(show ? dialog_ : nullptr);
        shown_ = show;
    }
    void Fill(const gps::GpsState& fix) override {
        if (shown_)
            dialog_->Fill(fix);
    }
    std::vector<std::array<std::string, 4>> Rows() const override {
        std::vector<std::array<std::string, 4>> rows;
        if (!shown_)
            return rows;
        for (int row = 0; row < gps::kSatelliteRows; ++row) {
            const QStringList texts = dialog_->RowTexts(row);
            std::array<std::string, 4> cells;
            for (int c = 0; c < 4 && c < texts.size(); ++c)
                cells[static_cast<std::size_t>(c)] = texts[c].toStdString();
            rows.push_back(cells);
        }
        return rows;
    }

  private:
    ScreenAreaHost& host_;
    SatelliteDataDialog* dialog_ = nullptr;  // owned by the window, hidden when closed
    bool shown_ = false;
};

class SatelliteDataDialogFeature final : public Feature {
  public:
    SatelliteDataDialogFeature(Shell& shell, ScreenAreaHost& host)
        : view_(host), feature_(shell, view_) {
        view_.onClose = [this] { feature_.OnClosedByUser(); };
    }
    void Register(FeatureRegistry& registry) override { feature_.Register(registry); }
    void OnGpsData() override { feature_.OnGpsData(); }
    void OnScreenChosen() override { feature_.OnScreenChosen(); }
    void OnExit() override { feature_.OnExit(); }

  private:
    DialogView view_;
    SatelliteDataFeature feature_;
};

}  // namespace

std::unique_ptr<Feature> MakeSatelliteDataFeature(Shell& shell, ScreenAreaHost& host) {
    return std::make_unique<SatelliteDataDialogFeature>(shell, host);
}

}  // namespace satwalk::shell::qt
