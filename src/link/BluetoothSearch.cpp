#include "BluetoothSearch.h"
#include "ErrorCodes.h"

#include <cctype>
#include <cstdio>

namespace satwalk::link {

namespace {

int HexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    const int lower = std::tolower(static_cast<unsigned char>(c));
    if (lower >= 'a' && lower <= 'f')
        return lower - 'a' + 10;
    return -1;
}

// Length of the valid UTF-8 sequence at `s`, or 0 when it is not one.
std::size_t Utf8SequenceLength(std::string_view s) {
    const auto b = [&](std::size_t i) { return static_cast<unsigned char>(s[i]); };
    const unsigned char c = b(0);
    std::size_t n = 0;
    std::uint32_t cp = 0;
    if (c < 0x80)
        return 1;
    if (c >= 0xC2 && c <= 0xDF) {
        n = 2;
        cp = c & 0x1Fu;
    } else if (c >= 0xE0 && c <= 0xEF) {
        n = 3;
        cp = c & 0x0Fu;
    } else if (c >= 0xF0 && c <= 0xF4) {
        n = 4;
        cp = c & 0x07u;
    } else {
        return 0;
    }
    if (s.size() < n)
        return 0;
    for (std::size_t i = 1; i < n; ++i) {
        if ((b(i) & 0xC0u) != 0x80u)
            return 0;
        cp = (cp << 6) | (b(i) & 0x3Fu);
    }
    // Overlong forms, surrogates and values past U+10FFFF are not text.
    if ((n == 3 && cp < 0x800) || (n == 4 && (cp < 0x10000 || cp > 0x10FFFF)) ||
        (cp >= 0xD800 && cp <= 0xDFFF))
        return 0;
    return n;
}

}  // namespace

std::string CleanDeviceName(std::string_view raw) {
    std::string out;
    std::size_t units = 0;
    while (!raw.empty()) {
        std::size_t n = Utf8SequenceLength(raw);
        std::string_view piece = raw.substr(0, n);
        if (n == 0) {
            n = 1;
            piece = "\xEF\xBF\xBD";
        }
        const std::size_t pieceUnits = piece.size() == 4 ? 2 : 1;
        if (units + pieceUnits > kNameUnits)
            break;
        if (piece == std::string_view("\0", 1))
            break;  // a name ends at its NUL
        out.append(piece);
        units += pieceUnits;
        raw.remove_prefix(n);
    }
    return out;
}

std::uint64_t ParseBluetoothAddress(std::string_view text) {
    if (text.size() != 17)
        return 0;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < 17; ++i) {
        if (i % 3 == 2) {
            if (text[i] != ':' && text[i] != '-')
                return 0;
            continue;
        }
        const int d = HexDigit(text[i]);
        if (d < 0)
            return 0;
        value = (value << 4) | static_cast<std::uint64_t>(d);
    }
    return value;
}

std::string FormatBluetoothAddress(std::uint64_t address) {
    char text[18];
    std::snprintf(text, sizeof text, "%02X:%02X:%02X:%02X:%02X:%02X",
                  static_cast<unsigned>((address >> 40) & 0xFF),
                  static_cast<unsigned>((address >> 32) & 0xFF),
                  static_cast<unsigned>((address >> 24) & 0xFF),
                  static_cast<unsigned>((address >> 16) & 0xFF),
                  static_cast<unsigned>((address >> 8) & 0xFF),
                  static_cast<unsigned>(address & 0xFF));
    return text;
}

InquiryResult FinishInquiry(const std::vector<InquiryAnswer>& answers, int maxCount) {
    InquiryResult r;
    for (const InquiryAnswer& a : answers) {
        if (static_cast<int>(r.devices.size()) >= maxCount)
            break;
        BluetoothDevice d;
        d.name = CleanDeviceName(a.name);
        if (!a.hasName || d.name.empty()) {
            // A device that does not tell its name ends the search, and
            // nothing found so far is offered.
            r.devices.clear();
            return r;
        }
        d.address = ParseBluetoothAddress(a.address);
        if (d.address == 0) {
            r.result = kInquiryFailed;
            r.errorCode = common::err::kInquiryAddress;
            r.devices.clear();  // the count is not reported on this failure
            return r;
        }
        bool seen = false;
        for (const BluetoothDevice& e : r.devices) seen = seen || e.address == d.address;
        if (!seen)
            r.devices.push_back(std::move(d));
    }
    // The search asks for at most maxCount answers; having them all is
    // reported as a failure without a code, with the rows kept.
    if (static_cast<int>(r.devices.size()) >= maxCount)
        r.result = kInquiryFailed;
    return r;
}

bool SwitchRadioOnIfOff(BluetoothRadio& radio, bool& switchedOn) {
    if (radio.ReadRadioMode() != 0)
        return true;
    if (!radio.SetRadioMode(1))
        return false;
    switchedOn = true;
    return true;
}

void SwitchRadioBackOff(BluetoothRadio& radio, bool& switchedOn) {
    if (!switchedOn)
        return;
    radio.SetRadioMode(0);
    switchedOn = false;
}

SearchOutcome RunSearch(BluetoothRadio& radio, const InquiryFunction& inquiry, bool autoBluetooth) {
    SearchOutcome out;
    if (autoBluetooth)
        out.radioSwitchFailed = !SwitchRadioOnIfOff(radio, out.radioSwitchedOn);
    out.inquiry = inquiry(kMaxDevices);
    return out;
}

}  // namespace satwalk::link
