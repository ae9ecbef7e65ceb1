// The Bluetooth receiver search without the platform: the device table's
// rows, what an inquiry's answers become, the radio's power rule and the
// search worker's steps. The platform supplies the radio and the inquiry
// itself (BlueZ, see qt/BluezSearch.h); tests supply fakes.
//
// Threads: RunSearch runs on the search worker; everything it touches is
// passed in and handed back in a SearchOutcome, which the dialog applies on
// the UI thread (ApplySearchOutcome in ReceiverSettingsModel.h).
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace satwalk::link {

inline constexpr int kMaxDevices = 16;          // rows of the device table
inline constexpr std::size_t kNameUnits = 255;  // UTF-16 units of a name, NUL excluded

struct BluetoothDevice {
    std::string name;           // UTF-8, at most kNameUnits UTF-16 units
    std::uint64_t address = 0;  // 48-bit device address; 0 = none
    bool operator==(const BluetoothDevice&) const = default;
};

// Inquiry results: 0 success, -1 failure (errorCode says why), -2 the radio
// is off.
inline constexpr int kInquiryOk = 0;
inline constexpr int kInquiryFailed = -1;
inline constexpr int kInquiryRadioOff = -2;

struct InquiryResult {
    int result = kInquiryOk;
    std::string errorCode;                 // the link's lastErrorCode after the inquiry
    std::vector<BluetoothDevice> devices;  // the rows found (also on -1 at the maximum)
};

// One answer of an inquiry as the platform reports it, in the order the
// devices answered.
struct InquiryAnswer {
    bool hasName = false;
    std::string name;     // raw bytes; made valid UTF-8 and cut to kNameUnits
    std::string address;  // "AA:BB:CC:DD:EE:FF"
};

// Applies the inquiry's rules to the answers: a nameless or empty-named
// answer ends the search at once as a success with no devices; an answer
// without a usable address fails with 0x08200a04; a repeated address is
// taken once; reaching `maxCount` ends with -1 (and an empty code) while the
// rows found are still reported.
InquiryResult FinishInquiry(const std::vector<InquiryAnswer>& answers, int maxCount);

// "AA:BB:CC:DD:EE:FF" (either case, '-' also accepted) to a 48-bit value;
// 0 when it does not parse.
std::uint64_t ParseBluetoothAddress(std::string_view text);
std::string FormatBluetoothAddress(std::uint64_t address);

// A device name as the table keeps it: invalid UTF-8 sequences replaced by
// U+FFFD, cut at a character boundary to kNameUnits UTF-16 units.
std::string CleanDeviceName(std::string_view raw);

// The Bluetooth radio's power. Mode 0 is off, 1 on (connectable).
class BluetoothRadio {
  public:
    // The mode, or -1 when there is no radio to ask.
    virtual int ReadRadioMode() = 0;
    virtual bool SetRadioMode(int mode) = 0;

  protected:
    ~BluetoothRadio() = default;
};

// Switches the radio on when it is off. Returns false only when switching
// was tried and failed (the caller shows string 40192); `switchedOn` is set
// when this call turned the radio on, so that exit can turn it off again.
bool SwitchRadioOnIfOff(BluetoothRadio& radio, bool& switchedOn);

// At exit: off again when the program switched it on.
void SwitchRadioBackOff(BluetoothRadio& radio, bool& switchedOn);

// The inquiry as the platform runs it: at most `maxCount` answers.
using InquiryFunction = std::function<InquiryResult(int maxCount)>;

// What a search hands back to the dialog.
struct SearchOutcome {
    bool radioSwitchFailed = false;  // show string 40192 first
    bool radioSwitchedOn = false;    // this search turned the radio on
    InquiryResult inquiry;
};

// The search worker's steps: the radio switched on when `autoBluetooth` asks
// for it, then the inquiry for up to kMaxDevices devices.
SearchOutcome RunSearch(BluetoothRadio& radio, const InquiryFunction& inquiry, bool autoBluetooth);

}  // namespace satwalk::link
