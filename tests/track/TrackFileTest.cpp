// Track files of every kind: what the content picks, what GPX from other
// programs (and hostile GPX) gives, NMEA recordings, the log's extra fields,
// and the GPX the recorder writes staying readable after every point.
#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <vector>

#include "../gps/NmeaTestUtil.h"
#include "GpxReader.h"
#include "GpxWriter.h"
#include "NmeaTrackReader.h"
#include "TrackFile.h"
#include "TrackTestSupport.h"

namespace satwalk::track {
namespace {

struct Read {
    TrackFileResult result;
    std::vector<TrackFilePoint> points;
    std::vector<TrackWaypoint> waypoints;
};

// Each test (ctest runs them side by side) and each call a file of its own.
Read ReadBytes(const std::string& bytes, const std::string& name = "") {
    static int calls = 0;
    const std::string path =
        name.starts_with("/")
            ? name
            : ::testing::TempDir() + "trackfile-" +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name() +
                  std::to_string(++calls);
    test::WriteFile(path, bytes);
    Read r{};
    r.result = ReadTrackFile(
                   path, [&](const TrackFilePoint& p) { r.points.push_back(p); },
                   [&](const TrackWaypoint& w) { r.waypoints.push_back(w); })
                   .result;
    return r;
}

const std::string kHead =
    "<?xml version=\"1.0\"?>\n<gpx version=\"1.1\" xmlns=\"http://www.topografix.com/GPX/1/1\">";

TEST(TrackFile, TheContentPicksTheReader) {
    const struct {
        const char* head;
        TrackFileKind kind;
    } cases[] = {
        {"", TrackFileKind::Log},
        {"120.15,30.25,,20240501 08:00:01,,,\r\n", TrackFileKind::Log},
        {"\xEF\xBB\xBF  <?xml version=\"1.0\"?><gpx/>", TrackFileKind::Gpx},
        {"$GPRMC,080001,A,3015.0,N,12009.0,E,0,0,010524,,*00\r\n", TrackFileKind::Nmea},
        {"GA,1*22\r\n$GNGGA,080001,3015.0,N,12009.0,E,1,8,1,10,M,,M,,*00\r\n", TrackFileKind::Nmea},
        {"\x89PNG\r\n\x1a\n", TrackFileKind::Unknown},
        {"hello, world", TrackFileKind::Unknown}};
    for (const auto& c : cases) EXPECT_EQ(SniffTrackFile(c.head), c.kind) << c.head;
}

TEST(TrackFile, GpxAsOtherProgramsWriteIt) {
    const struct {
        const char* name;
        std::string body;
        TrackFileResult result;
        std::vector<double> latitudes;  // the points read, in order
    } cases[] = {
        {"track, route and segment points in document order",
         "<trk><trkseg><trkpt lat='1' lon='2'/></trkseg><trkseg><trkpt lat='3' "
         "lon='4'/></trkseg></trk><rte><rtept lat='5' lon='6'/></rte><trk><trkseg><trkpt lat='7' "
         "lon='8'/></trkseg></trk></gpx>",
         TrackFileResult::Read,
         {1, 3, 5, 7}},
        {"prefixed names and unknown extensions",
         "<g:trk xmlns:g='x'><g:trkseg><g:trkpt lat='1' lon='2'><g:extensions><x:a "
         "xmlns:x='y'><x:ele>99</x:ele></x:a></g:extensions></g:trkpt></g:trkseg></g:trk></gpx>",
         TrackFileResult::Read,
         {1}},
        {"missing, NaN and out-of-range positions are skipped",
         "<trk><trkseg><trkpt lon='2'/><trkpt lat='NaN' lon='1'/><trkpt lat='91' lon='1'/>"
         "<trkpt lat='1' lon='180.5'/><trkpt lat=' 4 ' lon='+5'/><trkpt lat='1e1' "
         "lon='abc'/></trkseg></trk></gpx>",
         TrackFileResult::Read,
         {4}},
        {"a cut document keeps its whole points",
         "<trk><trkseg><trkpt lat='1' lon='2'/><trkpt lat='3' lon='4'><ele>1",
         TrackFileResult::Truncated,
         {1}},
        {"a syntax error part way",
         "<trk><trkseg><trkpt lat='1' lon='2'/><trkpt lat='3'></trk>",
         TrackFileResult::Truncated,
         {1}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Read r = ReadBytes(kHead + c.body);
        EXPECT_EQ(r.result, c.result);
        std::vector<double> latitudes;
        for (const TrackFilePoint& p : r.points) latitudes.push_back(p.latitude);
        EXPECT_EQ(latitudes, c.latitudes);
    }
}

TEST(TrackFile, GpxPointValues) {
    setenv("TZ", "Asia/Shanghai", 1);
    tzset();
    const Read r = ReadBytes(
        kHead +
        "<wpt lat='30.1' lon='120.2'><name><![CDATA[Gas &amp; <go>]]></name><sym>Fuel</sym>"
        "<type>00008</type></wpt>"
        "<trk><trkseg><trkpt lat='30.25' lon='120.15'><ele> 12.5 </ele>"
        "<time>2024-05-01T23:30:00.250Z</time><fix>3d</fix><sat>7</sat><speed>2</speed>"
        "<extensions><gpxtpx:TrackPointExtension><gpxtpx:course>90</gpxtpx:course>"
        "</gpxtpx:TrackPointExtension></extensions></trkpt>"
        "<trkpt lat='30.26' lon='120.16'><time>2024-05-01T10:00:00+02:00</time></trkpt>"
        "<trkpt lat='30.27' lon='120.17'><time>yesterday</time></trkpt></trkseg></trk></gpx>");
    unsetenv("TZ");
    ASSERT_EQ(r.points.size(), 3u);
    const TrackFilePoint& a = r.points[0];
    // The time in UTC+8.
    EXPECT_EQ(std::tuple(a.hasTime, FormatTrackTime(a.time), a.time.millisecond, a.elevation,
                         a.speed, a.course, a.fix, a.satellites),
              std::tuple(true, "2024-05-02 07:30:00", 250, 12.5, 2, 90, kFix3d, 7));
    EXPECT_EQ(FormatTrackTime(r.points[1].time), "2024-05-01 16:00:00");
    EXPECT_FALSE(r.points[2].hasTime);
    EXPECT_TRUE(std::isnan(r.points[2].elevation));
    ASSERT_EQ(r.waypoints.size(), 1u);
    const TrackWaypoint& w = r.waypoints[0];
    EXPECT_EQ(std::tuple(w.name, w.symbol, w.type), std::tuple("Gas &amp; <go>", "Fuel", "00008"));
}

TEST(TrackFile, HostileXml) {
    const std::string bomb =
        "<?xml version='1.0'?><!DOCTYPE gpx [<!ENTITY a 'aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa'>"
        "<!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;'>"
        "<!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;'>"
        "<!ENTITY d '&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;'>"
        "<!ENTITY e '&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;'>"
        "<!ENTITY f '&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;'>]>"
        "<gpx><trk><trkseg><trkpt lat='1' lon='2'/><trkpt lat='3' lon='4'><name>&f;</name>"
        "</trkpt></trkseg></trk></gpx>";
    const std::string external =
        "<?xml version='1.0'?><!DOCTYPE gpx [<!ENTITY x SYSTEM 'file:///etc/passwd'>]>"
        "<gpx><wpt lat='1' lon='2'><name>&x;</name></wpt></gpx>";
    const std::string hugeAttribute =
        kHead + "<trk><trkseg><trkpt lat='1' lon='2'/><trkpt lat='3' lon='4' x='" +
        std::string(20u << 20, 'x') + "'/></trkseg></trk></gpx>";
    const struct {
        const char* name;
        const std::string& bytes;
        TrackFileResult result;
        std::size_t points, waypoints;
    } cases[] = {{"an expansion bomb stops the parse", bomb, TrackFileResult::Truncated, 1, 0},
                 {"an external entity is never read", external, TrackFileResult::Read, 0, 1},
                 {"a 20 MB attribute ends the parse, not the memory", hugeAttribute,
                  TrackFileResult::Truncated, 1, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Read r = ReadBytes(c.bytes);
        ASSERT_EQ(std::tuple(r.result, r.points.size(), r.waypoints.size()),
                  std::tuple(c.result, c.points, c.waypoints));
        for (const TrackWaypoint& w : r.waypoints)
            EXPECT_EQ(w.name.find("root"), std::string::npos);
    }
    EXPECT_EQ(ReadBytes("<html><body/></html>").result, TrackFileResult::NotATrack);
    EXPECT_EQ(ReadBytes("\x89PNG\r\n\x1a\n\0\0").result, TrackFileResult::NotATrack);
    EXPECT_EQ(ReadBytes("x", "/no/such/folder/x").result, TrackFileResult::OpenFailed);
}

TEST(TrackFile, NmeaRecordings) {
    const auto s = gps::testing::Sentence;  // the checksum computed, so cases read as sentences
    setenv("TZ", "UTC", 1);
    tzset();
    const Read r =
        ReadBytes("GSV,3,1*\r\n" + s("GPGGA,080000,3015.000,N,12009.000,E,1,08,1.0,42.5,M,,M,,") +
                  s("GPGSA,A,3,01,02,03,,,,,,,,,,2.0,1.0,1.5") +
                  s("GPRMC,080001,A,3015.000,N,12009.000,E,10.0,45.0,010524,,") +
                  s("GPRMC,080002,V,3015.000,N,12009.000,E,0,0,010524,,") +
                  "$GPRMC,080003,A,3015.000,N,12009.000,E,0,0,010524,,*00\r\n" +
                  s("GNRMC,080004,A,3016.000,S,12010.000,W,0,0,010524,,") + std::string(300, 'x') +
                  "\n" + s("GPRMC,080005,A,3017.000,N,12011.000,E,0,0,010524,,"));
    unsetenv("TZ");
    ASSERT_EQ(r.points.size(), 3u);  // void, bad checksum and over-long lines give none
    const TrackFilePoint& a = r.points[0];
    EXPECT_NEAR(a.latitude, 30.25, 1e-9);
    EXPECT_NEAR(a.longitude, 120.15, 1e-9);
    EXPECT_NEAR(a.speed, 10 * 1852.0 / 3600, 1e-9);
    EXPECT_EQ(std::tuple(FormatTrackTime(a.time), a.elevation, a.fix, a.satellites),
              std::tuple("2024-05-01 08:00:01", 42.5, kFix3d, 8));
    EXPECT_NEAR(r.points[1].latitude, -(30 + 16 / 60.0), 1e-9);  // another talker
    EXPECT_NEAR(r.points[2].latitude, 30 + 17 / 60.0, 1e-9);
}

TEST(TrackFile, LogLinesWithTheirExtraFields) {
    const Read r = ReadBytes(
        "120.1,30.2,,20240501 08:00:01,10.0,45.5,12.5\r\n"
        "120.1,30.2,,20240501 08:00:02,,,\r\n"
        "120.1,30.2,,20240501 08:00:03,1,2,3\n"  // a bare LF loses the last field
        "120.1,30.2,,20240501 08:00:04,1");      // and so does the end of the file
    ASSERT_EQ(r.points.size(), 4u);
    EXPECT_NEAR(r.points[0].speed, 10 * 1852.0 / 3600, 1e-9);
    EXPECT_EQ(std::tuple(r.points[0].course, r.points[0].elevation), std::tuple(45.5, 12.5));
    EXPECT_TRUE(std::isnan(r.points[1].speed) && std::isnan(r.points[1].elevation));
    EXPECT_EQ(r.points[2].course, 2);
    EXPECT_TRUE(std::isnan(r.points[2].elevation));
    EXPECT_TRUE(std::isnan(r.points[3].speed));
}

TEST(GpxWriter, TheRecordingIsAValidDocumentAfterEveryPoint) {
    const std::string dir = test::ScratchFolder("gpx");
    const std::string path = dir + "/20240501080000.gpx";
    LocalToUtc zone;
    for (int i = 0; i < 3; ++i) {
        TrackFilePoint p;
        p.latitude = 30 + i;
        p.longitude = 120;
        p.time = test::Time(2024, 5, 1, 8, 0, i);
        p.hasTime = true;
        p.elevation = 10.25 * i;
        p.speed = 3;
        p.satellites = 5;
        std::string line;
        ASSERT_TRUE(AppendGpxPoint(line, p, zone));
        EXPECT_EQ(AppendGpxTrackPoint(path, line), TrackWrite::Written);
        const Read r = ReadBytes(test::ReadFile(path));
        EXPECT_EQ(r.result, TrackFileResult::Read);
        ASSERT_EQ(r.points.size(), static_cast<std::size_t>(i + 1));
        const TrackFilePoint& b = r.points.back();
        EXPECT_EQ(std::tuple(b.latitude, b.elevation, b.speed, b.satellites),
                  std::tuple(30 + i, 10.25 * i, 3, 5));
    }
    // A file that does not end as the writer left it is not touched.
    test::WriteFile(dir + "/other.gpx", "<gpx/>");
    EXPECT_EQ(AppendGpxTrackPoint(dir + "/other.gpx", "<trkpt/>\n"), TrackWrite::NotWritten);
    EXPECT_EQ(test::ReadFile(dir + "/other.gpx"), "<gpx/>");
    EXPECT_EQ(GpxPathForLog(dir + "/a.log"), dir + "/a.gpx");
}

}  // namespace
}  // namespace satwalk::track
