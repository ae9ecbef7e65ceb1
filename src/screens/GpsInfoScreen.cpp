// Screen 0: the fix as text, the world thumbnail, course arrow and signal bars.
#include <algorithm>
#include <cstdio>

#include "Arith.h"
#include "ScreenDraw.h"

namespace satwalk::screens {

using gps::GpsState;

void DrawSignalBars(Canvas& canvas, const ScreenContext& ctx, int x, int baselineY) {
    const int b = ctx.baseTextHeight;
    const int pw = b / 3 - b / 10;
    const int full = (7 * b) / 5;
    const int u = full / 7;
    for (int i = 0; i < gps::kSatelliteRows; ++i) {
        const int bx = x + pw / 2 + (i * b) / 3;
        Colour colour = kBlack;
        int height = b / 10;
        if (ctx.display.linkRunning) {
            const int snr = ctx.display.fix.satellites[i].snr.value_or(0);
            if (snr <= 0) {
                height = u;
            } else {
                colour = SnrColour(snr);
                const int cls = snr <= 50 ? (snr + 9) / 10 : 6;  // 1..6
                height = cls == 6 ? full : (cls + 1) * u;
            }
        }
        canvas.Line(Point{bx, baselineY}, Point{bx, baselineY - height}, Pen{colour, pw});
    }
}

void PaintGpsInfoScreen(Canvas& canvas, ScreenContext& ctx, const GpsState& gps) {
    const int b = ctx.baseTextHeight;
    const int left = ctx.screen.left, top = ctx.screen.top;
    const int right = ctx.screen.right, bottom = ctx.screen.bottom;
    const int m = b / 3, g = b / 5;
    const int u = ctx.display.unitSystem;
    const gps::FixValues& fix = ctx.display.fix;

    canvas.FillRect(canvas.Bounds(), kWhite);

    // Position block, from the fix as it stands: absent degrees read as 0.
    const double latitude = fix.latitude.value_or(gps::kAbsentDegrees);
    const double longitude = fix.longitude.value_or(gps::kAbsentDegrees);
    Font old = CreateScreenFont(canvas, (8 * b) / 7, 700);
    const std::string lat = FormatLatitude(latitude);
    const int h1 = TextAt(canvas, lat, left + m + g, top + g, kBlack).height;
    TextAt(canvas, FormatLongitude(longitude), left + m + g, top + g + h1, kBlack);
    ReleaseScreenFont(canvas, old);

    canvas.Line(Point{left + m, top + 2 * h1 + (2 * b) / 5 - 1},
                Point{right - m, top + 2 * h1 + (2 * b) / 5 - 1}, Pen{kBlack, 1});

    old = CreateScreenFont(canvas, b - 1, 400);
    const int y3 = top + 2 * h1 + (2 * b) / 5 + 1;
    const int h2 = TextAt(canvas,
                          FormatAltitudeSpeedLine(AltitudeInDisplayUnit(fix, u),
                                                  SpeedInDisplayUnit(fix, u), u),
                          left + m + g, y3, kBlack)
                       .height;
    canvas.Line(Point{left + m, y3 + h2 + g - 1}, Point{right - m, y3 + h2 + g - 1},
                Pen{kBlack, 1});
    const int y4 = y3 + h2 + g + 1;
    const Size dt = TextAt(canvas, FormatDateTime(ctx, gps), left + m + g, y4, kBlack);
    canvas.Line(Point{left + m, y4 + h2 + g - 1}, Point{left + m + g + dt.width, y4 + h2 + g - 1},
                Pen{kBlack, 1});
    ReleaseScreenFont(canvas, old);
    const int R = y4 + h2 + g + 1;

    // DOP row along the bottom.
    old = CreateScreenFont(canvas, (4 * b) / 5, 0);
    {
        char hdop[48], vdop[48], pdop[48];
        std::snprintf(hdop, sizeof hdop, "hdop: %0.2f", fix.hdop.value_or(0.0));
        std::snprintf(vdop, sizeof vdop, "vdop: %0.2f", fix.vdop.value_or(0.0));
        std::snprintf(pdop, sizeof pdop, "pdop: %0.2f", fix.pdop.value_or(0.0));
        const Size sh = canvas.MeasureText(hdop), sv = canvas.MeasureText(vdop),
                   sp = canvas.MeasureText(pdop);
        const int yb = bottom - g;
        canvas.DrawText(hdop, Rect{left + m, yb - sh.height, left + m + sh.width, yb},
                        kTextCenter | kTextBottom, kBlack);
        const int xc = (left + right) / 2;
        canvas.DrawText(vdop,
                        Rect{xc - sv.width / 2, yb - sv.height, xc - sv.width / 2 + sv.width, yb},
                        kTextCenter | kTextBottom, kBlack);
        canvas.DrawText(pdop, Rect{right - m - sp.width, yb - sp.height, right - m, yb},
                        kTextCenter | kTextBottom, kBlack);
    }
    ReleaseScreenFont(canvas, old);

    // World thumbnail and the position dot.
    const int W = (91 * ctx.dpi + 48) / 96;
    const int H = (52 * ctx.dpi + 48) / 96;
    const Bitmap& world = ctx.bitmaps[BitmapId::World.value];
    canvas.StretchBlit(world, Rect{0, 0, world.width, world.height},
                       Rect{left + m, R + m, left + m + W, R + m + H});
    if (ctx.display.linkRunning && ctx.display.fixValid) {
        const int x = std::clamp(Trunc((longitude / 360.0 + 0.5) * W), 0, W);
        const int y = std::clamp(Trunc(H * 0.5 - H * latitude * 0.00625), 0, H);
        canvas.Ellipse(CircleBox(left + m + x, R + m + y, g), kNullPen, Brush{Rgb(255, 0, 0)});
    }

    // Fix mode under the thumbnail.
    old = CreateScreenFont(canvas, (13 * b) / 15, 0);
    {
        const std::string mode = FormatFixMode(gps.fixMode);
        const Size s = canvas.MeasureText(mode);
        const int xc = left + m + W / 2;
        const int yb = bottom - (7 * b) / 5;
        canvas.DrawText(mode, Rect{xc - s.width / 2, yb - s.height, xc - s.width / 2 + s.width, yb},
                        kTextCenter | kTextBottom, kBlack);
    }
    ReleaseScreenFont(canvas, old);

    // Right-hand column: course, arrow, satellites, bars.
    old = CreateScreenFont(canvas, (4 * b) / 5, 0);
    const int xr = left + m + W + b / 2;
    const std::string course = FormatCourse(fix.course.value_or(0.0));
    const int h4 = canvas.MeasureText(course).height;
    canvas.DrawText(course, Rect{xr, R + g, right, R + g + h4}, kTextCenter | kTextVCenter, kBlack);
    {
        const std::string sats =
            FormatSatellites(fix.satellitesUsed.value_or(0), fix.satellitesInView.value_or(0));
        const int hs = canvas.MeasureText(sats).height;
        const int yb = bottom - (6 * b) / 5 - b / 15 - (7 * b) / 5;
        canvas.DrawText(sats, Rect{xr, yb - hs, right, yb}, kTextCenter | kTextBottom, kBlack);
    }
    ReleaseScreenFont(canvas, old);

    const int hs = right - b / 2 - m - left - W;
    const int vs = bottom - (6 * b) / 5 - 2 * (h4 + b) - g - R;
    // Pointing obliquely, the arrow's base corners lie 1.15 times its size
    // from its centre: the size keeps them inside the space between the
    // texts at every course.
    const int size = std::max(std::min(vs, hs) * 100 / 230, 0);
    DrawCourseArrow(canvas, fix, size, right - hs / 2 - 1, R + g + (3 * h4) / 2 + vs / 2, b);

    DrawSignalBars(canvas, ctx, left + W + m + b / 2 + (right - left - W - m - b / 2 - 4 * b) / 2,
                   bottom - (6 * b) / 5);

    const int s = StatusIconSize(ctx);
    DrawReceiverIcon(canvas, ctx, right - m - g - 2 * s, top + m);
    DrawRecordingIcon(canvas, ctx, right - m - s, top + m);

    DrawScreenFrame(canvas, ctx);
}

}  // namespace satwalk::screens
