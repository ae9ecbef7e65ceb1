// The baud rates a receiver can be set to, in the order the settings offer
// them (the options file keeps the index).
#pragma once

#include <cstdint>

namespace satwalk::common {

inline constexpr std::uint32_t kBaudRates[] = {4800, 9600, 14400, 19200, 38400, 57600};

}  // namespace satwalk::common
