#include "ReceiverSettingsModel.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "BaudRates.h"
#include "ErrorCodes.h"
#include "NetSource.h"
#include "SourceAddress.h"
#include "Strings.h"

namespace satwalk::link {

namespace {

constexpr int kPortCount = 10;

int DeviceRow(const std::vector<BluetoothDevice>& table, const BluetoothDevice& chosen) {
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table[i] == chosen)
            return static_cast<int>(i);
    }
    return -1;
}

// The entry of a COM number in the port combo; the first when it has none.
int PortIndex(const ReceiverSettingsDialog& d, int number) {
    for (std::size_t i = 0; i < d.portNumbers.size(); ++i) {
        if (d.portNumbers[i] == number)
            return static_cast<int>(i);
    }
    return 0;
}

void FillDeviceCombo(ComboBox& combo, const std::vector<BluetoothDevice>& table) {
    combo.entries.clear();
    for (const BluetoothDevice& d : table) combo.entries.push_back(d.name);
    combo.selection = -1;
}

void EnterBluetoothMode(ReceiverSettingsDialog& d, const ReceiverSettings& s, bool opening) {
    d.ports.entries.push_back(common::LoadString(common::kStrPortAutomatic));
    d.ports.selection = static_cast<int>(d.ports.entries.size()) - 1;
    if (!opening) {
        if (!d.devices.entries.empty())
            d.devices.entries.pop_back();  // "系统设置"
        const int row = DeviceRow(s.table, s.chosen);
        d.devices.selection = row >= 0 ? row : 0;
        if (d.devices.entries.empty())
            d.devices.selection = -1;
    }
}

void EnterManualMode(ReceiverSettingsDialog& d, bool opening) {
    d.search.enabled = false;
    if (!opening) {
        if (!d.ports.entries.empty())
            d.ports.entries.pop_back();  // "自动"
        d.ports.selection = PortIndex(d, d.pendingPort);
    }
    d.devices.entries.push_back(common::LoadString(common::kStrSystemSettings));
    d.devices.selection = static_cast<int>(d.devices.entries.size()) - 1;
}

std::string Format(const char* format, const std::string& argument) {
    std::string out = format;
    if (const std::size_t at = out.find("%s"); at != std::string::npos)
        out.replace(at, 2, argument);
    return out;
}

}  // namespace

std::vector<BluetoothDevice> InitialDeviceTable(const BluetoothDevice& chosen) {
    if (chosen.name.empty() || chosen.address == 0)
        return {};
    return {chosen};
}

std::string PortEntryText(int index, const PortSlot& slot) {
    std::string text = "COM" + std::to_string(index);
    if (slot.free)
        text += std::string(" (") + common::LoadString(common::kStrPortAvailable) + ")";
    if (!slot.device.empty())
        text += "  " + slot.device;
    return text;
}

std::string DescribePortDevice(const std::string& path, const std::string& byIdFolder) {
    namespace fs = std::filesystem;
    std::string text = path;
    std::error_code ec;
    const fs::path target = fs::canonical(path, ec);
    if (ec)
        return text;
    for (fs::directory_iterator it(byIdFolder, ec), end; !ec && it != end; it.increment(ec)) {
        std::error_code linkError;
        if (fs::canonical(it->path(), linkError) == target && !linkError)
            return text + " " + it->path().filename().string();
    }
    return text;
}

std::vector<PortSlot> ProbePortSlots(VirtualPortDriver* driver, const PortMap& map,
                                     std::uint16_t localGpsdPort) {
    std::vector<PortSlot> slots(kPortCount);
    bool gpsdNamed = false;
    const auto describe = [&](int n, PortSlot& slot) {
        const SourceAddress source = ParseSourceAddress(ResolvePortName(ComName(n), map));
        if (source.kind == SourceKind::Tty) {
            slot.device = DescribePortDevice(source.path);
            return true;
        }
        slot.device = SourceLabel(source);
        gpsdNamed = gpsdNamed || (source.kind == SourceKind::Gpsd && source.port == localGpsdPort &&
                                  (source.host == "localhost" || source.host == "127.0.0.1"));
        return false;
    };
    for (int n = 0; n < kPortCount; ++n) {
        PortSlot& slot = slots[static_cast<std::size_t>(n)];
        if (describe(n, slot) && driver != nullptr && driver->RegisterPort(n, 0)) {
            slot.free = true;
            driver->DeregisterPort(n);
        }
    }
    int next = kPortCount;
    for (const auto& [n, path] : map) {
        if (n < kPortCount)
            continue;
        PortSlot slot;
        slot.number = n;
        describe(n, slot);
        slots.push_back(slot);
        if (n == next)
            ++next;
    }
    if (localGpsdPort != 0 && !gpsdNamed && GpsdAnswers(localGpsdPort, kGpsdProbeMs)) {
        PortSlot slot;
        slot.number = next;
        slot.source = "gpsd://localhost:" + std::to_string(localGpsdPort);
        slot.device = std::string(common::LoadString(common::kStrLocalGpsd)) +
                      " localhost:" + std::to_string(localGpsdPort);
        slots.push_back(slot);
    }
    return slots;
}

ReceiverSettingsDialog OpenReceiverSettings(const ReceiverSettings& s,
                                            const std::vector<PortSlot>& portSlots) {
    ReceiverSettingsDialog d;
    FillDeviceCombo(d.devices, s.table);
    d.devices.selection = DeviceRow(s.table, s.chosen);

    for (const std::uint32_t rate : common::kBaudRates)
        d.bauds.entries.push_back(std::to_string(rate));
    d.bauds.selection =
        s.baudIndex < std::size(common::kBaudRates) ? static_cast<int>(s.baudIndex) : 0;

    const std::size_t count = std::max<std::size_t>(kPortCount, portSlots.size());
    for (std::size_t i = 0; i < count; ++i) {
        const PortSlot slot = i < portSlots.size() ? portSlots[i] : PortSlot{};
        const int number = i < kPortCount ? static_cast<int>(i) : slot.number;
        d.ports.entries.push_back(PortEntryText(number, slot));
        d.portNumbers.push_back(number);
    }
    const int configured = static_cast<int>(std::min<std::uint32_t>(s.comPort, 1u << 20));
    d.pendingPort = d.portNumbers[static_cast<std::size_t>(PortIndex(d, configured))];
    d.ports.selection = PortIndex(d, d.pendingPort);

    d.autoSearch = s.bluetoothReceiver;
    if (d.autoSearch)
        EnterBluetoothMode(d, s, true);
    else
        EnterManualMode(d, true);
    d.deviceLabelEnabled = d.autoSearch;
    return d;
}

void ToggleAutoSearch(ReceiverSettingsDialog& d, const ReceiverSettings& s) {
    if (d.ended || d.searching)
        return;
    d.autoSearch = !d.autoSearch;
    // the menu bar is made anew
    d.search = MenuButton{kCmdSearch, common::LoadString(common::kStrSearch), true};
    d.cancel = MenuButton{kCmdCancel, common::LoadString(common::kStrSearchCancel), true};
    if (d.autoSearch)
        EnterBluetoothMode(d, s, false);
    else
        EnterManualMode(d, false);
    d.deviceLabelEnabled = d.autoSearch;
}

void SelectPort(ReceiverSettingsDialog& d, int index) {
    // Only a real port is remembered; "自动" stands for whichever is free.
    if (index < 0 || index >= static_cast<int>(d.portNumbers.size()))
        return;
    d.pendingPort = d.portNumbers[static_cast<std::size_t>(index)];
    d.ports.selection = index;
}

void AcceptReceiverSettings(ReceiverSettingsDialog& d, ReceiverSettings& s) {
    s.comPort = static_cast<std::uint32_t>(d.pendingPort);
    if (d.bauds.selection >= 0 &&
        d.bauds.selection < static_cast<int>(std::size(common::kBaudRates)))
        s.baudIndex = static_cast<std::uint32_t>(d.bauds.selection);
    s.bluetoothReceiver = d.autoSearch;
    s.linkBaud = common::kBaudRates[s.baudIndex];
    if (d.autoSearch) {
        if (s.table.empty()) {
            s.chosen = BluetoothDevice{};
        } else {
            const int row =
                d.devices.selection >= 0 && d.devices.selection < static_cast<int>(s.table.size())
                    ? d.devices.selection
                    : 0;
            s.chosen = s.table[static_cast<std::size_t>(row)];
        }
    } else {
        s.linkPortName = ComName(d.pendingPort);
    }
    d.ended = true;
    d.endResult = 1;
}

void CancelReceiverSettings(ReceiverSettingsDialog& d, ReceiverSettings& s) {
    s.table.assign(1, s.chosen);
    d.searching = false;
    d.waitCursor = false;
    d.ended = true;
    d.endResult = 0;
}

bool BeginSearch(ReceiverSettingsDialog& d, bool workerStarted,
                 std::vector<DialogMessage>& messages) {
    if (d.ended || d.searching || !d.search.enabled || !d.autoSearch)
        return false;
    const bool retry = d.search.id == kCmdRetry;
    d.search = MenuButton{kCmdRetry, common::LoadString(common::kStrRetry), false};
    if (!workerStarted) {
        messages.push_back(
            {common::FormatString(common::LoadString(common::kStrSearchStartFailed),
                                  retry ? common::err::kSearchRetry : common::err::kSearchStart),
             true});
        d.ended = true;
        d.endResult = 0;
        return false;
    }
    d.searching = true;
    return true;
}

void SearchStarted(ReceiverSettingsDialog& d, ReceiverSettings& s) {
    d.autoSearchEnabled = false;
    d.waitCursor = true;
    d.savedFirstRow = s.table.empty() ? BluetoothDevice{} : s.table.front();
    if (!s.table.empty())
        s.table.front() = BluetoothDevice{};
}

std::vector<DialogMessage> ApplySearchOutcome(ReceiverSettingsDialog& d, ReceiverSettings& s,
                                              const SearchOutcome& outcome, bool& radioSwitchedOn) {
    std::vector<DialogMessage> messages;
    if (outcome.radioSwitchedOn)
        radioSwitchedOn = true;
    // A search that outlived its dialog changes nothing more.
    if (d.ended || !d.searching)
        return messages;
    if (outcome.radioSwitchFailed)
        messages.push_back({common::LoadString(common::kStrRadioSwitchFailed), true});

    const InquiryResult& r = outcome.inquiry;
    s.table = r.devices;
    if (r.result == kInquiryOk) {
        FillDeviceCombo(d.devices, s.table);
        if (s.table.empty())
            messages.push_back({common::LoadString(common::kStrNoReceiver), false});
        else
            d.devices.selection = 0;
    } else {
        // The combo keeps its entries; the table keeps what was found, with
        // its first row as it was before the search.
        if (!s.table.empty())
            s.table.front() = d.savedFirstRow;
        if (r.result == kInquiryRadioOff)
            messages.push_back({common::LoadString(common::kStrRadioOff), false});
        else
            messages.push_back(
                {Format(common::LoadString(common::kStrSearchFailed), r.errorCode), true});
    }
    d.searching = false;
    d.waitCursor = false;
    d.autoSearchEnabled = true;
    d.search.enabled = true;
    return messages;
}

}  // namespace satwalk::link
