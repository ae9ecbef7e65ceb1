// Any content of the fix record paints without a crash, a hang or a
// coordinate far outside the screen.
#include <gtest/gtest.h>

#include <cstring>

#include "TestSupport.h"

namespace satwalk::screens {
namespace {

using test::MakeContext;

gps::GpsState Absurd() {
    gps::GpsState g;
    SET_FIELD(g.course, "1e300");
    SET_FIELD(g.speedKnots, "999999");
    SET_FIELD(g.altitude, "-1e300");
    SET_FIELD(g.satellitesInView, "99");
    SET_FIELD(g.satellitesUsed, "-9");
    SET_FIELD(g.hdop, "1e308");
    SET_FIELD(g.vdop, "nan");
    SET_FIELD(g.pdop, "-inf");
    g.fixMode = '\xff';
    for (int i = 0; i < gps::kSatelliteRows; ++i)
        test::SetSatellite(g, i, i % 2 ? "\xff\xfe" : "99", i % 3 ? "-9999" : "99999", "1e300",
                           i % 2 ? "9999" : "-5");
    return g;
}

gps::GpsState Garbage() {
    gps::GpsState g;
    // Every text byte set, no terminators inside the arrays except the last.
    unsigned char* p = reinterpret_cast<unsigned char*>(&g);
    for (std::size_t i = 0; i < offsetof(gps::GpsState, fixTimeLocal); ++i) p[i] = 0xB7;
    g.fixTimeLocal = ~gps::FileTime{0};
    return g;
}

bool Sane(Point p) {
    return std::abs(p.x) < 100000 && std::abs(p.y) < 100000;
}
bool Sane(Rect r) {
    return Sane(Point{r.left, r.top}) && Sane(Point{r.right, r.bottom});
}

TEST(HostileFix, EveryScreenPaintsWithSaneGeometry) {
    const gps::GpsState states[] = {gps::GpsState{}, Absurd(), Garbage()};
    for (const auto& v : test::kAllVariants) {
        for (const gps::GpsState& g : states) {
            for (int screen = -1; screen <= 4; ++screen) {
                for (int units = 0; units < 3; ++units) {
                    ScreenContext ctx = MakeContext(v);
                    ctx.display.currentScreen = screen;
                    ctx.display.unitSystem = units;
                    ctx.display.speedAlarmOn = true;
                    ctx.display.speedAlarmLimit = 12345;
                    ctx.display.fixTimeKnown = true;
                    ctx.display.latitude = 1e300;
                    ctx.display.longitude = -1e300;
                    RecordingCanvas canvas(ctx.frame);
                    ctx.display.fix = gps::ReadFix(g);
                    PaintCurrentScreen(canvas, ctx, g);
                    for (const CanvasCall& c : canvas.Calls()) {
                        EXPECT_TRUE(Sane(c.rect) && Sane(c.from) && Sane(c.to) && Sane(c.dst))
                            << v.name << " screen " << screen;
                        for (Point p : c.points)
                            EXPECT_TRUE(Sane(p)) << v.name << " screen " << screen;
                        EXPECT_LT(c.text.size(), 200u);
                    }
                }
            }
        }
    }
}

}  // namespace
}  // namespace satwalk::screens
