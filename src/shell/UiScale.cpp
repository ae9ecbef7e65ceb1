#include "UiScale.h"

#include <algorithm>

#include "ScreenIds.h"
#include "SmallFile.h"

namespace satwalk::shell {

bool ParseUiScale(std::string_view text, std::uint32_t& setting) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' '))
        text.remove_suffix(1);
    if (text == "auto") {
        setting = kUiScaleAuto;
        return true;
    }
    for (const std::uint32_t choice : kUiScaleChoices) {
        if (choice != kUiScaleAuto && text == std::to_string(choice)) {
            setting = choice;
            return true;
        }
    }
    return false;
}

std::string FormatUiScale(std::uint32_t setting) {
    return setting == kUiScaleAuto ? "auto" : std::to_string(setting);
}

int UiScalePercent(std::uint32_t setting, int width, int height, int dpi) {
    if (setting != kUiScaleAuto)
        return static_cast<int>(setting);
    // The handheld's screen at this pixel set, turned as the window is, and
    // the soft-key bar below it.
    const bool small = common::BaseTextHeightForDpi(dpi) == 15;
    int screenWidth = small ? 240 : 480;
    int screenHeight = small ? 320 : 640;
    if (width > height - SoftKeyBarHeight(dpi))
        std::swap(screenWidth, screenHeight);
    const long fit = std::min(100L * width / screenWidth,
                              100L * height / (screenHeight + SoftKeyBarHeight(dpi)));
    return static_cast<int>(std::clamp(fit / 25 * 25, 100L, 400L));
}

int UiScalePercentForClient(std::uint32_t setting, int width, int clientHeight, int dpi) {
    // Each step's window is at least as tall as the last one's, so the
    // percent only grows; it stops at the first that repeats.
    int percent = 100;
    for (int step = 0; step < 16; ++step) {
        const int next = UiScalePercent(setting, width,
                                        clientHeight + SoftKeyBarHeight(dpi) * percent / 100, dpi);
        if (next == percent)
            break;
        percent = next;
    }
    return percent;
}

std::string UiScalePath(const std::string& optionsPath) {
    return common::PathBeside(optionsPath, "ui-scale");
}

std::uint32_t LoadUiScale(const std::string& path) {
    const std::optional<std::string> text = common::ReadFileStart(path, 15);
    std::uint32_t setting = kUiScaleAuto;
    return text && ParseUiScale(*text, setting) ? setting : kUiScaleAuto;
}

bool SaveUiScale(const std::string& path, std::uint32_t setting) {
    return common::ReplaceFile(path, FormatUiScale(setting) + "\n");
}

}  // namespace satwalk::shell
