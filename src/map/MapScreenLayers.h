// The map screen's own layers over the base map: the scale bar, the
// reference-point markers, the position marker and the overlay texts (the
// not-calibrated and outside-map messages, the position's coordinates on the
// world map, the placement cursor's image pixel). Each reads the MapView and
// the MapModel it was made with; all paint through the screens' Canvas.
#pragma once

#include <string>

#include "MapLayers.h"
#include "MapModel.h"

namespace satwalk::map {

// Marker frames in the markers bitmap (each as wide as high): the position,
// a reference point, a point of interest.
enum class MarkerFrame { Position = 0, Reference = 1, PointOfInterest = 2 };
// Draws a marker centred on (x, y), magenta keyed.
void DrawMarker(screens::Canvas& canvas, const screens::ScreenContext& ctx, MarkerFrame frame,
                int x, int y);

// Where the scale bar goes: its line from `from` to `to`, and the box its
// label is centred in above the line.
struct ScaleBarGeometry {
    screens::Point from, to;
    screens::Rect label;
};
ScaleBarGeometry LayoutScaleBar(const MapView& view, int unit, screens::Size labelSize);

class ScaleBarLayer final : public MapLayer {
  public:
    void Paint(screens::Canvas& canvas, const MapView& view, const screens::ScreenContext& ctx,
               const gps::GpsState& fix) override;
};

class ReferenceMarkerLayer final : public MapLayer {
  public:
    explicit ReferenceMarkerLayer(const MapModel& model) : model_(model) {}
    void Paint(screens::Canvas& canvas, const MapView& view, const screens::ScreenContext& ctx,
               const gps::GpsState& fix) override;

  private:
    const MapModel& model_;
};

// The position marker while there is a fix the view can place.
class PositionLayer final : public MapLayer {
  public:
    void Paint(screens::Canvas& canvas, const MapView& view, const screens::ScreenContext& ctx,
               const gps::GpsState& fix) override;
};

class MapOverlayLayer final : public MapLayer {
  public:
    explicit MapOverlayLayer(const MapModel& model) : model_(model) {}
    void Paint(screens::Canvas& canvas, const MapView& view, const screens::ScreenContext& ctx,
               const gps::GpsState& fix) override;

  private:
    const MapModel& model_;
};

// A message centred in the view in a filled box (40090, 40091).
void DrawCentredMessage(screens::Canvas& canvas, const screens::Rect& view, int unit,
                        const std::string& text);
// The position's coordinates as two lines in the corner of `area`
// (`rightAligned`: the top-right corner).
void DrawCoordinateLabels(screens::Canvas& canvas, const screens::Rect& area, int unit,
                          double latitude, double longitude, bool rightAligned);

// What the compass and the speedometer show of the map: the position's
// coordinates, and the outside-map message while the position is off the
// loaded map.
void DrawMapOverlayOnInstrument(screens::Canvas& canvas, const screens::ScreenContext& ctx,
                                const MapModel& model);

}  // namespace satwalk::map
