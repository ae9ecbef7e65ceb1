// Finding and reading the georeference of a map image from the files beside
// it, through GDAL and PROJ: in this order the program's own reference file
// ("Ref Pt_<name>.rpt" in the image's folder), a world file with its .prj, a
// GeoTIFF's tags, an OziExplorer .map and a KML or KMZ GroundOverlay that
// name the image. The reference file in the storage folder comes before all
// of these; that is the caller's to look for.
//
// GDAL opens only the GeoTIFF driver (and the four image formats, for an
// image's size); nothing is fetched from the network and no file is written
// beside the image. Call from any thread; the returned transforms are
// immutable and may be shared between threads.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "GeoTransform.h"
#include "MapGeometry.h"

namespace satwalk::map {

enum class GeoSource {
    None,           // nothing beside the image: it is not calibrated
    ReferenceFile,  // "Ref Pt_<name>.rpt", read with the reference-point rules
    WorldFile,
    GeoTiff,
    Ozi,
    Kml,
};

// "rpt", "worldfile", "geotiff", "ozi", "kml"; "" for None.
std::string_view GeoSourceName(GeoSource source);

struct Georeference {
    GeoSource source = GeoSource::None;
    std::string file;  // the file it came from
    // Set: the file is there and names the image but cannot be used; the
    // message says which file and why. The map is not loaded.
    std::string error;
    // The transform from image pixels to the map's coordinates; for a KML
    // in unit image coordinates (0..1), bound to the image's size by Bind.
    Affine affine{};
    // Fitted points are also fitted the other way (map coordinates to
    // pixels) in least squares, as GIS tools do, rather than inverted.
    bool hasInverse = false;
    Affine inverse{};
    bool unitImage = false;
    std::shared_ptr<const MapProjection> projection;  // null: degrees
    // The points the transform was fitted to (a .map's, a quad's corners;
    // image coordinates as for `affine`) and how far, in metres, the fit
    // puts each from its stated place.
    std::vector<ControlPoint> points;
    std::vector<double> residualsMetres;

    bool Georeferenced() const { return error.empty() && source > GeoSource::ReferenceFile; }
    // The calibration for an image of `image` pixels (invalid when this
    // holds no transform).
    MapCalibration Bind(ImageSize image) const;
};

// What lies beside `imagePath`, first match in the order above. A candidate
// that does not name this image (a .map or KML of another one) is passed
// over; one that names it but is broken ends the search with `error`.
Georeference FindGeoreference(const std::string& imagePath);

// The calibration the program uses for the image at `imagePath`, given its
// reference file in the storage folder: that file when it calibrates (or is
// there but unreadable, which the map reports), else what lies beside the
// image. A reference file beside the image comes back as ReferenceFile with
// its name; so does the storage file when nothing beside calibrates but it
// is there. None: nothing anywhere.
Georeference LocateCalibration(const std::string& imagePath,
                               const std::string& storageReferenceFile);

// The single readers, for the command-line tool and the tests.
Georeference ReadWorldFile(const std::string& worldFile, const std::string& prjFile);
Georeference ReadGeoTiff(const std::string& path);
Georeference ReadOziMapFile(const std::string& path, std::string_view imageFileName);
Georeference ReadKmlFile(const std::string& path, std::string_view imageFileName);

// A projection from a WKT (ESRI's too), "EPSG:n" or PROJ definition into
// `out` (null for plain WGS 84 degrees). False with `error` when GDAL cannot
// read it; definitions that would make GDAL open a file or the network are
// refused.
bool ProjectionFromDefinition(std::string_view definition,
                              std::shared_ptr<const MapProjection>& out, std::string& error);
// A UTM zone (1..60) on WGS 84, as a .map's grid names it.
std::shared_ptr<const MapProjection> UtmProjection(int zone, bool south);

// The pixel size of an image (BMP, JPG, GIF, PNG, TIFF) from its header,
// without decoding it. False when GDAL cannot tell.
bool ReadImageSize(const std::string& path, ImageSize& size);

}  // namespace satwalk::map
