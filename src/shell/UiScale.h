// "界面缩放": how large the program draws itself in a desktop window. The
// screens keep laying out at the handheld's sizes (480 × 640 at 192 dpi,
// 240 × 320 at 96 dpi) and the window shows them that many times larger:
// 100 % is the handheld's pixel for pixel. Automatic scaling chooses the
// largest quarter step at which the handheld's screen of the window's
// orientation still fits the window, so that a maximised window is filled
// as the handheld's screen was; sizes are the desktop's device-independent
// pixels, in which the window system has already allowed for the screen's
// real density.
//
// The choice lives in a small file of its own beside the options file,
// `ui-scale` ("auto", "100", "150", "200" or "300"), as `track-gpx` does:
// the options record has no byte for it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace satwalk::shell {

inline constexpr int kIdUiScaleLabel = 1161;  // in "选项"
inline constexpr int kIdUiScale = 1162;       // its list

inline constexpr std::uint32_t kUiScaleAuto = 0;
// The choices in the options' list, in its order: automatic, then percent.
inline constexpr std::uint32_t kUiScaleChoices[] = {kUiScaleAuto, 100, 150, 200, 300};

// "auto", "100", ...: true with the setting, false for anything else.
bool ParseUiScale(std::string_view text, std::uint32_t& setting);
std::string FormatUiScale(std::uint32_t setting);

// The scale in percent for a window whose client area (the soft-key bar
// included) is `width` × `height`, at the pixel set of `dpi`.
int UiScalePercent(std::uint32_t setting, int width, int height, int dpi);
// The scale for a window made to hold a client area of `width` ×
// `clientHeight` above the soft-key bar (as `--size` names it): the bar grows
// with the scale and the scale with the window, so this is the smallest scale
// that the window so made gives again.
int UiScalePercentForClient(std::uint32_t setting, int width, int clientHeight, int dpi);
// The soft-key bar's height at 100 %.
inline int SoftKeyBarHeight(int dpi) {
    return (26 * dpi + 48) / 96;
}

std::string UiScalePath(const std::string& optionsPath);
// Missing or unreadable: automatic.
std::uint32_t LoadUiScale(const std::string& path);
// Writes a new file that replaces the old one once complete; false when it
// could not.
bool SaveUiScale(const std::string& path, std::uint32_t setting);

}  // namespace satwalk::shell
