// Any world file: either refused with a message, or a transform that has an
// inverse and takes pixels to finite coordinates and back.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "GeoFiles.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace satwalk::map;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    Affine a{};
    std::string error;
    const bool ok = ParseWorldFile(text, a, error);
    if (ok != error.empty())
        std::abort();
    Affine inverse{};
    if (ok && !InvertAffine(a, inverse))
        std::abort();
    LooksLikeDegrees(a);
    return 0;
}
