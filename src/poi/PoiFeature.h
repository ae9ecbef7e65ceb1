// The POI feature: importing a CSV file as one group (through the file
// browser), deleting them all, the icon strip loaded on the first import,
// the POI layer of the map screen and the "poi" member of the state dump.
#pragma once

#include <functional>
#include <memory>

#include "Features.h"
#include "FileChooser.h"
#include "MapLayers.h"
#include "PoiPainter.h"
#include "PoiStore.h"

namespace satwalk::shell {
class Shell;
}
namespace satwalk::map {
class MapFeature;
}

namespace satwalk::poi {

class PoiPlatform {
  public:
    // Loads the 496 × 16 icon strip into the screens' bitmaps; false when
    // it cannot be loaded.
    virtual bool LoadIcons(screens::Bitmap& icons) = 0;

    virtual ~PoiPlatform() = default;
};

class PoiFeature final : public shell::Feature {
  public:
    PoiFeature(shell::Shell& shell, browser::FileChooser& chooser,
               std::unique_ptr<PoiPlatform> platform)
        : shell_(shell), chooser_(chooser), platform_(std::move(platform)) {}

    void Register(shell::FeatureRegistry& registry) override;

    // Whether a calibrated map is shown: an import then goes to it rather
    // than to the world map. Empty: never.
    std::function<bool()> calibratedMapShown;

    const PoiStore& store() const { return store_; }
    // The store's index for drawing, built again where the store changes
    // (an import, "全部删除"), never in a paint.
    const PoiIndex& index() const { return index_; }
    // Null until the strip has been loaded.
    const screens::Bitmap* icons() const { return iconsLoaded_ ? &icons_ : nullptr; }

  private:
    void Import();
    void WriteState(common::JsonMembers& members) const;

    shell::Shell& shell_;
    browser::FileChooser& chooser_;
    std::unique_ptr<PoiPlatform> platform_;
    PoiStore store_;
    PoiIndex index_;
    screens::Bitmap icons_;
    bool iconsLoaded_ = false;
};

// The view's own projection of a POI, as the layer paints it; `projector`
// must outlive what this returns.
PoiProjection ProjectionOf(const map::ScreenProjector& projector);

// The screen box of a degree box in the view, for drawing through the
// index: the world map projects longitude and latitude each on its own axis
// and in order, so a box's corners bound its points (except across the
// meridian opposite the view's centre). Empty for an image map, whose
// points are projected one by one.
PoiBoxProjection BoxProjectionOf(const map::MapView& view, const map::ScreenProjector& projector);

// The layer on the map screen (LayerOrder::PointsOfInterest).
class PoiLayer final : public map::MapLayer {
  public:
    // `showPoi` is the setting of the View menu's "显示 POI".
    PoiLayer(const PoiFeature& feature, const std::uint32_t& showPoi)
        : feature_(feature), showPoi_(showPoi) {}

    void Paint(screens::Canvas& canvas, const map::MapView& view, const screens::ScreenContext& ctx,
               const gps::GpsState& fix) override;

  private:
    const PoiFeature& feature_;
    const std::uint32_t& showPoi_;
};

// Sends imports to the map the map feature shows, and adds the POI layer,
// drawn while `showPoi` is set, to `mapScreen`.
void TiePoiToMap(PoiFeature& poi, const map::MapFeature& map, map::MapScreen& mapScreen,
                 const std::uint32_t& showPoi);

}  // namespace satwalk::poi
