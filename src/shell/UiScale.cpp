#include "UiScale.h"

#include <algorithm>
#include <cstdio>

#include "ScreenIds.h"

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
    const std::size_t slash = optionsPath.rfind('/');
    return (slash == std::string::npos ? std::string() : optionsPath.substr(0, slash + 1)) +
           "ui-scale";
}

std::uint32_t LoadUiScale(const std::string& path) {
    std::FILE* f = std::fopen(path.c_str(), "rbe");
    if (f == nullptr)
        return kUiScaleAuto;
    char text[16] = {};
    const std::size_t n = std::fread(text, 1, sizeof text - 1, f);
    std::fclose(f);
    std::uint32_t setting = kUiScaleAuto;
    return ParseUiScale(std::string_view(text, n), setting) ? setting : kUiScaleAuto;
}

bool SaveUiScale(const std::string& path, std::uint32_t setting) {
    const std::string temporary = path + ".new";
    std::FILE* f = std::fopen(temporary.c_str(), "wbe");
    if (f == nullptr)
        return false;
    const bool written = std::fputs((FormatUiScale(setting) + "\n").c_str(), f) >= 0;
    if (std::fclose(f) != 0 || !written || std::rename(temporary.c_str(), path.c_str()) != 0) {
        std::remove(temporary.c_str());
        return false;
    }
    return true;
}

}  // namespace satwalk::shell
