// Screen 1: the polar sky plot of the satellites in view.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "Arith.h"
#include "ScreenDraw.h"

namespace satwalk::screens {

using gps::GpsState;

namespace {

constexpr Colour kSnrScale[6] = {Rgb(255, 0, 0),   Rgb(255, 153, 0), Rgb(255, 255, 0),
                                 Rgb(102, 204, 0), Rgb(0, 204, 204), Rgb(0, 102, 255)};

void DrawLegend(Canvas& canvas, const ScreenContext& ctx) {
    const int b = ctx.baseTextHeight;
    const int left = ctx.screen.left, right = ctx.screen.right, bottom = ctx.screen.bottom;
    const Font old = CreateScreenFont(canvas, (11 * b) / 15, 400);
    const Size snr = canvas.MeasureText("SNR");
    const int h = snr.height;
    canvas.DrawText("SNR", Rect{left + b / 3, bottom - h - 1, left + b / 3 + snr.width, bottom - 1},
                    kTextCenter | kTextVCenter, kBlack);
    const int x1 = left + (2 * b) / 3 + snr.width;
    const int bw = (right - x1) / 7;
    const int w0 = canvas.MeasureText("0").width;
    canvas.DrawText("0", Rect{x1 - w0 / 2 + 1, bottom - h, x1 + w0 / 2 + 2, bottom},
                    kTextLeft | kTextVCenter, kBlack);
    for (int k = 0; k < 6; ++k) {
        canvas.FillRect(
            Rect{x1 + k * bw, bottom - (3 * h) / 2 + 1, x1 + (k + 1) * bw, bottom - h + 1},
            kSnrScale[k]);
    }
    static constexpr const char* kMarks[5] = {"10", "20", "30", "40", "50"};
    for (int k = 0; k < 5; ++k) {
        const int x = x1 + (k + 1) * bw;
        const int w = canvas.MeasureText(kMarks[k]).width;
        canvas.DrawText(kMarks[k], Rect{x - w / 2 - 1, bottom - h, x + w / 2 + 1, bottom},
                        kTextCenter | kTextVCenter, kBlack);
    }
    // The top of the scale is marked where the colour bar ends, like the
    // other marks; the seventh division stays free.
    const int xEnd = x1 + 6 * bw;
    const int w99 = canvas.MeasureText("99").width;
    canvas.DrawText("99", Rect{xEnd - w99 / 2 - 1, bottom - h, xEnd + w99 / 2 + 1, bottom},
                    kTextCenter | kTextVCenter, kBlack);
    ReleaseScreenFont(canvas, old);
}

}  // namespace

void PaintSkyPlotScreen(Canvas& canvas, ScreenContext& ctx, const GpsState& gps) {
    const int b = ctx.baseTextHeight;
    const int left = ctx.screen.left, top = ctx.screen.top, right = ctx.screen.right;
    const int R = ctx.dials.skyRadius, cx = ctx.dials.skyX, cy = ctx.dials.skyY;
    const gps::FixValues& fix = ctx.display.fix;

    canvas.FillRect(canvas.Bounds(), kWhite);

    // Rings at 0, 30 and 60 degrees of elevation, pulled in a little.
    const int r30 = Trunc(R * std::cos(kPi / 6) - b / 10);
    const int r60 = Trunc(R * std::cos(kPi / 3) - b / 5);
    canvas.Ellipse(CircleBox(cx, cy, R), Pen{kBlack, 1}, Brush{kWhite});
    canvas.Ellipse(CircleBox(cx, cy, r30), Pen{kBlack, 1}, Brush{Rgb(244, 244, 244)});
    canvas.Ellipse(CircleBox(cx, cy, r60), Pen{kBlack, 1}, Brush{Rgb(227, 227, 227)});
    canvas.Line(Point{cx - R, cy}, Point{cx + R, cy}, Pen{kBlack, 1});
    canvas.Line(Point{cx, cy - R}, Point{cx, cy + R}, Pen{kBlack, 1});

    // Compass letters and the count.
    Font old = CreateScreenFont(canvas, (14 * b) / 15, 400);
    {
        const Size n = canvas.MeasureText("N");
        canvas.DrawText(
            "N",
            Rect{cx - n.width / 2, cy - R - 1 - n.height, cx - n.width / 2 + n.width, cy - R - 1},
            kTextCenter | kTextVCenter, kBlack);
        // "E" and "W" keep their distance from the horizon unless that would
        // put them off the screen (a plot as wide as the screen allows).
        const Size e = canvas.MeasureText("E");
        const int ex = std::min(cx + R + b / 3, right - e.width);
        canvas.DrawText("E",
                        Rect{ex, cy - e.height / 2, ex + e.width, cy - e.height / 2 + e.height},
                        kTextCenter | kTextVCenter, kBlack);
        const Size s = canvas.MeasureText("S");
        canvas.DrawText(
            "S",
            Rect{cx - s.width / 2, cy + R + 1, cx - s.width / 2 + s.width, cy + R + 1 + s.height},
            kTextCenter | kTextVCenter, kBlack);
        const Size w = canvas.MeasureText("W");
        const int wx = std::max(cx - R - b / 3 - w.width, left);
        canvas.DrawText("W",
                        Rect{wx, cy - w.height / 2, wx + w.width, cy - w.height / 2 + w.height},
                        kTextCenter | kTextVCenter, kBlack);
        TextAt(canvas,
               FormatSatellites(fix.satellitesUsed.value_or(0), fix.satellitesInView.value_or(0)),
               left + b / 3, top + b / 4, Rgb(100, 101, 103));
    }
    ReleaseScreenFont(canvas, old);

    // Elevation labels along the east axis, each on a white ground so that
    // the axis and the rings do not run through the digits.
    old = CreateScreenFont(canvas, (4 * b) / 5, 400);
    {
        const auto label = [&](const char* t, Rect box, unsigned align) {
            canvas.FillRect(box, kWhite);
            canvas.DrawText(t, box, align | kTextVCenter, kBlack);
        };
        const auto before = [&](const char* t, int x) {
            const Size s = canvas.MeasureText(t);
            label(t, Rect{x - s.width, cy - s.height / 2, x, cy - s.height / 2 + s.height},
                  kTextRight);
        };
        const auto after = [&](const char* t, int x) {
            const Size s = canvas.MeasureText(t);
            label(t, Rect{x, cy - s.height / 2, x + s.width, cy - s.height / 2 + s.height},
                  kTextLeft);
        };
        const auto centred = [&](const char* t, int x) {
            const Size s = canvas.MeasureText(t);
            label(t,
                  Rect{x - s.width / 2, cy - s.height / 2, x - s.width / 2 + s.width,
                       cy - s.height / 2 + s.height},
                  kTextCenter);
        };
        centred("0", cx + R);
        before("3", cx + r30);
        after("0", cx + r30);
        before("6", cx + r60);
        after("0", cx + r60);
        centred("90", cx);
    }
    ReleaseScreenFont(canvas, old);

    DrawLegend(canvas, ctx);

    // Satellites.
    const int n = std::clamp(fix.satellitesInView.value_or(0), 0, gps::kSatelliteRows);
    if (n >= 1) {
        old = CreateScreenFont(canvas, (11 * b) / 15, 400);
        const Size s09 = canvas.MeasureText("09");
        const int w = s09.width, h = s09.height;
        const int disc = Round(std::sqrt(w * w / 4.0 + h * h / 4.0));
        for (int k = 0; k < n; ++k) {
            const int i = ctx.skyPlotToggle == 0 ? k : n - 1 - k;
            const auto& sat = fix.satellites[i];
            const double d =
                R * std::cos(SaneDegrees(sat.elevation.value_or(0.0)) * kPi * 0.005555555555555556);
            const double az = SaneDegrees(sat.azimuth.value_or(0.0)) * kPi * 0.005555555555555556;
            const int x = cx + Trunc(std::sin(az) * d);
            const int y = cy - Trunc(std::cos(az) * d);
            const int snr = sat.snr.value_or(0);
            Colour textColour = kWhite;
            if (snr <= 0) {
                canvas.Ellipse(CircleBox(x, y, disc), Pen{kBlack, 1}, Brush{kWhite});
                textColour = kBlack;
            } else {
                canvas.Ellipse(CircleBox(x, y, disc), kNullPen, Brush{SnrColour(snr)});
            }
            const std::string prn(gps.satellites[i].prn, strnlen(gps.satellites[i].prn, 2));
            canvas.DrawText(prn, Rect{x - w / 2 - 1, y - h / 2 - 1, x + w / 2 + 1, y + h / 2 + 1},
                            kTextCenter | kTextVCenter, textColour);
        }
        ReleaseScreenFont(canvas, old);
    }
    ctx.skyPlotToggle ^= 1;

    const int s = StatusIconSize(ctx);
    const int m = b / 3, g = b / 5;
    DrawReceiverIcon(canvas, ctx, right - m - g - 2 * s, top + m);
    DrawRecordingIcon(canvas, ctx, right - m - s, top + m);

    DrawScreenFrame(canvas, ctx);
}

}  // namespace satwalk::screens
