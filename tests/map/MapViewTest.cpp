// Placing degrees on the map view in both modes, and taps back to degrees.
#include <gtest/gtest.h>

#include <cmath>

#include "MapView.h"

namespace satwalk::map {
namespace {

// A 480 × 400 view showing the whole world across its width.
MapView World() {
    MapView v;
    v.viewRect = {0, 0, 480, 400};
    v.scaleBarPixels = 100;
    v.viewScale = 360.0 * 114.319 * 100 / 480;  // 360° on 480 pixels
    v.worldOrigin.screenX = 240;
    v.worldOrigin.screenY = 200;
    return v;
}

// A 1000 × 500 image fitted 480 × 240, a degree per 100 columns and rows.
MapView Image(bool calibrated) {
    MapView v;
    v.viewRect = {0, 0, 480, 400};
    v.mapMode = 1;
    v.imageSize = {1000, 500};
    v.displayedWidth = v.currentWidth = 480;
    v.displayedHeight = v.currentHeight = 240;
    v.scrollCentre = {500, 250};
    ReferencePoints r{};
    r[0] = GeoPoint{1, 31, 120, 0, 0, 0, 0};
    r[1] = GeoPoint{calibrated ? 1 : 0, 26, 130, 0, 0, 1000, 500};
    v.calibration = ComputeCalibration(r);
    return v;
}

TEST(MapView, ProjectsDegreesInBothModes) {
    const std::tuple<const char*, MapView, double, double, bool, double, double> cases[] = {
        // 180 W is the view's left edge; 180 E the same meridian, taken on
        // the side nearest the centre.
        {"world date line west", World(), 0.5, -179.999, true, 0.0, NAN},
        {"world date line east", World(), 0.5, 180.0, true, 480.0, NAN},
        {"world greenwich", World(), 20.0, 0.0, true, 240.0, NAN},
        {"image top left", Image(true), 31, 120, true, 0.0, 80.0},
        {"image centre", Image(true), 28.5, 125, true, 240.0, 200.0},
        {"image off to the east", Image(true), 28.5, 140, true, 960.0, 200.0},
        {"image not calibrated", Image(false), 28.5, 125, false, 0, 0},
        {"not a number", World(), NAN, 0, false, 0, 0}};
    for (const auto& [name, view, lat, lon, placed, x, y] : cases) {
        SCOPED_TRACE(name);
        PointF p{-1, -1};
        ASSERT_EQ(ProjectToScreen(view, lat, lon, p), placed);
        if (!placed) {
            EXPECT_EQ(p, (PointF{-1, -1}));
            continue;
        }
        EXPECT_NEAR(p.x, x, 0.01);
        if (!std::isnan(y)) {
            EXPECT_NEAR(p.y, y, 1e-9);
        }
    }
}

TEST(MapView, TapsComeBackToTheDegreesThatWereProjected) {
    const std::tuple<const char*, MapView, double, double> cases[] = {
        {"world north", World(), 30.25, 120.1},
        {"world south west", World(), -33.9, -70.6},
        {"world far north", World(), 79.5, 10},
        {"image", Image(true), 27.3, 123.4}};
    for (const auto& [name, view, latitude, longitude] : cases) {
        SCOPED_TRACE(name);
        PointF p;
        ASSERT_TRUE(ProjectToScreen(view, latitude, longitude, p));
        double lat = 0, lon = 0;
        ASSERT_TRUE(ScreenToGeo(view, p, lat, lon));
        EXPECT_NEAR(lat, latitude, 1e-6);
        EXPECT_NEAR(lon, longitude, 1e-6);
    }
    // Between the rows of 0.0° north and south the equator's band jumps: the
    // whole gap reads as the equator.
    double lat = 1, lon = 1;
    ASSERT_TRUE(ScreenToGeo(World(), {240, 200}, lat, lon));
    EXPECT_EQ(lat, 0.0);
    EXPECT_FALSE(ScreenToGeo(Image(false), {240, 200}, lat, lon));
}

}  // namespace
}  // namespace satwalk::map
