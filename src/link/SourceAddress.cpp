#include "SourceAddress.h"

#include <charconv>

namespace satwalk::link {

namespace {

bool ParsePort(std::string_view text, std::uint16_t& port) {
    unsigned value = 0;
    const auto r = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || r.ec != std::errc() || r.ptr != text.data() + text.size() || value == 0 ||
        value > 65535) {
        return false;
    }
    port = static_cast<std::uint16_t>(value);
    return true;
}

// A host is printable ASCII without blanks, slashes or the bracket and
// colon that delimit it (inside brackets colons belong to the address).
bool IsHostText(std::string_view host, bool bracketed) {
    if (host.empty() || host.size() > 253)
        return false;
    for (const char c : host) {
        const auto u = static_cast<unsigned char>(c);
        if (u <= ' ' || u >= 0x7f || c == '/' || c == '[' || c == ']' || c == '@' ||
            (c == ':' && !bracketed)) {
            return false;
        }
    }
    return true;
}

// "HOST", "HOST:PORT", "[V6]" or "[V6]:PORT"; `port` is left alone when
// none is named. `needPort`: a missing port does not parse.
bool SplitHostPort(std::string_view text, bool needPort, std::string& host, std::uint16_t& port) {
    std::string_view h;
    std::string_view rest;
    bool bracketed = false;
    if (!text.empty() && text.front() == '[') {
        const std::size_t close = text.find(']');
        if (close == std::string_view::npos)
            return false;
        h = text.substr(1, close - 1);
        rest = text.substr(close + 1);
        bracketed = true;
    } else {
        const std::size_t colon = text.find(':');
        h = text.substr(0, colon);
        rest = colon == std::string_view::npos ? std::string_view{} : text.substr(colon);
    }
    if (!IsHostText(h, bracketed))
        return false;
    if (rest.empty()) {
        if (needPort)
            return false;
    } else if (rest.front() != ':' || !ParsePort(rest.substr(1), port)) {
        return false;
    }
    host = std::string(h);
    return true;
}

}  // namespace

SourceAddress ParseSourceAddress(std::string_view text) {
    SourceAddress a;
    constexpr std::string_view kGpsd = "gpsd://";
    constexpr std::string_view kTcp = "tcp://";
    if (text.starts_with(kGpsd)) {
        a.kind = SourceKind::Gpsd;
        a.port = kGpsdDefaultPort;
        text.remove_prefix(kGpsd.size());
        if (!text.empty() && text.back() == '/')
            text.remove_suffix(1);
        if (!SplitHostPort(text, false, a.host, a.port))
            a.kind = SourceKind::Invalid;
    } else if (text.starts_with(kTcp)) {
        a.kind = SourceKind::Tcp;
        text.remove_prefix(kTcp.size());
        if (!text.empty() && text.back() == '/')
            text.remove_suffix(1);
        if (!SplitHostPort(text, true, a.host, a.port))
            a.kind = SourceKind::Invalid;
    } else {
        a.path = std::string(text);
    }
    return a;
}

bool ParseHostPort(std::string_view text, std::string_view defaultHost, std::string& host,
                   std::uint16_t& port) {
    std::uint16_t p = 0;
    if (ParsePort(text, p)) {
        host = std::string(defaultHost);
        port = p;
        return true;
    }
    std::string h;
    if (!SplitHostPort(text, true, h, p))
        return false;
    host = std::move(h);
    port = p;
    return true;
}

std::string HostPortText(const std::string& host, std::uint16_t port) {
    const bool v6 = host.find(':') != std::string::npos;
    return (v6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

std::string SourceLabel(const SourceAddress& address) {
    switch (address.kind) {
        case SourceKind::Gpsd:
            return "gpsd " + HostPortText(address.host, address.port);
        case SourceKind::Tcp:
            return "tcp " + HostPortText(address.host, address.port);
        case SourceKind::Tty:
            return address.path;
        case SourceKind::Invalid:
            break;
    }
    return "?";
}

}  // namespace satwalk::link
