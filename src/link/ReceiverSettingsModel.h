// The receiver settings dialog ("GPS 设置") as data: its controls' contents
// and states, the mode switch, OK, Cancel and the search's effects. A Qt
// dialog shows a ReceiverSettingsDialog and calls these functions on the UI
// thread; script mode and the tests call them the same way.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "BluetoothSearch.h"
#include "PortNames.h"
#include "ReceiverLink.h"
#include "Strings.h"

namespace satwalk::link {

// Control and command ids of the dialog and its menu bar.
inline constexpr int kIdAutoSearch = 1106;  // push-like check box
inline constexpr int kIdDeviceLabel = 1006;
inline constexpr int kIdDeviceCombo = 1001;
inline constexpr int kIdPortLabel = 1110;
inline constexpr int kIdPortCombo = 1108;
inline constexpr int kIdBaudLabel = 1109;
inline constexpr int kIdBaudCombo = 1107;
inline constexpr int kCmdSearch = 40060;
inline constexpr int kCmdCancel = 40061;
inline constexpr int kCmdRetry = 40062;
inline constexpr int kCmdOk = 40005;
// The two menu-bar buttons a running search disables.
inline constexpr int kCmdsDisabledWhileSearching[] = {40062, 40065};

// The receiver globals the dialog reads and writes.
struct ReceiverSettings {
    bool bluetoothReceiver = true;  // the auto flag
    std::uint32_t comPort = 0;
    std::uint32_t baudIndex = 0;
    BluetoothDevice chosen;  // bluetoothName and bluetoothAddress
    // The device table: kept between openings, written by a search, read by
    // OK, reset by Cancel. Its size is the device count.
    std::vector<BluetoothDevice> table;
    // What OK gives the link: the baud value (both modes) and, in manual
    // mode, "COM%d:" of the port.
    std::uint32_t linkBaud = 0;
    std::string linkPortName;
};

// The table at start-up: the chosen receiver when one is configured.
std::vector<BluetoothDevice> InitialDeviceTable(const BluetoothDevice& chosen);

struct ComboBox {
    std::vector<std::string> entries;
    int selection = -1;
};

struct MenuButton {
    int id = 0;
    std::string text;
    bool enabled = true;
};

// One COM index as the port combo shows it.
struct PortSlot {
    bool free = false;   // a Bluetooth port could be registered under it
    std::string device;  // the device behind it ("/dev/ttyACM0", a by-id name, "gpsd
                         // localhost:2947"), may be empty
    // The ten slots are COM0..COM9 by their place; entries after them (the
    // ports file's COM10 and above, a gpsd found on this machine) carry
    // their number here, and the address a found gpsd is reached at.
    int number = -1;
    std::string source{};
};

struct ReceiverSettingsDialog {
    bool autoSearch = false;  // 1106 checked
    bool autoSearchEnabled = true;
    bool deviceLabelEnabled = false;  // 1006
    ComboBox devices;                 // 1001
    ComboBox ports;                   // 1108
    std::vector<int> portNumbers;     // the COM number of each port entry but "自动"
    ComboBox bauds;                   // 1107
    int pendingPort = 0;
    MenuButton search{kCmdSearch, common::LoadString(common::kStrSearch), true};
    MenuButton cancel{kCmdCancel, common::LoadString(common::kStrSearchCancel), true};
    bool searching = false;
    bool waitCursor = false;
    BluetoothDevice savedFirstRow;  // the table's row 0 while a search runs
    bool ended = false;             // the dialog has closed
    int endResult = 0;              // 1 OK, 0 cancel or failure
};

// A message the dialog shows (application caption).
struct DialogMessage {
    std::string text;
    bool error = false;  // stop icon; else information
    bool operator==(const DialogMessage&) const = default;
};

// "COM%d", with " (可用)" for a free index, then the device behind it.
std::string PortEntryText(int index, const PortSlot& slot);

// The device a COM index stands for: its path by the port map, followed by the name of a link in
// `byIdFolder` that leads to the same device, so that a receiver can be told by its make.
std::string DescribePortDevice(const std::string& path,
                               const std::string& byIdFolder = "/dev/serial/by-id");

// The slots of the port combo: COM0..COM9, each free when a Bluetooth port
// can be registered under it (tried and given back at once; never one whose
// source is a network address), then the map's entries from COM10 on, then,
// when a gpsd answers on 127.0.0.1:`localGpsdPort` (0: not looked for) and
// no entry names it yet, one for it under the first number from 10 the map
// leaves free.
std::vector<PortSlot> ProbePortSlots(VirtualPortDriver* driver, const PortMap& map,
                                     std::uint16_t localGpsdPort = 0);

// Builds the dialog as it opens; `slots` has one entry per index 0..9.
ReceiverSettingsDialog OpenReceiverSettings(const ReceiverSettings& settings,
                                            const std::vector<PortSlot>& slots);

// The check box 1106 was toggled by the user.
void ToggleAutoSearch(ReceiverSettingsDialog& dialog, const ReceiverSettings& settings);

// The port combo's selection changed.
void SelectPort(ReceiverSettingsDialog& dialog, int index);

// OK (40005 or IDOK): the dialog's choices become the settings.
void AcceptReceiverSettings(ReceiverSettingsDialog& dialog, ReceiverSettings& settings);

// Cancel (40061): the table shrinks to the chosen device; nothing else
// changes. A running search is abandoned by the caller.
void CancelReceiverSettings(ReceiverSettingsDialog& dialog, ReceiverSettings& settings);

// Search (40060) or Retry (40062): the button turns into Retry and both
// search buttons are disabled. `workerStarted` says whether the caller could
// start the search worker; when not, the message is returned and the dialog
// ends. Returns false when no search may start now (one is running).
bool BeginSearch(ReceiverSettingsDialog& dialog, bool workerStarted,
                 std::vector<DialogMessage>& messages);

// The worker's first steps as the dialog sees them: 1106 disabled, the wait
// cursor, the table's first row saved and cleared.
void SearchStarted(ReceiverSettingsDialog& dialog, ReceiverSettings& settings);

// The worker's result: the messages to show in order, the device combo and
// table refreshed, the controls enabled again. `radioSwitchedOn` is set when
// this search turned the radio on.
std::vector<DialogMessage> ApplySearchOutcome(ReceiverSettingsDialog& dialog,
                                              ReceiverSettings& settings,
                                              const SearchOutcome& outcome, bool& radioSwitchedOn);

}  // namespace satwalk::link
