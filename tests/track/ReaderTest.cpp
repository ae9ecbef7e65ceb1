// The log reader on real and hostile logs, and viewing a log.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>
#include <vector>

#include "TrackFile.h"
#include "TrackState.h"
#include "TrackTestSupport.h"

namespace satwalk::track {
namespace {

using namespace std::string_literals;

std::string Points(const std::string& bytes, std::size_t piece = 0) {
    TrackLogParser parser;
    std::string out;
    const auto add = [&](const TrackLogPoint& p) {
        char text[96];
        std::snprintf(text, sizeof text, "%g,%g,%s;", p.longitude, p.latitude,
                      FormatTrackTime(p.time).c_str());
        out += text;
    };
    if (piece == 0)
        piece = bytes.size() + 1;
    for (std::size_t at = 0; at < bytes.size(); at += piece)
        parser.Feed(bytes.data() + at, std::min(piece, bytes.size() - at), add);
    return out;
}

const std::string kLine = "120.150000,30.250000,,20240501 08:00:01,12.5,90.0,10.2\r\n";

TEST(TrackLogReader, HostileLogs) {
    const std::string field259(259, 'x');
    const struct {
        const char* name;
        std::string bytes, points;
    } cases[] = {
        {"a recorded line", kLine, "120.15,30.25,2024-05-01 08:00:01;"},
        {"empty file", "", ""},
        {"three fields only", "1,2,\r\n1,2\r\n", ""},
        {"non-numeric coordinates", "abc,x1,,20240501 08:00:01\r\n", "0,0,2024-05-01 08:00:01;"},
        {"numbers read as atof reads", " +1.5e1x,-0x10,,20240501 08:00:01\r\n",
         "15,-16,2024-05-01 08:00:01;"},
        {"date-time ended by a bare line feed", "1,2,,20240501 08:00:01\n", ""},
        {"last line without a line feed", kLine + "3,4,,20240502 09:00:00,",
         "120.15,30.25,2024-05-01 08:00:01;3,4,2024-05-02 09:00:00;"},
        {"last line cut inside the date-time", kLine + "3,4,,20240502 09",
         "120.15,30.25,2024-05-01 08:00:01;"},
        {"carriage returns only: one point at most",
         "1,2,,20240501 08:00:01\r3,4,,20240501 08:00:02\r", "1,2,2024-05-01 08:00:01;"},
        {"259-byte field is dropped, later fields keep their numbers",
         "1,2," + field259 + ",20240501 08:00:01\r\n", "1,2,2024-05-01 08:00:01;"},
        {"259-byte longitude drops to what follows", field259 + "7,2,,20240501 08:00:01\r\n",
         "7,2,2024-05-01 08:00:01;"},
        {"megabyte line", std::string(1 << 20, '9') + ",2,,20240501 08:00:01\r\n",
         "1e+144,2,2024-05-01 08:00:01;"},
        {"NUL ends a field's text", "1.5\0\x39\x39,2,,2024\0\x30\x35\x30\x31 08:00:01\r\n"s,
         "1.5,2,2024-00-00 00:00:00;"},
        {"short and odd date-times", "1,2,,2024\r\n1,2,,-3 x5\r\n",
         "1,2,2024-00-00 00:00:00;1,2,-003-05-00 00:00:00;"},
        {"binary noise", "\xff\xfe\x01\x02,\x80\r\n\r\n,,,\r\n"s, "0,0,0000-00-00 00:00:00;"},
        {"nan, inf and overflow read 0", "nan,-inf,,2024\r\n1e999,infinity,,2024\r\n",
         "0,0,2024-00-00 00:00:00;0,0,2024-00-00 00:00:00;"}};
    for (const auto& c : cases) {
        EXPECT_EQ(Points(c.bytes), c.points) << c.name;
        // Pieces of any size give the same points as the whole.
        for (const std::size_t piece : {1u, 7u, 4096u})
            ASSERT_EQ(Points(c.bytes, piece), c.points) << c.name << " in pieces of " << piece;
    }
}

TrackProjections Projections(bool withMap) {
    TrackProjections p;
    p.world = [](double lat, double lon) { return MapXY{lon * 10, lat * 10}; };
    if (withMap)
        p.map = [](double lat, double lon) { return MapXY{lon, -lat}; };
    return p;
}

TEST(TrackViewing, ViewRefuseRebuildAndClose) {
    const std::string dir = test::ScratchFolder("view");
    const std::string a = dir + "/a.log", b = dir + "/b.log";
    test::WriteFile(a, kLine + kLine);
    test::WriteFile(b, kLine);

    TrackState state;
    EXPECT_EQ(ViewTrackLog(state, a, "a.log", Projections(true)), ViewResult::Shown);
    EXPECT_TRUE(state.trackViewOn);
    EXPECT_EQ(std::tuple(state.viewedWorldTrail.Count(), state.viewedMapTrail.Count()),
              std::tuple(2u, 2u));
    EXPECT_FLOAT_EQ(state.viewedWorldTrail.At(0).x, 1201.5f);
    EXPECT_EQ(state.viewedWorldTrail.At(0).time, test::Time(2024, 5, 1, 8, 0, 1));

    // A failed open keeps the view; the log being written is refused.
    EXPECT_EQ(ViewTrackLog(state, dir + "/missing.log", "missing.log", Projections(true)),
              ViewResult::OpenFailed);
    EXPECT_EQ(ViewTrackLog(state, dir, "folder", Projections(true)), ViewResult::OpenFailed);
    EXPECT_EQ(state.viewedTrackPath, a);
    EXPECT_EQ(state.viewedWorldTrail.Count(), 2u);
    state.trackFilePath = b;
    EXPECT_EQ(ViewTrackLog(state, b, "b.log", Projections(true)), ViewResult::BeingWritten);

    // The map changed: the viewed log is read again for it, and the live map
    // trail is rebuilt from the log being written.
    EXPECT_TRUE(ReadViewedTrack(state, Projections(false)));
    EXPECT_EQ(std::tuple(state.viewedWorldTrail.Count(), state.viewedMapTrail.Count()),
              std::tuple(2u, 0u));
    EXPECT_TRUE(RebuildLiveMapTrail(state, Projections(true)));
    EXPECT_EQ(std::tuple(state.liveMapTrail.Count(), state.liveWorldTrail.Count()),
              std::tuple(1u, 0u));

    CloseViewedTrack(state);
    EXPECT_TRUE(!state.trackViewOn && state.viewedTrackPath.empty() &&
                state.viewedWorldTrail.Empty());
}

TEST(TrackViewing, ProgressReportsTheWholeFile) {
    const std::string dir = test::ScratchFolder("progress");
    std::string log;
    while (log.size() < (3u << 20)) log += kLine;
    test::WriteFile(dir + "/big.log", log);
    std::uint64_t last = 0, total = 0, calls = 0, points = 0;
    ReadTrackLog(
        dir + "/big.log", [&](const TrackLogPoint&) { ++points; },
        [&](std::uint64_t done, std::uint64_t all) {
            EXPECT_GT(done, last);
            last = done;
            total = all;
            ++calls;
        });
    EXPECT_EQ(std::tuple(last, total, points),
              std::tuple(log.size(), log.size(), log.size() / kLine.size()));
    EXPECT_GE(calls, 3u);
}

// A log past the budget of points is read up to it and says so; a log of
// tiny lines ends no read.
TEST(TrackViewing, BudgetOfPoints) {
    const std::string dir = test::ScratchFolder("budget");
    std::string tiny;
    for (int i = 0; i < 100; ++i) tiny += kLine;
    test::WriteFile(dir + "/tiny.log", tiny);
    // The program's own log, and the same rule for every reader (GPX here).
    std::string gpx = "<gpx version=\"1.1\"><trk><trkseg>";
    for (int i = 0; i < 100; ++i) gpx += "<trkpt lat=\"1\" lon=\"2\"/>";
    test::WriteFile(dir + "/many.gpx", gpx + "</trkseg></trk></gpx>");
    const struct {
        const char* file;
        std::uint64_t budget, points;
        TrackFileResult result;
    } cases[] = {{"tiny.log", 10, 10, TrackFileResult::TooLarge},
                 {"tiny.log", 99, 99, TrackFileResult::TooLarge},
                 {"tiny.log", 100, 100, TrackFileResult::Read},
                 {"many.gpx", 10, 10, TrackFileResult::TooLarge}};
    for (const auto& c : cases) {
        std::uint64_t points = 0;
        const auto count = [&](const TrackFilePoint&) { ++points; };
        const auto result = ReadTrackFile(dir + "/" + c.file, count, {}, {}, c.budget).result;
        EXPECT_EQ(std::tuple(result, points), std::tuple(c.result, c.points)) << c.file << c.budget;
    }
    // A position too far out for a pixel is on no trail.
    test::WriteFile(dir + "/far.log", "1,1e308,,2024\r\n" + kLine);
    const TrackRead read = ReadTrackTrails(dir + "/far.log", Projections(true));
    EXPECT_EQ(std::tuple(read.opened, read.result, read.world.Count()),
              std::tuple(true, TrackFileResult::Read, 1u));
}

}  // namespace
}  // namespace satwalk::track
