// The trails on the map screen: the viewed log and the live track, each as
// a polyline in list order with a red mark on every vertex, on the world
// map or on the calibrated map, whichever the screen shows. Drawn under the
// track lock while the track is shown.
#pragma once

#include <cstdint>

#include "MapLayers.h"
#include "TrackState.h"
#include "TrailPainter.h"

namespace satwalk::track {

// The world trails' own pixel space: the world projection of a fixed view
// (longitude 0 and the equator at pixel 0, 1,000 km to 100 pixels). Every
// world view is a per-axis rescale of it, so a world trail never needs
// rebuilding when the world view moves or zooms.
MapXY WorldTrailPoint(double latitude, double longitude);
// Trail pixels to the screen pixels of `view`: world trail pixels in world
// mode, image pixels on a calibrated map. False on a map that is not
// calibrated (nothing can be placed on it).
bool TrailToScreen(const map::MapView& view, TrailTransform& toScreen);
// The projections a sample or a log needs for the map shown in `view`:
// the world's always, the image's on a calibrated map (a copy of the
// calibration, so the reader's thread may use it).
TrackProjections ProjectionsFor(const map::MapView& view);

// Where the trails go on screen and whether to draw them at all.
struct TrailView {
    bool showTrack = false;
    bool mapMode = false;     // a calibrated map is shown: the map trails
    TrailTransform toScreen;  // trail pixels to screen pixels
    screens::Rect clip;       // the map's part of the screen
};

// The trails of `state` drawn into `view`: the viewed trail first, then the
// live one over it. On a map, the viewed map trail is drawn only while the
// viewed world trail holds points, as the world trail decides whether a
// log is shown at all.
class TrailLayerPainter {
  public:
    void Draw(screens::Canvas& canvas, const TrackState& state, const TrailView& view);

    static constexpr TrailStyle kViewedStyle{screens::Pen{screens::Rgb(0, 0, 160), 2},
                                             screens::Rgb(255, 0, 0)};
    static constexpr TrailStyle kLiveStyle{screens::Pen{screens::Rgb(0, 140, 0), 2},
                                           screens::Rgb(255, 0, 0)};

  private:
    TrailPainter viewed_;
    TrailPainter live_;
};

// The layer on the map screen (LayerOrder::Trails).
class TrailLayer final : public map::MapLayer {
  public:
    // `showTrack` is the setting of the View menu's "显示轨迹".
    TrailLayer(const TrackState& state, const std::uint32_t& showTrack)
        : state_(state), showTrack_(showTrack) {}

    void Paint(screens::Canvas& canvas, const map::MapView& view, const screens::ScreenContext& ctx,
               const gps::GpsState& fix) override;

  private:
    const TrackState& state_;
    const std::uint32_t& showTrack_;
    TrailLayerPainter painter_;
};

}  // namespace satwalk::track
