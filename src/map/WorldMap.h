// The built-in world map: land outlines from Natural Earth, read once from
// the committed data file and drawn as polygons through the screens' Canvas
// for any world view, so that coasts stay sharp at every zoom. Only the rings
// whose bounds reach the view are projected, and each is clipped to the view
// before it is drawn. Read on any thread; drawn on the painting thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Canvas.h"
#include "MapGeometry.h"

namespace satwalk::map {

// One closed land outline, in hundredths of a degree, with its bounds.
struct LandRing {
    std::vector<std::int32_t> lon;
    std::vector<std::int32_t> lat;
    std::int32_t minLon = 0, maxLon = 0, minLat = 0, maxLat = 0;
};

struct WorldLand {
    std::vector<LandRing> rings;
    std::size_t PointCount() const;
};

// Parses the data file's text: lines starting with '#' are comments, every
// other line one ring, "x,y" then "dx,dy" steps in hundredths of a degree.
// Malformed lines and rings of fewer than three points are skipped; points
// past ±180° longitude or ±90° latitude end their ring.
WorldLand ParseWorldLand(std::string_view text);

// Reads and parses the file; false (and no rings) when it cannot be read.
bool LoadWorldLand(const std::string& path, WorldLand& land);

struct WorldMapStyle {
    screens::Colour sea = screens::Rgb(181, 208, 232);
    screens::Colour land = screens::Rgb(236, 232, 214);
    screens::Colour coast = screens::Rgb(128, 128, 112);
};

// A world view: `origin` holds the longitude at origin.screenX and, in
// origin.screenY, the screen row of the equator; `scale` is the kilometres
// the scale bar of `scaleBarPixels` stands for (as ProjectToView takes them).
struct WorldView {
    GeoPoint origin;
    double scale = 1000.0;
    int scaleBarPixels = 100;
    screens::Rect rect;  // where the map is drawn
};

// The view's pixels per degree of longitude.
double WorldPixelsPerDegree(const WorldView& view);

// Fills the view with the sea and draws the land over it. Longitudes repeat
// every 360°, so a view panned past the 180° meridian shows the other side.
void DrawWorldMap(screens::Canvas& canvas, const WorldLand& land, const WorldView& view,
                  const WorldMapStyle& style = {});

}  // namespace satwalk::map
