// Screen 3: the analogue speedometer with the alarm range in red.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Arith.h"
#include "ScreenDraw.h"
#include "Strings.h"

namespace satwalk::screens {

namespace {

struct Scale {
    double full;
    const char* labels[5];
    double redFactor;
};
constexpr Scale kMetricScale{200, {"0", "50", "100", "150", "200"}, 1.2};
constexpr Scale kMileScale{160, {"0", "40", "80", "120", "160"}, 1.5};

}  // namespace

// Angle on the tick ring where the red zone starts.
double SpeedRedZoneStart(const ScreenContext& ctx) {
    if (!ctx.display.speedAlarmOn)
        return 720.0;
    const Scale& sc = ctx.display.unitSystem == kMetric ? kMetricScale : kMileScale;
    return 240.0 + sc.redFactor * ctx.display.speedAlarmLimit;
}

// Needle triangle: tip, then the two base corners.
void SpeedNeedlePoints(double speed, double fullScale, int R, int cx, int cy, Point out[3]) {
    double fraction = speed / fullScale;
    if (!std::isfinite(fraction))
        fraction = 0.0;
    fraction = std::clamp(fraction, -1.0e6, 1.0e6);
    const double theta = (210.0 - 240.0 * fraction + 360.0) * kPi / 180.0;
    const int L = R - 1;
    const double c = std::cos(theta), s = std::sin(theta);
    out[0] = Point{cx + Trunc(L * c), cy - Trunc(L * s)};
    out[1] = Point{cx - Trunc(0.1 * L * s), cy - Trunc(0.1 * L * c)};
    out[2] = Point{cx + Trunc(0.1 * L * s), cy + Trunc(0.1 * L * c)};
}

void PaintSpeedometerScreen(Canvas& canvas, ScreenContext& ctx) {
    const int b = ctx.baseTextHeight;
    const int left = ctx.screen.left, top = ctx.screen.top, right = ctx.screen.right;
    const int R = ctx.dials.speedRadius, cx = ctx.dials.speedX, cy = ctx.dials.speedY;
    const int u = ctx.display.unitSystem;
    const Scale& sc = u == kMetric ? kMetricScale : kMileScale;
    const gps::FixValues& fix = ctx.display.fix;
    const double speed = SpeedInDisplayUnit(fix, u);

    canvas.FillRect(canvas.Bounds(), kWhite);
    if (ctx.drawMapOverlay)
        ctx.drawMapOverlay(canvas, ctx);

    // Scale labels just outside the ring.
    Font old = CreateScreenFont(canvas, (2 * b) / 3, 400);
    int labelsBottom = cy;
    for (int k = 0; k < 5; ++k) {
        const Size s = canvas.MeasureText(sc.labels[k]);
        const double d = R + std::sqrt(s.width * s.width / 4.0 + s.height * s.height / 4.0) + 2;
        const double a = (240.0 + 60.0 * k) * kPi / 180.0;
        const int y = cy - Trunc(d * std::cos(a));
        TextCentredOn(canvas, sc.labels[k], cx + Trunc(d * std::sin(a)), y, kBlack);
        labelsBottom = std::max(labelsBottom, y - s.height / 2 + s.height);
    }
    ReleaseScreenFont(canvas, old);

    double majors[5], minors[21];
    for (int k = 0; k < 5; ++k) majors[k] = 240.0 + 60.0 * k;
    for (int k = 0; k < 21; ++k) minors[k] = 240.0 + 12.0 * k;
    DialTicks ticks;
    ticks.radius = R;
    ticks.ringColour = kBlack;
    ticks.majorAngles = majors;
    ticks.majorCount = 5;
    ticks.majorWidth = 2;
    ticks.majorColour = kBlack;
    ticks.majorLength = (2 * b) / 5;
    ticks.minorAngles = minors;
    ticks.minorCount = 21;
    ticks.minorWidth = 1;
    ticks.minorColour = kBlack;
    ticks.minorLength = b / 5;
    ticks.redFrom = SpeedRedZoneStart(ctx);
    DrawDialTicks(canvas, cx, cy, ticks);

    // Erase the lower 120 degrees of the ring.
    canvas.Rectangle(Rect{cx - Trunc(R * std::cos(kPi / 6) - 1), cy + R / 2 + 1,
                          cx + Trunc(R * std::cos(kPi / 6) + 1), cy + R},
                     Pen{kWhite, 1}, Brush{kWhite});

    Point needle[3];
    SpeedNeedlePoints(speed, sc.full, R, cx, cy, needle);
    canvas.Polygon(needle, kNullPen, Brush{Rgb(0, 144, 233)});
    // The hub covers the needle's base (a tenth of its length each side of
    // the centre), so the needle stays a slim pointer on a dial of any size.
    const int hub = std::max({b / 4, 2, Trunc(0.1 * (R - 1)) + 2});
    canvas.Ellipse(CircleBox(cx, cy, hub), kNullPen, Brush{Rgb(34, 89, 172)});
    canvas.Ellipse(CircleBox(cx, cy, hub / 3), kNullPen, Brush{kWhite});

    char line[160];
    // Altitude and course under the dial's open end; on a small dial the
    // labels of both ends reach lower than the ring, and the line goes
    // under them.
    old = CreateScreenFont(canvas, (4 * b) / 5, 400);
    {
        const Colour grey = Rgb(130, 131, 133);
        std::snprintf(line, sizeof line, u == kMetric ? "%s %0.2f m" : "%s %0.2f ft",
                      common::LoadString(common::kStrAltitude), AltitudeInDisplayUnit(fix, u));
        const Size sa = canvas.MeasureText(line);
        const int yb = std::min(std::max(cy + R, labelsBottom + sa.height), ctx.screen.bottom);
        canvas.DrawText(line, Rect{right - b / 3 - sa.width, yb - sa.height, right - b / 3, yb},
                        kTextRight | kTextBottom, grey);
        const std::string course = FormatCourse(fix.course.value_or(0.0));
        const Size scs = canvas.MeasureText(course);
        canvas.DrawText(course, Rect{left + b / 3, yb - scs.height, left + b / 3 + scs.width, yb},
                        kTextLeft | kTextBottom, grey);
    }
    ReleaseScreenFont(canvas, old);

    // Digital speed and its unit, upper left.
    const int numberHeight = 2 * b;
    old = CreateScreenFont(canvas, numberHeight, 700);
    std::snprintf(line, sizeof line, "%0.2f", speed);
    const int numberTop = top + (4 * b) / 3;
    const Size sn = TextAt(canvas, line, left + b / 2, numberTop,
                           ctx.AlarmFlashRed() ? kAlarmRed : Rgb(22, 118, 201));
    ReleaseScreenFont(canvas, old);
    old = CreateScreenFont(canvas, numberHeight / 2, 700);
    const Size su =
        TextAt(canvas, SpeedUnitName(u), left + b / 2 + b / 10, numberTop + sn.height, kBlack);
    ReleaseScreenFont(canvas, old);

    // Alarm row: label, left triangle, setting, right triangle.
    old = CreateScreenFont(canvas, b - 1, 400);
    {
        const Colour grey = Rgb(100, 101, 103);
        const Colour blue = Rgb(22, 118, 201);
        char setting[64];
        if (ctx.display.speedAlarmOn) {
            std::snprintf(setting, sizeof setting, " %d %s ", ctx.display.speedAlarmLimit,
                          SpeedUnitName(u));
        } else {
            std::snprintf(setting, sizeof setting, " %s ", common::LoadString(common::kStrOff));
        }
        const std::string label = std::string(common::LoadString(common::kStrAlarm)) + " ";
        const int rowTop = numberTop + sn.height + su.height + b / 3;
        int x = left + b / 2;
        const Size sl = TextAt(canvas, label, x, rowTop, grey);
        const int h = sl.height;
        const int yc = rowTop + h / 2;
        x += sl.width;
        const int tw = (2 * h) / 3, th = h / 3;
        const Point leftTri[] = {{x, yc}, {x + tw - 1, yc - th}, {x + tw - 1, yc + th}};
        canvas.Polygon(leftTri, kNullPen, Brush{blue});
        x += tw;
        const Size ss = TextAt(canvas, setting, x, rowTop, grey);
        x += ss.width;
        const Point rightTri[] = {{x, yc - th}, {x, yc + th}, {x + tw - 1, yc}};
        canvas.Polygon(rightTri, kNullPen, Brush{blue});
    }
    ReleaseScreenFont(canvas, old);

    const int s = StatusIconSize(ctx);
    DrawReceiverIcon(canvas, ctx, right - b / 3 - s, top + (4 * b) / 3);
    DrawRecordingIcon(canvas, ctx, right - b / 3 - s, top + (4 * b) / 3 + s + b / 5);

    DrawScreenFrame(canvas, ctx);
}

}  // namespace satwalk::screens
