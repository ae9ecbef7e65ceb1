// Screen 2: the compass rose driven by the course over ground, and the tick
// ring it shares with the speedometer.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Arith.h"
#include "ScreenDraw.h"
#include "Strings.h"

namespace satwalk::screens {

void DrawRadialLine(Canvas& canvas, int cx, int cy, int length, double angleDegrees, Pen pen) {
    const double a = SaneDegrees(angleDegrees) * kPi / 180.0;
    canvas.Line(Point{cx, cy},
                Point{cx + Trunc(length * std::sin(a)), cy - Trunc(length * std::cos(a))}, pen);
}

namespace {

// A spoke from just inside the disc that trims it to its outer end: the disc
// hides where it starts, so only its visible part is rasterised (a spoke
// from the centre costs several times as much on a large dial).
void DrawTrimmedSpoke(Canvas& canvas, int cx, int cy, int radius, int trimRadius,
                      double angleDegrees, Pen pen) {
    const double a = SaneDegrees(angleDegrees) * kPi / 180.0;
    const double dx = radius * std::sin(a), dy = radius * std::cos(a);
    const Point to{cx + Trunc(dx), cy - Trunc(dy)};
    // Inside the trim disc by the pen's width and a pixel of rounding.
    const double from = std::max(trimRadius - pen.width - 2, 0) / static_cast<double>(radius);
    canvas.Line(PointF{cx + (to.x - cx) * from, cy + (to.y - cy) * from}, to, pen);
}

}  // namespace

void DrawDialTicks(Canvas& canvas, int cx, int cy, const DialTicks& t) {
    canvas.Ellipse(CircleBox(cx, cy, t.radius), Pen{t.ringColour, 1},
                   t.clearInside ? Brush{kWhite} : kNullBrush);
    const int minorTrim = t.radius - t.minorLength, majorTrim = t.radius - t.majorLength;
    for (int i = 0; i < t.minorCount; ++i) {
        const Colour c = t.minorAngles[i] >= t.redFrom ? Rgb(255, 0, 0) : t.minorColour;
        DrawTrimmedSpoke(canvas, cx, cy, t.radius, minorTrim, t.minorAngles[i],
                         Pen{c, t.minorWidth});
    }
    // Spokes trimmed by white discs, so the tick length never depends on
    // how inner end points round.
    canvas.Ellipse(CircleBox(cx, cy, minorTrim), Pen{kWhite, 1}, Brush{kWhite});
    for (int i = 0; i < t.majorCount; ++i) {
        const Colour c = t.majorAngles[i] >= t.redFrom ? Rgb(255, 0, 0) : t.majorColour;
        DrawTrimmedSpoke(canvas, cx, cy, t.radius, majorTrim, t.majorAngles[i],
                         Pen{c, t.majorWidth});
    }
    canvas.Ellipse(CircleBox(cx, cy, majorTrim), Pen{kWhite, 1}, Brush{kWhite});
}

void DrawCompassRose(Canvas& canvas, const ScreenContext& ctx) {
    const int b = ctx.baseTextHeight;
    const int R = ctx.dials.compassRadius, cx = ctx.dials.compassX, cy = ctx.dials.compassY;
    const bool northUp = ctx.display.compassOrientation == 1;
    const double course = SaneDegrees(ctx.display.fix.course.value_or(0.0));
    // Reduced to 0..360 so that no angle of the lists reaches the red start.
    double turn = northUp ? 0.0 : std::fmod(course, 360.0);
    if (turn < 0)
        turn += 360.0;

    double majors[8], minors[64];
    for (int k = 0; k < 8; ++k) {
        majors[k] = k * 45 - turn;
        for (int j = 0; j < 8; ++j) minors[k * 8 + j] = majors[k] + 5 * (j + 1);
    }

    // Outlined only: the screen beneath is white.
    canvas.Ellipse(CircleBox(cx, cy, R), Pen{Rgb(0, 51, 153), 1}, kNullBrush);
    DialTicks ticks;
    ticks.radius = R - b / 4;
    ticks.ringColour = Rgb(153, 204, 255);
    ticks.majorAngles = majors;
    ticks.majorCount = 8;
    ticks.majorWidth = 2;
    ticks.majorColour = Rgb(0, 51, 204);
    ticks.majorLength = (2 * b) / 3;
    ticks.minorAngles = minors;
    ticks.minorCount = 64;
    ticks.minorWidth = 1;
    ticks.minorColour = Rgb(153, 204, 255);
    ticks.minorLength = b / 3;
    ticks.redFrom = northUp ? 360.0 : 720.0;
    ticks.clearInside = false;  // drawn straight on the white screen
    DrawDialTicks(canvas, cx, cy, ticks);

    const int inner = ticks.radius - ticks.majorLength;
    DrawRadialLine(canvas, cx, cy, inner, majors[0], Pen{Rgb(255, 0, 0), 3});
    DrawRadialLine(canvas, cx, cy, inner, majors[4], Pen{Rgb(90, 182, 219), 3});

    static constexpr const char* kLetters[8] = {"N", "NE", "E", "SE", "S", "SW", "W", "NW"};
    for (int k = 0; k < 8; ++k) {
        Font font{(2 * b) / 3, 400};
        Colour colour = Rgb(0, 51, 204);
        if (k == 0) {
            font = Font{b - 1, 700};
            colour = Rgb(255, 0, 0);
        } else if (k % 2 == 0) {
            font = Font{b - 1, 400};
            colour = Rgb(0, 51, 204);
        }
        const Font old = CreateScreenFont(canvas, font.height, font.weight);
        const Size s = canvas.MeasureText(kLetters[k]);
        // Clear of the outer circle by b/10 beyond its pen, and never by less
        // than two pixels, so that no letter touches the circle.
        const double d = R + 1 + std::max(b / 10, 2) +
                         std::sqrt(s.width * s.width / 4.0 + s.height * s.height / 4.0);
        const double a = majors[k] * kPi / 180.0;
        const int x = cx + Trunc(d * std::sin(a));
        const int y = cy - Trunc(d * std::cos(a));
        TextCentredOn(canvas, kLetters[k], x, y, colour, 1);
        ReleaseScreenFont(canvas, old);
    }

    // Centre arrow: the direction of travel.
    DrawArrowAt(canvas, northUp ? course : 0.0, std::max(R / 4, 1), cx, cy, b);
}

void PaintCompassScreen(Canvas& canvas, ScreenContext& ctx) {
    const int b = ctx.baseTextHeight;
    const int left = ctx.screen.left, top = ctx.screen.top;
    const int right = ctx.screen.right, bottom = ctx.screen.bottom;
    const int u = ctx.display.unitSystem;
    const gps::FixValues& fix = ctx.display.fix;

    canvas.FillRect(canvas.Bounds(), kWhite);
    DrawCompassRose(canvas, ctx);

    char line[160];
    Font old = CreateScreenFont(canvas, (4 * b) / 5, 400);
    {
        const Colour grey = Rgb(130, 131, 133);
        std::snprintf(line, sizeof line, "%s %0.2f %s", common::LoadString(common::kStrSpeed),
                      SpeedInDisplayUnit(fix, u), SpeedUnitName(u));
        Size s = canvas.MeasureText(line);
        const int yb = bottom - b / 5;
        canvas.DrawText(line, Rect{left + b / 3 - 1, yb - s.height, left + b / 3 + s.width + 1, yb},
                        kTextLeft | kTextBottom, grey);
        std::snprintf(line, sizeof line, u == kMetric ? "%s %0.2f m" : "%s %0.2f ft",
                      common::LoadString(common::kStrAltitude), AltitudeInDisplayUnit(fix, u));
        s = canvas.MeasureText(line);
        canvas.DrawText(line,
                        Rect{right - b / 3 + 1 - s.width - 2, yb - s.height, right - b / 3 + 1, yb},
                        kTextRight | kTextBottom, grey);
    }
    ReleaseScreenFont(canvas, old);

    old = CreateScreenFont(canvas, b - 1, 400);
    TextAt(canvas, FormatCourse(fix.course.value_or(0.0)), left + b / 3, top + b / 5 + b,
           Rgb(100, 101, 103));
    ReleaseScreenFont(canvas, old);

    if (ctx.drawMapOverlay)
        ctx.drawMapOverlay(canvas, ctx);

    const int s = StatusIconSize(ctx);
    DrawReceiverIcon(canvas, ctx, right - b / 3 - s, top + (4 * b) / 3);
    DrawRecordingIcon(canvas, ctx, right - b / 3 - s, top + (4 * b) / 3 + s + b / 5);

    DrawScreenFrame(canvas, ctx);
}

}  // namespace satwalk::screens
