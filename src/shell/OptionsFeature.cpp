#include "OptionsFeature.h"

#include "CommandIds.h"
#include "Json.h"
#include "Shell.h"

namespace satwalk::shell {

OptionsFeature::OptionsFeature(Shell& shell, OptionsView& view, std::string defaultRoot,
                               std::function<std::vector<std::string>()> mountPoints)
    : shell_(shell),
      view_(view),
      defaultRoot_(std::move(defaultRoot)),
      mountPoints_(std::move(mountPoints)) {}

void OptionsFeature::Register(FeatureRegistry& registry) {
    registry.AddCommand(cmd::kOptions, Command{[this](int) { Open(); }, {}});
    registry.AddStateSection([this](common::JsonMembers& members) {
        const ProgramSettings& s = shell_.settings();
        members.Bool("optionsOpen", guard_.IsOpen());
        members.Bool("autoBluetooth", s.autoBluetooth != 0);
        members.Bool("allTalkers", s.allTalkers != 0);
        const link::RelaySetting relay = shell_.link().Relay();
        members.Bool("relay", relay.on);
        members.Text("relayAddress", relay.address);
    });
}

void OptionsFeature::Open() {
    if (!guard_.TryOpen())
        return;
    dialog_ = OpenOptionsDialog(shell_.settings(), defaultRoot_,
                                mountPoints_ ? mountPoints_() : std::vector<std::string>{});
    const link::RelaySetting relay = shell_.link().Relay();
    dialog_.relay = relay.on;
    dialog_.relayAddress = relay.address;
    view_.Show(dialog_);
}

void OptionsFeature::SetCheck(int id, bool checked) {
    if (!guard_.IsOpen())
        return;
    switch (id) {
        case kIdAutoBluetooth:
            dialog_.autoBluetooth = checked;
            break;
        case kIdKeepAwake:
            dialog_.keepAwake = checked;
            break;
        case kIdRecordNmea:
            dialog_.recordNmea = checked;
            break;
        case kIdAllTalkers:
            dialog_.allTalkers = checked;
            break;
        case kIdRelay:
            dialog_.relay = checked;
            break;
        default:
            return;
    }
    view_.Show(dialog_);
}

void OptionsFeature::SelectStorage(int index) {
    if (!guard_.IsOpen() || index < 0 || index >= static_cast<int>(dialog_.storage.size()))
        return;
    dialog_.storageSelection = index;
    view_.Show(dialog_);
}

void OptionsFeature::SetRelayAddress(const std::string& address) {
    if (guard_.IsOpen())
        dialog_.relayAddress = address;  // the view marks one that does not parse
}

void OptionsFeature::Ok() {
    if (!guard_.IsOpen())
        return;
    StorageFolders folders = MakeStorageFolders(shell_.settings().storageRoot);
    applied_ = AcceptOptionsDialog(dialog_, shell_.settings(), folders, *this);
    // The relay keeps its file of its own; an address that does not parse
    // leaves the one it had.
    link::RelaySetting relay = shell_.link().Relay();
    relay.on = dialog_.relay;
    if (link::IsRelayAddress(dialog_.relayAddress))
        relay.address = dialog_.relayAddress;
    shell_.link().SetRelay(relay);
    // The next recording goes to the new place even when none runs now.
    if (applied_.rootChanged)
        shell_.link().SetNmeaFolder(folders.nmea);
    guard_.Close();
    view_.Close();
    shell_.features().NotifySettingsChanged();
    shell_.Repaint();
}

void OptionsFeature::Cancel() {
    if (!guard_.IsOpen())
        return;
    guard_.Close();
    view_.Close();
}

bool OptionsFeature::LinkRunning() const {
    return shell_.link().Running();
}

void OptionsFeature::SetRecordNmea(bool on) {
    shell_.link().SetRecordNmea(on);
}

void OptionsFeature::StartNewNmeaLog(const std::string& nmeaFolder) {
    shell_.link().SetNmeaFolder(nmeaFolder);
    shell_.link().StartNewNmeaLog();
}

void OptionsFeature::SetScreenAwake(bool hold) {
    shell_.ui().SetBacklightHold(hold);
}

void OptionsFeature::SetAllTalkers(bool on) {
    shell_.link().SetAllTalkers(on);
}

}  // namespace satwalk::shell
