// What the window shows in its screen area (CurrentScreen), and the unit
// system of speeds and heights.
#pragma once

namespace satwalk::common {

enum ScreenId : int {
    kScreenSatelliteData = -1,  // the satellite data dialog stands in the screen's place
    kScreenGpsInfo = 0,
    kScreenSkyPlot = 1,
    kScreenCompass = 2,
    kScreenSpeedometer = 3,
    kScreenMap = 4,
};

enum UnitSystem : int { kMetric = 0, kImperial = 1, kNautical = 2 };

// (15 x pixels per inch + 48) / 96: 15 at 96 dpi (the small pixel set), 30
// at 192 dpi.
constexpr int BaseTextHeightForDpi(int dpi) {
    return (15 * dpi + 48) / 96;
}

}  // namespace satwalk::common
