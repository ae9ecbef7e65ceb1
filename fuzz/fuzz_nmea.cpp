// Any receiver bytes through the decoder, batch by batch as the link hands
// them over, then through reading the fix's numbers and the JSON writer.
// Checks that every text of the fix stays NUL-terminated within its width
// and reads as the C library reads it.
// Each input starts from a fresh decoder, so a found input reproduces alone.
#include <locale.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "GpsJson.h"
#include "NmeaDecoder.h"

using namespace satwalk::gps;

namespace {

// Every text stays terminated, and its quick decimal reading agrees with the
// C library's to the bit (non-finite readings are 0).
template <std::size_t N>
void CheckText(const char (&field)[N]) {
    static const locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    if (std::memchr(field, '\0', N) == nullptr)
        std::abort();
    const double quick = TextToDouble(field);
    double library = strtod_l(field, nullptr, c);
    if (!std::isfinite(library))
        library = 0.0;
    if (std::memcmp(&quick, &library, sizeof quick) != 0)
        std::abort();
}

void CheckState(const GpsState& s) {
    CheckText(s.header);
    CheckText(s.utcTime);
    CheckText(s.date);
    CheckText(s.latitude);
    CheckText(s.longitude);
    CheckText(s.speedKnots);
    CheckText(s.course);
    CheckText(s.satellitesUsed);
    CheckText(s.altitude);
    CheckText(s.geoidSeparation);
    CheckText(s.hdop);
    CheckText(s.pdop);
    CheckText(s.vdop);
    CheckText(s.satellitesInView);
    for (const auto& r : s.satellites) {
        CheckText(r.prn);
        CheckText(r.elevation);
        CheckText(r.azimuth);
        CheckText(r.snr);
    }
}

struct NullSink final : TimeSyncSink {
    void OnGpsTime() override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    GpsState state;
    GsvAssembly assembly;
    NullSink sink;
    Talkers talkers;
    // The first byte picks the batch size, so cuts land everywhere, and with
    // its lowest bit whether all satellite systems are accepted.
    std::size_t batch = 2047;
    bool acceptAll = false;
    if (size > 0) {
        batch = 1 + (data[0] >> 1) * 16u;
        acceptAll = (data[0] & 1) != 0;
        ++data;
        --size;
    }
    talkers.acceptAll = acceptAll;
    const char* text = reinterpret_cast<const char*>(data);
    for (std::size_t at = 0; at < size; at += batch) {
        const std::size_t n = size - at < batch ? size - at : batch;
        // An exact-size copy lets the address sanitizer catch any read past it.
        char* copy = static_cast<char*>(std::malloc(n ? n : 1));
        std::memcpy(copy, text + at, n);
        ParseNmeaBuffer(state, assembly, std::string_view(copy, n), &sink, &talkers);
        std::free(copy);
        CheckState(state);
        if (assembly.countParsed > 1 || talkers.sky.rows > kSatelliteRows)
            std::abort();
    }
    std::string json;
    AppendGpsJsonMembers(json, state, ReadFix(state), true);
    return 0;
}
