// Reading the fix texts: positions to degrees, numbers as the C library
// reads them, and speeds and heights in each unit system.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "FixText.h"

namespace satwalk::common {
namespace {

struct PositionCase {
    const char* latitude;
    char northSouth;
    const char* longitude;
    char eastWest;
    double expectedLatitude;
    double expectedLongitude;
};

TEST(NmeaToDegrees, SignedDegrees) {
    const PositionCase cases[] = {
        {"3015.1234", 'S', "12009.5000", 'E', -30.252056666666665, 120.15833333333333},
        {"3015.1234", 'N', "12009.5000", 'W', 30.252056666666665, -120.15833333333333},
        {"8959.9999", 'N', "17959.9999", 'E', 89.99999833333333, 179.99999833333333},
        // Minutes read as text up to seven characters: the rest is ignored.
        {"30151234", 'N', "1201234567", 'E', 30.0 + 151234.0 / 60.0, 120.0 + 1234567.0 / 60.0},
        {"3", 'N', "12", 'E', 3.0, 12.0},
        {"3015.1234", 'n', "12009.5000", 'e', -30.252056666666665, -120.15833333333333},
    };
    for (const auto& c : cases) {
        double lat = 1;
        double lon = 1;
        SCOPED_TRACE(std::string(c.latitude) + c.northSouth + " " + c.longitude + c.eastWest);
        EXPECT_EQ(NmeaToDegrees(c.latitude, c.northSouth, c.longitude, c.eastWest, &lat, &lon), 1);
        EXPECT_NEAR(lat, c.expectedLatitude, 1e-12);
        EXPECT_NEAR(lon, c.expectedLongitude, 1e-12);
    }
}

TEST(NmeaToDegrees, EmptyTextsGiveNegativeZero) {
    double lat = 1;
    double lon = 1;
    NmeaToDegrees("", 0, "", 0, &lat, &lon);
    EXPECT_EQ(lat, 0.0);
    EXPECT_TRUE(std::signbit(lat));
    EXPECT_TRUE(std::signbit(lon));
    NmeaToDegrees("", 'N', "", 'E', &lat, &lon);
    EXPECT_FALSE(std::signbit(lat));
    EXPECT_FALSE(std::signbit(lon));
}

TEST(TextConversions, ReadLeadingNumbersLikeTheCLibrary) {
    const struct {
        const char* text;
        int integer;
        double decimal;
    } cases[] = {
        {"", 0, 0.0},
        {" 7x", 7, 7.0},
        {"-5.5", -5, -5.5},
        {"abc", 0, 0.0},
        {"022.4", 22, 22.4},
        {"1e3", 1, 1000.0},
        {"99999999999", 2147483647, 99999999999.0},
        {"-99999999999", -2147483647 - 1, -99999999999.0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(TextToInt(c.text), c.integer) << c.text;
        EXPECT_DOUBLE_EQ(TextToDouble(c.text), c.decimal) << c.text;
    }
}

TEST(UnitConversions, SpeedAndHeightPerUnitSystem) {
    const struct {
        int units;
        double speed;   // of 10 knots
        double height;  // of 100 m
    } cases[] = {
        {kMetric, 18.5, 100.0},
        {kImperial, 11.52, 328.0},
        {kNautical, 10.0, 328.0},
        {7, 10.0, 100.0},  // not a unit system: knots and metres as they are
    };
    for (const auto& c : cases) {
        EXPECT_DOUBLE_EQ(SpeedInUnit(10.0, c.units), c.speed) << c.units;
        EXPECT_DOUBLE_EQ(HeightInUnit(100.0, c.units), c.height) << c.units;
    }
}

}  // namespace
}  // namespace satwalk::common
