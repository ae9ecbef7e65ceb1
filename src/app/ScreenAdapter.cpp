#include "ScreenAdapter.h"

#include <algorithm>

namespace satwalk::app {

ScreenAdapter::ScreenAdapter() : mapScreen_(map::MakeWorldMapScreen()) {}

bool ScreenAdapter::LoadBitmaps(int dpi, screens::BitmapId* failed) {
    const bool hi = common::BaseTextHeightForDpi(dpi) != 15;
    return bitmaps_.Load(hi, QStringLiteral(SATWALK_BITMAP_DIR), failed);
}

void ScreenAdapter::Layout(QSize screenArea, int dpi) {
    screens::PrepareScreenContext(ctx_, std::max(1, screenArea.width()),
                                  std::max(1, screenArea.height()), dpi, bitmaps_);
    map::LayoutMapOverlay(ctx_);
    if (!ctx_.paintMapScreen) {
        ctx_.paintMapScreen = [this](screens::Canvas& canvas, screens::ScreenContext& ctx,
                                     const gps::GpsState& fix) {
            mapScreen_->Paint(canvas, ctx, fix);
        };
    }
}

void ScreenAdapter::Paint(QImage& image, const screens::DisplayState& display,
                          const gps::GpsState& fix) {
    const QSize size = screens::LogicalImageSize(image);
    if (ctx_.frame.Width() != size.width() || ctx_.frame.Height() != size.height())
        Layout(size, ctx_.dpi);
    ctx_.display = display;
    screens::RenderCurrentScreen(image, ctx_, fix, bitmaps_);
}

int ScreenAdapter::TabAt(int x, int y) const {
    return screens::HitTestTab(ctx_, x, y);
}

int ScreenAdapter::AlarmCellAt(int x, int y) const {
    return screens::HitTestAlarmCell(ctx_, x, y);
}

}  // namespace satwalk::app
