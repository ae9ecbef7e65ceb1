#include "MapLayers.h"

#include <algorithm>

namespace satwalk::map {

using screens::Rect;

void MapLayers::Add(LayerOrder order, std::unique_ptr<MapLayer> layer) {
    const auto at = std::upper_bound(layers_.begin(), layers_.end(), order,
                                     [](LayerOrder o, const Entry& e) { return o < e.order; });
    layers_.insert(at, Entry{order, std::move(layer)});
}

void MapLayers::Paint(screens::Canvas& canvas, const MapView& view,
                      const screens::ScreenContext& ctx, const gps::GpsState& fix) const {
    for (const Entry& e : layers_) e.layer->Paint(canvas, view, ctx, fix);
}

MapView WorldMapView(const screens::ScreenContext& ctx) {
    MapView view;
    view.viewRect = ctx.screen;
    const screens::Bitmap& world = ctx.bitmaps[screens::BitmapId::World.value];
    const Rect v = ctx.screen;
    if (world.width <= 0 || world.height <= 0 || v.Width() <= 0 || v.Height() <= 0)
        return view;
    int w = v.Width();
    int h = w * world.height / world.width;
    if (h > v.Height()) {
        h = v.Height();
        w = h * world.width / world.height;
    }
    view.worldOrigin = {v.left + (v.Width() - w) / 2, v.top + (v.Height() - h) / 2};
    view.worldSize = {w, h};
    return view;
}

void WorldMapLayer::Paint(screens::Canvas& canvas, const MapView& view,
                          const screens::ScreenContext& ctx, const gps::GpsState&) {
    const screens::Bitmap& world = ctx.bitmaps[screens::BitmapId::World.value];
    if (view.worldSize.width <= 0 || view.worldSize.height <= 0)
        return;
    const screens::Point o = view.worldOrigin;
    canvas.StretchBlit(world, Rect{0, 0, world.width, world.height},
                       Rect{o.x, o.y, o.x + view.worldSize.width, o.y + view.worldSize.height});
}

void WorldPositionLayer::Paint(screens::Canvas& canvas, const MapView& view,
                               const screens::ScreenContext& ctx, const gps::GpsState&) {
    const screens::DisplayState& d = ctx.display;
    if (view.worldSize.width <= 0 || view.worldSize.height <= 0 || !d.linkRunning || !d.fixValid)
        return;
    // Longitudes -180..180 and latitudes 80..-80 span the world map.
    const double fx = std::clamp(d.longitude / 360.0 + 0.5, 0.0, 1.0);
    const double fy = std::clamp(0.5 - d.latitude / 160.0, 0.0, 1.0);
    const int x = view.worldOrigin.x + static_cast<int>(fx * view.worldSize.width);
    const int y = view.worldOrigin.y + static_cast<int>(fy * view.worldSize.height);
    const int r = std::max(3, ctx.baseTextHeight / 5);
    canvas.Ellipse(Rect{x - r, y - r, x + r + 1, y + r + 1}, screens::Pen{.null = true},
                   screens::Brush{screens::Rgb(255, 0, 0)});
}

void LayoutMapOverlay(screens::ScreenContext& ctx) {
    const int b = ctx.baseTextHeight;
    const screens::Bitmap& overlay = ctx.bitmaps[screens::BitmapId::MapOverlay.value];
    ctx.mapView.view = ctx.screen;
    ctx.mapView.overlayInset = overlay.width - b / 3 + 1 + b / 10;
    ctx.mapView.overlayDrop = 0;
}

void MapScreen::Paint(screens::Canvas& canvas, screens::ScreenContext& ctx,
                      const gps::GpsState& fix) {
    layers_.Paint(canvas, WorldMapView(ctx), ctx, fix);
    screens::DrawScreenFrame(canvas, ctx, fix);
}

std::unique_ptr<MapScreen> MakeWorldMapScreen() {
    auto screen = std::make_unique<MapScreen>();
    screen->layers().Add(LayerOrder::BaseMap, std::make_unique<WorldMapLayer>());
    screen->layers().Add(LayerOrder::Position, std::make_unique<WorldPositionLayer>());
    return screen;
}

}  // namespace satwalk::map
