// Track points the track benchmarks build: times one second apart from the
// start of 1 May 2024.
#pragma once

#include <cstdint>

#include "TrackPoint.h"

namespace satwalk::bench {

inline track::TrackTime SecondsIntoMay(int second) {
    return track::TrackTime{2024,
                            5,
                            static_cast<std::int8_t>(1 + second / 86400),
                            static_cast<std::int8_t>(second / 3600 % 24),
                            static_cast<std::int8_t>(second / 60 % 60),
                            static_cast<std::int8_t>(second % 60),
                            0,
                            0};
}

}  // namespace satwalk::bench
