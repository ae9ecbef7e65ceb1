// The stylus on the map: buttons with auto-repeat and acceleration, drags
// and their directions, placement taps, and the return to idle.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "MapInteraction.h"
#include "MapLayers.h"
#include "Screens.h"

namespace satwalk::map {
namespace {

// Everything the stylus asked for, as short words.
struct Log final : InteractionSink {
    std::vector<std::string> calls;
    void SendArrow(Arrow a) override {
        static const char* const kNames[] = {"up", "down", "left", "right"};
        calls.push_back(std::string("key ") + kNames[static_cast<int>(a)]);
    }
    void StartRepeat() override { calls.push_back("repeat"); }
    void StopRepeat() override { calls.push_back("stop"); }
    void Pan(int direction, int step) override {
        calls.push_back("pan " + std::to_string(direction) + " " + std::to_string(step));
    }
    void PlacementTap(int x, int y) override {
        calls.push_back("place " + std::to_string(x) + " " + std::to_string(y));
    }
    void ManualMove() override { calls.push_back("manual"); }
    void Redraw() override {}
};

NavigationButtons Buttons() {
    NavigationButtons b{};
    for (int k = 0; k < kNavigationButtonCount; ++k) b[k] = {450, 100 + 34 * k, 480, 129 + 34 * k};
    return b;
}

StylusScene Scene(bool mapMode = false, bool placing = false, int unit = 30) {
    StylusScene s;
    s.onMapScreen = s.insideMap = s.linkRunning = true;
    s.mapMode = mapMode;
    s.placing = placing;
    s.unit = unit;
    s.scaleBarPixels = unit * 10 / 3;
    return s;
}

StylusScene Without(bool StylusScene::*flag) {
    StylusScene s = Scene();
    s.*flag = false;
    return s;
}

// The centre of button k (1..6).
int Cy(int k) {
    return 100 + 34 * (k - 1) + 14;
}

TEST(MapInteraction, ButtonsSendTheirKeyAtOnceAndAgainOnEveryTick) {
    const std::tuple<const char*, int, int, int> cases[] = {
        {"key up", 1, 1, 0},    {"key down", 2, 1, 0}, {"key left", 3, 1, 0},
        {"key right", 4, 1, 0}, {"key up", 5, 0, 1},   {"key down", 6, 0, 2}};
    for (const auto& [key, button, panMode, zoomRequest] : cases) {
        SCOPED_TRACE(button);
        MapInteraction s;
        Log log;
        EXPECT_EQ(OnStylusDown(s, Buttons(), Scene(), 465, Cy(button), log),
                  StylusDownResult::Button);
        EXPECT_EQ(std::pair(s.panMode, s.zoomRequest), std::pair(panMode, zoomRequest));
        OnRepeatTick(s, Scene(), log);
        EXPECT_EQ(log.calls, (std::vector<std::string>{key, "repeat", key}));
    }
}

TEST(MapInteraction, HoldingRightAcceleratesFromTheFourthTickUpToTheScaleBar) {
    {
        MapInteraction s;
        Log log;
        OnStylusDown(s, Buttons(), Scene(), 465, Cy(4), log);
        std::vector<int> steps;
        for (int i = 0; i < 21; ++i) {
            OnRepeatTick(s, Scene(), log);
            steps.push_back(s.panStep);
        }
        EXPECT_EQ(steps, (std::vector<int>{1,  1,  1,  7,  13, 19, 25, 31, 37,  43, 49,
                                           55, 61, 67, 73, 79, 85, 91, 97, 100, 100}));
        OnStylusUp(s, log);
        EXPECT_EQ(s.panStep, 1) << "the next press starts slow";
        EXPECT_EQ(log.calls.back(), "stop");
    }
    // The zoom buttons repeat without speeding up.
    MapInteraction s;
    Log log;
    OnStylusDown(s, Buttons(), Scene(), 465, Cy(5), log);
    for (int i = 0; i < 6; ++i) OnRepeatTick(s, Scene(), log);
    EXPECT_EQ(s.panStep, 1);
}

TEST(MapInteraction, DragsPanAgainstTheStylusExceptWhilePlacing) {
    const std::tuple<const char*, bool, int, int, std::vector<std::string>> cases[] = {
        {"left and down", false, -10, 6, {"pan 4 10", "pan 1 6"}},
        {"left and down, placing", true, -10, 6, {"pan 3 10", "pan 2 6"}},
        {"right and up", false, 7, -3, {"pan 3 7", "pan 2 3"}},
        {"no movement", false, 0, 0, {"pan 4 0", "pan 2 0"}}};
    for (const auto& [name, placing, dx, dy, expectedPans] : cases) {
        SCOPED_TRACE(name);
        MapInteraction s;
        Log log;
        // Placement taps only land on a loaded map; the world map drags alike.
        OnStylusDown(s, Buttons(), Scene(placing, placing), 200, 300, log);
        log.calls.clear();
        OnStylusMove(s, Scene(placing, placing), 200 + dx, 300 + dy, log);
        std::vector<std::string> pans;
        std::copy_if(log.calls.begin(), log.calls.end(), std::back_inserter(pans),
                     [](const std::string& call) { return call.rfind("pan", 0) == 0; });
        EXPECT_EQ(pans, expectedPans);
        EXPECT_TRUE(s.dragging == 1 && s.panDirection == kPanNone);
        EXPECT_EQ(s.lastStylus, (screens::Point{200 + dx, 300 + dy}));
    }
}

TEST(MapInteraction, WhereTheStylusGoesDownDecidesWhatItDoes) {
    // The first call the stylus makes, "" for none.
    const std::tuple<const char*, StylusScene, int, int, StylusDownResult, const char*> cases[] = {
        {"world map", Scene(), 200, 300, StylusDownResult::Map, ""},
        {"loaded map: a hold may follow", Scene(true), 200, 300, StylusDownResult::MayHold, ""},
        {"placing: the cursor moves", Scene(true, true), 200, 300, StylusDownResult::PlacementTap,
         "place 200 300"},
        {"button edge is not the button", Scene(), 450, Cy(1), StylusDownResult::Map, ""},
        {"outside the picture", Without(&StylusScene::insideMap), 200, 700,
         StylusDownResult::Ignored, ""},
        {"another screen", Without(&StylusScene::onMapScreen), 465, Cy(1),
         StylusDownResult::Ignored, ""}};
    for (const auto& [name, scene, x, y, result, firstCall] : cases) {
        SCOPED_TRACE(name);
        MapInteraction s;
        s.panMode = 0;
        Log log;
        EXPECT_EQ(OnStylusDown(s, Buttons(), scene, x, y, log), result);
        EXPECT_EQ(log.calls.empty() ? "" : log.calls.front(), std::string(firstCall));
        const bool taken = result != StylusDownResult::Ignored;
        EXPECT_EQ(s.stylusDown, taken ? 1 : 0);
        // On the map the arrows pan while the stylus is down, and go back after.
        if (taken) {
            EXPECT_EQ(s.panMode, 1);
            OnStylusUp(s, log);
            EXPECT_EQ(s.panMode, 0);
        }
    }
}

}  // namespace
}  // namespace satwalk::map
