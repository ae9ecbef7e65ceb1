// The options kept in files of their own beside the options file: the GPX
// option and "界面缩放", and the scale the latter chooses for a window.
#include <gtest/gtest.h>

#include <fstream>

#include "TrackGpxOption.h"
#include "UiScale.h"

namespace satwalk::shell {
namespace {

TEST(TrackGpxOption, FileBesideTheOptions) {
    EXPECT_EQ(TrackGpxOptionPath("/home/u/.config/satwalk/options"),
              "/home/u/.config/satwalk/track-gpx");
    const std::string path = ::testing::TempDir() + "shell-track-gpx-option";
    const struct {
        const char* bytes;
        bool on;
    } cases[] = {{"1\n", true}, {"1", true},   {"1\r\n", true}, {"0\n", false},
                 {"", false},   {"11", false}, {"yes", false}};
    for (const auto& c : cases) {
        std::ofstream(path, std::ios::binary) << c.bytes;
        EXPECT_EQ(LoadTrackGpxOption(path), c.on) << c.bytes;
    }
    for (const bool on : {true, false}) {
        EXPECT_TRUE(SaveTrackGpxOption(path, on));
        EXPECT_EQ(LoadTrackGpxOption(path), on);
    }
    EXPECT_FALSE(LoadTrackGpxOption(path + "-missing"));
    EXPECT_FALSE(SaveTrackGpxOption("/no/such/folder/track-gpx", true));
}

TEST(UiScale, AutomaticScalingFillsTheWindowAsTheHandheldsScreen) {
    const struct {
        std::uint32_t setting;
        int width, height, dpi;
        int percent;
    } cases[] = {{kUiScaleAuto, 480, 692, 192, 100},    // the handheld, portrait
                 {kUiScaleAuto, 640, 532, 192, 100},    // and landscape
                 {kUiScaleAuto, 240, 346, 96, 100},     // the small set
                 {kUiScaleAuto, 300, 300, 192, 100},    // smaller: never below 100 %
                 {kUiScaleAuto, 1920, 1080, 192, 200},  // a maximised laptop window
                 {kUiScaleAuto, 1280, 800, 192, 150},   // the height decides
                 {kUiScaleAuto, 2560, 1440, 192, 250},  // quarter steps
                 {kUiScaleAuto, 960, 1384, 192, 200},   // portrait twice over
                 {kUiScaleAuto, 1920, 1080, 96, 400},   // the small set, capped
                 {150, 480, 692, 192, 150},             // a chosen scale stands
                 {300, 100, 100, 96, 300}};
    for (const auto& c : cases) {
        EXPECT_EQ(UiScalePercent(c.setting, c.width, c.height, c.dpi), c.percent)
            << c.width << "x" << c.height << " at " << c.dpi;
    }
}

TEST(UiScale, AClientSizeGivesTheScaleOfTheWindowMadeAroundIt) {
    const struct {
        std::uint32_t setting;
        int width, clientHeight, dpi;
        int percent;
    } cases[] = {{kUiScaleAuto, 480, 640, 192, 100},    // the handheld as it was
                 {kUiScaleAuto, 240, 320, 96, 100},     // the small set
                 {kUiScaleAuto, 1920, 976, 192, 200},   // 1080 with the bar at 200 %
                 {kUiScaleAuto, 1920, 959, 192, 175},   // a pixel short of 200 %
                 {kUiScaleAuto, 1080, 1736, 192, 225},  // portrait
                 {200, 480, 640, 192, 200}};
    for (const auto& c : cases) {
        const int percent = UiScalePercentForClient(c.setting, c.width, c.clientHeight, c.dpi);
        EXPECT_EQ(percent, c.percent) << c.width << "x" << c.clientHeight;
        // The window so made gives the same scale again.
        EXPECT_EQ(UiScalePercent(c.setting, c.width,
                                 c.clientHeight + SoftKeyBarHeight(c.dpi) * percent / 100, c.dpi),
                  percent);
    }
}

TEST(UiScale, ItsFileHoldsOneOfTheChoices) {
    EXPECT_EQ(UiScalePath("/home/u/.config/satwalk/options"), "/home/u/.config/satwalk/ui-scale");
    const std::string path = ::testing::TempDir() + "shell-ui-scale";
    const struct {
        const char* bytes;
        std::uint32_t setting;
    } cases[] = {{"auto\n", kUiScaleAuto}, {"150\n", 150},          {"300", 300},
                 {"100\r\n", 100},         {"125\n", kUiScaleAuto}, {"", kUiScaleAuto},
                 {"2000", kUiScaleAuto}};
    for (const auto& c : cases) {
        std::ofstream(path, std::ios::binary) << c.bytes;
        EXPECT_EQ(LoadUiScale(path), c.setting) << c.bytes;
    }
    for (const std::uint32_t setting : kUiScaleChoices) {
        EXPECT_TRUE(SaveUiScale(path, setting));
        EXPECT_EQ(LoadUiScale(path), setting);
    }
    EXPECT_EQ(LoadUiScale(path + "-missing"), kUiScaleAuto);
}

}  // namespace
}  // namespace satwalk::shell
