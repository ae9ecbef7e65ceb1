#include "ReceiverSettingsFeature.h"

#include "CommandIds.h"
#include "Json.h"
#include "Shell.h"

namespace satwalk::shell {

namespace {

void AppendDevice(std::string& out, const link::BluetoothDevice& d) {
    out += "{\"name\":";
    common::AppendJsonString(out, d.name);
    out += ",\"address\":";
    common::AppendJsonString(out, d.address != 0 ? link::FormatBluetoothAddress(d.address) : "");
    out += '}';
}

}  // namespace

void ReceiverFromSettings(const ProgramSettings& s, link::ReceiverSettings& r) {
    r.bluetoothReceiver = s.bluetoothReceiver != 0;
    r.comPort = s.comPort;
    r.baudIndex = s.baudIndex;
    r.chosen = link::BluetoothDevice{s.bluetoothName, s.bluetoothAddress};
}

void SettingsFromReceiver(const link::ReceiverSettings& r, ProgramSettings& s) {
    s.bluetoothReceiver = r.bluetoothReceiver ? 1 : 0;
    s.comPort = r.comPort;
    s.baudIndex = r.baudIndex;
    s.bluetoothName = r.chosen.name;
    s.bluetoothAddress = r.chosen.address;
    s.receiverConfigured = !r.chosen.name.empty() && r.chosen.address != 0;
}

ReceiverSettingsFeature::ReceiverSettingsFeature(Shell& shell, ReceiverSettingsView& view,
                                                 ReceiverSearcher& searcher)
    : shell_(shell), view_(view), searcher_(searcher) {}

void ReceiverSettingsFeature::Register(FeatureRegistry& registry) {
    registry.AddCommand(cmd::kGpsSettings,
                        Command{[this](int) { Open(); },
                                [this](int) {
                                    return EntryState{!shell_.link().Running(), false, {}};
                                }});
    registry.AddStateSection([this](common::JsonMembers& members) {
        members.Bool("receiverSettingsOpen", open_);
        members.Bool("bluetoothSearching", open_ && dialog_.searching);
        std::string& out = members.Name("bluetoothDevices");
        out += '[';
        const ProgramSettings& s = shell_.settings();
        const std::vector<link::BluetoothDevice> table =
            tableMade_ ? receiver_.table
                       : link::InitialDeviceTable({s.bluetoothName, s.bluetoothAddress});
        for (std::size_t i = 0; i < table.size(); ++i) {
            if (i > 0)
                out += ',';
            AppendDevice(out, table[i]);
        }
        out += ']';
        AppendDevice(members.Name("bluetoothDevice"), {s.bluetoothName, s.bluetoothAddress});
    });
}

void ReceiverSettingsFeature::Open() {
    // Only while the link is stopped: the dialog changes what it runs on.
    if (open_ || shell_.link().Running())
        return;
    ReceiverFromSettings(shell_.settings(), receiver_);
    if (!tableMade_) {
        receiver_.table = link::InitialDeviceTable(receiver_.chosen);
        tableMade_ = true;
    }
    dialog_ = link::OpenReceiverSettings(receiver_, shell_.link().PortSlots());
    open_ = true;
    view_.Show(dialog_);
}

void ReceiverSettingsFeature::End() {
    // A search still running is abandoned; its worker ends by itself.
    searcher_.CancelSearch();
    open_ = false;
    view_.Close();
}

void ReceiverSettingsFeature::Say(const std::vector<link::DialogMessage>& messages) {
    for (const link::DialogMessage& m : messages) {
        shell_.ui().ShowMessage(m.text, m.error ? MessageIcon::Error : MessageIcon::Information,
                                MessageButtons::Ok);
    }
}

void ReceiverSettingsFeature::ToggleAutoSearch() {
    if (!open_ || !dialog_.autoSearchEnabled)
        return;
    link::ToggleAutoSearch(dialog_, receiver_);
    view_.Show(dialog_);
}

void ReceiverSettingsFeature::SelectDevice(int row) {
    if (!open_ || row < 0 || row >= static_cast<int>(dialog_.devices.entries.size()))
        return;
    dialog_.devices.selection = row;
    view_.Show(dialog_);
}

void ReceiverSettingsFeature::SelectPort(int index) {
    if (!open_)
        return;
    link::SelectPort(dialog_, index);
    view_.Show(dialog_);
}

void ReceiverSettingsFeature::SelectBaud(int index) {
    if (!open_ || index < 0 || index >= static_cast<int>(dialog_.bauds.entries.size()))
        return;
    dialog_.bauds.selection = index;
    view_.Show(dialog_);
}

void ReceiverSettingsFeature::Search() {
    const link::ReceiverSettingsDialog& d = dialog_;
    if (!open_ || d.searching || !d.search.enabled || !d.autoSearch)
        return;
    const bool started = searcher_.StartSearch(shell_.settings().autoBluetooth != 0);
    std::vector<link::DialogMessage> messages;
    if (link::BeginSearch(dialog_, started, messages))
        link::SearchStarted(dialog_, receiver_);
    view_.Show(dialog_);
    Say(messages);
    if (dialog_.ended)
        End();
}

void ReceiverSettingsFeature::OnSearchFinished(const link::SearchOutcome& outcome) {
    bool radioSwitchedOn = false;  // told to the link by the searcher itself
    const std::vector<link::DialogMessage> messages =
        link::ApplySearchOutcome(dialog_, receiver_, outcome, radioSwitchedOn);
    if (!open_)
        return;
    view_.Show(dialog_);
    Say(messages);
}

void ReceiverSettingsFeature::Ok() {
    if (!open_)
        return;
    // OK in the middle of a search takes the table as it was before it.
    if (dialog_.searching && !receiver_.table.empty())
        receiver_.table.front() = dialog_.savedFirstRow;
    link::AcceptReceiverSettings(dialog_, receiver_);
    SettingsFromReceiver(receiver_, shell_.settings());
    shell_.link().PortChosen(receiver_.comPort);
    End();
}

void ReceiverSettingsFeature::Cancel() {
    if (!open_)
        return;
    link::CancelReceiverSettings(dialog_, receiver_);
    End();
}

void ReceiverSettingsFeature::OnExit() {
    if (open_)
        Cancel();
}

}  // namespace satwalk::shell
