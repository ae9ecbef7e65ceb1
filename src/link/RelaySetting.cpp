#include "RelaySetting.h"

#include <arpa/inet.h>

#include <algorithm>

#include "SmallFile.h"
#include "SourceAddress.h"

namespace satwalk::link {

RelaySetting ParseRelaySetting(std::string_view text) {
    RelaySetting s;
    text = text.substr(0, std::min<std::size_t>(text.size(), 512));
    text = text.substr(0, text.find('\n'));
    while (!text.empty() && (text.back() == '\r' || text.back() == ' ')) text.remove_suffix(1);
    const std::size_t space = text.find(' ');
    const std::string_view state = text.substr(0, space);
    if (state != "on" && state != "off")
        return s;
    if (space != std::string_view::npos && IsRelayAddress(text.substr(space + 1)))
        s.address = std::string(text.substr(space + 1));
    s.on = state == "on";
    return s;
}

std::string FormatRelaySetting(const RelaySetting& setting) {
    return std::string(setting.on ? "on " : "off ") + setting.address + "\n";
}

RelaySetting LoadRelaySetting(const std::string& path) {
    const std::optional<std::string> text = common::ReadFileStart(path, 512);
    return text ? ParseRelaySetting(*text) : RelaySetting{};
}

bool SaveRelaySetting(const std::string& path, const RelaySetting& setting) {
    return common::ReplaceFile(path, FormatRelaySetting(setting));
}

bool IsRelayAddress(std::string_view address) {
    std::string host;
    std::uint16_t port = 0;
    if (!ParseHostPort(address, kRelayDefaultHost, host, port))
        return false;
    if (host == "localhost")
        return true;
    unsigned char binary[16];
    return ::inet_pton(AF_INET, host.c_str(), binary) == 1 ||
           ::inet_pton(AF_INET6, host.c_str(), binary) == 1;
}

}  // namespace satwalk::link
