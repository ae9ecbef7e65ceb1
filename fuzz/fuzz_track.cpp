// Any bytes as a track log: read in two pieces (the split taken from the
// first byte), the points drawn as a trail. The times stay within what
// their digits can say, no coordinate is non-finite, and every marker
// stays inside the view.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "RecordingCanvas.h"
#include "TrackLogReader.h"
#include "TrailPainter.h"
#include "TwoPieces.h"

using namespace satwalk;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto in = fuzz::CutInTwo(data, size);
    if (!in)
        return 0;
    track::TrackList trail;
    std::size_t ends = 0;
    for (std::size_t i = 0; i < size; ++i) ends += data[i] == ',' || data[i] == '\r';
    track::TrackLogParser parser;
    const auto add = [&](const track::TrackLogPoint& p) {
        const track::TrackTime& t = p.time;
        if (t.year < -999 || t.year > 9999 || t.month < -9 || t.second > 99 ||
            !std::isfinite(p.longitude) || !std::isfinite(p.latitude))
            std::abort();
        trail.Append(track::TrackPoint{static_cast<float>(p.longitude * 100),
                                       static_cast<float>(p.latitude * 100), t});
    };
    parser.Feed(in->first, in->firstSize, add);
    parser.Feed(in->second, in->secondSize, add);
    if (trail.Count() * 3 > ends)  // a point needs three ended fields
        std::abort();

    const screens::Rect view{0, 0, 480, 640};
    screens::RecordingCanvas canvas(view);
    track::TrailPainter painter;
    painter.Draw(canvas, trail, {1, 240, -1, 320}, view);
    for (const screens::Rect& r : painter.MarkerRects()) {
        if (r.left < 0 || r.top < 0 || r.right > 480 || r.bottom > 640 || r.Width() <= 0)
            std::abort();
    }
    return 0;
}
