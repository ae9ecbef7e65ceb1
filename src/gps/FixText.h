// Reading the fix record's texts: numbers as the C library's atoi and atof
// read them (but independent of the process locale), positions in signed
// degrees, the fix time stamp as calendar fields, and speeds and heights in
// the chosen unit system.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ScreenIds.h"

namespace satwalk::gps {

// 100 ns ticks since 1601-01-01, the unit of the fix time stamp.
using FileTime = std::uint64_t;
inline constexpr FileTime kFileTimeTicksPerSecond = 10'000'000;
inline constexpr std::int64_t kDaysFrom1601To1970 = 134774;

// Leading-digits integer value; saturates at the int range. Inline: the
// decoder sorts every satellite table with it.
inline int TextToInt(const char* text) {
    const char* p = text;
    while (*p == ' ' || (*p >= '\t' && *p <= '\r')) ++p;
    bool negative = false;
    if (*p == '+' || *p == '-')
        negative = *p++ == '-';
    std::int64_t value = 0;
    while (*p >= '0' && *p <= '9') {
        value = value * 10 + (*p++ - '0');
        if (value > 2147483648LL)
            value = 2147483648LL;  // saturate, never overflow
    }
    if (negative)
        value = -value;
    if (value > 2147483647LL)
        value = 2147483647LL;
    return static_cast<int>(value);
}

// The leading decimal number as atof reads it, in any locale; a text whose
// number is not finite ("nan", "inf", 1e400) reads 0, as one without a number.
double TextToDouble(const char* text);

// Characters [from, from+count) of a NUL-terminated text, never reading past
// its NUL, copied into out (NUL-terminated).
void Substring(const char* text, std::size_t from, std::size_t count, char* out);

// Position texts with hemisphere letters to signed decimal degrees, north
// and east positive. Always returns 1.
int NmeaToDegrees(const char* latitudeText, char northSouth, const char* longitudeText,
                  char eastWest, double* latitude, double* longitude);

// Local calendar fields of a FILETIME (no time-zone conversion).
struct CalendarTime {
    int year, month, day, hour, minute, second, millisecond;
};
CalendarTime FileTimeToCalendar(FileTime time);

// Knots in the unit system: km/h (x 1.85), MPH (x 1.152), else knots.
constexpr double SpeedInUnit(double knots, int units) {
    return units == common::kMetric     ? knots * 1.85
           : units == common::kImperial ? knots * 1.152
                                        : knots;
}

// Metres in the unit system: feet (x 3.28) for imperial and nautical, else
// metres.
constexpr double HeightInUnit(double metres, int units) {
    return units == common::kImperial || units == common::kNautical ? metres * 3.28 : metres;
}

}  // namespace satwalk::gps
