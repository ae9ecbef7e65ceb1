#include "MapScreenLayers.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Strings.h"

namespace satwalk::map {

using screens::Canvas;
using screens::Point;
using screens::Rect;
using screens::Rgb;

namespace {

constexpr screens::Colour kInk = Rgb(32, 32, 40);
constexpr screens::Colour kBoxFill = Rgb(255, 250, 215);
constexpr screens::Colour kCursor = Rgb(220, 0, 0);

int Trunc(double v) {
    return static_cast<int>(std::clamp(v, -1.0e9, 1.0e9));
}

// Whether drawing `box` would touch pixels of the canvas outside `area`.
// The canvas does not clip to the map: a marker past the map's edge would
// draw over the frame beside it (the alarm strip, the tool strip). Whatever
// falls off the canvas altogether draws nothing and may go ahead.
bool SpillsOver(const Canvas& canvas, const Rect& area, const Rect& box) {
    const Rect b = canvas.Bounds();
    const Rect seen{std::max(box.left, b.left), std::max(box.top, b.top),
                    std::min(box.right, b.right), std::min(box.bottom, b.bottom)};
    if (seen.left >= seen.right || seen.top >= seen.bottom)
        return false;
    return seen.left < area.left || seen.top < area.top || seen.right > area.right ||
           seen.bottom > area.bottom;
}

// A text on a white box of its own size, so it reads on any map; with
// `area`, only when the whole box lies inside it.
void BoxedText(Canvas& canvas, const std::string& text, Point at, bool rightAligned,
               const Rect* area = nullptr) {
    const screens::Size s = canvas.MeasureText(text);
    const int pad = std::max(1, s.height / 8);
    const int left = rightAligned ? at.x - s.width - 2 * pad : at.x;
    const Rect box{left, at.y, left + s.width + 2 * pad, at.y + s.height};
    if (area != nullptr && SpillsOver(canvas, *area, box))
        return;
    canvas.FillRect(box, screens::kWhite);
    canvas.DrawText(text, Rect{box.left + pad, box.top, box.right - pad, box.bottom},
                    screens::kTextLeft | screens::kTextVCenter, kInk);
}

// A marker centred on (x, y) may be drawn: it spills nowhere past `area`.
bool MarkerInside(const Canvas& canvas, const screens::ScreenContext& ctx, const Rect& area, int x,
                  int y) {
    const int s = ctx.bitmaps[screens::BitmapId::Markers.value].height;
    return !SpillsOver(canvas, area, Rect{x - s / 2, y - s / 2, x - s / 2 + s, y - s / 2 + s});
}

}  // namespace

void DrawMarker(Canvas& canvas, const screens::ScreenContext& ctx, MarkerFrame frame, int x,
                int y) {
    const screens::Bitmap& markers = ctx.bitmaps[screens::BitmapId::Markers.value];
    const int s = markers.height;
    if (s <= 0)
        return;
    const int k = static_cast<int>(frame);
    canvas.TransparentBlit(markers, Rect{k * s, 0, (k + 1) * s, s}, Point{x - s / 2, y - s / 2},
                           screens::kMagenta);
}

// ----- scale bar -----

ScaleBarGeometry LayoutScaleBar(const MapView& view, int unit, screens::Size labelSize) {
    const Rect& v = view.viewRect;
    ScaleBarGeometry g;
    const int x = v.left + unit / 3;
    const int y = v.bottom - unit / 3;
    g.from = {x, y};
    g.to = {x + view.scaleBarPixels, y};
    const int mid = x + view.scaleBarPixels / 2;
    const int bottom = y - unit / 6;
    g.label = {mid - labelSize.width / 2 - 1, bottom - labelSize.height,
               mid - labelSize.width / 2 + labelSize.width + 1, bottom};
    return g;
}

void ScaleBarLayer::Paint(Canvas& canvas, const MapView& view, const screens::ScreenContext& ctx,
                          const gps::GpsState&) {
    const int b = ctx.baseTextHeight;
    const screens::Font old = screens::CreateScreenFont(canvas, (2 * b) / 3, 400);
    const std::string label = ScaleBarLabel(view.ScaleBarKilometres(), ctx.display.unitSystem,
                                            view.mapMode == 0 || view.calibration.IsValid());
    // Measured first, then drawn centred above the bar.
    const ScaleBarGeometry g = LayoutScaleBar(view, b, canvas.MeasureText(label));
    const int tick = std::max(3, b / 4);
    const screens::Pen pen{kInk, std::max(1, b / 12), false};
    canvas.Line(g.from, g.to, pen);
    canvas.Line(g.from, Point{g.from.x, g.from.y - tick}, pen);
    canvas.Line(g.to, Point{g.to.x, g.to.y - tick}, pen);
    canvas.DrawText(label, g.label, screens::kTextCenter | screens::kTextBottom, kInk);
    screens::ReleaseScreenFont(canvas, old);
}

// ----- markers -----

void ReferenceMarkerLayer::Paint(Canvas& canvas, const MapView& view,
                                 const screens::ScreenContext& ctx, const gps::GpsState&) {
    if (view.mapMode == 0 || !view.showReferencePoints)
        return;
    const int b = ctx.baseTextHeight;
    const screens::Font old = screens::CreateScreenFont(canvas, b / 2 + 2, 700);
    const ReferencePoints& slots = model_.refs.referencePoints;
    for (int i = 0; i < kReferenceSlotCount; ++i) {
        const GeoPoint& p = slots[static_cast<std::size_t>(i)];
        if (p.valid != 1)
            continue;
        const PointF at = ImageToScreen(view, {p.imageX, p.imageY});
        if (!std::isfinite(at.x) || !std::isfinite(at.y))
            continue;
        const int x = Trunc(at.x), y = Trunc(at.y);
        if (!MarkerInside(canvas, ctx, view.viewRect, x, y))
            continue;
        DrawMarker(canvas, ctx, MarkerFrame::Reference, x, y);
        const int s = ctx.bitmaps[screens::BitmapId::Markers.value].height;
        BoxedText(canvas, std::to_string(i + 1), Point{x + s / 2, y - s / 2 - b / 3}, false,
                  &view.viewRect);
    }
    screens::ReleaseScreenFont(canvas, old);
}

void PositionLayer::Paint(Canvas& canvas, const MapView& view, const screens::ScreenContext& ctx,
                          const gps::GpsState&) {
    const screens::DisplayState& d = ctx.display;
    PointF p;
    if (!d.linkRunning || !d.fixValid || !ProjectToScreen(view, d.latitude, d.longitude, p))
        return;
    if (!MarkerInside(canvas, ctx, view.viewRect, Trunc(p.x), Trunc(p.y)))
        return;
    DrawMarker(canvas, ctx, MarkerFrame::Position, Trunc(p.x), Trunc(p.y));
}

// ----- overlay texts -----

void DrawCentredMessage(Canvas& canvas, const Rect& view, int unit, const std::string& text) {
    const screens::Font old = screens::CreateScreenFont(canvas, (2 * unit) / 3, 700);
    const screens::Size s = canvas.MeasureText(text);
    const int padX = unit / 2, padY = unit / 4;
    const int cx = view.left + view.Width() / 2, cy = view.top + view.Height() / 2;
    const Rect box{cx - s.width / 2 - padX, cy - s.height / 2 - padY,
                   cx - s.width / 2 + s.width + padX, cy - s.height / 2 + s.height + padY};
    canvas.Rectangle(box, screens::Pen{kInk, 1, false}, screens::Brush{kBoxFill, false});
    canvas.DrawText(text, box, screens::kTextCenter | screens::kTextVCenter, kInk);
    screens::ReleaseScreenFont(canvas, old);
}

void DrawCoordinateLabels(Canvas& canvas, const Rect& area, int unit, double latitude,
                          double longitude, bool rightAligned, int fontHeight) {
    const screens::Font old =
        screens::CreateScreenFont(canvas, fontHeight > 0 ? fontHeight : (2 * unit) / 3, 400);
    const int x = rightAligned ? area.right - unit / 3 : area.left + unit / 3;
    const int y = area.top + unit / 3;
    const int line = canvas.MeasureText("0").height;
    BoxedText(canvas, FormatMapLatitude(latitude), Point{x, y}, rightAligned);
    BoxedText(canvas, FormatMapLongitude(longitude), Point{x, y + line}, rightAligned);
    screens::ReleaseScreenFont(canvas, old);
}

void MapOverlayLayer::Paint(Canvas& canvas, const MapView& view, const screens::ScreenContext& ctx,
                            const gps::GpsState&) {
    const int b = ctx.baseTextHeight;
    const screens::DisplayState& d = ctx.display;
    const ReferenceEditing& refs = model_.refs;
    if (view.mapMode != 0 && refs.placingReferencePoint != 0) {
        // The placement cursor stays on its image pixel as the map moves.
        const PointF at =
            ImageToScreen(view, {refs.placementCursor.imageX, refs.placementCursor.imageY});
        if (std::isfinite(at.x) && std::isfinite(at.y)) {
            const int x = Trunc(at.x), y = Trunc(at.y), r = b / 2;
            const screens::Pen pen{kCursor, std::max(1, b / 12), false};
            canvas.Line(Point{x - r, y}, Point{x + r + 1, y}, pen);
            canvas.Line(Point{x, y - r}, Point{x, y + r + 1}, pen);
        }
    }
    if (view.mapMode != 0) {
        if (!view.calibration.IsValid() ||
            (!view.calibration.Georeferenced() && refs.activeReferenceCount < 2)) {
            DrawCentredMessage(canvas, view.viewRect, b,
                               common::LoadString(common::kStrSetTwoReferencePoints));
        } else if (d.linkRunning && model_.map.outsideMap != 0) {
            DrawCentredMessage(canvas, view.viewRect, b,
                               common::LoadString(common::kStrOutsideMap));
        }
    } else if (d.linkRunning && d.fixValid) {
        DrawCoordinateLabels(canvas, view.viewRect, b, d.latitude, d.longitude, false);
    }
    if (view.mapMode != 0 && refs.placingReferencePoint != 0) {
        const screens::Font old = screens::CreateScreenFont(canvas, (2 * b) / 3, 400);
        char x[64], y[64];
        std::snprintf(x, sizeof x, "X : %0.4f", refs.placementCursor.imageX);
        std::snprintf(y, sizeof y, "Y : %0.4f", refs.placementCursor.imageY);
        const int line = canvas.MeasureText("0").height;
        const Rect& v = view.viewRect;
        BoxedText(canvas, x, Point{v.left + b / 3, v.top + b / 3}, false);
        BoxedText(canvas, y, Point{v.left + b / 3, v.top + b / 3 + line}, false);
        screens::ReleaseScreenFont(canvas, old);
    }
}

void DrawMapOverlayOnInstrument(Canvas& canvas, const screens::ScreenContext& ctx,
                                const MapModel& model) {
    const screens::DisplayState& d = ctx.display;
    const int b = ctx.baseTextHeight;
    if (!d.linkRunning || !d.fixValid)
        return;
    // Top right, left of the status icons, small enough to stay clear of
    // the dials.
    Rect area = ctx.screen;
    area.right -= screens::StatusIconSize(ctx) + b / 3;
    DrawCoordinateLabels(canvas, area, b, d.latitude, d.longitude, true, b / 2);
    if (model.map.mapMode != 0 && model.map.outsideMap != 0) {
        const screens::Font old = screens::CreateScreenFont(canvas, b / 2, 400);
        const int line = canvas.MeasureText("0").height;
        BoxedText(canvas, common::LoadString(common::kStrOutsideMap),
                  Point{area.right - b / 3, area.top + b / 3 + 2 * line}, true);
        screens::ReleaseScreenFont(canvas, old);
    }
}

}  // namespace satwalk::map
