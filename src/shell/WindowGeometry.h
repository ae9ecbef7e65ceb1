// The window's size, place and maximised state, kept across runs in a small
// file of its own beside the options file, `window` (the options record's
// format is fixed and has no room for it): one line "X Y WIDTH HEIGHT
// MAXIMISED", the client area's place and size in desktop pixels and 1 or
// 0. What is read back is only a wish: Sanitize fits it to the screens there
// are now and to the window's minimum.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace satwalk::shell {

struct WindowGeometry {
    int x = 0, y = 0, width = 0, height = 0;
    bool maximized = false;
    bool operator==(const WindowGeometry&) const = default;
};

// A screen's area free of panels, in desktop pixels.
struct ScreenRect {
    int x = 0, y = 0, width = 0, height = 0;
};

std::string WindowGeometryPath(const std::string& optionsPath);
// Nothing when the file is missing, unreadable or not one such line.
std::optional<WindowGeometry> LoadWindowGeometry(const std::string& path);
// The same from the file's bytes.
std::optional<WindowGeometry> ParseWindowGeometry(std::string_view text);
// Writes a new file that replaces the old one once complete; false when it
// could not.
bool SaveWindowGeometry(const std::string& path, const WindowGeometry& geometry);

// The geometry fitted to `screens` (the first is the primary): never smaller
// than the minimum, never larger than the screen it is on; a window that
// would show less than a corner's worth of itself on every screen comes
// back centred on the primary one, and its top edge (where it is grabbed)
// is kept on its screen.
WindowGeometry Sanitize(WindowGeometry g, const std::vector<ScreenRect>& screens, int minWidth,
                        int minHeight);

}  // namespace satwalk::shell
