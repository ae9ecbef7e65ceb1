// The world map's data file, its drawing at the widest and closest views, and
// its land kept as a picture that moves with the view.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

#include "MapLayers.h"
#include "RecordingCanvas.h"
#include "WorldMap.h"

namespace satwalk::map {
namespace {

using screens::CanvasCall;
using screens::RecordingCanvas;
using screens::Rect;

const WorldLand& Land() {
    static const WorldLand land = [] {
        WorldLand l;
        EXPECT_TRUE(LoadWorldLand(SATWALK_WORLD_LAND_FILE, l));
        return l;
    }();
    return land;
}

TEST(WorldLandFile, ParsesRingsAndSkipsJunk) {
    const std::tuple<const char*, const char*, std::size_t, std::size_t> cases[] = {
        {"empty", "", 0, 0},
        {"one ring of deltas", "100,200 10,0 0,10 -10,0\n", 1, 4},
        {"too short", "0,0 1,1\n", 0, 0},
        {"garbage line", "north,east\nx\n,,,\n", 0, 0},
        {"malformed cell ends the ring", "0,0 1,0 0,1 2;2 5,5\n", 1, 3},
        {"off the globe ends the ring", "17990,0 5,0 5,0 5,0 5,0\n", 1, 3},
        {"no final newline", "0,0 1,0 0,1", 1, 3}};
    for (const auto& [what, text, rings, points] : cases) {
        const WorldLand land = ParseWorldLand(text);
        EXPECT_EQ(land.rings.size(), rings) << what;
        EXPECT_EQ(land.PointCount(), points) << what;
    }
    const WorldLand one = ParseWorldLand("100,200 10,0 0,10 -10,0");
    EXPECT_EQ(std::pair(one.rings[0].maxLon, one.rings[0].maxLat), std::pair(110, 210));
    WorldLand none;
    EXPECT_FALSE(LoadWorldLand("/nonexistent/world.txt", none));
}

TEST(WorldLandFile, StepsAcrossTheMeridianTakeTheShortWay) {
    const std::tuple<const char*, const char*, std::int32_t, std::int32_t> cases[] = {
        // East of 179 to the meridian, across to -180 and on west, back.
        {"out and back", "17900,6500 100,0 -36000,100 100,0 -100,100 36000,0\n", 17900, 18100},
        {"starts on the far side", "-18000,6500 36000,0 -100,0 100,0 -36000,0\n", 17900, 18000},
        // Once round only: the south polar ring closes along its bottom.
        {"once round", "-18000,-8000 18000,100 18000,-100 -36000,-1000\n", -18000, 18000}};
    for (const auto& [what, text, minLon, maxLon] : cases) {
        const WorldLand land = ParseWorldLand(text);
        ASSERT_EQ(land.rings.size(), 1u) << what;
        EXPECT_EQ(land.rings[0].minLon, minLon) << what;
        EXPECT_EQ(land.rings[0].maxLon, maxLon) << what;
    }
}

// A view of `rect` centred on (lat, lon) with the scale bar of 100 pixels standing for `km`.
WorldView CentredOn(double lat, double lon, double km, Rect rect) {
    WorldView v;
    v.scale = km;
    v.scaleBarPixels = 100;
    v.rect = rect;
    v.origin.longitude = lon;
    v.origin.screenX = (rect.left + rect.right) / 2.0;
    v.origin.screenY = (rect.top + rect.bottom) / 2.0 + MercatorNorthing(lat, km, 100);
    return v;
}

struct Drawn {
    std::size_t polygons = 0;
    bool allInside = true, leftHalf = false, rightHalf = false;
    bool coversView = false;  // one polygon holds all four corners
};

Drawn Draw(const WorldView& v) {
    RecordingCanvas canvas(v.rect);
    DrawWorldMap(canvas, Land(), v);
    Drawn d;
    EXPECT_EQ(canvas.Calls().front().kind, CanvasCall::Kind::FillRect);
    const int midX = (v.rect.left + v.rect.right) / 2;
    for (const CanvasCall& c : canvas.OfKind(CanvasCall::Kind::Polygon)) {
        ++d.polygons;
        int corners = 0;
        for (const screens::Point& p : c.points) {
            d.allInside &= p.x >= v.rect.left - 2 && p.x <= v.rect.right + 2 &&
                           p.y >= v.rect.top - 2 && p.y <= v.rect.bottom + 2;
            corners += (p.x <= v.rect.left - 1 || p.x >= v.rect.right + 1) &&
                       (p.y <= v.rect.top - 1 || p.y >= v.rect.bottom + 1);
            (p.x < midX ? d.leftHalf : d.rightHalf) = true;
        }
        d.coversView |= corners >= 4;
    }
    return d;
}

TEST(WorldMapDrawing, EveryZoomStaysInsideTheView) {
    const Rect view{0, 30, 480, 610};
    const std::tuple<const char*, double, double, double, bool, bool> cases[] = {
        {"whole world", 0, 0, 20000, true, false},
        {"China, close", 30, 110, 1, true, true},
        {"open Pacific, close", 0, -150, 1, false, false},
        {"Mediterranean coast", 43.3, 5.4, 50, true, false},
        {"south of 80, flattened", -85, 0, 100, true, false}};
    for (const auto& [what, lat, lon, km, land, covers] : cases) {
        const Drawn d = Draw(CentredOn(lat, lon, km, view));
        EXPECT_EQ(d.polygons > 0, land) << what;
        EXPECT_TRUE(d.allInside) << what;
        EXPECT_EQ(d.coversView, covers) << what;
    }
}

TEST(WorldMapDrawing, PanningPastTheDateLineShowsTheOtherSide) {
    // The Bering Strait: Russia to the left of 180°, Alaska to the right.
    const Drawn d = Draw(CentredOn(65, 180, 500, Rect{0, 0, 480, 640}));
    EXPECT_TRUE(d.leftHalf && d.rightHalf);
    const Drawn past = Draw(CentredOn(65, 180 + 360, 500, Rect{0, 0, 480, 640}));
    EXPECT_EQ(past.polygons, d.polygons);
}

TEST(WorldMapDrawing, AbsurdViewsNeitherFailNorFlood) {
    const std::pair<double, double> cases[] = {{0.0, 0},   {-5.0, 0}, {1e-300, 0},
                                               {1e300, 0}, {1, 1e15}, {1, NAN}};
    for (const auto& [km, lon] : cases) {
        WorldView v = CentredOn(0, 0, 1, Rect{0, 0, 100, 100});
        v.scale = km;
        v.origin.longitude = lon;
        RecordingCanvas canvas(v.rect);
        DrawWorldMap(canvas, Land(), v);
        EXPECT_LE(canvas.OfKind(CanvasCall::Kind::Polygon).size(), 3000u) << km;
    }
}

// Records the land's outlines as drawn, between pixels; keeping pictures, it
// asks for the land once, in the picture's own coordinates.
class LandRecorder final : public RecordingCanvas {
  public:
    LandRecorder(Rect bounds, bool keeps) : RecordingCanvas(bounds), keeps_(keeps) {}
    void PolygonF(std::span<const screens::PointF> points, screens::Pen, screens::Brush) override {
        outlines.emplace_back(points.begin(), points.end());
    }
    bool DrawKeptPicture(std::uint64_t k, Rect view, screens::PointF s,
                         const PicturePainter& paint) override {
        if (!keeps_)
            return false;
        key = k;
        shift = s;
        const int dx = static_cast<int>(std::lround(s.x)), dy = static_cast<int>(std::lround(s.y));
        const Rect area{view.left - dx, view.top - dy, view.right - dx, view.bottom - dy};
        picture = std::make_unique<LandRecorder>(area, false);
        paint(*picture, s, area);
        return true;
    }
    std::vector<std::vector<screens::PointF>> outlines;
    std::uint64_t key = 0;
    screens::PointF shift;
    std::unique_ptr<LandRecorder> picture;

  private:
    bool keeps_;
};

// The kept land, shifted, lies where the land is drawn directly; a pan, also
// across the date line where the view's longitude jumps by 360°, keeps the
// key and moves the picture by the pan alone; another scale is another key.
TEST(WorldMapLayer, KeptLandLiesWhereItIsDrawnAndMovesWithThePan) {
    const Rect rect{0, 0, 960, 488};
    // Latitude, longitude, scale, pan in pixels.
    const std::tuple<const char*, double, double, double, int> cases[] = {
        {"Hangzhou, 5000 km", 30, 120, 5000, 40},
        {"Bering Strait, across 180°", 65, 179.9, 500, 60},
        {"close", 30, 120, 1, -25}};
    screens::ScreenContext ctx;
    const gps::GpsState fix;
    for (const auto& [what, lat, lon, km, pan] : cases) {
        MapView view;
        view.viewRect = rect;
        view.viewScale = km;
        // On whole pixels, so that the picture's area is the view's exactly.
        const double pxPerDegree = 100 * 114.319 / km;
        view.worldOrigin =
            CentredOn(lat, std::round(lon * pxPerDegree) / pxPerDegree, km, rect).origin;
        view.worldOrigin.screenY = std::round(view.worldOrigin.screenY);
        WorldMapLayer layer;
        LandRecorder direct(rect, false);
        layer.Paint(direct, view, ctx, fix);
        LandRecorder kept(rect, true);
        layer.Paint(kept, view, ctx, fix);
        // The picture's area is the view's, so it clips the same outlines.
        const auto& drawn = direct.outlines;
        const auto& pictured = kept.picture->outlines;
        ASSERT_EQ(pictured.size(), drawn.size()) << what;
        ASSERT_FALSE(drawn.empty()) << what;
        double worst = 0;
        for (std::size_t i = 0; i < drawn.size(); ++i) {
            ASSERT_EQ(pictured[i].size(), drawn[i].size()) << what;
            for (std::size_t j = 0; j < drawn[i].size(); ++j)
                worst = std::max({worst, std::fabs(pictured[i][j].x + kept.shift.x - drawn[i][j].x),
                                  std::fabs(pictured[i][j].y + kept.shift.y - drawn[i][j].y)});
        }
        EXPECT_LT(worst, 1e-6) << what;

        MapView panned = view;
        double west = view.worldOrigin.longitude + pan / pxPerDegree;
        if (west > 180.0)
            west -= 360.0;  // as the model keeps it
        panned.worldOrigin.longitude = west;
        LandRecorder after(rect, true);
        layer.Paint(after, panned, ctx, fix);
        EXPECT_EQ(after.key, kept.key) << what;
        EXPECT_NEAR(after.shift.x, kept.shift.x - pan, 1e-6) << what;
        EXPECT_EQ(after.shift.y, kept.shift.y) << what;

        panned.viewScale = km * 2;
        layer.Paint(after, panned, ctx, fix);
        EXPECT_NE(after.key, kept.key) << what;
    }
}

}  // namespace
}  // namespace satwalk::map
