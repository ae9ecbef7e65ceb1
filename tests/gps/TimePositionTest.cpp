// The fix time stamp and its synchronisation.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <string>
#include <tuple>

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

TEST(FixTimeToFileTime, LocalTimeThroughTheTimeZone) {
    // Zone, date, time, and the local time, or "" for no time.
    const std::array<const char*, 4> cases[] = {
        {"UTC0", "160526", "021530.250", "2026-05-16 02:15:30.250"},
        {"CST-8", "160526", "201530.250", "2026-05-17 04:15:30.250"},
        {"EST5EDT,M3.2.0,M11.1.0", "150126", "120000.000", "2026-01-15 07:00:00.000"},
        {"EST5EDT,M3.2.0,M11.1.0", "150726", "120000.000", "2026-07-15 08:00:00.000"},
        {"UTC0", "010100", "000000", "2000-01-01 00:00:00.000"},
        // Three characters after the point are read as a number: ".5" is 5 ms.
        {"UTC0", "010100", "000000.5", "2000-01-01 00:00:00.005"},
        {"UTC0", "290223", "120000.000", ""},  // no 29 February in 2023
        {"UTC0", "160526", "250000.000", ""}};
    for (const auto& [tz, date, time, expected] : cases) {
        UseTimeZone(tz);
        GpsState s;
        s.fixTimeLocal = 12345;
        FixTimeToFileTime(s, date, time);
        EXPECT_EQ(s.fixTimeLocal ? FormatFixTime(s.fixTimeLocal) : "", expected) << date << time;
    }
}

TEST(TimeSync, OnlyTheFirstGoodRmcAfterARequest) {
    UseTimeZone("UTC0");
    Decoder d;
    const std::string first = Sentence("GPRMC,010203.000,V,,,,,,,160526,,");
    const std::string second = Sentence("GPRMC,010204.000,A,3015.1234,N,12009.5000,E,0,0,160526,,");
    d.Feed(first + second);
    EXPECT_EQ(std::tuple(d.sink.calls, d.state.timeSyncPending), std::tuple(1, 0u));
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
    EXPECT_EQ(
        std::tuple(d.state.status, d.sink.calls, d.state.timeSyncPending, d.state.fixTimeLocal),
        std::tuple('V', 1, 0u, FileTime{0}));
}

}  // namespace
}  // namespace satwalk::gps
