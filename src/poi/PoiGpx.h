// A GPX file's waypoints as POIs: each <wpt> a point, its name as it stands
// (UTF-8, cut at a character boundary where the record's text ends), its
// icon from <sym>, else <type>, where that names a category of the table by
// code or name (any case). Read by the track files' GPX reader.
#pragma once

#include <string>

#include "PoiCsv.h"
#include "TrackFile.h"

namespace satwalk::poi {

// A waypoint as a record.
PoiRecord PoiFromWaypoint(const track::TrackWaypoint& waypoint);

// Appends the waypoints of the GPX file at `path` to `list`; false when it
// cannot be opened or is no GPX (nothing added then).
// At most `maxPoints` waypoints are kept; `truncated` (when given) says
// whether the file had more.
bool ReadPoiGpx(const std::string& path, PoiList& list, std::uint64_t maxPoints = kMaxPoisPerFile,
                bool* truncated = nullptr);

}  // namespace satwalk::poi
