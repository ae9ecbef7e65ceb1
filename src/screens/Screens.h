// The instrument screens: the paint dispatch, the frame with its tool strip,
// the shared small instruments and helpers, and the four instrument screens.
// Core code: it draws through Canvas and reads ScreenContext (the fix's
// numbers in its display state) and GpsState (the texts shown as they are).
#pragma once

#include <functional>
#include <string>

#include "Canvas.h"
#include "DisplayState.h"
#include "GpsState.h"
#include "ScreenIds.h"

namespace satwalk::screens {

using common::kImperial;
using common::kMetric;
using common::kNautical;
using common::kScreenCompass;
using common::kScreenGpsInfo;
using common::kScreenMap;
using common::kScreenSkyPlot;
using common::kScreenSpeedometer;

enum class Orientation { Portrait, Landscape };

struct DialLayout {
    int skyRadius = 0, skyX = 0, skyY = 0;
    int compassRadius = 0, compassX = 0, compassY = 0;
    int speedRadius = 0, speedX = 0, speedY = 0;
};

// Where the map screen's view lies and how its button strip (the map
// overlay) is placed: `overlayInset` from the view's right edge, moved down
// by `overlayInset + overlayDrop` below its usual top.
struct MapViewLayout {
    Rect view;
    int overlayInset = 0;
    int overlayDrop = 0;
};

// The screens' layout, kept by the window across paints, and the display
// state they show. The drawing-order toggles are the only values the screens
// write.
struct ScreenContext {
    // The off-screen bitmap: the client area less the menu bar. The tool
    // strip is drawn against it and its orientation decides the layout.
    Rect frame;
    // The part of the frame the screens lay out their content in: the frame
    // less the tool strip (portrait: its height at the bottom; landscape:
    // its width on the left and the alarm strip on the right).
    Rect screen;
    Orientation orientation = Orientation::Portrait;
    int dpi = 192;            // logical pixels per inch
    int baseTextHeight = 30;  // (15 × dpi + 48) / 96
    DisplayState display;
    DialLayout dials;
    MapViewLayout mapView;
    Bitmap bitmaps[kBuiltInBitmapCount]{};  // the program's own set

    // Drawing-order toggles kept across paints.
    int skyPlotToggle = 0;
    int miniSkyToggle = 0;

    // Paints the map screen (the frame included); set by the map.
    std::function<void(Canvas&, ScreenContext&, const gps::GpsState&)> paintMapScreen;
    // Drawn over the compass and the speedometer when set; set by the map.
    std::function<void(Canvas&, ScreenContext&)> drawMapOverlay;

    bool HighResolution() const { return baseTextHeight != 15; }
    // The speed readouts and the lit alarm cell are red at this moment.
    bool AlarmFlashRed() const {
        return display.speedAlarmOn && display.speedAlarmSounding && display.alarmFlashPhase;
    }
};

// ---- set-up -------------------------------------------------------------

using common::BaseTextHeightForDpi;
// Sets frame, orientation, screen and dials for a new client area (window
// created, resized or rotated). `canvas` provides text measurement.
void UpdateScreenLayout(Canvas& canvas, ScreenContext& ctx, Rect client);
Rect ContentRect(Rect frame, Orientation orientation, int baseTextHeight);
void LayoutDials(Canvas& canvas, ScreenContext& ctx);
Orientation OrientationOf(Rect screen);
// The smallest frame in which the tool strips of the set are whole: as wide
// as the portrait strip, and in landscape as high as the taller side strip
// below the top margin. The strips are bitmaps of fixed size, so a smaller
// window would cut them.
Size MinimumFrameSize(int baseTextHeight);

// Pixel sizes of every bitmap of the two sets, and its load-failure code.
Size BitmapSize(BitmapId id, bool highResolution);
// Resource file base name of a bitmap in a set, e.g. "toolstrip-portrait-hi".
std::string BitmapFileName(BitmapId id, bool highResolution);
// "0x08200a15" and so on; empty for bitmaps without a code.
std::string BitmapFailureCode(BitmapId id);
std::string InitializationFailedMessage(BitmapId id);
// Fills ctx.bitmaps with handles of the set chosen by baseTextHeight.
void AssignBitmapHandles(ScreenContext& ctx);

// ---- paint --------------------------------------------------------------

// Paints the whole current screen (frame included) into the canvas: the
// numbers from ctx.display.fix, which must be the numbers of `gps`.
void PaintCurrentScreen(Canvas& canvas, ScreenContext& ctx, const gps::GpsState& gps);

void PaintGpsInfoScreen(Canvas& canvas, ScreenContext& ctx, const gps::GpsState& gps);
void PaintSkyPlotScreen(Canvas& canvas, ScreenContext& ctx, const gps::GpsState& gps);
void PaintCompassScreen(Canvas& canvas, ScreenContext& ctx);
void PaintSpeedometerScreen(Canvas& canvas, ScreenContext& ctx);

void DrawScreenFrame(Canvas& canvas, ScreenContext& ctx);
void DrawTabHighlight(Canvas& canvas, const ScreenContext& ctx);
void DrawAlarmCell(Canvas& canvas, const ScreenContext& ctx);
// Where alarm cell k (0..7 for 50..120) lies on the screen, and the cell
// under a tap at (x, y), or -1.
Rect AlarmCellRect(const ScreenContext& ctx, int cell);
int HitTestAlarmCell(const ScreenContext& ctx, int x, int y);
// The cell of a limit: 50..120 in steps of 10 give 0..7, anything else 0.
int AlarmCellIndex(int limit);
inline constexpr Colour kAlarmRed = Rgb(230, 0, 0);

// Font helpers: CreateScreenFont selects the font and returns the one it
// replaced; ReleaseScreenFont selects that one back.
Font CreateScreenFont(Canvas& canvas, int height, int weight);
void ReleaseScreenFont(Canvas& canvas, Font previous);

void DrawCourseArrow(Canvas& canvas, const gps::FixValues& fix, int size, int cx, int cy, int tail);
// The arrow's five points L, N, P, R, T for a course in degrees.
struct ArrowPoints {
    Point left, notch, tip, right, tail;
};
ArrowPoints CourseArrowPoints(double courseDegrees, int size, int cx, int cy, int tail);

void DrawSpeedReadout(Canvas& canvas, const ScreenContext& ctx, Rect box, int fontHeight,
                      bool landscape);
void DrawMiniSkyPlot(Canvas& canvas, ScreenContext& ctx, int radius, int cx, int cy,
                     int fontHeight);
void DrawSignalBars(Canvas& canvas, const ScreenContext& ctx, int x, int baselineY);
void DrawReceiverIcon(Canvas& canvas, const ScreenContext& ctx, int x, int y);
void DrawRecordingIcon(Canvas& canvas, const ScreenContext& ctx, int x, int y);
int StatusIconSize(const ScreenContext& ctx);

// Colour of a signal-to-noise ratio: white for 0 or less (no signal), the
// strongest class for anything above 99.
Colour SnrColour(int snr);

double SpeedInDisplayUnit(const gps::FixValues& fix, int unitSystem);
double AltitudeInDisplayUnit(const gps::FixValues& fix, int unitSystem);

// Tick ring shared by the compass and the speedometer.
struct DialTicks {
    int radius = 0;
    Colour ringColour;
    int majorLength = 0;
    const double* majorAngles = nullptr;
    int majorCount = 0;
    int majorWidth = 1;
    Colour majorColour;
    int minorLength = 0;
    const double* minorAngles = nullptr;
    int minorCount = 0;
    int minorWidth = 1;
    Colour minorColour;
    double redFrom = 720.0;
    // Whether the ring is filled white first; a dial drawn on a white disc
    // of its own skips the fill, which is a large share of its paint time.
    bool clearInside = true;
};
void DrawDialTicks(Canvas& canvas, int cx, int cy, const DialTicks& ticks);
void DrawRadialLine(Canvas& canvas, int cx, int cy, int length, double angleDegrees, Pen pen);
// Speedometer geometry: where the red zone starts on the tick ring (720
// when the alarm is off), and the needle as tip then the two base corners.
double SpeedRedZoneStart(const ScreenContext& ctx);
void SpeedNeedlePoints(double speed, double fullScale, int radius, int cx, int cy, Point out[3]);
void DrawCompassRose(Canvas& canvas, const ScreenContext& ctx);

// ---- text ---------------------------------------------------------------

std::string FormatLatitude(double latitude);
std::string FormatLongitude(double longitude);
std::string FormatAltitudeSpeedLine(double altitude, double speed, int unitSystem);
std::string FormatFixMode(char fixMode);
std::string FormatCourse(double course);
std::string FormatSatellites(int used, int inView);
std::string FormatDateTime(const ScreenContext& ctx, const gps::GpsState& gps);
const char* SpeedUnitName(int unitSystem);

// ---- taps ---------------------------------------------------------------

// The tab (0..5 in strip order: GPS information, world map, loaded map,
// compass, speedometer, sky plot) under a tap at (x, y), or -1.
int HitTestTab(const ScreenContext& ctx, int x, int y);
// The rectangle of tab k (0..5, tool-strip order) on the screen.
Rect TabRect(const ScreenContext& ctx, int tab);

}  // namespace satwalk::screens
