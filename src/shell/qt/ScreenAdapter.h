// The instrument screens in the main window: the screens' context kept
// across paints, its layout redone when the screen area is made or resized,
// the window's state copied in before each paint, and the bitmaps of the
// pixel set loaded once at window creation.
#pragma once

#include "MainWindow.h"
#include "QtCanvas.h"
#include "Screens.h"

namespace satwalk::app {

class ScreenAdapter final : public ScreenPainter {
  public:
    // Loads the bitmap set that the density's text height selects. False,
    // with `failed` set to the first bitmap that could not be loaded.
    bool LoadBitmaps(int dpi, screens::BitmapId* failed);

    void Layout(const shell::ScreenView& view) override;
    void Paint(QImage& image, const shell::ScreenView& view) override;
    int TabCommandAt(int x, int y) const override;
    int AlarmCellAt(int x, int y) const override;

    const screens::ScreenContext& context() const { return ctx_; }

  private:
    screens::ScreenBitmaps bitmaps_;
    screens::ScreenContext ctx_;
};

}  // namespace satwalk::app
