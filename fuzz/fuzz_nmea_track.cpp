// Any bytes as an NMEA recording read as a track, in two pieces: every point
// lies within range and comes from a checksum-correct RMC.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "NmeaTrackReader.h"

using namespace satwalk;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::size_t split = data[0] % size;
    const char* text = reinterpret_cast<const char*>(data);
    std::size_t points = 0;
    track::NmeaTrackParser parser([&points](const track::TrackFilePoint& p) {
        if (!(std::fabs(p.latitude) <= 90 && std::fabs(p.longitude) <= 180))
            std::abort();
        ++points;
    });
    parser.Feed(text, split);
    parser.Feed(text + split, size - split);
    parser.Finish();
    if (points > 0 && !parser.SawSentence())
        std::abort();
    return 0;
}
