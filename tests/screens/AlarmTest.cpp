// The speed alarm on the screens: the red flash of the readouts and the lit
// cell, and which cell a tap falls on.
#include <gtest/gtest.h>

#include "TestSupport.h"

namespace satwalk::screens {
namespace {

using K = CanvasCall::Kind;

TEST(VisualAlarm, ReadoutAndLitCellAreRedOnlyInTheFlashPhaseOfASoundingAlarm) {
    struct State {
        bool on, sounding, phase, red;
    };
    const State states[] = {
        {true, true, true, true},
        {true, true, false, false},  // the dark half of the second
        {true, false, true, false},  // below the limit
        {false, true, true, false},  // switched off while it sounded
    };
    gps::GpsState g;
    SET_FIELD(g.speedKnots, "40");  // 74 km/h
    for (const test::Variant& v : test::kAllVariants) {
        for (const int screen : {kScreenGpsInfo, kScreenSpeedometer}) {
            for (const State& s : states) {
                ScreenContext ctx = test::MakeContext(v);
                ctx.currentScreen = screen;
                ctx.speedAlarmOn = s.on;
                ctx.speedAlarmLimit = 70;
                ctx.speedAlarmSounding = s.sounding;
                ctx.alarmFlashPhase = s.phase;
                RecordingCanvas canvas(ctx.frame);
                PaintCurrentScreen(canvas, ctx, g);
                const std::string where = std::string(v.name) + " screen " +
                                          std::to_string(screen) + " red " + std::to_string(s.red);

                std::vector<Rect> plates;
                for (const auto& f : canvas.OfKind(K::FillRect))
                    if (f.colour == kAlarmRed)
                        plates.push_back(f.rect);
                ASSERT_EQ(plates.size(), s.red ? 2u : 0u) << where;
                const CanvasCall* readout = canvas.FindText("74.0");
                ASSERT_NE(readout, nullptr) << where;
                EXPECT_EQ(readout->colour, s.red ? kWhite : kBlack) << where;
                if (screen == kScreenSpeedometer) {
                    const CanvasCall* number = canvas.FindText("74.00");
                    ASSERT_NE(number, nullptr) << where;
                    EXPECT_EQ(number->colour, s.red ? kAlarmRed : Rgb(22, 118, 201)) << where;
                }
                if (!s.red)
                    continue;
                // One plate on the speedometer's tab under the readout, one
                // on the cell of 70 with the limit in white.
                const Rect tab = TabRect(ctx, 4);
                const Rect cell = AlarmCellRect(ctx, 2);
                const auto inside = [](Rect in, Rect out) {
                    return in.left > out.left && in.top > out.top && in.right < out.right &&
                           in.bottom < out.bottom;
                };
                EXPECT_TRUE(inside(plates[0], cell) || inside(plates[1], cell)) << where;
                EXPECT_TRUE(inside(plates[0], tab) || inside(plates[1], tab)) << where;
                const CanvasCall* limit = canvas.FindText("70");
                ASSERT_NE(limit, nullptr) << where;
                EXPECT_EQ(limit->colour, kWhite) << where;
                EXPECT_TRUE(inside(limit->rect, cell)) << where;
            }
        }
    }
}

TEST(AlarmCells, TapsFallOnTheCellUnderThem) {
    struct Case {
        test::Variant variant;
        int x, y;
        int cell;  // -1: no cell
    };
    constexpr test::Variant kOddLandscape{"900x700", 900, 700, 192};
    const Case cases[] = {
        // Portrait: the row of cells on top of the strip, 59 × 46 from x 5.
        {test::kPortraitHi, 5, 511, 0},
        {test::kPortraitHi, 63, 556, 0},
        {test::kPortraitHi, 64, 520, 1},
        {test::kPortraitHi, 476, 530, 7},
        {test::kPortraitHi, 4, 520, -1},
        {test::kPortraitHi, 478, 530, -1},
        {test::kPortraitHi, 100, 557, -1},  // the tabs below
        {test::kPortraitHi, 100, 510, -1},
        // The small set: 30 × 23 from x 1; the last cell ends with the strip.
        {test::kPortraitLo, 1, 254, 0},
        {test::kPortraitLo, 30, 276, 0},
        {test::kPortraitLo, 31, 254, 1},
        {test::kPortraitLo, 239, 260, 7},
        {test::kPortraitLo, 0, 260, -1},
        {test::kPortraitLo, 100, 277, -1},
        // Landscape: the column at the right edge, 42 (21) high per cell.
        {test::kLandscapeHi, 592, 86, 0},
        {test::kLandscapeHi, 633, 127, 0},
        {test::kLandscapeHi, 600, 128, 1},
        {test::kLandscapeHi, 600, 421, 7},
        {test::kLandscapeHi, 600, 422, -1},
        {test::kLandscapeHi, 591, 100, -1},
        {test::kLandscapeHi, 634, 100, -1},
        {test::kLandscapeLo, 296, 43, 0},
        {test::kLandscapeLo, 316, 63, 0},
        {test::kLandscapeLo, 300, 64, 1},
        {test::kLandscapeLo, 300, 210, 7},
        {test::kLandscapeLo, 300, 211, -1},
        {test::kLandscapeLo, 295, 50, -1},
        // A larger window: the column follows the right edge and the middle.
        {kOddLandscape, 852, 196, 0},
        {kOddLandscape, 870, 369, 4},
        {kOddLandscape, 851, 369, -1},
    };
    for (const Case& c : cases) {
        const ScreenContext ctx = test::MakeContext(c.variant);
        EXPECT_EQ(HitTestAlarmCell(ctx, c.x, c.y), c.cell)
            << c.variant.name << " (" << c.x << "," << c.y << ")";
    }
}

}  // namespace
}  // namespace satwalk::screens
