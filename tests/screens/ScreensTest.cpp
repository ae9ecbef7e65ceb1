// The four instrument screens through the recording canvas: the formulas
// that place what they draw, and their texts.
#include <gtest/gtest.h>

#include <cstdio>

#include <cmath>

#include "TestSupport.h"

namespace satwalk::screens {
namespace {

using test::MakeContext;
using K = CanvasCall::Kind;

// ---- GPS information -------------------------------------------------------

TEST(SignalBars, HeightsAndColoursBySnr) {
    ScreenContext ctx = MakeContext(test::kPortraitHi);  // b = 30: pen 7, unit 6
    gps::GpsState g;
    const char* snrs[12] = {"", "5", "15", "25", "35", "45", "60", "99", "100", "0", "10", "41"};
    const int heights[12] = {6, 12, 18, 24, 30, 36, 42, 42, 42, 6, 12, 36};
    for (int i = 0; i < 12; ++i) test::SetSatellite(g, i, "01", "10", "10", snrs[i]);
    RecordingCanvas canvas(ctx.frame);
    ctx.display.fix = gps::ReadFix(g);
    DrawSignalBars(canvas, ctx, 100, 400);
    const auto bars = canvas.OfKind(K::Line);
    ASSERT_EQ(bars.size(), 12u);
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(std::tuple(bars[i].from, bars[i].to),
                  std::tuple(Point{103 + 10 * i, 400}, Point{103 + 10 * i, 400 - heights[i]}))
            << i;
        EXPECT_EQ(bars[i].pen.width, 7);
        const int snr = gps::TextToInt(snrs[i]);
        EXPECT_EQ(bars[i].pen.colour, snr == 0 ? kBlack : SnrColour(snr)) << i;
    }

    ctx.display.linkRunning = false;
    canvas.Clear();
    DrawSignalBars(canvas, ctx, 100, 400);
    for (const auto& bar : canvas.OfKind(K::Line)) {
        EXPECT_EQ(bar.to.y, 397);
        EXPECT_EQ(bar.pen.colour, kBlack);
    }
}

TEST(GpsInfoScreen, ZeroedFixShowsItsPlaceholders) {
    ScreenContext ctx = MakeContext(test::kPortraitHi);
    ctx.display.linkRunning = false;
    ctx.display.fixValid = false;
    gps::GpsState g;
    RecordingCanvas canvas(ctx.frame);
    PaintGpsInfoScreen(canvas, ctx, g);
    for (const char* text : {"N   00°00.0000'", "E 000°00.0000'", "海拔 0.00 m   速度 0.00 km/h",
                             "- - / - - / - -    - - : - - : - -", "hdop: 0.00", "vdop: 0.00",
                             "pdop: 0.00", "GPS Fix N/A", "方位角 0.00°", "卫星数 0/0"})
        EXPECT_NE(canvas.FindText(text), nullptr) << text;
    // No position dot without a valid fix: the only red would be the dot.
    for (const auto& e : canvas.OfKind(K::Ellipse)) EXPECT_NE(e.brush.colour, Rgb(255, 0, 0));
}

TEST(GpsInfoScreen, PositionDotIsClampedToTheThumbnail) {
    const struct {
        const char* lat;
        char ns;
        const char* lon;
        char ew;
        int x, y;  // offset inside the 182 × 104 thumbnail
    } cases[] = {{"0000.0000", 'N', "00000.0000", 'E', 91, 52},
                 {"8500.0000", 'N', "18000.0000", 'E', 182, 0},
                 {"8500.0000", 'S', "18000.0000", 'W', 0, 104},
                 {"4000.0000", 'N', "09000.0000", 'E', 136, 26}};
    for (const auto& c : cases) {
        ScreenContext ctx = MakeContext(test::kPortraitHi);
        gps::GpsState fix;
        std::snprintf(fix.latitude, sizeof fix.latitude, "%s", c.lat);
        std::snprintf(fix.longitude, sizeof fix.longitude, "%s", c.lon);
        fix.northSouth = c.ns;
        fix.eastWest = c.ew;
        RecordingCanvas canvas(ctx.frame);
        ctx.display.fix = gps::ReadFix(fix);
        PaintGpsInfoScreen(canvas, ctx, fix);
        const auto thumb = canvas.OfKind(K::StretchBlit);
        ASSERT_EQ(thumb.size(), 1u);
        const CanvasCall* dot = nullptr;
        for (const auto& e : canvas.Calls())
            if (e.kind == K::Ellipse && e.brush.colour == Rgb(255, 0, 0))
                dot = &e;
        ASSERT_NE(dot, nullptr);
        EXPECT_EQ(dot->rect, (Rect{thumb[0].dst.left + c.x - 6, thumb[0].dst.top + c.y - 6,
                                   thumb[0].dst.left + c.x + 6, thumb[0].dst.top + c.y + 6}))
            << c.lat << c.ns << "," << c.lon << c.ew;
    }
}

// ---- sky plot --------------------------------------------------------------

TEST(SkyPlotScreen, DiscsSitAtElevationAndAzimuth) {
    ScreenContext ctx = MakeContext(test::kPortraitHi);
    const DialLayout d = ctx.dials;  // R 210 at (240, 240)
    gps::GpsState g;
    SET_FIELD(g.satellitesInView, "5");
    test::SetSatellite(g, 0, "01", "90", "0", "35");
    test::SetSatellite(g, 1, "02", "0", "90", "0");
    test::SetSatellite(g, 2, "03", "0", "180", "12");
    test::SetSatellite(g, 3, "04", "60", "270", "");
    test::SetSatellite(g, 4, "05", "-30", "45", "99");
    RecordingCanvas canvas(ctx.frame);
    ctx.display.fix = gps::ReadFix(g);
    PaintSkyPlotScreen(canvas, ctx, g);

    // Disc radius from "09" in the font of height 22: 26 × 22 → 17.
    const int r60 = static_cast<int>(210 * std::cos(60 * M_PI / 180));
    const int s45 = static_cast<int>(std::sin(45 * M_PI / 180) * 210 * std::cos(-30 * M_PI / 180));
    const int c45 = static_cast<int>(std::cos(45 * M_PI / 180) * 210 * std::cos(-30 * M_PI / 180));
    const struct {
        const char* prn;
        int x, y;
        Colour fill, text;
    } expects[] = {{"01", d.skyX, d.skyY, Rgb(102, 204, 0), kWhite},
                   {"02", d.skyX + 210, d.skyY, kWhite, kBlack},
                   {"03", d.skyX, d.skyY + 210, Rgb(255, 153, 0), kWhite},
                   {"04", d.skyX - r60, d.skyY, kWhite, kBlack},
                   {"05", d.skyX + s45, d.skyY - c45, Rgb(0, 102, 255), kWhite}};
    for (const auto& e : expects) {
        const CanvasCall* label = canvas.FindText(e.prn);
        ASSERT_NE(label, nullptr) << e.prn;
        EXPECT_EQ(label->rect, (Rect{e.x - 14, e.y - 12, e.x + 14, e.y + 12})) << e.prn;
        EXPECT_EQ(label->colour, e.text) << e.prn;
        const auto discs = canvas.OfKind(K::Ellipse);
        const auto disc = std::find_if(discs.begin(), discs.end(), [&](const CanvasCall& c) {
            return c.rect == Rect{e.x - 17, e.y - 17, e.x + 17, e.y + 17};
        });
        ASSERT_NE(disc, discs.end()) << e.prn;
        EXPECT_EQ(std::tuple(disc->brush.colour, disc->pen.null),
                  std::tuple(e.fill, e.fill != kWhite))
            << e.prn;
    }
    ASSERT_NE(canvas.FindText("卫星数 0/5"), nullptr);
}

TEST(SkyPlotScreen, DiscsAlternateTheirOrder) {
    ScreenContext ctx = MakeContext(test::kPortraitHi);
    gps::GpsState g;
    SET_FIELD(g.satellitesInView, "2");
    test::SetSatellite(g, 0, "01", "45", "10", "20");
    test::SetSatellite(g, 1, "02", "45", "12", "40");
    RecordingCanvas canvas(ctx.frame);
    ctx.display.fix = gps::ReadFix(g);
    PaintSkyPlotScreen(canvas, ctx, g);
    const auto order = [&]() {
        std::string s;
        for (const auto& c : canvas.OfKind(K::Text))
            if (c.text == "01" || c.text == "02")
                s += c.text;
        return s;
    };
    EXPECT_EQ(order(), "0102");
    canvas.Clear();
    PaintSkyPlotScreen(canvas, ctx, g);
    EXPECT_EQ(order(), "0201");
}

// ---- compass ---------------------------------------------------------------

TEST(CompassScreen, LettersTurnWithTheCourseInCourseUpOnly) {
    const struct {
        const char* course;
        int orientation, dx, dy;  // dx, dy: sign of the "N" letter's offset from the centre
    } cases[] = {
        {"0", 0, 0, -1}, {"90", 0, -1, 0}, {"0", 1, 0, -1}, {"90", 1, 0, -1}, {"180", 0, 0, 1}};
    for (const auto& c : cases) {
        ScreenContext ctx = MakeContext(test::kPortraitHi);
        ctx.display.compassOrientation = c.orientation;
        gps::GpsState g;
        SET_FIELD(g.course, c.course);
        RecordingCanvas canvas(ctx.frame);
        ctx.display.fix = gps::ReadFix(g);
        PaintCompassScreen(canvas, ctx);
        const CanvasCall* n = canvas.FindText("N");
        ASSERT_NE(n, nullptr);
        const int x = (n->rect.left + n->rect.right) / 2 - ctx.dials.compassX;
        const int y = (n->rect.top + n->rect.bottom) / 2 - ctx.dials.compassY;
        const auto sign = [](int v) { return v > 5 ? 1 : v < -5 ? -1 : 0; };
        EXPECT_EQ(std::tuple(sign(x), sign(y)), std::tuple(c.dx, c.dy))
            << c.course << c.orientation;
        // Just outside the outer circle.
        const double dist = std::hypot(x, y);
        EXPECT_GT(dist, ctx.dials.compassRadius);
        EXPECT_LT(dist, ctx.dials.compassRadius + 30);
        EXPECT_EQ(n->colour, Rgb(255, 0, 0));
    }
}

TEST(CompassScreen, TextsInTheUnits) {
    ScreenContext ctx = MakeContext(test::kPortraitHi);
    ctx.display.unitSystem = kNautical;
    gps::GpsState g;
    SET_FIELD(g.speedKnots, "12.5");
    SET_FIELD(g.altitude, "100");
    SET_FIELD(g.course, "45.5");
    RecordingCanvas canvas(ctx.frame);
    ctx.display.fix = gps::ReadFix(g);
    PaintCompassScreen(canvas, ctx);
    for (const char* text : {"速度 12.50 kts", "海拔 328.00 ft", "方位角 45.50°"})
        EXPECT_NE(canvas.FindText(text), nullptr) << text;
}

// ---- speedometer -------------------------------------------------------------

TEST(Speedometer, NeedleAtZeroHalfAndFullScale) {
    const int R = 101, cx = 200, cy = 200, L = 100;
    Point p[3];
    // Lower left at 0, lower right at full scale (±1 for the rounding of π).
    SpeedNeedlePoints(0, 200, R, cx, cy, p);
    EXPECT_NEAR(p[0].x, cx - 86, 1);
    EXPECT_NEAR(p[0].y, cy + 50, 1);
    SpeedNeedlePoints(100, 200, R, cx, cy, p);
    EXPECT_EQ(std::vector(p, p + 3),
              (std::vector<Point>{{cx, cy - L}, {cx - 10, cy}, {cx + 10, cy}}));
    SpeedNeedlePoints(160, 160, R, cx, cy, p);
    EXPECT_NEAR(p[0].x, cx + 86, 1);
    EXPECT_NEAR(p[0].y, cy + 50, 1);
    // Past full scale the needle keeps turning; absurd speeds stay on the dial.
    for (double s : {1e300, -1e300, double(NAN)}) {
        SpeedNeedlePoints(s, 200, R, cx, cy, p);
        EXPECT_LE(std::hypot(p[0].x - cx, p[0].y - cy), L + 1.5);
    }
}

// Ticks are spokes cut by white discs: each spoke must start under the disc
// that cuts it, or the tick would come out shorter, and end beyond it.
TEST(DialTicks, EverySpokeStartsUnderTheDiscThatCutsIt) {
    for (const test::Variant& v : test::kAllVariants) {
        for (const int screen : {2, 3}) {
            for (const int orientation : {0, 1}) {
                ScreenContext ctx = MakeContext(v);
                ctx.display.compassOrientation = orientation;
                RecordingCanvas canvas(ctx.frame);
                screen == 2 ? PaintCompassScreen(canvas, ctx) : PaintSpeedometerScreen(canvas, ctx);
                std::vector<CanvasCall> spokes;
                int discs = 0;
                for (const CanvasCall& c : canvas.Calls()) {
                    if (c.kind == K::Line) {
                        spokes.push_back(c);
                        continue;
                    }
                    if (c.kind != K::Ellipse || c.brush.null || c.brush.colour != kWhite ||
                        c.pen.colour != kWhite) {
                        if (c.kind == K::Ellipse)
                            spokes.clear();  // the ring: spokes come after it
                        continue;
                    }
                    ++discs;
                    const double r = c.rect.Width() / 2.0;
                    const double x = (c.rect.left + c.rect.right) / 2.0;
                    const double y = (c.rect.top + c.rect.bottom) / 2.0;
                    for (const CanvasCall& l : spokes) {
                        EXPECT_LE(std::hypot(l.from.x - x, l.from.y - y) + l.pen.width / 2.0, r)
                            << v.name << " " << screen << " disc " << discs;
                        EXPECT_GT(std::hypot(l.to.x - x, l.to.y - y), r + 1)
                            << v.name << " " << screen << " disc " << discs;
                    }
                    EXPECT_FALSE(spokes.empty()) << v.name << " " << screen;
                    spokes.clear();
                }
                EXPECT_EQ(discs, 2) << v.name << " " << screen;
            }
        }
    }
}

TEST(Speedometer, RedTicksFromTheThreshold) {
    const struct {
        int units;
        bool on;
        int limit;
        double start;  // angle of the first red tick on the 240° .. 480° scale
        int redLines;
    } cases[] = {
        {kMetric, true, 100, 360, 14},    // 11 minors, 3 majors
        {kMetric, false, 100, 0, 0},      // no alarm, no red
        {kImperial, true, 100, 390, 10},  // 8 minors, 2 majors
        {kNautical, true, 120, 420, 8}    // 6 minors, 2 majors
    };
    for (const auto& c : cases) {
        ScreenContext ctx = MakeContext(test::kPortraitHi);
        ctx.display.unitSystem = c.units;
        ctx.display.speedAlarmOn = c.on;
        ctx.display.speedAlarmLimit = c.limit;
        RecordingCanvas canvas(ctx.frame);
        PaintSpeedometerScreen(canvas, ctx);
        double lowest = 1e9;
        int red = 0;
        for (const auto& l : canvas.OfKind(K::Line)) {
            if (!test::IsRed(l.pen))
                continue;
            ++red;
            double a = test::LineAngle(l.from, l.to);
            if (a < 120.5)
                a += 360.0;  // the scale runs 240 .. 480
            lowest = std::min(lowest, a);
        }
        EXPECT_EQ(red, c.redLines) << c.units << " " << c.limit;
        EXPECT_TRUE(!c.on || lowest >= c.start - 0.6)
            << c.units << " " << c.limit << ": " << lowest;
    }
}

TEST(Speedometer, LabelsUnitsAndAlarmText) {
    const struct {
        int units;
        bool on;
        const char* last;
        const char* unit;
        const char* alarm;
    } cases[] = {{kMetric, true, "200", "km/h", " 80 km/h "},
                 {kImperial, true, "160", "MPH", " 80 MPH "},
                 {kNautical, false, "160", "kts", " 关闭 "}};
    for (const auto& c : cases) {
        ScreenContext ctx = MakeContext(test::kPortraitHi);
        ctx.display.unitSystem = c.units;
        ctx.display.speedAlarmOn = c.on;
        ctx.display.speedAlarmLimit = 80;
        RecordingCanvas canvas(ctx.frame);
        PaintSpeedometerScreen(canvas, ctx);
        for (const char* text : {c.last, c.unit, c.alarm})
            EXPECT_NE(canvas.FindText(text), nullptr) << c.unit << ": " << text;
    }
}

// ---- text formats ------------------------------------------------------------

TEST(TextFormats, LatitudeAndLongitude) {
    // Zero is on the GPS information screen's placeholders.
    const std::pair<double, const char*> lats[] = {{30.517067, "N   30°31.0240'"},
                                                   {-0.5, "S   00°30.0000'"},
                                                   {-89.999, "S   89°59.9400'"},
                                                   {NAN, "N   00°00.0000'"}};
    for (const auto& [v, s] : lats) EXPECT_EQ(FormatLatitude(v), s) << v;
    const std::pair<double, const char*> lons[] = {
        {114.35, "E 114°21.0000'"}, {-180.0, "W 180°00.0000'"}, {-7.25, "W 007°15.0000'"}};
    for (const auto& [v, s] : lons) EXPECT_EQ(FormatLongitude(v), s) << v;
}

}  // namespace
}  // namespace satwalk::screens
