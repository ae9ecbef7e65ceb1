// Helpers for building NMEA sentences in tests.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "NmeaDecoder.h"

namespace satwalk::gps::testing {

inline unsigned Xor(std::string_view body) {
    unsigned x = 0;
    for (char c : body) x ^= static_cast<unsigned char>(c);
    return x;
}

// "$" + body + "*" + the correct uppercase checksum + CR LF.
inline std::string Sentence(std::string_view body) {
    char sum[3];
    std::snprintf(sum, sizeof sum, "%02X", Xor(body));
    return "$" + std::string(body) + "*" + sum + "\r\n";
}

// Counts the time-sync notifications.
struct CountingSink final : TimeSyncSink {
    int calls = 0;
    void OnGpsTime() override { ++calls; }
};

// A decoder with its own GSV assembly and sink.
struct Decoder {
    GpsState state;
    GsvAssembly assembly;
    CountingSink sink;
    void Feed(std::string_view text) { ParseNmeaBuffer(state, assembly, text, &sink); }
};

}  // namespace satwalk::gps::testing
