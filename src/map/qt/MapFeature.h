// The map feature: screen 4 with the world map or a loaded, calibrated
// image. It owns the map state (MapModel) and the loaded image, adds the map
// screen's layers, and registers the map commands (load, recent maps, set
// reference point 1..5, the placement soft keys), the map's keys and stylus,
// and the `map` member of the state dump. User-interface thread only.
#pragma once

#include <QTimer>

#include <functional>
#include <memory>
#include <string>

#include "Features.h"
#include "MapImage.h"
#include "MapLayers.h"
#include "MapModel.h"

class QWidget;

namespace satwalk::shell {
class Shell;
}
namespace satwalk::screens {
struct ScreenContext;
}

namespace satwalk::map::qt {

// The dialogs the map opens: the file browser and the reference-point
// dialog. Each reports its end through the callback (a dialog may stay open
// while the event loop runs).
class MapDialogs {
  public:
    virtual ~MapDialogs() = default;
    // The file browser in `mode` (browser::kBrowseMaps) titled `title`;
    // `done` gets the chosen path, or "" when cancelled.
    virtual void ChooseFile(int mode, const std::string& title,
                            std::function<void(const std::string& path)> done) = 0;
    // Dialog 113 opened on `fields` for slot 0..4; `done` gets whether it
    // ended with OK and the fields as they were then.
    virtual void EditReferencePoint(
        int slot, const ReferenceDialogFields& fields,
        std::function<void(bool ok, const ReferenceDialogFields&)> done) = 0;
};

class MapFeature final : public shell::Feature {
  public:
    MapFeature(shell::Shell& shell, QWidget& window, screens::ScreenContext& screens,
               MapScreen& mapScreen);
    ~MapFeature() override;

    void Register(shell::FeatureRegistry& registry) override;
    void OnGpsData() override;
    bool OnKeyDown(shell::Key key) override;
    bool OnStylusDown(int x, int y) override;
    void OnStylusMove(int x, int y) override;
    void OnStylusUp(int x, int y) override;

    // The dialogs to open (owned by the caller); the built-in stand-ins
    // until then.
    void SetDialogs(MapDialogs* dialogs);

    // Loads the image at `path` as the current map, with every message of a
    // failure. False when it did not load.
    bool LoadMap(const std::string& path);

    MapModel& model() { return model_; }
    const MapImage& image() const { return image_; }

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
    void OpenRecent(int index);
    void StartPlacement(int slot);
    void EndPlacement(bool restoreCursor);
    void OpenReferenceDialog();
    void ShowHoldMenu(int x, int y);
    void Sync();
    StylusScene Scene(int x, int y) const;
    void WriteState(common::JsonMembers& members) const;

    shell::Shell& shell_;
    QWidget& window_;
    screens::ScreenContext& screens_;
    MapScreen& mapScreen_;
    MapModel model_;
    MapImage image_;
    std::unique_ptr<Sink> sink_;
    std::unique_ptr<MapDialogs> standIn_;
    MapDialogs* dialogs_ = nullptr;
    QTimer repeatTimer_;
    QTimer holdTimer_;
    screens::Point holdAt_;
    bool holdPending_ = false;
    bool swallowUp_ = false;
    bool dialogOpen_ = false;
};

std::unique_ptr<MapFeature> MakeMapFeature(shell::Shell& shell, QWidget& window,
                                           screens::ScreenContext& screens, MapScreen& mapScreen);

}  // namespace satwalk::map::qt
