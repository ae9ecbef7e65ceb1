// Track files of every kind behind one reader: the program's own log, GPX
// 1.0 and 1.1, and NMEA 0183 recordings. The content picks the reader, not
// the file's name; every reader produces the same points, in document order.
//
// Each reader streams the file in fixed blocks, so memory stays flat
// whatever its size. All functions may run on any thread; they share no
// state.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <string_view>

#include "TrackLogReader.h"
#include "TrackPoint.h"

namespace satwalk::track {

inline constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();

// One point of a track file. Values a format does not carry are NaN (or
// -1, or hasTime false).
struct TrackFilePoint {
    double latitude = 0;   // signed degrees, finite and within range
    double longitude = 0;  // signed degrees, finite and within range
    TrackTime time;        // local time, as the program's logs keep it
    bool hasTime = false;
    double elevation = kNoValue;  // metres
    double speed = kNoValue;      // metres a second
    double course = kNoValue;     // degrees true
    std::int8_t fix = -1;         // GpxFix, -1 unknown
    std::int16_t satellites = -1;
};

// GPX's <fix> values.
enum GpxFix : std::int8_t { kFixNone = 0, kFix2d = 1, kFix3d = 2, kFixDgps = 3 };
// The GPX fix kind of a receiver's fix quality (GGA) and mode (GSA); -1
// when neither says.
std::int8_t GpxFixOf(char fixQuality, char fixMode);

// A waypoint of a GPX file (its <wpt>), texts in UTF-8 as they stand, cut
// at kWaypointTextMax bytes.
struct TrackWaypoint {
    double latitude = 0;
    double longitude = 0;
    std::string name;
    std::string symbol;  // <sym>
    std::string type;    // <type>
};
inline constexpr std::size_t kWaypointTextMax = 128;

enum class TrackFileKind { Log, Gpx, Nmea, Unknown };

// The kind of a file from its first bytes (up to kSniffBytes): XML is GPX,
// a line that begins with '$' and a five-letter address is NMEA, a first
// line of numbers and commas (or nothing at all) is a log.
inline constexpr std::size_t kSniffBytes = 4096;
TrackFileKind SniffTrackFile(std::string_view head);

// The kind of the file at `path` from its first bytes; Unknown when it
// cannot be read.
TrackFileKind SniffTrackFilePath(const std::string& path);

enum class TrackFileResult {
    Read,        // read to the end
    Truncated,   // GPX that breaks off or goes wrong part way: the points before are kept
    TooLarge,    // more points than the budget: the first ones are kept, the rest not read
    OpenFailed,  // missing, unreadable or not a regular file
    NotATrack,   // none of the formats: nothing was produced
};

using TrackFilePointSink = std::function<void(const TrackFilePoint&)>;
using TrackWaypointSink = std::function<void(const TrackWaypoint&)>;

struct TrackFileRead {
    TrackFileResult result = TrackFileResult::OpenFailed;
    TrackFileKind kind = TrackFileKind::Unknown;
};

// Reads any track file: every track and route point to onPoint, GPX
// waypoints to onWaypoint (either may be empty). NMEA is decoded with every
// satellite system's talkers accepted. Once the file is open and its kind
// known, progress(0, size) comes first, on the calling thread; then the
// blocks' progress. GPX points without waypoints reach onPoint on a thread
// of the reader's own (in order, never two at once), so that parsing and
// the caller's work overlap; everything else runs on the calling thread.
// At most `maxPoints` points are handed on (TooLarge past them).
TrackFileRead ReadTrackFile(const std::string& path, const TrackFilePointSink& onPoint,
                            const TrackWaypointSink& onWaypoint = {},
                            const TrackProgress& progress = {},
                            std::uint64_t maxPoints = kMaxTrackPoints);

// A point's seconds since 1970 as its local calendar time reads (no zone):
// for differences between points.
double TrackSeconds(const TrackTime& time);

// Local calendar time of a UTC time in seconds since 1970, through the
// system time zone; the zone's offset is looked up once a UTC hour.
class UtcToLocal {
  public:
    TrackTime Convert(std::int64_t utcSeconds, int millisecond);

  private:
    std::int64_t hour_ = std::numeric_limits<std::int64_t>::min();
    std::int64_t offset_ = 0;
};

// The file's own name: the path after its last '/'.
std::string FileNameOf(std::string_view path);

// Days since 1970-01-01 of a proleptic Gregorian date.
std::int64_t DaysFromCivil(int year, int month, int day);

}  // namespace satwalk::track
