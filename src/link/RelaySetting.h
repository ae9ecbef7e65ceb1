// The NMEA relay as the user sets it: on or off, and the address it
// listens on. It lives in a file of its own, `relay` beside the options
// file, so that the options file keeps its record byte for byte:
//   on 127.0.0.1:10110
// ("off" instead of "on" keeps the address for the next time). A missing or
// unreadable file is the relay off at the default address.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace satwalk::link {

inline constexpr const char* kRelayDefaultAddress = "127.0.0.1:10110";
inline constexpr const char* kRelayDefaultHost = "127.0.0.1";  // when only a port is named

struct RelaySetting {
    bool on = false;
    std::string address = kRelayDefaultAddress;  // "[HOST:]PORT"
    bool operator==(const RelaySetting&) const = default;
};

// A setting's file text, and back; text that does not parse is the default.
RelaySetting ParseRelaySetting(std::string_view text);
std::string FormatRelaySetting(const RelaySetting& setting);

RelaySetting LoadRelaySetting(const std::string& path);
// False when the file cannot be written.
bool SaveRelaySetting(const std::string& path, const RelaySetting& setting);

// Whether `address` is a relay address ("[HOST:]PORT", a numeric host).
bool IsRelayAddress(std::string_view address);

}  // namespace satwalk::link
