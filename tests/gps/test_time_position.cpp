// The fix time stamp and its synchronisation, and position texts to degrees.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <string>

#include "GpsJson.h"
#include "NmeaTestUtil.h"

namespace satwalk::gps {
namespace {

using testing::Decoder;
using testing::Sentence;

// Each test that reads local time sets the zone it needs.
void UseTimeZone(const char* tz) {
    setenv("TZ", tz, 1);
    tzset();
}

struct TimeCase {
    const char* tz;
    const char* date;
    const char* utcTime;
    const char* expected;  // local time, or "" for no time
};

TEST(FixTimeToFileTime, LocalTimeThroughTheTimeZone) {
    const TimeCase cases[] = {
        {"UTC0", "160526", "021530.250", "2026-05-16 02:15:30.250"},
        {"CST-8", "160526", "201530.250", "2026-05-17 04:15:30.250"},
        {"EST5EDT,M3.2.0,M11.1.0", "150126", "120000.000", "2026-01-15 07:00:00.000"},
        {"EST5EDT,M3.2.0,M11.1.0", "150726", "120000.000", "2026-07-15 08:00:00.000"},
        {"UTC0", "290224", "235959.999", "2024-02-29 23:59:59.999"},
        {"UTC0", "010100", "000000", "2000-01-01 00:00:00.000"},
        // Three characters after the point are read as a number: ".5" is 5 ms.
        {"UTC0", "010100", "000000.5", "2000-01-01 00:00:00.005"},
        {"UTC0", "290223", "120000.000", ""},  // no 29 February in 2023
        {"UTC0", "", "120000.000", ""},
        {"UTC0", "160526", "250000.000", ""},
        {"UTC0", "321326", "120000.000", ""},
    };
    for (const auto& c : cases) {
        UseTimeZone(c.tz);
        GpsState s;
        s.fixTimeLocal = 12345;
        FixTimeToFileTime(s, c.date, c.utcTime);
        SCOPED_TRACE(std::string(c.tz) + " " + c.date + " " + c.utcTime);
        if (*c.expected == '\0') {
            EXPECT_EQ(s.fixTimeLocal, 0u);
        } else {
            EXPECT_EQ(FormatFixTime(s.fixTimeLocal), c.expected);
        }
    }
}

TEST(TimeSync, OnlyTheFirstGoodRmcAfterARequest) {
    UseTimeZone("UTC0");
    Decoder d;
    const std::string first = Sentence("GPRMC,010203.000,V,,,,,,,160526,,");
    const std::string second = Sentence("GPRMC,010204.000,A,3015.1234,N,12009.5000,E,0,0,160526,,");
    d.Feed(first + second);
    EXPECT_EQ(d.sink.calls, 1);
    EXPECT_EQ(d.state.timeSyncPending, 0u);
    EXPECT_EQ(FormatFixTime(d.state.fixTimeLocal), "2026-05-16 01:02:03.000")
        << "a void fix still syncs the time";

    d.state.timeSyncPending = 1;
    d.Feed("$GPRMC,010205.000,A,,,,,,,160526,,*00\r\n");  // bad checksum: no sync
    EXPECT_EQ(d.sink.calls, 1);
    d.Feed(Sentence("GPRMC,010206.000,A,,,,,,,160526,,"));
    EXPECT_EQ(d.sink.calls, 2);
    EXPECT_EQ(FormatFixTime(d.state.fixTimeLocal), "2026-05-16 01:02:06.000");
}

TEST(TimeSync, EmptyDateStillSyncs) {
    Decoder d;
    d.state.fixTimeLocal = 99;
    d.Feed("$GPRMC,,V,,,,,,,,,,N*53\r\n");  // the receiver's empty void sentence
    EXPECT_EQ(d.state.status, 'V');
    EXPECT_EQ(d.sink.calls, 1);
    EXPECT_EQ(d.state.timeSyncPending, 0u);
    EXPECT_EQ(d.state.fixTimeLocal, 0u);
}

TEST(TimeSync, WorksWithoutASink) {
    GpsState s;
    GsvAssembly a;
    ParseNmeaBuffer(s, a, Sentence("GPRMC,010203,A,,,,,,,160526,,"), nullptr);
    EXPECT_EQ(s.timeSyncPending, 0u);
    EXPECT_NE(s.fixTimeLocal, 0u);
}

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
        {"4807.0380", 'N', "01131.0000", 'E', 48.1173, 11.516666666666667},
        {"0000.0000", 'N', "00000.0000", 'E', 0.0, 0.0},
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
        {"12", 12, 12.0},
        {" 7x", 7, 7.0},
        {"-5.5", -5, -5.5},
        {"+3", 3, 3.0},
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

}  // namespace
}  // namespace satwalk::gps
