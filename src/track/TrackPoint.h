// A sample of the track: where (in the pixel space of the map it belongs
// to) and when (local time).
#pragma once

#include <cstdint>

#include "CursorList.h"

namespace satwalk::track {

// Local calendar time of a sample. The fields are signed because times read
// back from a log are whatever the file's digits say ("-5" is a month too).
// Day of week and milliseconds are those of the clock when recording, zero
// when read from a file.
struct TrackTime {
    std::int16_t year = 0;
    std::int8_t month = 0;
    std::int8_t day = 0;
    std::int8_t hour = 0;
    std::int8_t minute = 0;
    std::int8_t second = 0;
    std::int8_t dayOfWeek = 0;
    std::int16_t millisecond = 0;
    friend constexpr bool operator==(const TrackTime&, const TrackTime&) = default;
};
static_assert(sizeof(TrackTime) == 10);

// x and y are world-map pixels in the world trails and image pixels of the
// loaded map in the map trails.
struct TrackPoint {
    float x = 0;
    float y = 0;
    TrackTime time;
};
static_assert(sizeof(TrackPoint) == 20);  // a million points in 20 MB a trail

using TrackList = CursorList<TrackPoint>;

// The local time now, from the system clock and time zone.
TrackTime LocalTrackTime();

}  // namespace satwalk::track
