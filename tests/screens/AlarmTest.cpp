// The speed alarm on the screens: the red flash of the readouts and the lit
// cell, and which cell a tap falls on.
#include <gtest/gtest.h>

#include "TestSupport.h"

namespace satwalk::screens {
namespace {

using K = CanvasCall::Kind;

TEST(VisualAlarm, ReadoutsAndLitCellAreRedOnlyInTheFlashPhaseOfASoundingAlarm) {
    const struct {
        bool on, sounding, phase, red;
    } states[] = {
        {true, true, true, true},
        {true, true, false, false},  // the dark half of the second
        {true, false, true, false},  // below the limit
        {false, true, true, false}   // switched off while it sounded
    };
    gps::GpsState g;
    SET_FIELD(g.speedKnots, "40");  // 74 km/h
    for (const test::Variant& v : test::kAllVariants) {
        for (const auto& s : states) {
            ScreenContext ctx = test::MakeContext(v);
            ctx.display.currentScreen = kScreenSpeedometer;
            ctx.display.speedAlarmOn = s.on;
            ctx.display.speedAlarmLimit = 70;
            ctx.display.speedAlarmSounding = s.sounding;
            ctx.display.alarmFlashPhase = s.phase;
            RecordingCanvas canvas(ctx.frame);
            ctx.display.fix = gps::ReadFix(g);
            PaintCurrentScreen(canvas, ctx, g);
            const std::string where = std::string(v.name) + " red " + std::to_string(s.red);
            // The strip's readout white on a red plate within the speedometer's
            // tab, the big number red, and the cell of 70 a red plate with its
            // number in white.
            std::vector<Rect> plates;
            for (const auto& f : canvas.OfKind(K::FillRect))
                if (f.colour == kAlarmRed)
                    plates.push_back(f.rect);
            ASSERT_EQ(plates.size(), s.red ? 2u : 0u) << where;
            EXPECT_EQ(canvas.FindText("74.0")->colour, s.red ? kWhite : kBlack) << where;
            EXPECT_EQ(canvas.FindText("74.00")->colour, s.red ? kAlarmRed : Rgb(22, 118, 201))
                << where;
            if (!s.red)
                continue;
            const auto within = [](Rect in, Rect out) {
                return in.left > out.left && in.top > out.top && in.right < out.right &&
                       in.bottom < out.bottom;
            };
            EXPECT_TRUE(within(plates[0], TabRect(ctx, 4))) << where;
            EXPECT_TRUE(within(plates[1], AlarmCellRect(ctx, 2))) << where;
            EXPECT_EQ(canvas.FindText("70")->colour, kWhite) << where;
        }
    }
}

TEST(AlarmCells, TapsFallOnTheCellUnderThem) {
    constexpr test::Variant kOddLandscape{"900x700", 900, 700, 192};
    const struct {
        test::Variant variant;
        int x, y;
        int cell;  // -1: no cell
    } cases[] = {
        // Portrait: a row of 59 × 46 cells from x 5 on top of the strip; the tabs below.
        {test::kPortraitHi, 5, 511, 0},
        {test::kPortraitHi, 476, 530, 7},
        {test::kPortraitHi, 100, 557, -1},
        // The small set: 30 × 23 from x 1; the last cell ends with the strip.
        {test::kPortraitLo, 239, 254, 7},
        {test::kPortraitLo, 100, 277, -1},
        // Landscape: a column at the right edge, 42 (21) high per cell.
        {test::kLandscapeHi, 592, 421, 7},
        {test::kLandscapeHi, 600, 422, -1},
        {test::kLandscapeLo, 296, 64, 1},
        // A larger window: the column follows the right edge and the middle.
        {kOddLandscape, 870, 369, 4},
    };
    for (const auto& c : cases) {
        const ScreenContext ctx = test::MakeContext(c.variant);
        EXPECT_EQ(HitTestAlarmCell(ctx, c.x, c.y), c.cell)
            << c.variant.name << " (" << c.x << "," << c.y << ")";
    }
}

}  // namespace
}  // namespace satwalk::screens
