// Markers and their labels stay inside the map's part of the canvas: the
// canvas does not clip, and landscape puts the alarm strip right beside it.
#include <gtest/gtest.h>

#include "MapScreenLayers.h"
#include "RecordingCanvas.h"

namespace satwalk::map {
namespace {

TEST(MarkerClip, NothingSpillsPastTheMapArea) {
    const screens::Rect frame{0, 0, 640, 480};
    const screens::Rect map{0, 0, 560, 480};  // the alarm strip to its right
    MapModel model;
    model.Layout(map, 30, 100, 0);
    model.ApplyLoadedMap("/maps/none.png", {1000, 500}, "/nonexistent/Ref Pt_none.rpt");
    screens::ScreenContext ctx;
    ctx.baseTextHeight = 30;
    screens::AssignBitmapHandles(ctx);
    ctx.screen = map;
    // Image columns 500 and 995 land at x 280 and 557 of the 560-wide map;
    // 5000 lands far off the canvas, where drawing shows nothing.
    const struct {
        double imageX;
        bool drawn;
    } cases[] = {{500, true}, {995, false}, {5000, true}};
    for (const auto& c : cases) {
        model.refs.referencePoints = {};
        model.refs.referencePoints[0] = GeoPoint{1, 30, 120, 0, 0, c.imageX, 250};
        screens::RecordingCanvas canvas(frame);
        ReferenceMarkerLayer(model).Paint(canvas, model.View(), ctx, {});
        EXPECT_EQ(canvas.OfKind(screens::CanvasCall::Kind::TransparentBlit).size(),
                  c.drawn ? 1u : 0u)
            << c.imageX;
    }
}

}  // namespace
}  // namespace satwalk::map
