// Integer helpers for layout arithmetic. Values from the receiver can be
// absurd (a course of 1e300, NaN), so every double-to-int conversion goes
// through these and saturates instead of overflowing.
#pragma once

#include <cmath>

namespace satwalk::screens {

inline constexpr double kPi = 3.141592653589793;
inline constexpr double kSaturate = 1.0e7;

// Truncation toward zero, saturated; NaN gives 0.
inline int Trunc(double v) {
    if (!(v == v))
        return 0;
    if (v > kSaturate)
        return static_cast<int>(kSaturate);
    if (v < -kSaturate)
        return -static_cast<int>(kSaturate);
    return static_cast<int>(v);
}
// "Add 0.5 and truncate".
inline int Round(double v) {
    return Trunc(v + 0.5);
}
// floor(v + 0.5).
inline int FloorHalf(double v) {
    return Trunc(std::floor(v + 0.5));
}

// A finite angle in degrees; huge ones are reduced so that sin and cos stay exact enough;
// non-finite values become 0.
inline double SaneDegrees(double deg) {
    if (!std::isfinite(deg))
        return 0.0;
    if (std::fabs(deg) <= 1.0e6)
        return deg;
    return std::fmod(deg, 360.0);
}

}  // namespace satwalk::screens
