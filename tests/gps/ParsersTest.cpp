// Field copying of the RMC, GGA and GSA parsers: which field lands where,
// truncation to the field widths, and blocks cleared by each good sentence.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>

#include "NmeaTestUtil.h"

namespace satwalk::gps {
namespace {

using testing::Decoder;
using testing::Sentence;

struct RmcCase {
    const char* body;
    const char* utcTime;
    char status;
    const char* latitude;
    char northSouth;
    const char* longitude;
    char eastWest;
    const char* speedKnots;
    const char* course;
    const char* date;
};

TEST(ParseRmc, Fields) {
    const RmcCase cases[] = {
        {"GPRMC,123519.000,A,4807.0380,N,01131.0000,E,022.4,084.4,230394,003.1,W", "123519.000",
         'A', "4807.0380", 'N', "01131.0000", 'E', "022.4", "084.4", "230394"},
        // Every field one character too long: each keeps its width.
        {"GPRMC,123519.0001,A,4807.03801,N,01131.00001,E,1022.45,1084.45,2303941,,", "123519.000",
         'A', "4807.0380", 'N', "01131.0000", 'E', "1022.4", "1084.4", "230394"},
        {"GPRMC,,V,,,,,,,,,,N", "", 'V', "", 0, "", 0, "", "", ""},
        // A one-character field sent longer keeps its first character and
        // the fields after it stay aligned.
        {"GPRMC,010203,AV,3015.1234,NS,12009.5000,EW,5,6,010126", "010203", 'A', "3015.1234", 'N',
         "12009.5000", 'E', "5", "6", "010126"},
        // Fields missing at the end are empty.
        {"GPRMC,010203,A,3015.1234", "010203", 'A', "3015.1234", 0, "", 0, "", "", ""},
        {"GPRMC,", "", 0, "", 0, "", 0, "", "", ""},
    };
    for (const auto& c : cases) {
        Decoder d;
        d.Feed(Sentence("GPRMC,999999.999,A,1111.1111,S,22222.2222,W,9,9,999999"));
        d.Feed(Sentence(c.body));
        const GpsState& s = d.state;
        SCOPED_TRACE(c.body);
        EXPECT_STREQ(s.utcTime, c.utcTime);
        EXPECT_EQ(s.status, c.status);
        EXPECT_STREQ(s.latitude, c.latitude);
        EXPECT_EQ(s.northSouth, c.northSouth);
        EXPECT_STREQ(s.longitude, c.longitude);
        EXPECT_EQ(s.eastWest, c.eastWest);
        EXPECT_STREQ(s.speedKnots, c.speedKnots);
        EXPECT_STREQ(s.course, c.course);
        EXPECT_STREQ(s.date, c.date);
    }
}

struct GgaCase {
    const char* body;
    char fixQuality;
    const char* satellitesUsed;
    const char* altitude;
    char altitudeUnit;
    const char* geoidSeparation;
    char geoidUnit;
};

TEST(ParseGga, Fields) {
    const GgaCase cases[] = {
        {"GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", '1', "08", "545.4", 'M',
         "46.9", 'M'},
        {"GPGGA,123519,4807.038,N,01131.000,E,2,123,0.9,-12345.678,M,-1234.5678,M,,", '2', "12",
         "-12345.67", 'M', "-1234.567", 'M'},
        {"GPGGA,123519,4807.038,N,01131.000,E,1,08", '1', "08", "", 0, "", 0},
        {"GPGGA,123519,4807.038,N,01131.000,E,12,08,0.9,545.4,Metres,46.9,M", '1', "08", "545.4",
         'M', "46.9", 'M'},
    };
    for (const auto& c : cases) {
        Decoder d;
        d.Feed(Sentence("GPGGA,1,2,N,3,E,2,99,9,999,F,99,F,,"));
        d.Feed(Sentence(c.body));
        const GpsState& s = d.state;
        SCOPED_TRACE(c.body);
        EXPECT_EQ(s.fixQuality, c.fixQuality);
        EXPECT_STREQ(s.satellitesUsed, c.satellitesUsed);
        EXPECT_STREQ(s.altitude, c.altitude);
        EXPECT_EQ(s.altitudeUnit, c.altitudeUnit);
        EXPECT_STREQ(s.geoidSeparation, c.geoidSeparation);
        EXPECT_EQ(s.geoidUnit, c.geoidUnit);
        EXPECT_STREQ(s.utcTime, "") << "GGA never touches the RMC block";
    }
}

struct GsaCase {
    const char* body;
    char fixMode;
    const char* pdop;
    const char* hdop;
    const char* vdop;
};

TEST(ParseGsa, Fields) {
    const GsaCase cases[] = {
        {"GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1", '3', "2.5", "1.3", "2.1"},
        {"GPGSA,M,2,,,,,,,,,,,,,12.3456789,1.23456789,99.1234567", '2', "12.3456", "1.23456",
         "99.1234"},
        {"GPGSA,A,3,04,05", '3', "", "", ""},
        // VDOP is the last field and ends at '*'; a trailing field after it
        // is simply not read.
        {"GPGSA,A,3,,,,,,,,,,,,,1.0,2.0,3.0,1", '3', "1.0", "2.0", "3.0"},
    };
    for (const auto& c : cases) {
        Decoder d;
        d.Feed(Sentence("GPGSA,A,3,,,,,,,,,,,,,9.9,9.9,9.9"));
        d.Feed(Sentence(c.body));
        SCOPED_TRACE(c.body);
        EXPECT_EQ(d.state.fixMode, c.fixMode);
        EXPECT_STREQ(d.state.pdop, c.pdop);
        EXPECT_STREQ(d.state.hdop, c.hdop);
        EXPECT_STREQ(d.state.vdop, c.vdop);
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
    EXPECT_EQ(d.state.fixTimeLocal, time);
    EXPECT_EQ(d.state.timeSyncPending, 0u);
}

}  // namespace
}  // namespace satwalk::gps
