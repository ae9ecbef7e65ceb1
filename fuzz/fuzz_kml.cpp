// Any KML: a bounded number of GroundOverlays; each either refused with a
// message or a finite, invertible transform of the unit image to degrees.
// No href is ever fetched (the reader has no network to reach for).
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "GeoFiles.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace satwalk::map;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<KmlOverlay> overlays;
    std::string error;
    ParseKml(text, overlays, error);
    if (overlays.size() > kKmlMaxOverlays)
        std::abort();
    for (const KmlOverlay& o : overlays) {
        Affine a{};
        std::vector<ControlPoint> corners;
        std::string why;
        const bool ok = OverlayToUnitAffine(o, a, corners, why);
        Affine inverse{};
        if (ok && (!InvertAffine(a, inverse) || !why.empty()))
            std::abort();
        if (!ok && why.empty())
            std::abort();
        NamesImage(o.href, "map.png");
    }
    return 0;
}
