// The trail layer: which trails it draws in which map mode, and where.
#include <gtest/gtest.h>

#include "RecordingCanvas.h"
#include "TrailLayer.h"

namespace satwalk::track {
namespace {

using screens::CanvasCall;

TEST(TrailLayer, WorldPointsLandOnTheWorldView) {
    map::MapView view;
    view.worldOrigin = {10, 20};
    view.worldSize = {360, 160};
    const TrailTransform t = WorldTrailTransform(view);
    struct Case {
        double lat, lon;
        double x, y;
    };
    const Case cases[] = {{80, -180, 10, 20}, {0, 0, 190, 100}, {-80, 180, 370, 180}};
    for (const Case& c : cases) {
        const MapXY w = WorldTrailPoint(c.lat, c.lon);
        EXPECT_NEAR(w.x * t.scaleX + t.offsetX, c.x, 1e-9);
        EXPECT_NEAR(w.y * t.scaleY + t.offsetY, c.y, 1e-9);
    }
}

TEST(TrailLayer, DrawsTheTrailsOfTheModeShown) {
    TrackState state;
    auto fill = [](TrackList& list, float at) {
        list.Append(TrackPoint{at, at, {}});
        list.Append(TrackPoint{at + 50, at + 20, {}});
    };
    enum Trail { ViewedWorld = 1, ViewedMap = 2, LiveWorld = 4, LiveMap = 8 };
    struct Case {
        const char* name;
        int trails;  // which trails hold points
        bool mapMode, show, calibrated;
        std::vector<screens::Colour> lines;  // polyline colours, in order
    };
    const auto viewed = TrailLayerPainter::kViewedStyle.line.colour;
    const auto live = TrailLayerPainter::kLiveStyle.line.colour;
    const Case cases[] = {
        {"world: viewed under live", ViewedWorld | ViewedMap | LiveWorld, false, true, true,
         {viewed, live}},
        {"track hidden", ViewedWorld | LiveWorld, false, false, true, {}},
        {"map: its own trails", ViewedWorld | ViewedMap | LiveMap, true, true, true,
         {viewed, live}},
        {"map: viewed map trail only with a world trail", ViewedMap | LiveMap, true, true, true,
         {live}},
        {"map without calibration", ViewedWorld | ViewedMap | LiveMap, true, true, false, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        state.viewedWorldTrail.Clear();
        state.viewedMapTrail.Clear();
        state.liveWorldTrail.Clear();
        state.liveMapTrail.Clear();
        if (c.trails & ViewedWorld)
            fill(state.viewedWorldTrail, 100);
        if (c.trails & ViewedMap)
            fill(state.viewedMapTrail, 110);
        if (c.trails & LiveWorld)
            fill(state.liveWorldTrail, 120);
        if (c.trails & LiveMap)
            fill(state.liveMapTrail, 130);
        std::uint32_t show = c.show ? 1 : 0;
        TrailLayer layer(state, show);
        layer.mapTransform = [&c](const map::MapView&, TrailTransform& t) {
            t = TrailTransform{};
            return c.calibrated;
        };
        map::MapView view;
        view.viewRect = {0, 0, 480, 560};
        if (c.mapMode) {
            view.imageSize = {1000, 1000};
        } else {
            view.worldOrigin = {0, 0};
            view.worldSize = {static_cast<int>(kWorldTrailWidth), static_cast<int>(kWorldTrailHeight)};
        }
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
