// GPX 1.0 and 1.1 through expat, a streaming XML parser: track points
// (every <trk>/<trkseg>), route points (<rte>) and waypoints (<wpt>), each
// handed on as its element closes, in document order.
//
// What other programs write, and how it is taken:
// - names are matched without their namespace prefix, so `gpx:trkpt` and a
//   default namespace read alike; unknown elements (extensions) are passed
//   over, except that `speed` and `course` are taken at any depth inside a
//   point (GPX 1.0 has them as children, Garmin's extension one deeper);
// - lat and lon are decimal numbers; a point without them, with NaN or out
//   of range values, is skipped; a text longer than its field is cut;
// - a byte-order mark, CDATA and character references are expat's;
// - no external entity is ever loaded, and expat's amplification limit
//   stops entity expansion bombs; everything expat allocates is counted
//   against kGpxParserMemory, so a megabyte-long attribute or name ends the
//   parse instead of the memory;
// - a document that breaks off or goes wrong keeps the points before.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "TrackFile.h"

namespace satwalk::track {

inline constexpr std::size_t kGpxParserMemory = 8u << 20;

// A parser is made, fed and freed on one thread (its memory is counted per
// thread).
class GpxParser {
  public:
    GpxParser(TrackFilePointSink onPoint, TrackWaypointSink onWaypoint);
    ~GpxParser();
    GpxParser(const GpxParser&) = delete;
    GpxParser& operator=(const GpxParser&) = delete;

    // Feeds the next piece of the document (`last` for the end). False once
    // the document has gone wrong; later calls do nothing.
    bool Feed(const char* data, std::size_t size, bool last);

    // The root element was <gpx>.
    bool IsGpx() const;
    // The whole document was read without an error.
    bool Complete() const;
    // The parser's message for the first error, empty without one.
    const std::string& error() const;

    struct State;

  private:
    std::unique_ptr<State> state_;
};

}  // namespace satwalk::track
