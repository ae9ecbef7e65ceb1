// The map feature's platform on Qt: its two timers, the map image (loaded
// through MapImage, or from its tile pyramid through PyramidJob when too
// large for that, and painted by MapImageLayer), the program's file browser
// and reference-point dialog, and the hold menu.
#pragma once

#include <QTimer>

#include <functional>
#include <memory>
#include <string>

#include "MapFeature.h"
#include "MapImage.h"
#include "MapLayers.h"
#include "PyramidJob.h"
#include "TiledImage.h"

class QWidget;

namespace satwalk::shell {
class Shell;
namespace qt {
class DialogStack;
}
}  // namespace satwalk::shell
namespace satwalk::screens {
struct ScreenContext;
}

namespace satwalk::map::qt {

// The loaded image under the other layers: only the visible part, scaled
// from the nearest halved level (or the tiles in view of a pyramid's level,
// when `tiled` is open), through the Qt canvas's painter.
class MapImageLayer final : public MapLayer {
  public:
    explicit MapImageLayer(const MapImage& image, TiledImage* tiled = nullptr)
        : image_(image), tiled_(tiled) {}
    void Paint(screens::Canvas& canvas, const MapView& view, const screens::ScreenContext& ctx,
               const gps::GpsState& fix) override;

  private:
    const MapImage& image_;
    TiledImage* tiled_;
};

class QtMapPlatform final : public MapPlatform {
  public:
    QtMapPlatform(QWidget& window, shell::qt::DialogStack& dialogs, shell::Shell& shell);

    void StartTimer(MapTimer timer, int periodMs, std::function<void()> expired) override;
    void StopTimer(MapTimer timer) override;
    ImageLoadError LoadImage(const std::string& path, ImageSize& size) override;
    void SetImagePrepared(PreparedHandler prepared) override { prepared_ = std::move(prepared); }
    void DropImage() override {
        pyramids_.Stop();
        image_ = MapImage{};
        tiled_ = TiledImage{};
    }
    bool HasImage() const override { return !image_.IsNull() || !tiled_.IsNull(); }
    std::unique_ptr<MapLayer> MakeImageLayer() override;
    void ChooseFile(int mode, std::function<void(const std::string& path)> done) override;
    void EditReferencePoint(
        int slot, const GeoPoint& point,
        std::function<void(bool ok, const ReferenceDialogFields& fields)> done) override;
    void SetReferenceResiduals(const std::string& text) override { residuals_ = text; }
    bool ShowHoldMenu(int x, int y, std::function<void(int command)> chosen,
                      std::function<void()> closed) override;

    const MapImage& image() const { return image_; }

  private:
    QTimer& TimerOf(MapTimer timer) { return timer == MapTimer::Repeat ? repeat_ : hold_; }

    QWidget& window_;
    shell::qt::DialogStack& dialogs_;
    shell::Shell& shell_;
    MapImage image_;
    TiledImage tiled_;  // open instead of image_ for an image too large for it
    PyramidJob pyramids_;
    PreparedHandler prepared_;
    QTimer repeat_;
    QTimer hold_;
    std::function<void()> repeatExpired_;
    std::function<void()> holdExpired_;
    std::string residuals_;
};

// The map feature on `window`, with the program's dialogs.
std::unique_ptr<MapFeature> MakeMapFeature(shell::Shell& shell, QWidget& window,
                                           screens::ScreenContext& screens, MapScreen& mapScreen,
                                           shell::qt::DialogStack& dialogs);

}  // namespace satwalk::map::qt
