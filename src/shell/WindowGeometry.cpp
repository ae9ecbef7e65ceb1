#include "WindowGeometry.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "SmallFile.h"

namespace satwalk::shell {

namespace {

// Of a window this far on a screen, there is enough to grab and move.
constexpr int kVisibleCorner = 48;
// Beyond any desktop there is; keeps the arithmetic below far from overflow.
constexpr int kLimit = 1 << 20;

struct Overlap {
    long long width = 0, height = 0;
    long long Area() const { return width > 0 && height > 0 ? width * height : 0; }
};

Overlap Between(const WindowGeometry& g, const ScreenRect& s) {
    return {std::min<long long>(g.x + g.width, s.x + s.width) - std::max(g.x, s.x),
            std::min<long long>(g.y + g.height, s.y + s.height) - std::max(g.y, s.y)};
}

bool ReadInt(std::string_view& text, int& out) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    const auto r = std::from_chars(text.data(), text.data() + text.size(), out);
    if (r.ec != std::errc() || out < -kLimit || out > kLimit)
        return false;
    text.remove_prefix(static_cast<std::size_t>(r.ptr - text.data()));
    return true;
}

}  // namespace

std::string WindowGeometryPath(const std::string& optionsPath) {
    return common::PathBeside(optionsPath, "window");
}

std::optional<WindowGeometry> LoadWindowGeometry(const std::string& path) {
    // Its first line, if it is one of ours: no line of ours is that long.
    const std::optional<std::string> text = common::ReadFileStart(path, 128);
    if (!text)
        return std::nullopt;
    return ParseWindowGeometry(*text);
}

std::optional<WindowGeometry> ParseWindowGeometry(std::string_view text) {
    if (const std::size_t end = text.find('\n'); end != std::string_view::npos)
        text = text.substr(0, end);
    else if (text.size() >= 128)
        return std::nullopt;
    WindowGeometry g;
    int maximized = 0;
    if (!ReadInt(text, g.x) || !ReadInt(text, g.y) || !ReadInt(text, g.width) ||
        !ReadInt(text, g.height) || !ReadInt(text, maximized) || (maximized != 0 && maximized != 1))
        return std::nullopt;
    if (!text.empty() && text != "\r")
        return std::nullopt;
    g.maximized = maximized == 1;
    return g;
}

bool SaveWindowGeometry(const std::string& path, const WindowGeometry& g) {
    const std::string line = std::to_string(g.x) + ' ' + std::to_string(g.y) + ' ' +
                             std::to_string(g.width) + ' ' + std::to_string(g.height) +
                             (g.maximized ? " 1\n" : " 0\n");
    return common::ReplaceFile(path, line);
}

WindowGeometry Sanitize(WindowGeometry g, const std::vector<ScreenRect>& screens, int minWidth,
                        int minHeight) {
    g.width = std::clamp(g.width, minWidth, kLimit);
    g.height = std::clamp(g.height, minHeight, kLimit);
    if (screens.empty())
        return g;
    // The screen it is most on.
    const ScreenRect* on = nullptr;
    Overlap most;
    for (const ScreenRect& s : screens) {
        if (const Overlap o = Between(g, s); o.Area() > most.Area()) {
            most = o;
            on = &s;
        }
    }
    const bool lost = on == nullptr || most.width < std::min(kVisibleCorner, g.width) ||
                      most.height < std::min(kVisibleCorner, g.height);
    const ScreenRect& s = lost ? screens.front() : *on;
    g.width = std::max(minWidth, std::min(g.width, s.width));
    g.height = std::max(minHeight, std::min(g.height, s.height));
    if (lost) {
        g.x = s.x + (s.width - g.width) / 2;
        g.y = s.y + (s.height - g.height) / 2;
    }
    // The top edge on the screen, and no further left or right than the
    // screen's edges allow.
    g.y = std::clamp(g.y, s.y, std::max(s.y, s.y + s.height - kVisibleCorner));
    g.x = std::max(s.x - g.width + kVisibleCorner, std::min(g.x, s.x + s.width - kVisibleCorner));
    return g;
}

}  // namespace satwalk::shell
