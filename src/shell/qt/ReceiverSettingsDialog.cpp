#include "ReceiverSettingsDialog.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

#include "BluezSearch.h"
#include "ReceiverSettingsFeature.h"
#include "Shell.h"
#include "Strings.h"

namespace satwalk::shell::qt {

namespace {

QString Q(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

void SyncCombo(QComboBox* combo, const link::ComboBox& model, bool enabled = true) {
    QStringList items;
    for (const std::string& e : model.entries) items << Q(e);
    QStringList shown;
    for (int i = 0; i < combo->count(); ++i) shown << combo->itemText(i);
    if (shown != items) {
        combo->clear();
        combo->addItems(items);
    }
    combo->setCurrentIndex(model.selection);
    combo->setEnabled(enabled);
}

// A list as wide as the dialog gives it, its open list as wide as its
// longest entry (a port's device names are long).
QComboBox* FitList(QComboBox* combo, int b) {
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(6);
    combo->setMinimumHeight((6 * b) / 5);
    combo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return combo;
}

}  // namespace

ReceiverSettingsWidget::ReceiverSettingsWidget(DialogStack& stack)
    : FullScreenDialog(stack, 115, QString::fromUtf8(common::LoadString(common::kStrGpsSettings)),
                       true) {
    const int b = baseTextHeight();
    autoSearch_ =
        new QPushButton(QString::fromUtf8(common::LoadString(common::kStrAutoSearch)), body());
    autoSearch_->setCheckable(true);
    autoSearch_->setMinimumHeight((7 * b) / 5);
    autoSearch_->setStyleSheet(
        QStringLiteral("QPushButton { border: 1px solid rgb(120,140,170); border-radius: 3px;"
                       " background: rgb(244,247,251); color: black; padding: 2px 8px; }"
                       "QPushButton:checked { background: rgb(34,89,172); color: white;"
                       " border-color: rgb(24,64,128); }"
                       "QPushButton:disabled { color: rgb(150,150,150); }"));
    AddControl(link::kIdAutoSearch, ControlKind::CheckBox, autoSearch_);

    deviceLabel_ = AddLabel(link::kIdDeviceLabel,
                            QString::fromUtf8(common::LoadString(common::kStrDeviceLabel)));
    deviceLabel_->setStyleSheet(QStringLiteral("QLabel:disabled { color: rgb(150,150,150); }"));
    devices_ = FitList(AddList(link::kIdDeviceCombo, {}), b);
    QLabel* portLabel =
        AddLabel(link::kIdPortLabel, QString::fromUtf8(common::LoadString(common::kStrPortLabel)));
    ports_ = FitList(AddList(link::kIdPortCombo, {}), b);
    QLabel* baudLabel =
        AddLabel(link::kIdBaudLabel, QString::fromUtf8(common::LoadString(common::kStrBaudLabel)));
    bauds_ = FitList(AddList(link::kIdBaudCombo, {}), b);

    auto* layout = new QVBoxLayout(body());
    const int m = std::max(2, b / 3);
    layout->setContentsMargins(b / 2, m, b / 2, m);
    layout->setSpacing(m);
    layout->addWidget(autoSearch_);
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(m);
    grid->setVerticalSpacing(m);
    int row = 0;
    for (auto [label, combo] : {std::pair<QLabel*, QComboBox*>{deviceLabel_, devices_},
                                {portLabel, ports_},
                                {baudLabel, bauds_}}) {
        grid->addWidget(label, row, 0, Qt::AlignLeft | Qt::AlignVCenter);
        grid->addWidget(combo, row, 1);
        ++row;
    }
    grid->setColumnStretch(1, 1);
    layout->addLayout(grid);
    layout->addStretch(1);

    connect(autoSearch_, &QPushButton::toggled, this, [this] {
        if (!syncing_ && onToggle)
            onToggle();
    });
    const auto forward = [this](QComboBox* combo, std::function<void(int)>* to) {
        connect(combo, &QComboBox::currentIndexChanged, this, [this, to](int index) {
            if (!syncing_ && *to)
                (*to)(index);
        });
    };
    forward(devices_, &onDevice);
    forward(ports_, &onPort);
    forward(bauds_, &onBaud);
}

void ReceiverSettingsWidget::Sync(const link::ReceiverSettingsDialog& d) {
    syncing_ = true;
    autoSearch_->setChecked(d.autoSearch);
    autoSearch_->setEnabled(d.autoSearchEnabled);
    deviceLabel_->setEnabled(d.deviceLabelEnabled);
    SyncCombo(devices_, d.devices);
    SyncCombo(ports_, d.ports);
    SyncCombo(bauds_, d.bauds);
    syncing_ = false;
    // The search runs on its worker: the dialog stays usable, the cursor
    // says that something is under way.
    setCursor(d.waitCursor ? Qt::BusyCursor : Qt::ArrowCursor);
    SetSoftKeys({Q(d.search.text), [this] { onSearch ? onSearch() : void(); }, d.search.enabled,
                 d.search.id},
                {Q(d.cancel.text), [this] { Reject(); }, d.cancel.enabled, d.cancel.id});
}

namespace {

// The dialog as the feature sees it: made at each opening, gone at its end.
class DialogView final : public ReceiverSettingsView {
  public:
    explicit DialogView(DialogStack& stack) : stack_(stack) {}

    ReceiverSettingsFeature* feature = nullptr;

    void Show(const link::ReceiverSettingsDialog& dialog) override {
        if (widget_ != nullptr) {
            widget_->Sync(dialog);
            return;
        }
        widget_ = new ReceiverSettingsWidget(stack_);
        ReceiverSettingsFeature* f = feature;
        widget_->onToggle = [f] { f->ToggleAutoSearch(); };
        widget_->onDevice = [f](int i) { f->SelectDevice(i); };
        widget_->onPort = [f](int i) { f->SelectPort(i); };
        widget_->onBaud = [f](int i) { f->SelectBaud(i); };
        widget_->onSearch = [f] { f->Search(); };
        widget_->onFinished = [this, f](DialogResult result) {
            widget_ = nullptr;
            if (result == DialogResult::Ok)
                f->Ok();
            else
                f->Cancel();
        };
        widget_->Sync(dialog);
        stack_.Open(widget_);
    }

    void Close() override {
        if (ReceiverSettingsWidget* w = std::exchange(widget_, nullptr))
            w->Reject();
    }

  private:
    DialogStack& stack_;
    ReceiverSettingsWidget* widget_ = nullptr;
};

class BluezSearcher final : public ReceiverSearcher {
  public:
    bool StartSearch(bool autoBluetooth) override { return search.Start(autoBluetooth); }
    void CancelSearch() override { search.Cancel(); }
    link::BluetoothSearch search;
};

class ReceiverSettingsDialogFeature final : public Feature {
  public:
    ReceiverSettingsDialogFeature(Shell& shell, DialogStack& stack)
        : view_(stack), feature_(shell, view_, searcher_) {
        view_.feature = &feature_;
        searcher_.search.onFinished = [this](const link::SearchOutcome& outcome) {
            feature_.OnSearchFinished(outcome);
        };
        // Also for a search abandoned half-way: exit switches the radio off.
        searcher_.search.onRadioSwitchedOn = [&shell] { shell.link().NoteRadioSwitchedOn(); };
    }
    void Register(FeatureRegistry& registry) override { feature_.Register(registry); }
    void OnExit() override { feature_.OnExit(); }

  private:
    DialogView view_;
    BluezSearcher searcher_;
    ReceiverSettingsFeature feature_;
};

}  // namespace

std::unique_ptr<Feature> MakeReceiverSettingsFeature(Shell& shell, DialogStack& dialogs) {
    return std::make_unique<ReceiverSettingsDialogFeature>(shell, dialogs);
}

}  // namespace satwalk::shell::qt
