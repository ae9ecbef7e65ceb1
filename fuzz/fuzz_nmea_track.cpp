// Any bytes as an NMEA recording read as a track, in two pieces: every point
// lies within range and comes from a checksum-correct RMC.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "NmeaTrackReader.h"
#include "TwoPieces.h"

using namespace satwalk;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto in = fuzz::CutInTwo(data, size);
    if (!in)
        return 0;
    std::size_t points = 0;
    track::NmeaTrackParser parser([&points](const track::TrackFilePoint& p) {
        if (!(std::fabs(p.latitude) <= 90 && std::fabs(p.longitude) <= 180))
            std::abort();
        ++points;
    });
    parser.Feed(in->first, in->firstSize);
    parser.Feed(in->second, in->secondSize);
    parser.Finish();
    if (points > 0 && !parser.SawSentence())
        std::abort();
    return 0;
}
