// The georeference files a map image may have beside it, as text: a world
// file, an OziExplorer .map and a KML GroundOverlay. Each reader only turns
// bytes into values and checks them; building the transform (and any
// projection) from those values is Georeference.h's. Every input is
// untrusted: the readers look at a bounded prefix, never allocate by a size
// the file states, and say in `error` what was wrong. Any thread.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "GeoTransform.h"

namespace satwalk::map {

// Bytes of a world file, a .map, a .prj or a KML that are read at most.
inline constexpr std::size_t kWorldFileLimit = 4096;
inline constexpr std::size_t kOziMapLimit = 256 * 1024;
inline constexpr std::size_t kProjectionLimit = 64 * 1024;
inline constexpr std::size_t kKmlLimit = 4 * 1024 * 1024;

// The six numbers of a world file (x scale, y rotation, x rotation, y scale,
// x and y of the centre of the top-left pixel) as the affine transform from
// the image's corner. False for fewer than six numbers, anything not finite,
// or a transform with no inverse (a zero scale).
bool ParseWorldFile(std::string_view text, Affine& out, std::string& error);

// True when a world file's numbers look like degrees: the origin within the
// earth's longitudes and latitudes and less than a degree a pixel.
bool LooksLikeDegrees(const Affine& a);

// One calibration point of a .map: the pixel and either the place in
// degrees or a grid position (UTM zone, easting, northing).
struct OziPoint {
    double imageX = 0.0;
    double imageY = 0.0;
    bool hasDegrees = false;
    double latitude = 0.0;
    double longitude = 0.0;
    bool hasGrid = false;
    int zone = 0;
    double easting = 0.0;
    double northing = 0.0;
    bool south = false;
};

inline constexpr int kOziMaxPoints = 30;

struct OziMap {
    std::string imagePath;   // as written, often a Windows path
    std::string datum;       // "WGS 84"
    std::string projection;  // "Transverse Mercator"
    // "Projection Setup": latitude of origin, central meridian, scale
    // factor, false easting, false northing, standard parallels 1 and 2;
    // missing fields are 0 (the scale factor 1).
    std::array<double, 7> setup{0, 0, 1, 0, 0, 0, 0};
    std::vector<OziPoint> points;
};

// An OziExplorer map file: the header line, the image on the third line,
// the datum on the fifth, "Map Projection," and "Projection Setup," and the
// "PointNN" lines (up to 30) that have a pixel and a place. False when the
// text is not a .map at all.
bool ParseOziMap(std::string_view text, OziMap& out, std::string& error);

// A KML GroundOverlay: its image and either a LatLonBox (with rotation,
// degrees counter-clockwise about its centre) or a LatLonQuad (corners
// lower-left, lower-right, upper-right, upper-left).
struct KmlOverlay {
    std::string href;
    bool hasBox = false;
    double north = 0.0, south = 0.0, east = 0.0, west = 0.0, rotation = 0.0;
    bool hasQuad = false;
    std::array<std::array<double, 2>, 4> quad{};  // longitude, latitude
};

inline constexpr std::size_t kKmlMaxOverlays = 1000;

// Every GroundOverlay of a KML document. False when it is not well-formed
// XML (what was read before the fault is kept).
bool ParseKml(std::string_view text, std::vector<KmlOverlay>& out, std::string& error);

// Whether `href` names the image called `fileName` (its last path part,
// compared without regard to ASCII case). A URL names nothing here: it is
// never fetched.
bool NamesImage(std::string_view href, std::string_view fileName);

// The overlay as an affine transform from the unit image (0..1 across and
// down) to degrees, with its corners as control points (image in unit
// coordinates). False for a box or quad that is not a usable area.
bool OverlayToUnitAffine(const KmlOverlay& overlay, Affine& out, std::vector<ControlPoint>& corners,
                         std::string& error);

}  // namespace satwalk::map
