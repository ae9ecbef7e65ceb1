// Where a receiver's sentences come from: one string names it, wherever a
// port is named (`--port`, the `ports` file, `satwalk-tool log --port`):
//   gpsd://HOST[:PORT]   a gpsd (port 2947 unless named) asked for its NMEA
//   tcp://HOST:PORT      raw NMEA 0183 over TCP (by convention port 10110)
//   anything else        a tty path, as it always was
// HOST is a name, an IPv4 address or an IPv6 address in brackets.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace satwalk::link {

enum class SourceKind { Tty, Gpsd, Tcp, Invalid };

inline constexpr std::uint16_t kGpsdDefaultPort = 2947;
inline constexpr std::uint16_t kNmeaTcpPort = 10110;

struct SourceAddress {
    SourceKind kind = SourceKind::Tty;
    std::string path;  // Tty: the device path
    std::string host;  // Gpsd, Tcp: without brackets
    std::uint16_t port = 0;
};

// Parses a source address. A network address that does not parse (no
// host, a bad or missing port) is Invalid, never taken as a path.
SourceAddress ParseSourceAddress(std::string_view text);

// Parses "[HOST:]PORT" (a relay's listening address); `defaultHost` when no
// host is named. False when it does not parse.
bool ParseHostPort(std::string_view text, std::string_view defaultHost, std::string& host,
                   std::uint16_t& port);

// "HOST:PORT", with an IPv6 host in brackets.
std::string HostPortText(const std::string& host, std::uint16_t port);

// How the receiver settings list a source beside its COM name:
// "gpsd localhost:2947", "tcp 10.0.0.5:10110", or the tty path.
std::string SourceLabel(const SourceAddress& address);

}  // namespace satwalk::link
