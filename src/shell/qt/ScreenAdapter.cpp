#include "ScreenAdapter.h"

#include <algorithm>

namespace satwalk::app {

namespace {

using screens::BitmapId;
using screens::Canvas;
using screens::Rect;
using screens::ScreenContext;

// Screen 4 until the map subsystem paints it: the world map fitted into the
// screen area, the position as a red dot while there is a fix, the map's
// button strip and the frame.
void PaintWorldStandIn(Canvas& canvas, ScreenContext& ctx, const gps::GpsState& gps) {
    const Rect v = ctx.screen;
    const screens::Bitmap& world = ctx.bitmaps[static_cast<int>(BitmapId::World)];
    if (world.width > 0 && world.height > 0 && v.Width() > 0 && v.Height() > 0) {
        int w = v.Width();
        int h = w * world.height / world.width;
        if (h > v.Height()) {
            h = v.Height();
            w = h * world.width / world.height;
        }
        const int x0 = v.left + (v.Width() - w) / 2;
        const int y0 = v.top + (v.Height() - h) / 2;
        canvas.StretchBlit(world, Rect{0, 0, world.width, world.height},
                           Rect{x0, y0, x0 + w, y0 + h});
        if (ctx.linkRunning && ctx.fixValid) {
            // Longitudes -180..180 and latitudes 80..-80 span the bitmap.
            const double fx = std::clamp(ctx.longitude / 360.0 + 0.5, 0.0, 1.0);
            const double fy = std::clamp(0.5 - ctx.latitude / 160.0, 0.0, 1.0);
            const int x = x0 + static_cast<int>(fx * w);
            const int y = y0 + static_cast<int>(fy * h);
            const int r = std::max(3, ctx.baseTextHeight / 5);
            canvas.Ellipse(Rect{x - r, y - r, x + r + 1, y + r + 1}, screens::Pen{.null = true},
                           screens::Brush{screens::Rgb(255, 0, 0)});
        }
    }
    screens::DrawScreenFrame(canvas, ctx, gps);
}

}  // namespace

bool ScreenAdapter::LoadBitmaps(int dpi, screens::BitmapId* failed) {
    const bool hi = screens::BaseTextHeightForDpi(dpi) != 15;
    return bitmaps_.Load(hi, QStringLiteral(SATWALK_BITMAP_DIR), failed);
}

void ScreenAdapter::Layout(const shell::ScreenView& view) {
    screens::PrepareScreenContext(ctx_, std::max(1, view.right - view.left),
                                  std::max(1, view.bottom - view.top), view.dpi, bitmaps_);
    // The map view fills the screen area; its buttons stand inside its
    // right edge.
    const int b = ctx_.baseTextHeight;
    const screens::Bitmap& overlay = ctx_.bitmaps[static_cast<int>(BitmapId::MapOverlay)];
    ctx_.mapView.view = ctx_.screen;
    ctx_.mapView.m = overlay.width - b / 3 + 1 + b / 10;
    ctx_.mapView.n = 0;
    if (!ctx_.paintMapScreen)
        ctx_.paintMapScreen = PaintWorldStandIn;
}

void ScreenAdapter::Paint(QImage& image, const shell::ScreenView& view) {
    if (ctx_.frame.Width() != view.right - view.left ||
        ctx_.frame.Height() != view.bottom - view.top || ctx_.dpi != view.dpi) {
        Layout(view);
    }
    shell::SyncScreenContext(view, ctx_);
    static const gps::GpsState kNoFix{};
    screens::RenderCurrentScreen(image, ctx_, view.gps != nullptr ? *view.gps : kNoFix, bitmaps_);
}

int ScreenAdapter::TabCommandAt(int x, int y) const {
    return screens::HitTestTab(ctx_, x, y);
}

int ScreenAdapter::AlarmCellAt(int x, int y) const {
    return screens::HitTestAlarmCell(ctx_, x, y);
}

}  // namespace satwalk::app
