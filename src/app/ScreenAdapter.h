// The screens in the main window: their layout kept across paints and
// redone when the screen area is made or resized, the bitmaps of the pixel
// set loaded once at window creation, and the map screen's layers.
#pragma once

#include <memory>

#include "MainWindow.h"
#include "MapLayers.h"
#include "QtCanvas.h"
#include "Screens.h"

namespace satwalk::app {

class ScreenAdapter final : public ScreenPainter {
  public:
    ScreenAdapter();

    // Loads the bitmap set that the density's text height selects. False,
    // with `failed` set to the first bitmap that could not be loaded.
    bool LoadBitmaps(int dpi, screens::BitmapId* failed);

    void Layout(QSize screenArea, int dpi) override;
    void Paint(QImage& image, const screens::DisplayState& display,
               const gps::GpsState& fix) override;
    int TabAt(int x, int y) const override;
    int AlarmCellAt(int x, int y) const override;

    map::MapScreen& mapScreen() { return *mapScreen_; }
    // The screens' layout as last laid out (the map's buttons and overlay
    // helper read and set it).
    screens::ScreenContext& context() { return ctx_; }
    screens::ScreenBitmaps& bitmaps() { return bitmaps_; }

  private:
    screens::ScreenBitmaps bitmaps_;
    screens::ScreenContext ctx_;
    std::unique_ptr<map::MapScreen> mapScreen_;
};

}  // namespace satwalk::app
