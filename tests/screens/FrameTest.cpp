// The frame: tool-strip tiles, alarm cells and the small
// instruments shared by every screen.
#include <gtest/gtest.h>

#include "TestSupport.h"

namespace satwalk::screens {
namespace {

using test::MakeContext;
using K = CanvasCall::Kind;

TEST(ToolStrip, CurrentTabIsCopiedFromTheStrip) {
    const struct {
        test::Variant variant;
        int screen;
        bool mapLoaded;
        Rect src;
        Point dst;
    } cases[] = {{test::kPortraitHi, kScreenGpsInfo, false, {5, 55, 79, 129}, {5, 566}},
                 {test::kPortraitHi, kScreenMap, true, {163, 55, 237, 129}, {163, 566}},
                 {test::kPortraitHi, kScreenMap, false, {84, 55, 158, 129}, {84, 566}},
                 {test::kLandscapeHi, kScreenSpeedometer, false, {0, 224, 51, 275}, {0, 313}},
                 {test::kLandscapeLo, kScreenSkyPlot, false, {0, 140, 27, 167}, {0, 183}}};
    for (const auto& c : cases) {
        ScreenContext ctx = MakeContext(c.variant);
        ctx.display.currentScreen = c.screen;
        ctx.display.mapLoaded = c.mapLoaded;
        RecordingCanvas canvas(ctx.frame);
        DrawTabHighlight(canvas, ctx);
        ASSERT_EQ(canvas.Calls().size(), 1u) << c.variant.name << " screen " << c.screen;
        const CanvasCall& call = canvas.Calls()[0];
        const BitmapId strip = c.variant.width <= c.variant.height ? BitmapId::ToolStripPortrait
                                                                   : BitmapId::ToolStripLandscape;
        EXPECT_EQ(std::tuple(call.kind, call.bitmap, call.rect, call.to),
                  std::tuple(K::Blit, strip, c.src, c.dst))
            << c.variant.name << " screen " << c.screen;
    }
}

TEST(ToolStrip, TapsFallOnTheTabUnderThem) {
    const struct {
        test::Variant variant;
        int x, y, tab;  // -1: no tab
    } cases[] = {{test::kPortraitHi, 42, 603, 0},
                 {test::kPortraitHi, 437, 603, 5},
                 {test::kPortraitHi, 42, 540, -1},
                 {test::kLandscapeHi, 20, 330, 4}};
    for (const auto& c : cases)
        EXPECT_EQ(HitTestTab(MakeContext(c.variant), c.x, c.y), c.tab) << c.x << "," << c.y;
}

TEST(ToolStrip, AlarmCellOfTheThreshold) {
    const struct {
        test::Variant variant;
        int limit;
        BitmapId bitmap;
        Rect src;
        Point dst;
    } cases[] = {
        {test::kPortraitHi, 80, BitmapId::ToolStripPortrait, {182, 0, 241, 46}, {182, 511}},
        {test::kLandscapeHi, 90, BitmapId::AlarmStrip, {0, 168, 42, 210}, {592, 254}},
        {test::kLandscapeLo, 50, BitmapId::AlarmStrip, {0, 0, 21, 21}, {296, 43}}};
    for (const auto& c : cases) {
        ScreenContext ctx = MakeContext(c.variant);
        ctx.display.speedAlarmOn = true;
        ctx.display.speedAlarmLimit = c.limit;
        RecordingCanvas canvas(ctx.frame);
        DrawAlarmCell(canvas, ctx);
        ASSERT_EQ(canvas.Calls().size(), 1u);
        const CanvasCall& call = canvas.Calls()[0];
        EXPECT_EQ(std::tuple(call.bitmap, call.rect, call.to), std::tuple(c.bitmap, c.src, c.dst))
            << c.variant.name << " " << c.limit;
    }
    ScreenContext off = MakeContext(test::kPortraitHi);
    off.display.speedAlarmOn = false;
    RecordingCanvas canvas(off.frame);
    DrawAlarmCell(canvas, off);
    EXPECT_TRUE(canvas.Calls().empty());
}

TEST(ToolStrip, PortraitInstrumentsFollowTheCentredStrip) {
    // In a window wider than the set's strip, the strip is centred and the
    // course arrow and speed readout stay on their own tabs.
    for (const int width : {480, 600}) {
        const test::Variant wide{"wide-portrait-hi", width, 640, 192};
        ScreenContext ctx = MakeContext(wide);
        RecordingCanvas canvas(ctx.frame);
        DrawScreenFrame(canvas, ctx);
        const int ox = (width - 480) / 2;
        const auto arrows = canvas.OfKind(K::Polygon);
        ASSERT_EQ(arrows.size(), 2u) << width;
        EXPECT_EQ(arrows[0].points[2].x, ox + 280) << width;  // course 0: tip above centre
        const CanvasCall* speed = canvas.FindText("0.0");
        ASSERT_NE(speed, nullptr);
        EXPECT_TRUE(speed->rect.left >= ox + 322 && speed->rect.right <= ox + 396) << width;
    }
}

TEST(CourseArrow, PointsForNorthAndEast) {
    const ArrowPoints n = CourseArrowPoints(0.0, 22, 100, 100, 15);
    EXPECT_EQ((std::vector<Point>{n.tail, n.tip, n.left, n.right, n.notch}),
              (std::vector<Point>{{100, 122}, {100, 78}, {88, 119}, {112, 119}, {100, 111}}));

    // Absurd courses stay finite and near the centre.
    for (double c : {1e300, -1e300, double(NAN), double(INFINITY)}) {
        const ArrowPoints a = CourseArrowPoints(c, 22, 100, 100, 15);
        for (Point p : {a.left, a.notch, a.tip, a.right, a.tail}) {
            EXPECT_LE(std::abs(p.x - 100), 40);
            EXPECT_LE(std::abs(p.y - 100), 40);
        }
    }
}

TEST(MiniSkyPlot, DotsAlternateTheirOrderAndSkipWhenNoneInView) {
    ScreenContext ctx = MakeContext(test::kPortraitHi);
    gps::GpsState g;
    RecordingCanvas canvas(ctx.frame);
    DrawMiniSkyPlot(canvas, ctx, 30, 438, 602, 7);
    EXPECT_TRUE(canvas.Calls().empty());

    SET_FIELD(g.satellitesInView, "2");
    test::SetSatellite(g, 0, "05", "90", "0", "");
    test::SetSatellite(g, 1, "07", "0", "90", "45");
    // The toggle flips on every call, with or without satellites.
    EXPECT_EQ(ctx.miniSkyToggle, 1);
    ctx.miniSkyToggle = 0;
    canvas.Clear();
    ctx.display.fix = gps::ReadFix(g);
    DrawMiniSkyPlot(canvas, ctx, 30, 438, 602, 7);
    DrawMiniSkyPlot(canvas, ctx, 30, 438, 602, 7);
    const auto dots = canvas.OfKind(K::Ellipse);
    ASSERT_EQ(dots.size(), 4u);
    // Elevation 90 at the centre, drawn as an outlined white circle (SNR 0);
    // elevation 0 at azimuth 90 on the east edge in the SNR colour.
    const int r = (dots[0].rect.right - dots[0].rect.left) / 2;
    EXPECT_EQ(dots[0].rect, (Rect{438 - r, 602 - r, 438 + r, 602 + r}));
    EXPECT_EQ(std::tuple(dots[0].brush.colour, dots[0].pen.null), std::tuple(kWhite, false));
    EXPECT_EQ(dots[1].rect, (Rect{468 - r, 602 - r, 468 + r, 602 + r}));
    EXPECT_EQ(std::tuple(dots[1].brush.colour, dots[1].pen.null),
              std::tuple(Rgb(0, 204, 204), true));
    // The next paint visits them backward.
    EXPECT_EQ(std::tuple(dots[2].rect, dots[3].rect), std::tuple(dots[1].rect, dots[0].rect));
}

TEST(StatusIcons, FramesByLinkFixBlinkAndRecording) {
    ScreenContext ctx = MakeContext(test::kPortraitLo);
    const auto frameOf = [&](auto draw) {
        RecordingCanvas canvas(ctx.frame);
        draw(canvas);
        if (canvas.Calls().empty())
            return -1;
        EXPECT_EQ(canvas.Calls()[0].colour, kMagenta);
        return canvas.Calls()[0].rect.left / 17;
    };
    const auto receiver = [&](RecordingCanvas& c) { DrawReceiverIcon(c, ctx, 0, 0); };
    const auto recorder = [&](RecordingCanvas& c) { DrawRecordingIcon(c, ctx, 0, 0); };
    ctx.display.linkRunning = false;
    EXPECT_EQ(frameOf(receiver), 1);
    ctx.display.linkRunning = true;
    ctx.display.fixValid = true;
    EXPECT_EQ(frameOf(receiver), 0);
    ctx.display.fixValid = false;
    ctx.display.blinkPhase = true;
    EXPECT_EQ(frameOf(receiver), 0);
    ctx.display.blinkPhase = false;
    EXPECT_EQ(frameOf(receiver), -1);
    ctx.display.recording = true;
    EXPECT_EQ(frameOf(recorder), 2);
    ctx.display.recording = false;
    EXPECT_EQ(frameOf(recorder), 3);
}

}  // namespace
}  // namespace satwalk::screens
