#include "TrailLayer.h"

#include <cmath>
#include <mutex>

namespace satwalk::track {

namespace {

map::MapView TrailSpaceView() {
    map::MapView v;
    v.viewScale = 1000.0;
    v.scaleBarPixels = 100;
    return v;  // origin: longitude 0 at x 0, the equator at y 0
}

map::PointF WorldPixel(const map::MapView& view, double latitude, double longitude) {
    map::GeoPoint p;
    p.latitude = latitude;
    p.longitude = longitude;
    return map::ProjectToView(view.worldOrigin, p, view.viewScale, view.scaleBarPixels);
}

// The per-axis line through two points a and b of the trail space that
// land on sa and sb.
TrailTransform Through(map::PointF a, map::PointF b, map::PointF sa, map::PointF sb) {
    TrailTransform t;
    t.scaleX = (sb.x - sa.x) / (b.x - a.x);
    t.offsetX = sa.x - a.x * t.scaleX;
    t.scaleY = (sb.y - sa.y) / (b.y - a.y);
    t.offsetY = sa.y - a.y * t.scaleY;
    return t;
}

}  // namespace

MapXY WorldTrailPoint(double latitude, double longitude) {
    static const map::MapView space = TrailSpaceView();
    const map::PointF p = WorldPixel(space, latitude, longitude);
    return MapXY{p.x, p.y};
}

bool TrailToScreen(const map::MapView& view, TrailTransform& toScreen) {
    if (view.mapMode != 0) {
        if (!view.calibration.IsValid() || view.imageSize.width <= 0 || view.imageSize.height <= 0)
            return false;
        const map::PointF a{0, 0};
        const map::PointF b{static_cast<double>(view.imageSize.width),
                            static_cast<double>(view.imageSize.height)};
        toScreen = Through(a, b, map::ImageToScreen(view, a), map::ImageToScreen(view, b));
    } else {
        static const map::MapView space = TrailSpaceView();
        // Two places apart in both axes; the world projection is linear in
        // the view's scale, so two fix the whole rescale.
        toScreen = Through(WorldPixel(space, 20, 0), WorldPixel(space, 60, 90),
                           WorldPixel(view, 20, 0), WorldPixel(view, 60, 90));
    }
    return std::isfinite(toScreen.scaleX) && std::isfinite(toScreen.scaleY) &&
           std::isfinite(toScreen.offsetX) && std::isfinite(toScreen.offsetY);
}

TrackProjections ProjectionsFor(const map::MapView& view) {
    TrackProjections p;
    p.world = WorldTrailPoint;
    if (view.mapMode != 0 && view.calibration.IsValid()) {
        p.map = [calibration = view.calibration](double latitude, double longitude) {
            map::GeoPoint point;
            const map::PointF image = map::GeoToImage(calibration, point, latitude, longitude);
            return MapXY{image.x, image.y};
        };
    }
    return p;
}

void TrailLayerPainter::Draw(screens::Canvas& canvas, const TrackState& state,
                             const TrailView& view) {
    if (!view.showTrack)
        return;
    const std::lock_guard lock(state.trackLock);
    const TrackList& viewed = view.mapMode ? state.viewedMapTrail : state.viewedWorldTrail;
    if (!state.viewedWorldTrail.Empty() && !viewed.Empty())
        viewed_.Draw(canvas, viewed, view.toScreen, view.clip, kViewedStyle);
    const TrackList& live = view.mapMode ? state.liveMapTrail : state.liveWorldTrail;
    if (!live.Empty())
        live_.Draw(canvas, live, view.toScreen, view.clip, kLiveStyle);
}

void TrailLayer::Paint(screens::Canvas& canvas, const map::MapView& view,
                       const screens::ScreenContext&, const gps::GpsState&) {
    TrailView v;
    v.showTrack = showTrack_ != 0;
    v.clip = view.viewRect;
    v.mapMode = view.mapMode != 0;
    if (!TrailToScreen(view, v.toScreen))
        return;  // a map without calibration shows no trail
    painter_.Draw(canvas, state_, v);
}

}  // namespace satwalk::track
