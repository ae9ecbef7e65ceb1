// The remembered window geometry: the file read back from whatever it holds,
// and the wish fitted to the screens there are now.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "WindowGeometry.h"

namespace satwalk::shell {
namespace {

TEST(WindowGeometry, FileRoundTripAndHostileContent) {
    const std::string path = ::testing::TempDir() + "satwalk-window";
    const WindowGeometry saved{-30, 40, 800, 600, true};
    ASSERT_TRUE(SaveWindowGeometry(path, saved));
    EXPECT_EQ(LoadWindowGeometry(path), saved);

    const std::pair<std::string, std::optional<WindowGeometry>> cases[] = {
        {"10 20 480 692 0\n", WindowGeometry{10, 20, 480, 692, false}},
        {"10 20 480 692 1\r\n", WindowGeometry{10, 20, 480, 692, true}},
        {"10 20 480 692 1", WindowGeometry{10, 20, 480, 692, true}},
        {"", std::nullopt},
        {"10 20 480 692\n", std::nullopt},
        {"10 20 480 692 2\n", std::nullopt},
        {"10 20 480 692 0 7\n", std::nullopt},
        {"a b c d e\n", std::nullopt},
        {"10 20 99999999999 692 0\n", std::nullopt},
        {std::string(200, '7'), std::nullopt},
    };
    for (const auto& [text, expected] : cases) {
        std::ofstream(path, std::ios::binary) << text;
        EXPECT_EQ(LoadWindowGeometry(path), expected) << text;
    }
    std::remove(path.c_str());
    EXPECT_EQ(LoadWindowGeometry(path), std::nullopt);
    EXPECT_FALSE(SaveWindowGeometry("/no/such/folder/window", saved));
}

TEST(WindowGeometry, FittedToTheScreens) {
    // A wide primary screen and a second one to its right.
    const std::vector<ScreenRect> two = {{0, 0, 1920, 1050}, {1920, 0, 1280, 1024}};
    constexpr int kMinW = 320, kMinH = 400;
    struct Case {
        const char* name;
        WindowGeometry wish, fitted;
    };
    const Case cases[] = {
        {"as it was", {100, 80, 480, 692, false}, {100, 80, 480, 692, false}},
        {"on the second screen", {2000, 100, 480, 692, true}, {2000, 100, 480, 692, true}},
        {"below the minimum", {100, 80, 10, 10, false}, {100, 80, kMinW, kMinH, false}},
        {"larger than its screen", {2000, 0, 4000, 3000, false}, {2000, 0, 1280, 1024, false}},
        {"off every screen", {9000, 9000, 480, 692, false}, {720, 179, 480, 692, false}},
        {"a sliver on screen", {-470, 100, 480, 692, false}, {720, 179, 480, 692, false}},
        {"title bar above the top", {100, -200, 480, 692, false}, {100, 0, 480, 692, false}},
        {"mostly off the right", {1900, 100, 480, 692, false}, {1900, 100, 480, 692, false}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Sanitize(c.wish, two, kMinW, kMinH), c.fitted);
    }
    // Without a screen to fit to, only the minimum applies.
    EXPECT_EQ(Sanitize({5, 5, 1, 1, false}, {}, kMinW, kMinH),
              (WindowGeometry{5, 5, kMinW, kMinH, false}));
}

}  // namespace
}  // namespace satwalk::shell
