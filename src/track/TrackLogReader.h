// Reads a track log back into points.
//
// The byte rules, as the recorder's files and older hand-edited ones need:
// - ',' and CR end a field; LF starts a new line without ending a field
//   (so a line ended by a bare LF loses its last field);
// - a field that reaches 259 bytes is dropped and collection starts again
//   from empty: over-long fields vanish, they are not cut;
// - field 0 is the longitude and field 1 the latitude (read as atof reads,
//   so "abc" is 0), field 3 the date-time "YYYYMMDD hh:mm:ss" read by fixed
//   positions (as atoi reads each part); fields 2, 4 and later are ignored;
// - a line gives one point once it has ended fields 0, 1 and 3;
// - a field's text ends at a NUL byte, as it did in the C strings the
//   format was made with.
// Memory stays bounded whatever the input: a field never holds more than
// 258 bytes, the file is read in fixed blocks, and a reader that keeps the
// points stops at a budget of them (kMaxTrackPoints).
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "TrackPoint.h"

namespace satwalk::track {

struct TrackLogPoint {
    double longitude = 0;
    double latitude = 0;
    TrackTime time;  // day of week and milliseconds 0
};

// The byte walker, fed in pieces of any size.
class TrackLogParser {
  public:
    static constexpr std::size_t kFieldDropLength = 259;

    // Calls onPoint for each point completed within `data`.
    template <typename OnPoint>
    void Feed(const char* data, std::size_t size, OnPoint&& onPoint);

  private:
    // Ends the current field; true when the line just completed a point.
    bool EndField();

    char text_[kFieldDropLength + 1] = {};
    std::size_t length_ = 0;
    std::uint32_t field_ = 0;
    bool haveLongitude_ = false;
    bool haveLatitude_ = false;
    bool haveTime_ = false;
    TrackLogPoint point_;
};

// Points one trail holds at most (40 MB of them): a log of more is shown up
// to that many, and the user is told. A million-line log is 60 MB of text.
inline constexpr std::uint64_t kMaxTrackPoints = 2'000'000;

enum class TrackLogResult {
    Read,        // read to the end (or to a read error, which ends it like an end)
    Truncated,   // read up to the budget of points; the rest of the file was not read
    OpenFailed,  // missing, unreadable or not a regular file
};

using TrackPointSink = std::function<void(const TrackLogPoint&)>;
// Bytes read so far and the file's size, after each block of a megabyte or
// so; the caller decides whether to show it.
using TrackProgress = std::function<void(std::uint64_t done, std::uint64_t total)>;

// Calls onPoint for at most `maxPoints` points; the read stops there.
TrackLogResult ReadTrackLog(const std::string& path, const TrackPointSink& onPoint,
                            const TrackProgress& progress = {},
                            std::uint64_t maxPoints = kMaxTrackPoints);

// "YYYY-MM-DD hh:mm:ss" from the parsed fields, zero-padded.
std::string FormatTrackTime(const TrackTime& time);

template <typename OnPoint>
void TrackLogParser::Feed(const char* data, std::size_t size, OnPoint&& onPoint) {
    for (std::size_t i = 0; i < size; ++i) {
        const char c = data[i];
        if (c == ',' || c == '\r') {
            if (EndField())
                onPoint(point_);
        } else if (c == '\n') {
            field_ = 0;
            length_ = 0;
            haveLongitude_ = haveLatitude_ = haveTime_ = false;
        } else {
            text_[length_++] = c;
            if (length_ == kFieldDropLength)
                length_ = 0;
        }
    }
}

}  // namespace satwalk::track
