// Field copying of the RMC, GGA and GSA parsers: which field lands where,
// truncation to the field widths, and blocks cleared by each good sentence.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <string>
#include <tuple>

#include "NmeaTestUtil.h"

namespace satwalk::gps {
namespace {

using testing::Decoder;
using testing::Sentence;

// Text fields and single characters joined by '|' (a NUL character shows as
// nothing), so that a case's expectation fits one line.
std::string Join(std::initializer_list<std::string> fields) {
    std::string out;
    for (const std::string& f : fields) out += (&f == fields.begin() ? "" : "|") + f;
    return out;
}
std::string Char(char c) {
    return c ? std::string(1, c) : "";
}

// Each table: a sentence body, then the block's fields it leaves, after a
// sentence that filled them all.
TEST(Parsers, Fields) {
    const std::tuple<const char*, const char*, std::function<std::string(const GpsState&)>>
        kinds[] = {
            {"GPRMC,999999.999,A,1111.1111,S,22222.2222,W,9,9,999999", "RMC",
             [](const GpsState& s) {
                 return Join({s.utcTime, Char(s.status), s.latitude, Char(s.northSouth),
                              s.longitude, Char(s.eastWest), s.speedKnots, s.course, s.date});
             }},
            // GGA never touches the RMC block: the time stays empty.
            {"GPGGA,1,2,N,3,E,2,99,9,999,F,99,F,,", "GGA",
             [](const GpsState& s) {
                 return Join({Char(s.fixQuality), s.satellitesUsed, s.altitude,
                              Char(s.altitudeUnit), s.geoidSeparation, Char(s.geoidUnit),
                              s.utcTime});
             }},
            {"GPGSA,A,3,,,,,,,,,,,,,9.9,9.9,9.9", "GSA", [](const GpsState& s) {
                 return Join({Char(s.fixMode), s.pdop, s.hdop, s.vdop});
             }}};
    const std::pair<const char*, const char*> cases[] = {
        {"GPRMC,123519.000,A,4807.0380,N,01131.0000,E,022.4,084.4,230394,003.1,W",
         "123519.000|A|4807.0380|N|01131.0000|E|022.4|084.4|230394"},
        // Every field one character too long: each keeps its width.
        {"GPRMC,123519.0001,A,4807.03801,N,01131.00001,E,1022.45,1084.45,2303941,,",
         "123519.000|A|4807.0380|N|01131.0000|E|1022.4|1084.4|230394"},
        {"GPRMC,,V,,,,,,,,,,N", "|V|||||||"},
        // A one-character field sent longer keeps its first character and
        // the fields after it stay aligned.
        {"GPRMC,010203,AV,3015.1234,NS,12009.5000,EW,5,6,010126",
         "010203|A|3015.1234|N|12009.5000|E|5|6|010126"},
        {"GPRMC,010203,A,3015.1234", "010203|A|3015.1234||||||"},  // missing fields are empty
        {"GPRMC,", "||||||||"},
        {"GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", "1|08|545.4|M|46.9|M|"},
        {"GPGGA,123519,4807.038,N,01131.000,E,2,123,0.9,-12345.678,M,-1234.5678,M,,",
         "2|12|-12345.67|M|-1234.567|M|"},
        {"GPGGA,123519,4807.038,N,01131.000,E,1,08", "1|08|||||"},
        {"GPGGA,123519,4807.038,N,01131.000,E,12,08,0.9,545.4,Metres,46.9,M",
         "1|08|545.4|M|46.9|M|"},
        {"GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1", "3|2.5|1.3|2.1"},
        {"GPGSA,M,2,,,,,,,,,,,,,12.3456789,1.23456789,99.1234567", "2|12.3456|1.23456|99.1234"},
        {"GPGSA,A,3,04,05", "3|||"},
        // VDOP is the last field and ends at '*'; a trailing field after it
        // is simply not read.
        {"GPGSA,A,3,,,,,,,,,,,,,1.0,2.0,3.0,1", "3|1.0|2.0|3.0"}};
    for (const auto& [body, want] : cases) {
        for (const auto& [full, kind, fields] : kinds) {
            if (std::string_view(body).substr(2, 3) != kind)
                continue;
            Decoder d;
            d.Feed(Sentence(full));
            d.Feed(Sentence(body));
            EXPECT_EQ(fields(d.state), want) << body;
        }
    }
}

TEST(GpsState, ClearAllBlocksKeepsTheFixTime) {
    Decoder d;
    d.Feed(Sentence("GPRMC,123519.000,A,4807.0380,N,01131.0000,E,022.4,084.4,230394,,"));
    d.Feed(Sentence("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"));
    d.Feed(Sentence("GPGSA,A,3,,,,,,,,,,,,,2.5,1.3,2.1"));
    d.Feed(Sentence("GPGSV,1,1,01,07,40,083,46"));
    const FileTime time = d.state.fixTimeLocal;
    ASSERT_NE(time, 0u);
    d.state.ClearAllBlocks();
    const GpsState empty;
    EXPECT_EQ(0, std::memcmp(d.state.utcTime, empty.utcTime,
                             offsetof(GpsState, satellites) + sizeof empty.satellites -
                                 offsetof(GpsState, utcTime)));
    EXPECT_EQ(std::tuple(d.state.fixTimeLocal, d.state.timeSyncPending), std::tuple(time, 0u));
}

}  // namespace
}  // namespace satwalk::gps
