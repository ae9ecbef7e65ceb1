// The track log file: its name, its line, and the append that never damages
// what the file already holds.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "TrackPoint.h"

namespace satwalk::track {

// "20070315142530.log": the local start time of the recording.
std::string TrackFileName(const TrackTime& start);
// The track folder and that name joined with '/'.
std::string TrackFilePath(std::string_view folder, const TrackTime& start);

// "20070315 14:25:30", the date-time field of a line.
std::string TrackDateTimeText(const TrackTime& time);

// Longest line the recorder writes; longer ones are cut, as the handheld's
// 260-byte buffer did.
inline constexpr std::size_t kTrackLineMax = 260;

// One line: "%f,%f,,%s,%s,%s,%s\r\n" from longitude, latitude, the
// date-time text and the receiver's own speed, course and altitude texts.
// Numbers are formatted the same in every locale.
std::string FormatTrackLine(double longitude, double latitude, const TrackTime& time,
                            std::string_view speedKnots, std::string_view course,
                            std::string_view altitude);

enum class TrackWrite {
    Written,     // the line is at the end of the file
    Created,     // the file exists (opened or made); no line was asked for
    NotOpened,   // the file could not be opened or made: nothing changed
    NotWritten,  // the write failed (a full disk): the file is as it was
};

// Opens `path` as open-always (made when missing, never truncated), appends
// `line` when it is not empty, and closes it again. A write that fails
// halfway is rolled back to the file's previous length, so the lines
// already written stay whole. `error` (when given) receives the errno of a
// failure, 0 otherwise.
TrackWrite AppendTrackLine(const std::string& path, std::string_view line, int* error = nullptr);

}  // namespace satwalk::track
