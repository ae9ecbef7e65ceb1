// The map feature: screen 4 with the world map or a loaded, calibrated
// image. It owns the map state (MapModel), adds the map screen's layers, and
// registers the map commands (world map, loaded map, load, recent maps, the
// show toggles, set reference point 1..5, the placement soft keys) with
// their menu entries, keys 4 and 5 and tabs 1 and 2, the map's keys and
// stylus, and the `map` member of the state dump. What needs a platform
// (timers, the image, the dialogs, the hold menu) goes through MapPlatform.
// User-interface thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "Features.h"
#include "MapLayers.h"
#include "MapModel.h"

namespace satwalk::shell {
class Shell;
}
namespace satwalk::screens {
struct ScreenContext;
}

namespace satwalk::map {

// The map feature's two timers.
enum class MapTimer {
    Repeat,  // a held navigation button
    Hold,    // press-and-hold on the map
};

class MapPlatform {
  public:
    virtual ~MapPlatform() = default;

    // Runs `expired` every `periodMs` until stopped; starting a running
    // timer restarts it with the new period and callback.
    virtual void StartTimer(MapTimer timer, int periodMs, std::function<void()> expired) = 0;
    virtual void StopTimer(MapTimer timer) = 0;

    // Loads the image at `path` as the map's picture (the old one stays on
    // failure) and gives its size.
    virtual ImageLoadError LoadImage(const std::string& path, ImageSize& size) = 0;
    // An image too large to decode whole is prepared in the background:
    // LoadImage answers Pending, and `prepared` later gets its path and how
    // the preparation ended (None: LoadImage of it now succeeds at once).
    virtual void SetImagePrepared(
        std::function<void(const std::string& path, ImageLoadError error)> prepared) {
        (void)prepared;
    }
    virtual void DropImage() = 0;
    virtual bool HasImage() const = 0;
    // The layer that paints the picture under the others.
    virtual std::unique_ptr<MapLayer> MakeImageLayer() = 0;

    // The file browser in `mode` (browser::kBrowseMaps); `done` gets the
    // chosen path, or "" when cancelled.
    virtual void ChooseFile(int mode, std::function<void(const std::string& path)> done) = 0;
    // The reference-point dialog for slot 0..4 on `point`; `done` gets
    // whether it ended with OK and the fields then.
    virtual void EditReferencePoint(
        int slot, const GeoPoint& point,
        std::function<void(bool ok, const ReferenceDialogFields& fields)> done) = 0;
    // The residuals line the next reference-point dialog shows under its
    // fields (ResidualsText); platforms without one ignore it.
    virtual void SetReferenceResiduals(const std::string& text) { (void)text; }
    // The hold menu ("Set Ref Point 1".."5") at screen-area pixel (x, y);
    // `chosen` gets the command of the entry picked, `closed` runs when it
    // goes. False where no menu can open (offscreen: scripts send the
    // command).
    virtual bool ShowHoldMenu(int x, int y, std::function<void(int command)> chosen,
                              std::function<void()> closed) = 0;
};

class MapFeature final : public shell::Feature {
  public:
    MapFeature(shell::Shell& shell, screens::ScreenContext& screens, MapScreen& mapScreen,
               std::unique_ptr<MapPlatform> platform);
    ~MapFeature() override;

    void Register(shell::FeatureRegistry& registry) override;
    void OnGpsData() override;
    bool OnKeyDown(shell::Key key) override;
    bool OnStylusDown(int x, int y) override;
    void OnStylusMove(int x, int y) override;
    void OnStylusUp(int x, int y) override;

    // Loads the image at `path` as the current map, with every message of a
    // failure. False when it did not load.
    bool LoadMap(const std::string& path);
    // "关闭地图": the image goes and the world map shows; the recent list
    // keeps it.
    void CloseMap();

    MapModel& model() { return model_; }
    const MapModel& model() const { return model_; }
    bool mapLoaded() const { return mapLoaded_; }
    MapPlatform& platform() { return *platform_; }

    // Hooks for the track and POI layers: following the position pauses
    // (PauseFollowing) and resumes; `onManualMove` is told of every drag on
    // the map while the link runs and nothing is placed, `onCalibrationChanged`
    // whenever a map loads or its reference points change.
    void PauseFollowing() { model_.PauseFollowing(); }
    void ResumeFollowing() { model_.ResumeFollowing(); }
    std::function<void()> onManualMove;
    std::function<void()> onCalibrationChanged;

  private:
    class Sink;
    void RegisterMenus(shell::FeatureRegistry& registry);
    void ToggleSetting(std::uint32_t& flag);
    void OpenRecent(int index);
    void ShowLoadFailure(const std::string& path, ImageLoadError error);
    void StartPlacement(int slot);
    void EndPlacement(bool restoreCursor);
    void OpenReferenceDialog();
    void ShowHoldMenu(int x, int y);
    void StartRepeat();
    StylusScene Scene(int x, int y) const;
    void WriteState(common::JsonMembers& members) const;

    shell::Shell& shell_;
    screens::ScreenContext& screens_;
    MapScreen& mapScreen_;
    std::unique_ptr<MapPlatform> platform_;
    MapModel model_;
    std::unique_ptr<Sink> sink_;
    bool mapLoaded_ = false;
    screens::Point holdAt_;
    bool holdPending_ = false;
    bool swallowUp_ = false;
    bool dialogOpen_ = false;
};

}  // namespace satwalk::map
