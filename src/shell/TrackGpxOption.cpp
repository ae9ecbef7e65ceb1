#include "TrackGpxOption.h"

#include <cstdio>

namespace satwalk::shell {

std::string TrackGpxOptionPath(const std::string& optionsPath) {
    const std::size_t slash = optionsPath.rfind('/');
    return (slash == std::string::npos ? std::string() : optionsPath.substr(0, slash + 1)) +
           "track-gpx";
}

bool LoadTrackGpxOption(const std::string& path) {
    std::FILE* f = std::fopen(path.c_str(), "rbe");
    if (f == nullptr)
        return false;
    char text[4] = {};
    const std::size_t n = std::fread(text, 1, sizeof text - 1, f);
    std::fclose(f);
    return n >= 1 && text[0] == '1' && (n == 1 || text[1] == '\n' || text[1] == '\r');
}

bool SaveTrackGpxOption(const std::string& path, bool on) {
    const std::string temporary = path + ".new";
    std::FILE* f = std::fopen(temporary.c_str(), "wbe");
    if (f == nullptr)
        return false;
    const bool written = std::fputs(on ? "1\n" : "0\n", f) >= 0;
    if (std::fclose(f) != 0 || !written || std::rename(temporary.c_str(), path.c_str()) != 0) {
        std::remove(temporary.c_str());
        return false;
    }
    return true;
}

}  // namespace satwalk::shell
