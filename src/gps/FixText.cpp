#include "FixText.h"

#include <locale.h>

#include <cmath>
#include <cstdlib>

namespace satwalk::gps {

namespace {

locale_t CLocale() {
    static const locale_t loc = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return loc;
}

// "nan", "inf" and numbers past the double range are no numbers to a
// position or a scale: they read as text that is not a number does.
double Finite(double value) {
    return std::isfinite(value) ? value : 0.0;
}

}  // namespace

void Substring(const char* text, std::size_t from, std::size_t count, char* out) {
    std::size_t i = 0;
    while (i < from && text[i] != '\0') ++i;
    std::size_t n = 0;
    if (i == from) {
        while (n < count && text[i + n] != '\0') {
            out[n] = text[i + n];
            ++n;
        }
    }
    out[n] = '\0';
}

double TextToDouble(const char* text) {
    // Nearly every text is a short plain decimal ("12.5", "-0.9"). Its value
    // is its digits as an integer over a power of ten, and while both are
    // exact doubles (the integer below 2^53, the power at most 1e22) one
    // division rounds it as the C library's correctly rounded reading does.
    // Anything else (leading spaces, exponents, hexadecimal, inf and nan,
    // long digit runs) the C library reads.
    static constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                              1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                              1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    constexpr int kMaxFractionDigits = 22;
    constexpr std::uint64_t kExactLimit = std::uint64_t{1} << 53;
    const char* p = text;
    const bool negative = *p == '-';
    if (*p == '-' || *p == '+')
        ++p;
    if (p[0] == '0' && (p[1] == 'x' || p[1] == 'X'))
        return Finite(strtod_l(text, nullptr, CLocale()));
    std::uint64_t digits = 0;
    int count = 0;
    int fraction = 0;
    bool point = false;
    for (;; ++p) {
        if (*p >= '0' && *p <= '9') {
            digits = digits * 10 + static_cast<std::uint64_t>(*p - '0');
            if (digits >= kExactLimit)
                return Finite(strtod_l(text, nullptr, CLocale()));
            ++count;
            fraction += point ? 1 : 0;
        } else if (*p == '.' && !point) {
            point = true;
        } else {
            break;
        }
    }
    if (count == 0 || *p == 'e' || *p == 'E' || fraction > kMaxFractionDigits)
        return Finite(strtod_l(text, nullptr, CLocale()));
    const double value = static_cast<double>(digits) / kPowersOfTen[fraction];
    return negative ? -value : value;
}

CalendarTime FileTimeToCalendar(FileTime time) {
    const std::int64_t totalMs = static_cast<std::int64_t>(time / 10'000);
    std::int64_t seconds = totalMs / 1000;
    CalendarTime c{};
    c.millisecond = static_cast<int>(totalMs % 1000);
    std::int64_t days = seconds / 86400 - kDaysFrom1601To1970;
    const std::int64_t rest = seconds % 86400;
    c.hour = static_cast<int>(rest / 3600);
    c.minute = static_cast<int>(rest % 3600 / 60);
    c.second = static_cast<int>(rest % 60);
    // Civil date from days since 1970-01-01.
    days += 719468;
    const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(days - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    const unsigned d = doy - (153 * mp + 2) / 5 + 1;
    const unsigned m = mp < 10 ? mp + 3 : mp - 9;
    c.year = static_cast<int>(static_cast<std::int64_t>(yoe) + era * 400 + (m <= 2));
    c.month = static_cast<int>(m);
    c.day = static_cast<int>(d);
    return c;
}

int NmeaToDegrees(const char* latitudeText, char northSouth, const char* longitudeText,
                  char eastWest, double* latitude, double* longitude) {
    constexpr double kOneSixtieth = 0.016666666666666666;
    char part[8];
    Substring(latitudeText, 0, 2, part);
    double lat = TextToInt(part);
    Substring(latitudeText, 2, 7, part);
    lat += TextToDouble(part) * kOneSixtieth;
    if (northSouth != 'N')
        lat = -lat;

    Substring(longitudeText, 0, 3, part);
    double lon = TextToInt(part);
    Substring(longitudeText, 3, 7, part);
    lon += TextToDouble(part) * kOneSixtieth;
    if (eastWest != 'E')
        lon = -lon;

    if (latitude)
        *latitude = lat;
    if (longitude)
        *longitude = lon;
    return 1;
}

}  // namespace satwalk::gps
