// The map screen as an ordered list of layers, painted bottom first through
// the screens' Canvas with one MapView: the world map or the loaded image,
// then reference markers, POIs, trails, the position, and the overlay. A
// feature adds its layer at its place in the order; the screen frame is
// painted over them all.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "GpsState.h"
#include "MapView.h"
#include "Screens.h"

namespace satwalk::map {

// The place of a layer in the order; layers of the same place paint in the
// order they were added.
enum class LayerOrder {
    BaseMap,  // the world map or the image, then the scale bar
    ReferenceMarkers,
    PointsOfInterest,
    Trails,  // over the POIs, so a route stays readable through a crowd of icons
    Position,
    Overlay,
};

class MapLayer {
  public:
    virtual ~MapLayer() = default;
    virtual void Paint(screens::Canvas& canvas, const MapView& view,
                       const screens::ScreenContext& ctx, const gps::GpsState& fix) = 0;
};

class MapLayers {
  public:
    void Add(LayerOrder order, std::unique_ptr<MapLayer> layer);
    void Paint(screens::Canvas& canvas, const MapView& view, const screens::ScreenContext& ctx,
               const gps::GpsState& fix) const;
    std::size_t size() const { return layers_.size(); }

  private:
    struct Entry {
        LayerOrder order;
        std::unique_ptr<MapLayer> layer;
    };
    std::vector<Entry> layers_;
};

// The built-in world map (world mode only). On a canvas that keeps
// pictures the land is painted once per scale and copied as the view pans.
class WorldMapLayer final : public MapLayer {
  public:
    void Paint(screens::Canvas& canvas, const MapView& view, const screens::ScreenContext& ctx,
               const gps::GpsState& fix) override;

  private:
    // The view's longitude as panned, not brought back into ±180°, so that
    // crossing the date line keeps to the same picture.
    double longitude_ = 0.0;
};

// The position as a red dot while there is a fix.
class WorldPositionLayer final : public MapLayer {
  public:
    void Paint(screens::Canvas& canvas, const MapView& view, const screens::ScreenContext& ctx,
               const gps::GpsState& fix) override;
};

// The view of the map screen as the screens' layout and display state have
// it: the screen rectangle, and the whole world across its width.
MapView WorldMapView(const screens::ScreenContext& ctx);
// The whole world across the view's width, the equator at its middle.
void FitWorld(MapView& view);
// The scale bar's length in the pixel set of `baseTextHeight`.
int ScaleBarPixels(int baseTextHeight);

// Places the map's button strip inside the view's right edge (the frame
// paints it over the map screen).
void LayoutMapOverlay(screens::ScreenContext& ctx);

// The map screen: its layers, then the frame. Installed as the screens'
// map painter.
class MapScreen {
  public:
    MapLayers& layers() { return layers_; }
    // Builds the view of each paint; without one the whole world fits the
    // screen.
    std::function<MapView(const screens::ScreenContext&)> viewSource;
    void Paint(screens::Canvas& canvas, screens::ScreenContext& ctx, const gps::GpsState& fix);

  private:
    MapLayers layers_;
};

// A map screen with the world map and the position dot, as the program
// starts.
std::unique_ptr<MapScreen> MakeWorldMapScreen();

// Where the world map's outlines are read from on first use: the program's
// data folder, which an installed program finds beside itself. Before any
// drawing; the source tree's copy otherwise.
void SetWorldLandFile(std::string path);

}  // namespace satwalk::map
