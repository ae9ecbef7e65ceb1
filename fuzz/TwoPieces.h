// The fuzz targets' input as text cut in two at a place its first byte
// chooses, so that a reader fed in pieces meets every split of its input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace satwalk::fuzz {

struct TwoPieces {
    const char* first;
    std::size_t firstSize;
    const char* second;
    std::size_t secondSize;
};

// Nothing for an empty input.
inline std::optional<TwoPieces> CutInTwo(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return std::nullopt;
    const std::size_t split = data[0] % size;
    const char* text = reinterpret_cast<const char*>(data);
    return TwoPieces{text, split, text + split, size - split};
}

}  // namespace satwalk::fuzz
