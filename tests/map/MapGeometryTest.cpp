// Calibration, conversions and the world projection, checked against worked
// examples whose numbers come from the map and not from the code.
#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <tuple>

#include "MapGeometry.h"

namespace satwalk::map {
namespace {

struct Ref {
    int slot;  // 1..5
    double x, y, lat, lon;
};

ReferencePoints Slots(std::initializer_list<Ref> refs) {
    ReferencePoints s{};
    for (const Ref& r : refs) s[r.slot - 1] = GeoPoint{1, r.lat, r.lon, 0, 0, r.x, r.y};
    return s;
}

// Two points a degree apart each way, 200 rows and 100 columns apart.
const ReferencePoints kTwo = Slots({{1, 0, 0, 30, 110}, {2, 100, 200, 29, 111}});

TEST(Calibration, TwoPointsGiveScalesAndConvertBothWays) {
    const MapCalibration c = ComputeCalibration(kTwo);
    ASSERT_TRUE(c.IsValid());
    EXPECT_EQ(c.activeCount, 2);
    EXPECT_DOUBLE_EQ(c.latPerPixel[0], 0.005);
    EXPECT_DOUBLE_EQ(c.lonPerPixel[0], 0.01);

    GeoPoint p{.imageX = 50, .imageY = 100};
    ImageToGeo(c, p);
    EXPECT_DOUBLE_EQ(p.latitude, 29.5);
    EXPECT_DOUBLE_EQ(p.longitude, 110.5);

    GeoPoint q;
    EXPECT_EQ(GeoToImage(c, q, 29.5, 110.5), (PointF{50, 100}));

    MapExtent e;
    ComputeMapExtent(c, {100, 200}, e);
    EXPECT_DOUBLE_EQ(e.centre.longitude, 110.5);
    // 1° of longitude over 240 displayed pixels, a 60-pixel bar: a quarter
    // of the 99.58 km a degree has at 29.5°N.
    EXPECT_NEAR(ScaleBarDistance(e, 240, 60), 24.894386, 1e-6);
}

TEST(Calibration, ThreePointsBlendByRunningHalving) {
    // Pair scales 0.01, 0.02 and 0.03 per pixel: the three estimates of
    // pixel (100, 100) are -1, -2 and -1 degrees of latitude (and 1, 2, 1
    // of longitude). Halving gives ((-1 - 2) / 2 - 1) / 2, not their mean.
    const ReferencePoints s = Slots({{1, 0, 0, 0, 0}, {2, 100, 100, -1, 1}, {3, 200, 200, -4, 4}});
    const MapCalibration c = ComputeCalibration(s);
    ASSERT_TRUE(c.IsValid());
    EXPECT_DOUBLE_EQ(c.latPerPixel[0], 0.02);
    GeoPoint p{.imageX = 100, .imageY = 100};
    ImageToGeo(c, p);
    EXPECT_DOUBLE_EQ(p.latitude, -1.25);
    EXPECT_DOUBLE_EQ(p.longitude, 1.25);

    ImageSize image{200, 200};
    MapExtent e;
    ComputeMapExtent(c, image, e);
    // Top-left from the three pairs: 0, 0 and -1 + 100 * 0.03 = 2.
    EXPECT_DOUBLE_EQ(e.topLeft.latitude, 1.0);
    EXPECT_DOUBLE_EQ(e.topLeft.longitude, -1.0);
    EXPECT_DOUBLE_EQ(e.centre.latitude, -1.25);
}

TEST(Calibration, DegenerateLayoutsDoNotCalibrate) {
    const std::tuple<const char*, ReferencePoints, bool> cases[] = {
        {"no active slot", ReferencePoints{}, false},
        {"one active slot", Slots({{3, 5, 5, 10, 10}}), false},
        {"same row, columns apart", Slots({{1, 0, 50, 30, 110}, {2, 100, 50, 29, 111}}), false},
        {"rows 10.5 and 10.9 round alike", Slots({{1, 0, 10.5, 30, 110}, {2, 100, 10.9, 29, 111}}),
         false},
        {"rows -0.6 and 0.4 both cut to 0", Slots({{1, 0, -0.6, 30, 110}, {2, 100, 0.4, 29, 111}}),
         false},
        {"rows 10.4 and 10.6 round apart", Slots({{1, 0, 10.4, 30, 110}, {2, 100, 10.6, 29, 111}}),
         true},
        {"three points on one row", Slots({{1, 0, 7, 1, 1}, {2, 9, 7, 2, 2}, {5, 20, 7.2, 3, 3}}),
         false},
        {"a third point breaks the tie",
         Slots({{1, 0, 7, 1, 1}, {2, 9, 7, 2, 2}, {5, 20, 30, 3, 3}}), true},
        {"latitudes past the double range's half",
         Slots({{1, 0, 0, 1e308, 1}, {2, 9, 9, -1e308, 2}}), false},
        {"a coordinate that is not finite", Slots({{1, 0, 0, NAN, 1}, {2, 9, 9, 2, 2}}), false},
        {"an infinite pixel", Slots({{1, 0, 0, 1, 1}, {2, INFINITY, 9, 2, 2}}), false}};
    for (const auto& [what, slots, calibrated] : cases) {
        const MapCalibration c = ComputeCalibration(slots);
        EXPECT_EQ(c.IsValid(), calibrated) << what;
        EXPECT_TRUE(calibrated || (c.latPerPixel[0] == 0.0 && c.lonPerPixel[0] == 0.0)) << what;
    }
}

TEST(Calibration, MapAcrossTheDateLine) {
    // Column 10 at 179.5°E, column 110 at 179.5°W: one degree in 100 pixels the short way round.
    const ReferencePoints s = Slots({{1, 10, 0, 10, 179.5}, {2, 110, 100, 9, -179.5}});
    const MapCalibration c = ComputeCalibration(s);
    ASSERT_TRUE(c.IsValid());
    EXPECT_DOUBLE_EQ(c.lonPerPixel[0], 0.01);

    const std::pair<double, double> cases[] = {{10, 179.5}, {60, 180.0}, {110, -179.5}, {0, 179.4}};
    for (const auto& [x, longitude] : cases) {
        GeoPoint p{.imageX = x, .imageY = 0};
        ImageToGeo(c, p);
        EXPECT_NEAR(p.longitude, longitude, 1e-9) << x;
    }

    MapExtent e;
    ComputeMapExtent(c, {200, 100}, e);
    EXPECT_NEAR(e.topLeft.longitude, 179.4, 1e-9);
    EXPECT_NEAR(e.bottomRight.longitude, -178.6, 1e-9);
    EXPECT_NEAR(e.centre.longitude, 179.5 + 0.9 - 360, 1e-9);
    EXPECT_NEAR(e.bottomRight.latitude, 9.0, 1e-9);

    // The reverse takes the longitude as given: the western side comes out
    // 360° worth of pixels away.
    GeoPoint q;
    EXPECT_NEAR(GeoToImage(c, q, 10, -179.5).x, 10 - 35900.0, 1e-6);
}

TEST(Calibration, EqualLongitudesAtDifferentColumnsCountAsAroundTheWorld) {
    const MapCalibration c = ComputeCalibration(Slots({{1, 0, 0, 1, 20}, {2, 360, 10, 0, 20}}));
    ASSERT_TRUE(c.IsValid());
    EXPECT_DOUBLE_EQ(c.lonPerPixel[1], 1.0);
}

TEST(Conversions, DisplayAndImageRescale) {
    // A 1000 x 500 image shown 250 x 125 at (10, 20), scrolled by (100, 50).
    const ImageSize image{1000, 500};
    const PointF span{250, 125}, display{10, 20}, origin{100, 50};
    const std::pair<PointF, PointF> cases[] = {{{260, 145}, {1100, 550}}, {{0, 0}, {60, -30}}};
    for (const auto& [screen, pixel] : cases) {
        const PointF i = DisplayToImage(span, display, origin, screen, image);
        EXPECT_EQ(i, pixel);
        EXPECT_EQ(ImageToDisplay(span, display, origin, i, image), screen);
    }
}

TEST(Projection, NorthingCountsItsBandTwice) {
    // Factor with a 100-pixel bar for 2 km: 50 pixels per km, 111 km a band.
    const double band = 100.0 / 2.0 * 111.0;
    const LatitudeStretchTable& t = StretchTable();
    const std::pair<double, double> cases[] = {{0.0, 1.0},
                                               {0.5, 1.5},
                                               {-0.5, -1.5},
                                               {1.0, 1.0 + t[1] + t[1] * 0.0},
                                               {1.25, 1.0 + t[1] + 0.25 * t[1]},
                                               {-2.5, -(1.0 + t[1] + t[2] + 0.5 * t[2])}};
    for (const auto& [latitude, bands] : cases)
        EXPECT_NEAR(MercatorNorthing(latitude, 2.0, 100), bands * band, 1e-9) << latitude;
    EXPECT_EQ(MercatorNorthing(85, 2.0, 100), MercatorNorthing(80, 2.0, 100));
    EXPECT_EQ(MercatorNorthing(-90, 2.0, 100), -MercatorNorthing(80, 2.0, 100));
    // A stray latitude past the table reads its last band.
    EXPECT_DOUBLE_EQ(StretchAtLatitude(-60.9, 10.0), 10.0 / t[60]);
    EXPECT_DOUBLE_EQ(StretchAtLatitude(89, 10.0), 10.0 / t[80]);
}

TEST(Geometry, GroundDistance) {
    // A degree of latitude on the mean-radius sphere, and a quarter turn.
    EXPECT_NEAR(GroundDistanceMetres(0, 0, 1, 0), 111195.08, 0.01);
    EXPECT_NEAR(GroundDistanceMetres(0, 0, 0, 90), 10007557.2, 0.1);
    EXPECT_NEAR(GroundDistanceMetres(0, 179.9, 0, -179.9), 22239.0, 0.1);
}

}  // namespace
}  // namespace satwalk::map
