// Reading the fix texts: positions to degrees, numbers as the C library
// reads them (to the bit: the NMEA fuzz target compares on any text), speeds and heights in each
// unit system, and a record's numbers read once.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "FixText.h"
#include "GpsState.h"
#include "NmeaTestUtil.h"

namespace satwalk::gps {
namespace {

using common::kImperial;
using common::kMetric;
using common::kNautical;

TEST(NmeaToDegrees, SignedDegrees) {
    const std::tuple<const char*, char, const char*, char, double, double> cases[] = {
        {"3015.1234", 'S', "12009.5000", 'E', -30.252056666666665, 120.15833333333333},
        {"3015.1234", 'N', "12009.5000", 'W', 30.252056666666665, -120.15833333333333},
        {"4807.0380", 'N', "01131.0000", 'E', 48.1173, 11.516666666666667},
        {"0000.0000", 'N', "00000.0000", 'E', 0.0, 0.0},
        {"8959.9999", 'N', "17959.9999", 'E', 89.99999833333333, 179.99999833333333},
        // Minutes read as text up to seven characters: the rest is ignored.
        {"30151234", 'N', "1201234567", 'E', 30.0 + 151234.0 / 60.0, 120.0 + 1234567.0 / 60.0},
        {"3", 'N', "12", 'E', 3.0, 12.0},
        {"3015.1234", 'n', "12009.5000", 'e', -30.252056666666665, -120.15833333333333}};
    for (const auto& [latitude, northSouth, longitude, eastWest, expectedLatitude,
                      expectedLongitude] : cases) {
        double lat = 1, lon = 1;
        SCOPED_TRACE(std::string(latitude) + northSouth + " " + longitude + eastWest);
        EXPECT_EQ(NmeaToDegrees(latitude, northSouth, longitude, eastWest, &lat, &lon), 1);
        EXPECT_NEAR(lat, expectedLatitude, 1e-12);
        EXPECT_NEAR(lon, expectedLongitude, 1e-12);
    }
}

TEST(NmeaToDegrees, EmptyTextsGiveNegativeZero) {
    double lat = 1, lon = 1;
    NmeaToDegrees("", 0, "", 0, &lat, &lon);
    EXPECT_EQ(std::tuple(lat, std::signbit(lat), std::signbit(lon)), std::tuple(0.0, true, true));
    NmeaToDegrees("", 'N', "", 'E', &lat, &lon);
    EXPECT_EQ(std::tuple(std::signbit(lat), std::signbit(lon)), std::tuple(false, false));
}

TEST(TextConversions, ReadLeadingNumbersLikeTheCLibrary) {
    // Text, then what it reads as an integer and as a decimal. Past 2^53 a
    // number rounds to even; the quick path rounds once.
    const std::tuple<const char*, int, double> cases[] = {
        {"", 0, 0.0},
        {"12", 12, 12.0},
        {" 7x", 7, 7.0},
        {"-5.5", -5, -5.5},
        {"+3", 3, 3.0},
        {"abc", 0, 0.0},
        {"022.4", 22, 22.4},
        {"1e3", 1, 1000.0},
        {"0x1A", 0, 26.0},
        {"99999999999", 2147483647, 99999999999.0},
        {"-99999999999", -2147483647 - 1, -99999999999.0},
        {"-.5e1", 0, -5.0},
        {"1.5.3", 1, 1.5},
        {"9007199254740993", 2147483647, 9007199254740992.0},
        {"0.30000000000000004", 0, 0.30000000000000004},
        {"12009.50000000000001", 12009, 12009.5}};
    for (const auto& [text, integer, decimal] : cases) {
        EXPECT_EQ(TextToInt(text), integer) << text;
        EXPECT_DOUBLE_EQ(TextToDouble(text), decimal) << text;
    }
}

TEST(UnitConversions, SpeedAndHeightPerUnitSystem) {
    // Unit system, then 10 knots and 100 m in it; 7 is no unit system: knots
    // and metres as they are.
    const std::tuple<int, double, double> cases[] = {{kMetric, 18.5, 100.0},
                                                     {kImperial, 11.52, 328.0},
                                                     {kNautical, 10.0, 328.0},
                                                     {7, 10.0, 100.0}};
    for (const auto& [units, speed, height] : cases) {
        EXPECT_DOUBLE_EQ(SpeedInUnit(10.0, units), speed) << units;
        EXPECT_DOUBLE_EQ(HeightInUnit(100.0, units), height) << units;
    }
}

TEST(ReadFix, EachNumberFromItsOwnText) {
    testing::Decoder d;
    d.Feed(testing::Sentence("GPRMC,081500.00,A,3015.1234,S,12009.5000,E,20.5,33.5,211126,,,A") +
           testing::Sentence("GPGGA,081500.00,3015.1234,S,12009.5000,E,1,08,0.9,23.4,M,-13.0,M,,") +
           testing::Sentence("GPGSA,A,3,02,05,,,,,,,,,,,1.8,0.9,1.6") +
           testing::Sentence("GPGSV,1,1,02,02,72,040,48,05,35,095,"));
    const FixValues v = ReadFix(d.state);
    EXPECT_NEAR(v.latitude.value(), -30.252056666666665, 1e-12);
    EXPECT_NEAR(v.longitude.value(), 120.15833333333333, 1e-12);
    using O = std::optional<double>;
    EXPECT_EQ((std::vector<O>{v.speedKnots, v.course, v.altitude, v.pdop, v.hdop, v.vdop,
                              v.satellites[0].elevation, v.satellites[0].azimuth}),
              (std::vector<O>{20.5, 33.5, 23.4, 1.8, 0.9, 1.6, 72.0, 40.0}));
    EXPECT_EQ((std::vector<std::optional<int>>{v.satellitesUsed, v.satellitesInView,
                                               v.satellites[0].snr, v.satellites[1].snr}),
              (std::vector<std::optional<int>>{8, 2, 48, std::nullopt}));  // 05 is not tracked
    EXPECT_TRUE(v.valid);
}

// An empty text is absent, not 0; a text without its NUL ends at the
// field's last byte, and the course after it is not read.
TEST(ReadFix, EmptyIsAbsentAndTextsEndWithinTheirField) {
    GpsState s;
    EXPECT_EQ(ReadFix(s).speedKnots, std::nullopt);
    std::memcpy(s.speedKnots, "1234567", sizeof s.speedKnots);
    std::memcpy(s.course, "55", 2);
    EXPECT_EQ(ReadFix(s).speedKnots, 123456.0);
}

}  // namespace
}  // namespace satwalk::gps
