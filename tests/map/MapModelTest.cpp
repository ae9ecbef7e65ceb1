// The map screen's state and layers: pan and zoom in both modes, following,
// the scale bar's label, and what the layers draw on a recording canvas.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>

#include "MapScreenLayers.h"
#include "RecordingCanvas.h"
#include "Strings.h"

namespace satwalk::map {
namespace {

using screens::CanvasCall;
using screens::RecordingCanvas;
using screens::Rect;

constexpr Rect kView{0, 0, 480, 511};

// A map of 1000 × 500 pixels, a degree per 100 columns and rows, its
// reference file written to a temporary folder with `active` points.
class LoadedModel : public ::testing::Test {
  protected:
    void Load(int active) {
        const std::string file = (std::filesystem::temp_directory_path() /
                                  ("satwalk-model-" + std::to_string(::getpid()) + ".rpt"))
                                     .string();
        ReferencePoints r{};
        r[0] = GeoPoint{1, 31, 120, 0, 0, 0, 0};
        r[1] = GeoPoint{active > 1 ? 1 : 0, 26, 130, 0, 0, 1000, 500};
        ASSERT_TRUE(WriteReferenceFile(file, r));
        model.Layout(kView, 30, 100, 0);
        model.ApplyLoadedMap("/maps/plain.png", {1000, 500}, file);
        std::filesystem::remove(file);
    }
    MapModel model;
};

TEST_F(LoadedModel, LoadingFitsCalibratesAndCentres) {
    Load(2);
    const MapView v = model.View();
    EXPECT_TRUE(v.mapMode == 1 && model.referencesRead && v.calibration.IsValid());
    EXPECT_EQ(model.refs.placementCursor.latitude, 28.5);
    // 10 degrees of longitude over 480 pixels, 100 of them, at 28.5°.
    EXPECT_NEAR(v.scaleBarDistance, KilometresPerDegreeLongitude(28.5) * 10.0 / 480 * 100, 1e-9);
}

TEST_F(LoadedModel, PanAndZoomMoveTheImageUnderTheView) {
    Load(2);
    // A direction of 0 zooms in, -1 zooms out.
    const std::tuple<const char*, int, int, PointF, double> steps[] = {
        {"right 48 pixels is 100 image columns", kPanRight, 48, {600, 250}, 480},
        {"down 24 rows", kPanDown, 24, {600, 300}, 480},
        {"zoom in: half a fit more", 0, 0, {600, 300}, 720},
        {"zoom in", 0, 0, {600, 300}, 960},
        {"zoom in doubles from here", 0, 0, {600, 300}, 1920},
        {"zoom in", 0, 0, {600, 300}, 3840},
        {"no further than 4 screen pixels an image pixel", 0, 0, {600, 300}, 3840},
        {"up past the top stops at the edge", kPanUp, 5000, {600, 0}, 3840}};
    for (const auto& [name, direction, step, scroll, width] : steps) {
        SCOPED_TRACE(name);
        if (direction > 0)
            model.Pan(direction, step);
        else
            model.Zoom(direction == 0);
        EXPECT_EQ(model.map.scrollCentre, scroll);
        EXPECT_DOUBLE_EQ(model.map.currentWidth, width);
    }
    for (int i = 0; i < 10; ++i) model.Zoom(false);
    EXPECT_DOUBLE_EQ(model.map.currentWidth, 240) << "one step below the fit at most";
    model.ResetView();
    EXPECT_DOUBLE_EQ(model.map.currentWidth, 480);
}

TEST_F(LoadedModel, FollowingCentresOnThePositionUntilPaused) {
    Load(2);
    model.UpdatePosition(true, true, 30, 122);
    EXPECT_EQ(model.map.scrollCentre, (PointF{200, 100}));
    model.PauseFollowing();
    model.UpdatePosition(true, true, 29, 123);
    EXPECT_EQ(model.map.scrollCentre, (PointF{200, 100}));
    model.ResumeFollowing();
    EXPECT_EQ(model.map.scrollCentre, (PointF{300, 200}));
}

TEST(MapModel, WorldZoomKeepsTheCentreAndPanningWrapsTheLongitude) {
    MapModel model;
    model.Layout(kView, 30, 100, 0);
    EXPECT_EQ(model.View().viewScale, 10000) << "the whole world across 480 pixels";
    const auto centre = [&model] {
        double lat = 0, lon = 0;
        const MapView v = model.View();
        EXPECT_TRUE(ScreenToGeo(v, v.ViewCentre(), lat, lon));
        return std::pair{lat, lon};
    };
    model.UpdatePosition(true, true, 45, 10);
    const auto before = centre();
    EXPECT_NEAR(before.first, 45, 1e-6);
    for (int i = 0; i < 3; ++i) model.Zoom(true);
    EXPECT_EQ(model.View().viewScale, 1000);
    EXPECT_NEAR(centre().first, 45, 1e-6);
    EXPECT_NEAR(centre().second, 10, 1e-6);
    model.PauseFollowing();
    // Eastward round the world: a world is 360 × 114.319 / 1000 × 100 pixels.
    for (int i = 0; i < 100; ++i) {
        model.Pan(kPanRight, 41);
        const double lon = model.worldOrigin.longitude - model.worldOrigin.screenX / 11.4319;
        ASSERT_TRUE(lon >= -180 && lon <= 180) << lon;
    }
    // North stops at the map's top.
    for (int i = 0; i < 1000; ++i) model.Pan(kPanUp, 100);
    EXPECT_NEAR(centre().first, 80, 1e-6);
}

TEST(MapModel, ScaleBarLabels) {
    const std::tuple<double, int, bool, const char*> cases[] = {
        {0.25, 0, true, "250.00 m"},  {0.0000004, 0, true, "1.00 m"}, {10.0, 1, true, "6.21 mile"},
        {1.0, 1, true, "3279.38 ft"}, {0.925, 2, true, "3038.05 ft"}, {12.5, 0, false, "0.00 km"}};
    for (const auto& [km, units, calibrated, label] : cases)
        EXPECT_EQ(ScaleBarLabel(km, units, calibrated), label) << km << " " << units;
}

TEST(MapModel, CoordinateLabels) {
    EXPECT_EQ(FormatMapLatitude(30.2515), "30\u00b015.0900' N");
    EXPECT_EQ(FormatMapLatitude(-5.5), "05\u00b030.0000' S");
    EXPECT_EQ(FormatMapLongitude(120.16), "120\u00b009.6000' E");
    EXPECT_EQ(FormatMapLongitude(-0.25), "000\u00b015.0000' W");
}

// ----- layers on a recording canvas -----

screens::ScreenContext Context(bool linkRunning, double lat, double lon) {
    screens::ScreenContext ctx;
    ctx.baseTextHeight = 30;
    screens::AssignBitmapHandles(ctx);
    ctx.screen = kView;
    ctx.display.linkRunning = linkRunning;
    ctx.display.fixValid = linkRunning;
    ctx.display.latitude = lat;
    ctx.display.longitude = lon;
    return ctx;
}

bool Has(const RecordingCanvas& canvas, const std::string& text) {
    const auto texts = canvas.OfKind(CanvasCall::Kind::Text);
    return std::any_of(texts.begin(), texts.end(),
                       [&text](const CanvasCall& c) { return c.text == text; });
}

TEST_F(LoadedModel, OverlayMessagesFollowCalibrationAndPosition) {
    const std::string notCalibrated = common::LoadString(40090);
    const std::string outside = common::LoadString(40091);
    const std::tuple<const char*, int, bool, double, double, bool, bool, bool> cases[] = {
        {"one point: the image and the message, no position", 1, true, 28, 125, true, false, false},
        {"on the map", 2, true, 28, 125, false, false, true},
        {"off the map", 2, true, 40, 125, false, true, true},
        {"off the map, link stopped", 2, false, 40, 125, false, false, false},
        {"the corner itself is on the map", 2, true, 26, 130, false, false, true}};
    for (const auto& [name, active, running, lat, lon, expectNotCalibrated, expectOutside,
                      expectMarker] : cases) {
        SCOPED_TRACE(name);
        Load(active);
        screens::ScreenContext ctx = Context(running, lat, lon);
        model.UpdatePosition(running, running, lat, lon);
        model.PauseFollowing();
        RecordingCanvas canvas(kView);
        const MapView view = model.View();
        MapOverlayLayer(model).Paint(canvas, view, ctx, {});
        PositionLayer().Paint(canvas, view, ctx, {});
        EXPECT_EQ(Has(canvas, notCalibrated), expectNotCalibrated);
        EXPECT_EQ(Has(canvas, outside), expectOutside);
        const auto markers = canvas.OfKind(CanvasCall::Kind::TransparentBlit);
        ASSERT_EQ(markers.size(), expectMarker ? 1u : 0u);
        if (expectMarker) {
            PointF at;
            ASSERT_TRUE(ProjectToScreen(view, lat, lon, at));
            const screens::Point& dst = markers[0].to;
            EXPECT_EQ((screens::Point{dst.x + 10, dst.y + 10}),
                      (screens::Point{static_cast<int>(at.x), static_cast<int>(at.y)}))
                << "centred on the position";
        }
    }
}

}  // namespace
}  // namespace satwalk::map
