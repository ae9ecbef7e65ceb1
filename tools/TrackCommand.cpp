// satwalk-tool track: a track file (the program's log, GPX or NMEA) read
// exactly as the program reads it, as one JSON object of points, as a GPX
// 1.1 track (--gpx) or as its statistics (--stats). Points are written as
// the file is read, so memory stays flat on any size of file; as in the
// program, a file is read up to kMaxTrackPoints points.
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <ctime>
#include <string>
#include <string_view>

#include "GpxWriter.h"
#include "Json.h"
#include "Strings.h"
#include "ToolCommands.h"
#include "TrackFile.h"
#include "TrackState.h"
#include "TrackStatistics.h"

namespace satwalk::tools {

namespace {

constexpr const char* kUsage =
    "usage: satwalk-tool track FILE [--gpx | --stats]\n"
    "  Reads a track file (a track log, GPX or an NMEA recording; the content\n"
    "  decides) as the program does and prints every track and route point as\n"
    "  one JSON object {\"points\": [{\"latitude\", \"longitude\", \"time\",\n"
    "  \"elevation\"}]} (time in local time, null where the file has none).\n"
    "  --gpx    print a GPX 1.1 document instead (one track, one segment, times\n"
    "           in UTC; elevation, fix, satellites, and speed and course in\n"
    "           Garmin's TrackPointExtension where the file has them)\n"
    "  --stats  print the statistics of the track dialog as one JSON object\n"
    "           (metres, seconds, metres a second)\n";

constexpr std::size_t kFlushAt = 1 << 20;

// Output collected in a buffer and written out in large pieces.
class Output {
  public:
    Output() { text.reserve(kFlushAt + 4096); }
    void FlushIfFull() {
        if (text.size() >= kFlushAt)
            Flush();
    }
    void Flush() {
        if (!WriteAll(STDOUT_FILENO, text))
            failed = true;
        text.clear();
    }
    std::string text;
    bool failed = false;
};

void AppendJsonPoint(std::string& out, const track::TrackFilePoint& p, bool first) {
    out += first ? "{\"latitude\":" : ",{\"latitude\":";
    common::AppendJsonNumber(out, p.latitude);
    out += ",\"longitude\":";
    common::AppendJsonNumber(out, p.longitude);
    out += ",\"time\":";
    if (p.hasTime) {
        out += '"';
        out += track::FormatTrackTime(p.time);
        out += '"';
    } else {
        out += "null";
    }
    out += ",\"elevation\":";
    common::AppendJsonNumber(out, p.elevation);
    out += '}';
}

}  // namespace

const char* TrackUsage() {
    return kUsage;
}

int RunTrack(int argc, char** argv) {
    const char* path = nullptr;
    bool gpx = false;
    bool stats = false;
    for (int i = 0; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            std::fputs(kUsage, stdout);
            return 0;
        }
        if (arg == "--gpx" && !stats) {
            gpx = true;
        } else if (arg == "--stats" && !gpx) {
            stats = true;
        } else if (path == nullptr && !arg.starts_with("--")) {
            path = argv[i];
        } else {
            std::fprintf(stderr, "satwalk-tool track: unexpected argument %s\n%s", argv[i], kUsage);
            return 2;
        }
    }
    if (path == nullptr) {
        std::fputs(kUsage, stderr);
        return 2;
    }

    Output out;
    track::LocalToUtc zone;
    track::TrackStatistics statistics;
    bool first = true;
    if (gpx)
        out.text += track::GpxHeader();
    else if (!stats)
        out.text += "{\"points\":[";
    const track::TrackFileRead read =
        track::ReadTrackFile(path, [&](const track::TrackFilePoint& p) {
            if (stats)
                statistics.Add(p);
            else if (gpx)
                track::AppendGpxPoint(out.text, p, zone);
            else
                AppendJsonPoint(out.text, p, first);
            first = false;
            out.FlushIfFull();
        });
    const std::string name = track::FileNameOf(path);
    switch (read.result) {
        case track::TrackFileResult::OpenFailed:
            std::fprintf(stderr, "satwalk-tool track: %s: %s\n", path,
                         common::LoadString(common::kStrOpenTrackLogFailed));
            return 1;
        case track::TrackFileResult::NotATrack:
            std::fprintf(
                stderr, "satwalk-tool track: %s\n",
                common::FormatString(common::LoadString(common::kStrNotATrackFile), name).c_str());
            return 1;
        case track::TrackFileResult::Truncated:
            std::fprintf(
                stderr, "satwalk-tool track: %s\n",
                common::FormatString(common::LoadString(common::kStrTrackFileCut), name).c_str());
            break;
        case track::TrackFileResult::TooLarge:
            std::fprintf(stderr,
                         "satwalk-tool track: %s: more than %llu points; the first %llu, as "
                         "the program shows them\n",
                         path, static_cast<unsigned long long>(track::kMaxTrackPoints),
                         static_cast<unsigned long long>(track::kMaxTrackPoints));
            break;
        case track::TrackFileResult::Read:
            break;
    }
    if (stats)
        out.text += track::StatisticsJson(statistics) + "\n";
    else
        out.text += gpx ? std::string(track::kGpxTrailer) : std::string("]}\n");
    out.Flush();
    return out.failed ? 1 : 0;
}

}  // namespace satwalk::tools
