#include "PortNames.h"

#include <cctype>
#include <charconv>
#include <fstream>
#include <sstream>

namespace satwalk::link {

namespace {

std::string_view Trim(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    return s;
}

}  // namespace

int ParseComName(std::string_view name) {
    name = Trim(name);
    if (name.size() < 4)
        return -1;
    for (int i = 0; i < 3; ++i) {
        if (std::toupper(static_cast<unsigned char>(name[i])) != "COM"[i])
            return -1;
    }
    name.remove_prefix(3);
    if (!name.empty() && name.back() == ':')
        name.remove_suffix(1);
    if (name.empty() || name.size() > 4)
        return -1;
    int number = 0;
    const auto r = std::from_chars(name.data(), name.data() + name.size(), number);
    if (r.ec != std::errc() || r.ptr != name.data() + name.size() || number < 0)
        return -1;
    return number;
}

std::string ComName(int number) {
    return "COM" + std::to_string(number) + ":";
}

std::string DefaultPortPath(int number) {
    if (number >= 1 && number <= 4)
        return "/dev/ttyUSB" + std::to_string(number - 1);
    if (number >= 5 && number <= 8)
        return "/dev/ttyACM" + std::to_string(number - 5);
    if (number == 9)
        return "/dev/rfcomm0";
    return "/dev/ttyS" + std::to_string(number);
}

void ParsePortMap(std::string_view text, PortMap& map) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
        if (const std::size_t hash = line.find('#'); hash != std::string_view::npos) {
            line = line.substr(0, hash);
        }
        const std::size_t eq = line.find('=');
        if (eq == std::string_view::npos)
            continue;
        const int number = ParseComName(line.substr(0, eq));
        const std::string_view path = Trim(line.substr(eq + 1));
        if (number < 0 || path.empty())
            continue;
        map[number] = std::string(path);
    }
}

bool LoadPortMap(const std::string& path, PortMap& map) {
    map.clear();
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    std::ostringstream text;
    text << in.rdbuf();
    ParsePortMap(text.str(), map);
    return true;
}

std::string ResolvePortName(std::string_view name, const PortMap& map,
                            const std::string& overridePath) {
    if (!overridePath.empty())
        return overridePath;
    const int number = ParseComName(name);
    if (number < 0)
        return std::string(name);
    if (const auto it = map.find(number); it != map.end())
        return it->second;
    return DefaultPortPath(number);
}

}  // namespace satwalk::link
