// GPX 1.1 out: a track of one segment, a point a line, with elevation,
// time (UTC), fix and satellites as GPX has them and speed and course in
// Garmin's TrackPointExtension (v2), the extension other programs read.
// The recorder's file is a valid document after every point: each point is
// written over the closing tags, which follow it again in the same write.
#pragma once

#include <cstdint>
#include <ctime>
#include <limits>
#include <string>
#include <string_view>

#include "TrackFile.h"
#include "TrackLogFile.h"

namespace satwalk::track {

// The declaration, <gpx> and the opening <trk><trkseg>, each on a line.
std::string GpxHeader();
inline constexpr std::string_view kGpxTrailer = "</trkseg>\n</trk>\n</gpx>\n";

// Local calendar time to UTC through the system time zone; the zone's
// offset is looked up once per local hour.
class LocalToUtc {
  public:
    // False when the time is no calendar time or the zone cannot place it.
    bool Convert(const TrackTime& local, std::tm& utc);

  private:
    long long hourKey_ = std::numeric_limits<long long>::min();
    long long offset_ = 0;
};

// Appends one "<trkpt ...>...</trkpt>\n"; false, with nothing appended, when
// the position is not one GPX can hold. A time that is no calendar time is
// left out.
bool AppendGpxPoint(std::string& out, const TrackFilePoint& point, LocalToUtc& zone);

// Adds one point line to the GPX file at `path`: a new (or empty) file gets
// the header first; an existing one must end with the closing tags, which
// the point replaces and which follow it again. A write that fails leaves
// the file as it was (its closing tags restored).
TrackWrite AppendGpxTrackPoint(const std::string& path, std::string_view pointLine);

// "20070315142530.gpx" beside "20070315142530.log".
std::string GpxPathForLog(const std::string& logPath);

}  // namespace satwalk::track
