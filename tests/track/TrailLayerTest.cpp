// The trail layer: which trails it draws in which map mode, and where.
#include <gtest/gtest.h>

#include <cmath>

#include "FeatureFixture.h"
#include "RecordingCanvas.h"
#include "TrailLayer.h"

namespace satwalk::track {
namespace {

using screens::CanvasCall;
using test::LakeMap;

map::MapView World(double scale, double originLongitude) {
    map::MapView v;
    v.viewRect = {0, 0, 480, 560};
    v.viewScale = scale;
    v.worldOrigin.longitude = originLongitude;
    v.worldOrigin.screenX = 240;
    v.worldOrigin.screenY = 280;
    return v;
}

// A trail point lands where the map view places its position, in every
// view: the trail's rescale and the view's projection agree.
TEST(TrailLayer, TrailPointsLandWhereTheViewProjects) {
    const map::MapView views[] = {World(40000, 0), World(5, 120.1), LakeMap(1000), LakeMap(4000)};
    const double places[][2] = {{30.25, 120.16}, {30.9, 120.05}, {-33.9, 18.4}};
    for (const map::MapView& view : views) {
        const TrackProjections p = ProjectionsFor(view);
        ASSERT_EQ(static_cast<bool>(p.map), view.mapMode != 0);
        TrailTransform t;
        ASSERT_TRUE(TrailToScreen(view, t));
        for (const auto& place : places) {
            const MapXY trail = (view.mapMode != 0 ? p.map : p.world)(place[0], place[1]);
            map::PointF want;
            ASSERT_TRUE(map::ProjectToScreen(view, place[0], place[1], want));
            EXPECT_NEAR(trail.x * t.scaleX + t.offsetX, want.x, 1e-6 * (1 + std::fabs(want.x)));
            EXPECT_NEAR(trail.y * t.scaleY + t.offsetY, want.y, 1e-6 * (1 + std::fabs(want.y)));
        }
    }
    TrailTransform t;
    EXPECT_FALSE(TrailToScreen(LakeMap(1000, false), t));
}

TEST(TrailLayer, DrawsTheTrailsOfTheModeShown) {
    enum Trail { VW = 1, VM = 2, LW = 4, LM = 8 };  // viewed or live, world or map
    const auto viewed = TrailLayerPainter::kViewedStyle.line.colour;
    const auto live = TrailLayerPainter::kLiveStyle.line.colour;
    const struct {
        const char* name;
        int trails;  // which trails hold points
        bool mapMode, show, calibrated;
        std::vector<screens::Colour> lines;  // polyline colours, in order
    } cases[] = {
        {"world: viewed under live", VW | VM | LW, false, true, true, {viewed, live}},
        {"track hidden", VW | LW, false, false, true, {}},
        {"map: its own trails", VW | VM | LM, true, true, true, {viewed, live}},
        {"map: viewed map trail only with a world trail", VM | LM, true, true, true, {live}},
        {"map without calibration", VW | VM | LM, true, true, false, {}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TrackState state;
        TrackList* trails[] = {&state.viewedWorldTrail, &state.viewedMapTrail,
                               &state.liveWorldTrail, &state.liveMapTrail};  // VW, VM, LW, LM
        for (int i = 0; i < 4; ++i) {
            const auto at = static_cast<float>(300 + 10 * i);
            if (c.trails & (1 << i)) {
                trails[i]->Append(TrackPoint{at, at, {}});
                trails[i]->Append(TrackPoint{at + 50, at + 20, {}});
            }
        }
        std::uint32_t show = c.show ? 1 : 0;
        TrailLayer layer(state, show);
        const map::MapView view = c.mapMode ? LakeMap(1000, c.calibrated) : World(10000, 0);
        screens::RecordingCanvas canvas(view.viewRect);
        layer.Paint(canvas, view, screens::ScreenContext{}, gps::GpsState{});
        std::vector<screens::Colour> lines;
        for (const CanvasCall& call : canvas.OfKind(CanvasCall::Kind::Polyline))
            lines.push_back(call.pen.colour);
        EXPECT_EQ(lines, c.lines);
        // Every vertex drawn is marked in red.
        EXPECT_EQ(canvas.OfKind(CanvasCall::Kind::FillRect).empty(), c.lines.empty());
    }
}

}  // namespace
}  // namespace satwalk::track
