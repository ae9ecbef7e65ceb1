// Paint dispatch, layout, the tool-strip frame and its small instruments,
// and the helpers every screen shares.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <string_view>

#include "Arith.h"
#include "ErrorCodes.h"
#include "Screens.h"
#include "Strings.h"

namespace satwalk::screens {

using gps::FixValues;
using gps::GpsState;

// ---- set-up -------------------------------------------------------------

Orientation OrientationOf(Rect s) {
    return s.Width() <= s.Height() ? Orientation::Portrait : Orientation::Landscape;
}

Rect ContentRect(Rect frame, Orientation orientation, int baseTextHeight) {
    const bool hi = baseTextHeight != 15;
    Rect content = frame;
    if (orientation == Orientation::Portrait) {
        content.bottom -= hi ? 129 : 66;
    } else {
        content.left += hi ? 52 : 28;
        content.right -= baseTextHeight / 5 + (hi ? 42 : 21);
    }
    return content;
}

Size MinimumFrameSize(int baseTextHeight) {
    const bool hi = baseTextHeight != 15;
    const Size portrait = BitmapSize(BitmapId::ToolStripPortrait, hi);
    const Size side = BitmapSize(BitmapId::ToolStripLandscape, hi);
    const Size alarm = BitmapSize(BitmapId::AlarmStrip, hi);
    return Size{portrait.width, std::max(side.height, alarm.height) + baseTextHeight};
}

void UpdateScreenLayout(Canvas& canvas, ScreenContext& ctx, Rect client) {
    ctx.frame = client;
    ctx.orientation = OrientationOf(client);
    ctx.screen = ContentRect(client, ctx.orientation, ctx.baseTextHeight);
    LayoutDials(canvas, ctx);
}

void LayoutDials(Canvas& canvas, ScreenContext& ctx) {
    const int b = ctx.baseTextHeight;
    const int left = ctx.screen.left, top = ctx.screen.top;
    const int right = ctx.screen.right, bottom = ctx.screen.bottom;
    DialLayout& d = ctx.dials;

    d.skyRadius = std::min(bottom - 3 * b - top, right - 2 * b - left) / 2;
    d.skyX = (left + right) / 2;
    d.skyY = (top - b + bottom) / 2;

    const Font old = CreateScreenFont(canvas, (2 * b) / 3, 400);
    const Size s = canvas.MeasureText("200");
    ReleaseScreenFont(canvas, old);
    d.speedRadius = std::min((bottom - top) / 2 - 2 * s.width - (2 * b) / 3,
                             (right - left) / 2 - 2 * s.width - (2 * b) / 3) /
                    2;
    d.speedX = right - b / 3 - d.speedRadius - s.width;
    d.speedY = b / 3 + (top + bottom) / 2 + d.speedRadius + s.height;

    d.compassRadius = std::min(bottom - top + b / 3 - 4 * b, right - left + b / 3 - 4 * b) / 2 - 1;
    d.compassX = (left + right) / 2;
    d.compassY = (b + top + bottom) / 2;
}

namespace {

struct BitmapInfo {
    BitmapId id;
    Size hi, lo;
    const char* name;
    const char* code;
};

constexpr BitmapInfo kBitmaps[] = {
    {BitmapId::StatusIcons, {288, 32}, {153, 17}, "status-icons", common::err::kBitmapStatusIcons},
    {BitmapId::SmallSymbol, {44, 30}, {32, 22}, "symbol-small", common::err::kBitmapSmallSymbol},
    {BitmapId::World, {118, 67}, {91, 52}, "world", common::err::kBitmapWorld},
    {BitmapId::SquareSymbol, {32, 32}, {23, 23}, "symbol-square", common::err::kBitmapSquareSymbol},
    {BitmapId::MapOverlay, {30, 200}, {16, 101}, "map-overlay", common::err::kBitmapToolStrip},
    {BitmapId::ToolStripPortrait,
     {480, 129},
     {240, 66},
     "toolstrip-portrait",
     common::err::kBitmapToolStrip},
    {BitmapId::ToolStripLandscape,
     {52, 332},
     {28, 168},
     "toolstrip-landscape",
     common::err::kBitmapToolStripLandscape},
    {BitmapId::AlarmStrip, {42, 337}, {21, 169}, "alarm-strip", common::err::kBitmapAlarmStrip},
    {BitmapId::Markers, {60, 20}, {33, 11}, "markers", ""},
};

static_assert(std::size(kBitmaps) == kBuiltInBitmapCount);

const BitmapInfo& InfoOf(BitmapId id) {
    return kBitmaps[id.value];
}

}  // namespace

Size BitmapSize(BitmapId id, bool hi) {
    return hi ? InfoOf(id).hi : InfoOf(id).lo;
}

std::string BitmapFileName(BitmapId id, bool hi) {
    return std::string(InfoOf(id).name) + (hi ? "-hi" : "-lo");
}

std::string BitmapFailureCode(BitmapId id) {
    return InfoOf(id).code;
}

std::string InitializationFailedMessage(BitmapId id) {
    return common::FormatString(common::LoadString(common::kStrInitializationFailed),
                                BitmapFailureCode(id));
}

void AssignBitmapHandles(ScreenContext& ctx) {
    for (int i = 0; i < kBuiltInBitmapCount; ++i) {
        const BitmapId id{i};
        const Size s = BitmapSize(id, ctx.HighResolution());
        ctx.bitmaps[i] = Bitmap{id, s.width, s.height};
    }
}

// ---- fonts, units, colours ------------------------------------------------

Font CreateScreenFont(Canvas& canvas, int height, int weight) {
    const Font previous = canvas.SelectedFont();
    canvas.SelectFont(Font{height, weight});
    return previous;
}

void ReleaseScreenFont(Canvas& canvas, Font previous) {
    canvas.SelectFont(previous);
}

double SpeedInDisplayUnit(const FixValues& fix, int unitSystem) {
    return gps::SpeedInUnit(fix.speedKnots.value_or(0.0), unitSystem);
}

double AltitudeInDisplayUnit(const FixValues& fix, int unitSystem) {
    return gps::HeightInUnit(fix.altitude.value_or(0.0), unitSystem);
}

Colour SnrColour(int snr) {
    // Readings above 99 are not in the scale; they are shown as the
    // strongest class rather than as no signal.
    if (snr <= 0)
        return kWhite;
    if (snr <= 10)
        return Rgb(255, 0, 0);
    if (snr <= 20)
        return Rgb(255, 153, 0);
    if (snr <= 30)
        return Rgb(255, 255, 0);
    if (snr <= 40)
        return Rgb(102, 204, 0);
    if (snr <= 50)
        return Rgb(0, 204, 204);
    return Rgb(0, 102, 255);
}

const char* SpeedUnitName(int unitSystem) {
    if (unitSystem == kImperial)
        return "MPH";
    if (unitSystem == kNautical)
        return "kts";
    return "km/h";
}

// ---- status icons -----------------------------------------------------------

int StatusIconSize(const ScreenContext& ctx) {
    return ctx.HighResolution() ? 32 : 17;
}

namespace {

void DrawStatusFrame(Canvas& canvas, const ScreenContext& ctx, int frame, int x, int y) {
    const int s = StatusIconSize(ctx);
    canvas.TransparentBlit(ctx.bitmaps[BitmapId::StatusIcons.value],
                           Rect{frame * s, 0, frame * s + s, s}, Point{x, y}, kMagenta);
}

}  // namespace

void DrawReceiverIcon(Canvas& canvas, const ScreenContext& ctx, int x, int y) {
    if (!ctx.display.linkRunning) {
        DrawStatusFrame(canvas, ctx, 1, x, y);
    } else if (ctx.display.fixValid || ctx.display.blinkPhase) {
        DrawStatusFrame(canvas, ctx, 0, x, y);
    }
}

void DrawRecordingIcon(Canvas& canvas, const ScreenContext& ctx, int x, int y) {
    DrawStatusFrame(canvas, ctx, ctx.display.recording || ctx.display.recordingFailed ? 2 : 3, x,
                    y);
    if (!ctx.display.recordingFailed)
        return;
    // A recording that loses what it should keep: the icon crossed out in red.
    const int s = StatusIconSize(ctx);
    const Pen red{Rgb(230, 0, 0), ctx.HighResolution() ? 4 : 2};
    canvas.Line(Point{x + 2, y + 2}, Point{x + s - 3, y + s - 3}, red);
    canvas.Line(Point{x + s - 3, y + 2}, Point{x + 2, y + s - 3}, red);
}

// ---- course arrow -------------------------------------------------------------

ArrowPoints CourseArrowPoints(double courseDegrees, int r, int cx, int cy, int t) {
    const double a = SaneDegrees(courseDegrees) * kPi / 180.0;
    const double sa = std::sin(a), ca = std::cos(a);
    const int w = Round((2 * r - (2 * r) / 10) * std::sin(0.1 * kPi));
    ArrowPoints p;
    p.tail = Point{cx - FloorHalf(r * sa), cy + FloorHalf(r * ca)};
    p.tip = Point{p.tail.x + FloorHalf(2 * r * sa), p.tail.y - FloorHalf(2 * r * ca)};
    const Point m{p.tail.x + FloorHalf(t * sa * 0.2), p.tail.y - FloorHalf(t * ca * 0.2)};
    p.left = Point{m.x - FloorHalf(w * ca), m.y - FloorHalf(w * sa)};
    p.right = Point{m.x + FloorHalf(w * ca), m.y + FloorHalf(w * sa)};
    p.notch = Point{p.tail.x + FloorHalf(0.5 * r * sa), p.tail.y - FloorHalf(0.5 * r * ca)};
    return p;
}

namespace {

void FillArrow(Canvas& canvas, const ArrowPoints& p) {
    const Point light[] = {p.left, p.notch, p.tip};
    const Point dark[] = {p.notch, p.tip, p.right};
    canvas.Polygon(light, kNullPen, Brush{Rgb(96, 132, 206)});
    canvas.Polygon(dark, kNullPen, Brush{Rgb(34, 89, 172)});
}

}  // namespace

void DrawCourseArrow(Canvas& canvas, const FixValues& fix, int size, int cx, int cy, int tail) {
    FillArrow(canvas, CourseArrowPoints(fix.course.value_or(0.0), size, cx, cy, tail));
}

// The compass centre arrow has the same shape.
void DrawArrowAt(Canvas& canvas, double courseDegrees, int size, int cx, int cy, int tail) {
    FillArrow(canvas, CourseArrowPoints(courseDegrees, size, cx, cy, tail));
}

// ---- speed readout and mini sky plot ------------------------------------------

namespace {
Rect FlashPlate(const ScreenContext& ctx, Rect r);
void FitFont(Canvas& canvas, int height, int weight, int width,
             std::initializer_list<std::string_view> texts);
}  // namespace

void DrawSpeedReadout(Canvas& canvas, const ScreenContext& ctx, Rect box, int fontHeight,
                      bool landscape) {
    const bool hi = ctx.HighResolution();
    const int weight = (landscape && !hi) ? 400 : 700;
    const Font old = CreateScreenFont(canvas, fontHeight, weight);
    char line[64];
    std::snprintf(line, sizeof line, "%0.1f",
                  SpeedInDisplayUnit(ctx.display.fix, ctx.display.unitSystem));
    const int dx = hi ? 4 : 2, dy = hi ? 3 : 1, dr = hi ? 3 : 1, db = hi ? 6 : 3;
    const int mid = box.top + (box.bottom - box.top) / 2;
    // The readout sits on a tab of fixed size: a face wider than the
    // handheld's (or a speed of four digits) gets a smaller font rather
    // than running over the tab's edges.
    FitFont(canvas, fontHeight, weight, box.right - dr - box.left - dx,
            {line, SpeedUnitName(ctx.display.unitSystem)});
    Colour ink = kBlack;
    if (ctx.AlarmFlashRed()) {
        // On the speedometer's tab, within its border.
        const Rect tab = TabRect(ctx, 4);
        canvas.FillRect(
            FlashPlate(ctx, Rect{std::max(box.left, tab.left), std::max(box.top, tab.top),
                                 std::min(box.right, tab.right), std::min(box.bottom, tab.bottom)}),
            kAlarmRed);
        ink = kWhite;
    }
    canvas.DrawText(line, Rect{box.left + dx, box.top + dy, box.right - dr, mid},
                    kTextCenter | kTextVCenter, ink);
    canvas.DrawText(SpeedUnitName(ctx.display.unitSystem),
                    Rect{box.left + dx, mid, box.right - dr, box.bottom - db},
                    kTextCenter | kTextVCenter, ink);
    ReleaseScreenFont(canvas, old);
}

namespace {

// Satellites in view as a count of table rows that can be visited.
int RowsInView(const FixValues& fix) {
    return std::clamp(fix.satellitesInView.value_or(0), 0, gps::kSatelliteRows);
}

}  // namespace

void DrawMiniSkyPlot(Canvas& canvas, ScreenContext& ctx, int radius, int cx, int cy,
                     int fontHeight) {
    const FixValues& fix = ctx.display.fix;
    const int n = RowsInView(fix);
    if (n >= 1) {
        const Font old = CreateScreenFont(canvas, fontHeight, 400);
        const Size blank = canvas.MeasureText(" ");
        const int dot =
            Round(std::sqrt(blank.width * blank.width / 4.0 + blank.height * blank.height / 4.0));
        for (int k = 0; k < n; ++k) {
            const int i = ctx.miniSkyToggle == 0 ? k : n - 1 - k;
            const auto& sat = fix.satellites[i];
            const double d =
                radius * std::cos(SaneDegrees(sat.elevation.value_or(0.0)) * kPi / 180.0);
            const double az = SaneDegrees(sat.azimuth.value_or(0.0)) * kPi / 180.0;
            const int x = cx + Trunc(std::sin(az) * d);
            const int y = cy - Trunc(std::cos(az) * d);
            const int snr = sat.snr.value_or(0);
            const Rect box{x - dot, y - dot, x + dot, y + dot};
            if (snr <= 0) {
                canvas.Ellipse(box, Pen{kBlack, 1}, Brush{kWhite});
            } else {
                canvas.Ellipse(box, kNullPen, Brush{SnrColour(snr)});
            }
        }
        ReleaseScreenFont(canvas, old);
    }
    ctx.miniSkyToggle ^= 1;
}

// ---- frame --------------------------------------------------------------------

namespace {

// Tool-strip tile of the current screen, or -1.
int TabOfScreen(const ScreenContext& ctx) {
    switch (ctx.display.currentScreen) {
        case kScreenGpsInfo:
            return 0;
        case kScreenMap:
            return ctx.display.mapLoaded ? 2 : 1;
        case kScreenCompass:
            return 3;
        case kScreenSpeedometer:
            return 4;
        case kScreenSkyPlot:
            return 5;
        default:
            return -1;
    }
}

struct PortraitStrip {
    int width, height, tile, srcY, pitch, srcX0;
};
constexpr PortraitStrip kPortraitHi{480, 129, 74, 55, 79, 5};
constexpr PortraitStrip kPortraitLo{240, 66, 38, 27, 40, 1};

struct LandscapeStrip {
    int width, height, tile, pitch, alarmWidth, alarmHeight, cell;
};
constexpr LandscapeStrip kLandscapeHi{52, 332, 51, 56, 42, 337, 42};
constexpr LandscapeStrip kLandscapeLo{28, 168, 27, 28, 21, 169, 21};

int LandscapeStripTop(const ScreenContext& ctx, int stripH) {
    const int b = ctx.baseTextHeight;
    return b + (ctx.frame.bottom - stripH - ctx.frame.top - b) / 2;
}

}  // namespace

int AlarmCellIndex(int limit) {
    if (limit >= 50 && limit <= 120 && limit % 10 == 0)
        return (limit - 50) / 10;
    return 0;
}

Rect TabRect(const ScreenContext& ctx, int tab) {
    const bool hi = ctx.HighResolution();
    const Rect& s = ctx.frame;
    if (ctx.orientation == Orientation::Portrait) {
        const PortraitStrip& p = hi ? kPortraitHi : kPortraitLo;
        const int ox = (s.right - p.width - s.left) / 2;
        const int x = ox + p.srcX0 + tab * p.pitch;
        const int y = s.bottom - p.height + p.srcY;
        return Rect{x, y, x + p.tile, y + p.tile};
    }
    const LandscapeStrip& l = hi ? kLandscapeHi : kLandscapeLo;
    const int y = LandscapeStripTop(ctx, l.height) + tab * l.pitch;
    return Rect{0, y, l.tile, y + l.tile};
}

void DrawTabHighlight(Canvas& canvas, const ScreenContext& ctx) {
    const int tab = TabOfScreen(ctx);
    if (tab < 0)
        return;
    const bool hi = ctx.HighResolution();
    const Rect dst = TabRect(ctx, tab);
    if (ctx.orientation == Orientation::Portrait) {
        const PortraitStrip& p = hi ? kPortraitHi : kPortraitLo;
        const int sx = p.srcX0 + tab * p.pitch;
        canvas.Blit(ctx.bitmaps[BitmapId::ToolStripPortrait.value],
                    Rect{sx, p.srcY, sx + p.tile, p.srcY + p.tile}, Point{dst.left, dst.top});
    } else {
        const LandscapeStrip& l = hi ? kLandscapeHi : kLandscapeLo;
        const int sy = tab * l.pitch;
        canvas.Blit(ctx.bitmaps[BitmapId::ToolStripLandscape.value],
                    Rect{0, sy, l.tile, sy + l.tile}, Point{dst.left, dst.top});
    }
}

Rect AlarmCellRect(const ScreenContext& ctx, int k) {
    const bool hi = ctx.HighResolution();
    const int b = ctx.baseTextHeight;
    const Rect& s = ctx.frame;
    if (ctx.orientation == Orientation::Portrait) {
        const PortraitStrip& p = hi ? kPortraitHi : kPortraitLo;
        const int cw = hi ? 59 : 30, ch = hi ? 46 : 23;
        const int sx = (hi ? 5 : 1) + cw * k;
        const int x = ((s.right - s.left) - p.width) / 2 + sx;
        const int y = s.bottom - p.height;
        // The last cell of the small set would reach a pixel past the strip.
        return Rect{x, y, x + std::min(cw, p.width - sx), y + ch};
    }
    const LandscapeStrip& l = hi ? kLandscapeHi : kLandscapeLo;
    const int x = s.right - b / 5 - l.alarmWidth;
    const int y = b + (s.bottom - l.alarmHeight - s.top - b) / 2 + l.cell * k;
    return Rect{x, y, x + l.alarmWidth, y + l.cell};
}

int HitTestAlarmCell(const ScreenContext& ctx, int x, int y) {
    for (int k = 0; k < 8; ++k) {
        const Rect r = AlarmCellRect(ctx, k);
        if (x >= r.left && x < r.right && y >= r.top && y < r.bottom)
            return k;
    }
    return -1;
}

namespace {

// A red plate inside the rounded border of a cell or tab, in flash phase.
Rect FlashPlate(const ScreenContext& ctx, Rect r) {
    const int inset = ctx.HighResolution() ? 4 : 2;
    return Rect{r.left + inset, r.top + inset, r.right - inset, r.bottom - inset};
}

// Selects the largest font up to `height` in which every text fits `width`.
void FitFont(Canvas& canvas, int height, int weight, int width,
             std::initializer_list<std::string_view> texts) {
    for (int h = height; h > 6; --h) {
        canvas.SelectFont(Font{h, weight});
        bool fits = true;
        for (std::string_view t : texts) fits = fits && canvas.MeasureText(t).width <= width;
        if (fits)
            return;
    }
}

}  // namespace

void DrawAlarmCell(Canvas& canvas, const ScreenContext& ctx) {
    if (!ctx.display.speedAlarmOn)
        return;
    const int k = AlarmCellIndex(ctx.display.speedAlarmLimit);
    const bool hi = ctx.HighResolution();
    const Rect cell = AlarmCellRect(ctx, k);
    if (ctx.orientation == Orientation::Portrait) {
        const int sx = (hi ? 5 : 1) + (hi ? 59 : 30) * k;
        canvas.Blit(ctx.bitmaps[BitmapId::ToolStripPortrait.value],
                    Rect{sx, 0, sx + cell.Width(), cell.Height()}, Point{cell.left, cell.top});
    } else {
        canvas.Blit(ctx.bitmaps[BitmapId::AlarmStrip.value],
                    Rect{0, cell.Height() * k, cell.Width(), cell.Height() * (k + 1)},
                    Point{cell.left, cell.top});
    }
    if (ctx.AlarmFlashRed()) {
        const Rect plate = FlashPlate(ctx, cell);
        canvas.FillRect(plate, kAlarmRed);
        const std::string number = std::to_string(50 + 10 * k);
        const Font old = canvas.SelectedFont();
        FitFont(canvas, (3 * ctx.baseTextHeight) / 4, 700, plate.Width() - 2, {number});
        canvas.DrawText(number, plate, kTextCenter | kTextVCenter, kWhite);
        canvas.SelectFont(old);
    }
}

void DrawScreenFrame(Canvas& canvas, ScreenContext& ctx) {
    const FixValues& fix = ctx.display.fix;
    const bool hi = ctx.HighResolution();
    const int b = ctx.baseTextHeight;
    const Rect& s = ctx.frame;
    if (ctx.orientation == Orientation::Portrait) {
        const PortraitStrip& p = hi ? kPortraitHi : kPortraitLo;
        const int ox = (s.right - p.width - s.left) / 2;
        const int stripTop = s.bottom - p.height;
        canvas.TransparentBlit(ctx.bitmaps[BitmapId::ToolStripPortrait.value],
                               Rect{0, 0, p.width, p.height}, Point{ox, stripTop}, kStripKey);
        DrawTabHighlight(canvas, ctx);
        if (hi) {
            // The readouts sit on their tabs wherever the strip is centred
            // (at the set's own width, ox is 0).
            DrawCourseArrow(canvas, fix, 22, ox + 280, s.bottom - 29, b / 2);
            DrawSpeedReadout(canvas, ctx, Rect{ox + 322, stripTop + 55, ox + 396, s.bottom - 3},
                             b - 3, false);
            DrawMiniSkyPlot(canvas, ctx, 30, ox + 438, stripTop + 91, b / 4);
        } else {
            DrawCourseArrow(canvas, fix, 12, ox + 140, s.bottom - 17, b / 2);
            DrawSpeedReadout(canvas, ctx, Rect{ox + 163, s.bottom - 37, ox + 200, s.bottom - 3},
                             b - 2, false);
            DrawMiniSkyPlot(canvas, ctx, 17, ox + 220, stripTop + 45, b / 3);
        }
    } else {
        const LandscapeStrip& l = hi ? kLandscapeHi : kLandscapeLo;
        const int y0 = LandscapeStripTop(ctx, l.height);
        canvas.TransparentBlit(ctx.bitmaps[BitmapId::ToolStripLandscape.value],
                               Rect{0, 0, l.width, l.height}, Point{0, y0}, kStripKey);
        DrawTabHighlight(canvas, ctx);
        if (hi) {
            DrawCourseArrow(canvas, fix, 15, l.width / 2, y0 + 201, b / 2);
            DrawSpeedReadout(canvas, ctx, Rect{1, y0 + 225, l.width + 1, y0 + 275}, (2 * b) / 3 - 2,
                             true);
            DrawMiniSkyPlot(canvas, ctx, 22, 27, y0 + 305, b / 4);
        } else {
            DrawCourseArrow(canvas, fix, 8, l.width / 2, y0 + 100, b / 2);
            DrawSpeedReadout(canvas, ctx, Rect{1, y0 + 113, l.width + 1, y0 + 139}, (2 * b) / 3 + 1,
                             true);
            DrawMiniSkyPlot(canvas, ctx, 12, 14, y0 + 153, b / 3);
        }
        const int ax = s.right - b / 5 - l.alarmWidth;
        const int ay = b + (s.bottom - l.alarmHeight - s.top - b) / 2;
        canvas.TransparentBlit(ctx.bitmaps[BitmapId::AlarmStrip.value],
                               Rect{0, 0, l.alarmWidth, l.alarmHeight}, Point{ax, ay}, kStripKey);
    }
    DrawAlarmCell(canvas, ctx);
    if (ctx.display.currentScreen == kScreenMap) {
        const Bitmap& overlay = ctx.bitmaps[BitmapId::MapOverlay.value];
        const Rect& v = ctx.mapView.view;
        canvas.TransparentBlit(overlay, Rect{0, 0, overlay.width, overlay.height},
                               Point{v.right - b / 3 - ctx.mapView.overlayInset + 1,
                                     v.top + (4 * b) / 3 + b / 6 + b / 5 +
                                         ctx.mapView.overlayInset + ctx.mapView.overlayDrop},
                               kMagenta);
    }
}

// ---- dispatch and taps ------------------------------------------------------------

void PaintCurrentScreen(Canvas& canvas, ScreenContext& ctx, const GpsState& gps) {
    switch (ctx.display.currentScreen) {
        case kScreenGpsInfo:
            PaintGpsInfoScreen(canvas, ctx, gps);
            break;
        case kScreenSkyPlot:
            PaintSkyPlotScreen(canvas, ctx, gps);
            break;
        case kScreenCompass:
            PaintCompassScreen(canvas, ctx);
            break;
        case kScreenSpeedometer:
            PaintSpeedometerScreen(canvas, ctx);
            break;
        case kScreenMap:
            canvas.FillRect(canvas.Bounds(), kWhite);
            if (ctx.paintMapScreen) {
                ctx.paintMapScreen(canvas, ctx, gps);
            } else {
                DrawScreenFrame(canvas, ctx);
            }
            break;
        default:
            canvas.FillRect(canvas.Bounds(), kWhite);
            break;
    }
}

int HitTestTab(const ScreenContext& ctx, int x, int y) {
    for (int tab = 0; tab < 6; ++tab) {
        const Rect r = TabRect(ctx, tab);
        if (x >= r.left && x < r.right && y >= r.top && y < r.bottom)
            return tab;
    }
    return -1;
}

// ---- shared text formats -------------------------------------------------------

namespace {

std::string FormatAngle(const char* pattern, char hemisphere, double value) {
    // Saturated so that the whole degrees always fit an int.
    const double v = std::min(std::fabs(value), 1.0e6);
    const int whole = static_cast<int>(v);
    const double minutes = (v - whole) * 60.0;
    char out[96];
    std::snprintf(out, sizeof out, pattern, hemisphere, whole, common::kDegreeSign, minutes);
    return out;
}

}  // namespace

std::string FormatLatitude(double latitude) {
    if (!std::isfinite(latitude))
        latitude = 0.0;
    return FormatAngle("%c   %02d%s%07.4f'", latitude >= 0 ? 'N' : 'S', latitude);
}

std::string FormatLongitude(double longitude) {
    if (!std::isfinite(longitude))
        longitude = 0.0;
    return FormatAngle("%c %03d%s%07.4f'", longitude >= 0 ? 'E' : 'W', longitude);
}

std::string FormatAltitudeSpeedLine(double altitude, double speed, int unitSystem) {
    const char* pattern = unitSystem == kMetric     ? "%s %0.2f m   %s %0.2f km/h"
                          : unitSystem == kImperial ? "%s %0.2f ft  %s %0.2f MPH"
                                                    : "%s %0.2f ft  %s %0.2f kts";
    char out[160];
    std::snprintf(out, sizeof out, pattern, common::LoadString(common::kStrAltitude), altitude,
                  common::LoadString(common::kStrSpeed), speed);
    return out;
}

std::string FormatFixMode(char fixMode) {
    if (fixMode == '3')
        return common::LoadString(common::kStrFix3d);
    if (fixMode == '2')
        return common::LoadString(common::kStrFix2d);
    return common::LoadString(common::kStrNoFix);
}

std::string FormatCourse(double course) {
    char out[96];
    std::snprintf(out, sizeof out, "%s %0.2f%s", common::LoadString(common::kStrCourse), course,
                  common::kDegreeSign);
    return out;
}

std::string FormatSatellites(int used, int inView) {
    char out[64];
    std::snprintf(out, sizeof out, "%s %d/%d", common::LoadString(common::kStrSatellites), used,
                  inView);
    return out;
}

std::string FormatDateTime(const ScreenContext& ctx, const GpsState& gps) {
    if (!(ctx.display.linkRunning && ctx.display.fixTimeKnown && gps.fixTimeLocal != 0)) {
        return "- - / - - / - -    - - : - - : - -";
    }
    const gps::CalendarTime t = gps::FileTimeToCalendar(gps.fixTimeLocal);
    char out[64];
    // Short date and time in the Simplified Chinese convention.
    std::snprintf(out, sizeof out, "%d/%d/%d  %d:%02d:%02d", t.year, t.month, t.day, t.hour,
                  t.minute, t.second);
    return out;
}

}  // namespace satwalk::screens
