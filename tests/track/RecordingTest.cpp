// Recording: the log's name and lines, what each sample and tick does to
// the file and the trails, and a disk that fills mid-line.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <clocale>

#include "../common/FullDisk.h"
#include "TrackState.h"
#include "TrackTestSupport.h"

namespace satwalk::track {
namespace {

using test::ReadFile;
using test::ScratchFolder;
using test::Time;

const TrackTime kStart = Time(2007, 3, 15, 14, 25, 30);

TEST(TrackLogFile, NameAndLines) {
    EXPECT_EQ(TrackFilePath("/logs/Track Log", kStart), "/logs/Track Log/20070315142530.log");
    EXPECT_EQ(TrackFileName(Time(2026, 1, 2, 3, 4, 5)), "20260102030405.log");

    const struct {
        double lon, lat;
        const char *speed, *course, *altitude, *line;
    } cases[] = {{12.5, -33.25, "0.52", "123.40", "35.2",
                  "12.500000,-33.250000,,20070315 14:25:30,0.52,123.40,35.2\r\n"},
                 {-0.1234565, 51.5, "", "", "", "-0.123456,51.500000,,20070315 14:25:30,,,\r\n"},
                 {120.15, 30.25, "10.0", "90.0", "",
                  "120.150000,30.250000,,20070315 14:25:30,10.0,90.0,\r\n"}};
    // The line is the same whatever the user's locale says about decimals.
    const bool german = std::setlocale(LC_NUMERIC, "de_DE.UTF-8") != nullptr;
    for (const auto& c : cases)
        EXPECT_EQ(FormatTrackLine(c.lon, c.lat, kStart, c.speed, c.course, c.altitude), c.line)
            << "german locale: " << german;
    std::setlocale(LC_NUMERIC, "C");
    EXPECT_EQ(FormatTrackLine(1e300, 0, kStart, "", "", "").size(), kTrackLineMax);
}

TrackSample Sample(bool fix, bool world, bool map, int second = 30) {
    return {.time = Time(2007, 3, 15, 14, 25, second),
            .fixValid = fix,
            .longitude = 12.5,
            .latitude = -33.25,
            .speedKnots = "0.52",
            .course = "123.40",
            .altitude = "35.2",
            .speedKnotsValue = 0.52,
            .courseValue = 123.4,
            .elevation = 35.2,
            .worldValid = world,
            .worldX = 10,
            .worldY = 20,
            .mapValid = map,
            .mapX = 30,
            .mapY = 40};
}

TEST(TrackRecording, SamplesGoToTheFileAndTheTrails) {
    const struct {
        const char* name;
        bool recording, fix, world, map;
        std::size_t lines, worldPoints, mapPoints;
        bool fileExists;
    } cases[] = {{"recording with a fix", true, true, true, true, 1, 1, 1, true},
                 {"no fix: the file is made, no line", true, false, true, false, 0, 1, 0, true},
                 {"not recording", false, true, true, true, 0, 1, 1, false},
                 {"no calibrated map", true, true, true, false, 1, 1, 0, true},
                 {"position not converted", true, true, false, false, 1, 0, 0, true}};
    for (const auto& c : cases) {
        TrackState state;
        state.trackFolder = ScratchFolder("samples");
        state.trackLogOn = c.recording;
        StartTrackLog(state, Sample(c.fix, c.world, c.map));
        const std::string path = state.trackFolder + "/20070315142530.log";
        const std::string text = ReadFile(path);
        EXPECT_EQ(std::tuple(access(path.c_str(), F_OK) == 0,
                             std::size_t(std::count(text.begin(), text.end(), '\n')),
                             state.liveWorldTrail.Count(), state.liveMapTrail.Count()),
                  std::tuple(c.fileExists, c.lines, c.worldPoints, c.mapPoints))
            << c.name;
    }
}

TEST(TrackRecording, UnwritableLogsLoseNothing) {
    const std::string dir = ScratchFolder("unwritable");
    const std::string fifo = dir + "/fifo.log";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0644), 0);
    const std::string line = "1.000000,2.000000,,20070315 14:25:30,,,\r\n";
    EXPECT_EQ(AppendTrackLine(dir + "/missing/x.log", line), TrackWrite::NotOpened);
    EXPECT_EQ(AppendTrackLine(fifo, line), TrackWrite::NotOpened);  // and no hang

    // A disk that fills mid-line: the file keeps exactly its earlier lines.
    const std::string path = dir + "/full.log";
    test::WriteFile(path, std::string(100, 'x') + "\r\n");
    EXPECT_EQ(OnAFullDisk(120, [&] { return AppendTrackLine(path, line); }),
              static_cast<int>(TrackWrite::NotWritten));
    EXPECT_EQ(ReadFile(path), std::string(100, 'x') + "\r\n");

    // The trails go on when the log cannot be written.
    TrackState state;
    state.trackFolder = dir + "/missing";
    state.trackLogOn = true;
    StartTrackLog(state, Sample(true, true, true));
    EXPECT_EQ(std::tuple(state.lastWrite, state.liveWorldTrail.Count()),
              std::tuple(TrackWrite::NotOpened, 1u));
}

TEST(TrackRecording, AGpxBesideTheLogWhenAsked) {
    const std::string dir = test::ScratchFolder("gpx-recording");
    for (const bool asked : {false, true}) {
        SCOPED_TRACE(asked);
        TrackState state;
        state.trackFolder = dir;
        state.trackLogOn = 1;
        state.saveGpx = asked;
        StartTrackLog(state, Sample(false, true, false, 10));  // no fix: the files are made
        OnTrackTick(state, true, Sample(true, true, false, 20));
        OnTrackTick(state, true, Sample(true, true, false, 30));
        const std::string gpx = dir + "/20070315142510.gpx";
        EXPECT_EQ(std::tuple(state.gpxFilePath, state.liveStats.points()),
                  std::tuple(asked ? gpx : "", 2u));
        if (!asked)
            continue;
        std::size_t points = 0;
        const TrackFileRead read = ReadTrackFile(gpx, [&](const TrackFilePoint& p) {
            ++points;
            EXPECT_EQ(std::tuple(p.elevation, p.course), std::tuple(35.2, 123.4));
        });
        EXPECT_EQ(std::tuple(read.result, points), std::tuple(TrackFileResult::Read, 2u));
        OnTrackTick(state, false, TrackSample{});  // the link stopped
        EXPECT_EQ(std::tuple(state.gpxFilePath, state.liveStats.points()), std::tuple("", 0u));
    }
}

}  // namespace
}  // namespace satwalk::track
