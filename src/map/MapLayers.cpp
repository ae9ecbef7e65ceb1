#include "MapLayers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

#include "MapScreenLayers.h"
#include "WorldMap.h"

namespace satwalk::map {

using screens::Rect;

namespace {
constexpr double kEquatorDegreeKm = 114.319;
}  // namespace

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
    view.scaleBarPixels = ScaleBarPixels(ctx.baseTextHeight);
    FitWorld(view);
    return view;
}

void FitWorld(MapView& view) {
    const Rect v = view.viewRect;
    if (v.Width() <= 0 || v.Height() <= 0)
        return;
    // The whole width of the world across the view, the equator at its middle.
    view.viewScale = 360.0 * kEquatorDegreeKm * view.scaleBarPixels / v.Width();
    view.worldOrigin = GeoPoint{};
    view.worldOrigin.screenX = v.left + v.Width() * 0.5;
    view.worldOrigin.screenY = v.top + v.Height() * 0.5;
}

int ScaleBarPixels(int baseTextHeight) {
    return baseTextHeight * 10 / 3;
}

namespace {
std::string& WorldLandFile() {
    static std::string path = SATWALK_WORLD_LAND_FILE;
    return path;
}
}  // namespace

void SetWorldLandFile(std::string path) {
    WorldLandFile() = std::move(path);
}

const WorldLand& BuiltInWorldLand() {
    static const WorldLand land = [] {
        WorldLand l;
        LoadWorldLand(WorldLandFile(), l);
        return l;
    }();
    return land;
}

void WorldMapLayer::Paint(screens::Canvas& canvas, const MapView& view,
                          const screens::ScreenContext&, const gps::GpsState&) {
    if (view.mapMode != 0)
        return;
    WorldView world;
    world.origin = view.worldOrigin;
    world.scale = view.viewScale;
    world.scaleBarPixels = view.scaleBarPixels;
    world.rect = view.viewRect;
    // Panning only moves the land: in the picture's own coordinates the
    // equator is at y 0 and the meridian of Greenwich at x 0 (or a copy of
    // it, whole turns away as the view went round), and the scale is its key.
    const double pxPerDegree = WorldPixelsPerDegree(world);
    if (std::isfinite(world.origin.longitude) && std::fabs(world.origin.longitude) < 1e6) {
        const double turns = std::round((longitude_ - world.origin.longitude) / 360.0);
        longitude_ = world.origin.longitude + 360.0 * (std::fabs(turns) < 1e3 ? turns : 0.0);
    }
    const screens::PointF shift{world.origin.screenX - longitude_ * pxPerDegree,
                                world.origin.screenY};
    std::uint64_t key = 0;
    std::memcpy(&key, &world.scale, sizeof key);
    key ^= std::uint64_t(static_cast<std::uint32_t>(world.scaleBarPixels)) << 1;
    const bool kept = std::isfinite(pxPerDegree) &&
                      canvas.DrawKeptPicture(
                          key, world.rect, shift,
                          [&](screens::Canvas& picture, screens::PointF used, screens::Rect area) {
                              WorldView w = world;
                              w.origin.screenX -= used.x;
                              w.origin.screenY -= used.y;
                              w.rect = area;
                              DrawWorldMap(picture, BuiltInWorldLand(), w);
                          });
    if (!kept)
        DrawWorldMap(canvas, BuiltInWorldLand(), world);
}

void WorldPositionLayer::Paint(screens::Canvas& canvas, const MapView& view,
                               const screens::ScreenContext& ctx, const gps::GpsState&) {
    const screens::DisplayState& d = ctx.display;
    PointF p;
    if (!d.linkRunning || !d.fixValid || !ProjectToScreen(view, d.latitude, d.longitude, p))
        return;
    const int x = static_cast<int>(p.x), y = static_cast<int>(p.y);
    const int r = std::max(3, ctx.baseTextHeight / 5);
    // The canvas does not clip: a dot that would spill past the map's edge
    // onto the frame beside it is not drawn.
    const Rect& v = view.viewRect;
    const Rect b = canvas.Bounds();
    const Rect seen{std::max(x - r, b.left), std::max(y - r, b.top), std::min(x + r + 1, b.right),
                    std::min(y + r + 1, b.bottom)};
    if (seen.left < seen.right && seen.top < seen.bottom &&
        (seen.left < v.left || seen.top < v.top || seen.right > v.right || seen.bottom > v.bottom))
        return;
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
    layers_.Paint(canvas, viewSource ? viewSource(ctx) : WorldMapView(ctx), ctx, fix);
    screens::DrawScreenFrame(canvas, ctx);
}

std::unique_ptr<MapScreen> MakeWorldMapScreen() {
    auto screen = std::make_unique<MapScreen>();
    screen->layers().Add(LayerOrder::BaseMap, std::make_unique<WorldMapLayer>());
    screen->layers().Add(LayerOrder::Position, std::make_unique<PositionLayer>());
    return screen;
}

}  // namespace satwalk::map
