// Any OziExplorer .map: at most thirty points with finite pixels and
// places; a fit of them is either refused or finite and invertible; the
// image line names an image or not, without reading past the text.
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
    OziMap m;
    std::string error;
    if (!ParseOziMap(text, m, error))
        return 0;
    if (m.points.size() > kOziMaxPoints)
        std::abort();
    std::vector<ControlPoint> points;
    for (const OziPoint& p : m.points) {
        if (!std::isfinite(p.imageX) || !std::isfinite(p.imageY) ||
            (p.hasDegrees && (std::fabs(p.latitude) > 90 || std::fabs(p.longitude) > 360)))
            std::abort();
        ControlPoint c;
        c.imageX = p.imageX;
        c.imageY = p.imageY;
        c.mapX = p.hasDegrees ? p.longitude : p.easting;
        c.mapY = p.hasDegrees ? p.latitude : p.northing;
        points.push_back(c);
    }
    Affine a{};
    Affine inverse{};
    if (FitAffine(points, a) && !InvertAffine(a, inverse))
        std::abort();
    NamesImage(m.imagePath, "map.png");
    return 0;
}
