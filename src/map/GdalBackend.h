// GDAL, PROJ and the ninety or so libraries behind them, loaded only when a map
// first needs them. Everything the program asks of GDAL goes through this
// interface; its one implementation lives in the module satwalk_gdal.so,
// which GdalLibrary opens on first use (beside the executable, then in
// ../lib/satwalk, then in the build tree; SATWALK_GDAL_MODULE, when set,
// names the only file tried), so a start without such a map loads none of
// them. No Qt.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "GeoTransform.h"
#include "MapGeometry.h"

namespace satwalk::map {

// ASCII letters in lower case (file names, datum and projection names).
inline std::string AsciiLower(std::string_view s) {
    std::string out(s);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return out;
}

// A projection GDAL is asked to set up, on WGS 84.
struct ProjectionRequest {
    enum class Kind {
        Definition,          // `text`: a WKT (ESRI's too), "EPSG:n" or PROJ string
        Utm,                 // `zone` 1..60, `south`
        Mercator,            // p: latitude of origin, central meridian, scale, false E, false N
        TransverseMercator,  // as Mercator
        LambertConic,        // p: standard parallels 1 and 2, latitude of origin,
                             // central meridian, false E, false N
        Epsg,                // `zone` holds the code
    };
    Kind kind = Kind::Definition;
    std::string text;
    int zone = 0;
    bool south = false;
    std::array<double, 6> p{};
    std::string name;  // set: the projected system is named so
};

// What a GeoTIFF holds: its size, its transform or control points and the
// projection of either.
struct GeoTiffTags {
    bool opened = false;  // false: not a TIFF GDAL reads
    int width = 0, height = 0;
    bool hasTransform = false;
    std::array<double, 6> transform{};
    std::vector<ControlPoint> gcps;  // image and map coordinates only
    bool hasProjection = false;
    std::shared_ptr<const MapProjection> projection;  // null: degrees
    std::string projectionError;                      // set: the projection is unusable
};

enum class RasterOpen { Opened, CannotOpen, NotAnImage, Damaged };

// An image read a band of rows at a time as 32-bit 0xXXRRGGBB pixels,
// transparency laid over white (the X byte is left as it was in a
// three-band image's rows).
class RasterRows {
  public:
    virtual ~RasterRows() = default;
    virtual ImageSize Size() const = 0;
    // Rows [y, y + rows), `stride` bytes apart, into `out`; false when the
    // decoder fails.
    virtual bool Read(int y, int rows, std::uint8_t* out, std::ptrdiff_t stride) = 0;
};

class GdalBackend {
  public:
    virtual ~GdalBackend() = default;
    // Null with `error` set when GDAL cannot set it up; null without for
    // plain WGS 84 degrees.
    virtual std::shared_ptr<const MapProjection> Projection(const ProjectionRequest& request,
                                                            std::string& error) const = 0;
    virtual GeoTiffTags ReadGeoTiff(const std::string& path) const = 0;
    // From the header of a BMP, JPG, GIF, PNG or TIFF; false when unknown.
    virtual bool ReadImageSize(const std::string& path, ImageSize& size) const = 0;
    // The KML inside a KMZ (doc.kml first), at most `limit` bytes.
    virtual bool ReadZippedKml(const std::string& path, std::size_t limit,
                               std::string& text) const = 0;
    // A JPEG, PNG, BMP or GIF opened for reading by rows, however large.
    virtual std::unique_ptr<RasterRows> OpenRaster(const std::string& path,
                                                   RasterOpen& result) const = 0;
};

// The module's entry point and the version of this interface it was built
// against; a module of another version is not used.
inline constexpr int kGdalBackendVersion = 1;
inline constexpr const char* kGdalEntryPoint = "satwalk_gdal_backend";
using GdalEntry = const GdalBackend* (*)(int version);

// The backend, the module opened on the first call (from any thread); null
// when it cannot be loaded, the reason then in `error` (may be null). The
// module is never unloaded: the projections it makes outlive any caller.
const GdalBackend* GdalLibrary(std::string* error = nullptr);

// The message for a map that needs GDAL when it cannot be loaded.
std::string GdalUnavailableMessage(const std::string& reason);

}  // namespace satwalk::map
