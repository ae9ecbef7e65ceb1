// Shared set-up for the screen tests: contexts of both orientations and
// sets, and fix records filled from NMEA text.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ostream>
#include <string>

#include "NmeaDecoder.h"
#include "RecordingCanvas.h"
#include "Screens.h"

namespace satwalk::screens {
// Readable values in failure messages.
inline std::ostream& operator<<(std::ostream& os, Rect r) {
    return os << "(" << r.left << "," << r.top << "," << r.right << "," << r.bottom << ")";
}
inline std::ostream& operator<<(std::ostream& os, Point p) {
    return os << "(" << p.x << "," << p.y << ")";
}
inline std::ostream& operator<<(std::ostream& os, Colour c) {
    return os << "rgb(" << int(c.r) << "," << int(c.g) << "," << int(c.b) << ")";
}
}  // namespace satwalk::screens

namespace satwalk::screens::test {

struct Variant {
    const char* name;
    int width, height, dpi;
};
inline constexpr Variant kPortraitHi{"portrait-hi", 480, 640, 192};
inline constexpr Variant kLandscapeHi{"landscape-hi", 640, 480, 192};
inline constexpr Variant kPortraitLo{"portrait-lo", 240, 320, 96};
inline constexpr Variant kLandscapeLo{"landscape-lo", 320, 240, 96};
inline constexpr Variant kAllVariants[] = {kPortraitHi, kLandscapeHi, kPortraitLo, kLandscapeLo};

inline ScreenContext MakeContext(const Variant& v) {
    ScreenContext ctx;
    ctx.dpi = v.dpi;
    ctx.baseTextHeight = BaseTextHeightForDpi(v.dpi);
    AssignBitmapHandles(ctx);
    RecordingCanvas measure(Rect{0, 0, v.width, v.height});
    UpdateScreenLayout(measure, ctx, Rect{0, 0, v.width, v.height});
    ctx.display.linkRunning = true;
    ctx.display.fixValid = true;
    return ctx;
}

inline void SetText(char* field, std::size_t size, const char* text) {
    std::memset(field, 0, size);
    std::memcpy(field, text, std::min(std::strlen(text), size - 1));
}
#define SET_FIELD(field, text) ::satwalk::screens::test::SetText(field, sizeof(field), text)

inline void SetSatellite(gps::GpsState& g, int row, const char* prn, const char* el, const char* az,
                         const char* snr) {
    auto& s = g.satellites[row];
    SET_FIELD(s.prn, prn);
    SET_FIELD(s.elevation, el);
    SET_FIELD(s.azimuth, az);
    SET_FIELD(s.snr, snr);
}

inline bool IsRed(const Pen& p) {
    return p.colour == Rgb(255, 0, 0);
}

// Angle of a radial line in degrees, clockwise from straight up, 0..360.
inline double LineAngle(Point centre, Point end) {
    const double a = std::atan2(end.x - centre.x, centre.y - end.y) * 180.0 / 3.141592653589793;
    return a < 0 ? a + 360.0 : a;
}

}  // namespace satwalk::screens::test
