#include "TrailLayer.h"

#include <mutex>

namespace satwalk::track {

MapXY WorldTrailPoint(double latitude, double longitude) {
    return MapXY{(longitude + 180.0) / 360.0 * kWorldTrailWidth,
                 (80.0 - latitude) / 160.0 * kWorldTrailHeight};
}

TrailTransform WorldTrailTransform(const map::MapView& view) {
    TrailTransform t;
    t.scaleX = view.worldSize.width / kWorldTrailWidth;
    t.offsetX = view.worldOrigin.x;
    t.scaleY = view.worldSize.height / kWorldTrailHeight;
    t.offsetY = view.worldOrigin.y;
    return t;
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
    if (view.imageSize.width > 0 && view.imageSize.height > 0) {
        v.mapMode = true;
        if (!mapTransform || !mapTransform(view, v.toScreen))
            return;  // a map without calibration shows no trail
    } else {
        if (view.worldSize.width <= 0 || view.worldSize.height <= 0)
            return;
        v.toScreen = WorldTrailTransform(view);
    }
    painter_.Draw(canvas, state_, v);
}

}  // namespace satwalk::track
