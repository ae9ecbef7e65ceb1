// Any bytes as GPX, fed in two pieces (the split taken from the first
// byte): every point handed on lies within range, every waypoint text within
// its cut, and expat's memory stays within its budget.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "GpxReader.h"
#include "TwoPieces.h"

using namespace satwalk;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto in = fuzz::CutInTwo(data, size);
    if (!in)
        return 0;
    const auto point = [](const track::TrackFilePoint& p) {
        if (!(std::fabs(p.latitude) <= 90 && std::fabs(p.longitude) <= 180))
            std::abort();
        if (p.hasTime && (p.time.month < 1 || p.time.month > 12 || p.time.hour < 0))
            std::abort();
    };
    const auto waypoint = [](const track::TrackWaypoint& w) {
        if (w.name.size() > track::kWaypointTextMax || w.symbol.size() > track::kWaypointTextMax)
            std::abort();
    };
    track::GpxParser parser(point, waypoint);
    if (parser.Feed(in->first, in->firstSize, false))
        parser.Feed(in->second, in->secondSize, true);
    return 0;
}
