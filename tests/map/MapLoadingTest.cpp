// Fitting a new map into the view, where the view looks at it, and the list of recent maps.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include "ImageViewport.h"
#include "MapLoading.h"

namespace satwalk::map {
namespace {

using screens::Rect;

// The small portrait screen: 240 wide, 268 high with a 26-pixel bar.
constexpr Rect kSmallView{0, 0, 240, 268};
constexpr int kSmallBar = 26;
constexpr Rect kView{0, 0, 480, 640};

TEST(MapFit, FitsTheRelativelyLongerSide) {
    // Zoom step 20 throughout.
    const std::tuple<const char*, ImageSize, Rect, int, MapFit> cases[] = {
        {"wide image", {1000, 500}, kSmallView, kSmallBar, {0, 240.0, 120.0, 20, 10}},
        {"tall image", {300, 900}, kSmallView, kSmallBar, {1, 242.0 / 3, 242.0, 6, 20}},
        // 242 < 240 * 242 / 242 is false: a tie goes to the width.
        {"view's shape", {240, 242}, kSmallView, kSmallBar, {0, 240.0, 242.0, 20, 20}},
        // 480 * 2,000,000,000 passes 32 bits.
        {"huge height", {100, 2'000'000'000}, {0, 0, 480, 640}, 0, {1, 3.2e-5, 640.0, 0, 20}},
        {"empty image", {0, 500}, kSmallView, kSmallBar, {}},
        {"bar fills view", {1000, 500}, kSmallView, 268, {}},
        {"view no wider", {1000, 500}, {50, 0, 50, 268}, kSmallBar, {}}};
    for (const auto& [what, image, view, bar, expectedFit] : cases) {
        const MapFit fit = FitImageToView(image, view, bar, 20);
        EXPECT_EQ(fit.fitByHeight, expectedFit.fitByHeight) << what;
        EXPECT_DOUBLE_EQ(fit.displayedWidth, expectedFit.displayedWidth) << what;
        EXPECT_DOUBLE_EQ(fit.displayedHeight, expectedFit.displayedHeight) << what;
        EXPECT_EQ(fit.zoomStepX, expectedFit.zoomStepX) << what;
        EXPECT_EQ(fit.zoomStepY, expectedFit.zoomStepY) << what;
    }
}

TEST(MapFit, LoadedImageStartsFittedAndCentred) {
    LoadedMap map;
    map.outsideMap = 1;
    ApplyLoadedImage(map, "/home/u/maps/Hangzhou.west.lake.png", {300, 900}, kSmallView, kSmallBar,
                     20);
    EXPECT_TRUE(map.mapMode == 1 && map.outsideMap == 0);
    EXPECT_EQ(map.mapFileName + " " + map.mapStem, "Hangzhou.west.lake.png Hangzhou");
    EXPECT_DOUBLE_EQ(map.currentHeight, 242.0);
    EXPECT_EQ(map.scrollCentre, (PointF{150.0, 450.0}));
}

using List = std::vector<std::string>;

List Entries(const RecentMaps& r) {
    return List(r.begin(), r.end());
}

TEST(RecentMaps, ChoosingAndOpeningReorderWithoutDuplicates) {
    const RecentMaps full = {"a", "b", "c", "d", "e"};
    struct Step {
        enum { Choose, Open } kind;
        std::string path;    // Choose: the file chosen
        int index;           // Choose: the entry it returns; Open: the entry opened
        std::string loaded;  // Open: the path it returns
        List after;
    };
    constexpr auto C = Step::Choose, O = Step::Open;
    const RecentMaps one = {"a", "", "", "", ""};
    const std::tuple<const char*, RecentMaps, std::vector<Step>> cases[] = {
        {"first map", {}, {{C, "a", 0, "", Entries(one)}, {O, "", 0, "a", Entries(one)}}},
        {"new map drops the fifth", full, {{C, "n", 0, "", {"n", "a", "b", "c", "d"}}}},
        {"entry 3 chosen again moves to the top",
         full,
         {{C, "c", 2, "", Entries(full)}, {O, "", 2, "c", {"c", "a", "b", "d", "e"}}}},
        {"last entry from the menu", full, {{O, "", 4, "e", {"e", "a", "b", "c", "d"}}}},
        {"paths compare case and all",
         full,
         {{C, "A", 0, "", {"A", "a", "b", "c", "d"}},
          {C, "a ", 0, "", {"a ", "A", "a", "b", "c"}}}},
        {"nothing chosen", full, {{C, "", -1, "", Entries(full)}}},
        {"unused entry opens nothing",
         one,
         {{O, "", 3, "", Entries(one)},
          {O, "", 5, "", Entries(one)},
          {O, "", -1, "", Entries(one)}}}};
    for (const auto& [what, start, steps] : cases) {
        RecentMaps recent = start;
        for (const Step& s : steps) {
            if (s.kind == Step::Choose)
                EXPECT_EQ(ChooseMapFile(recent, s.path), s.index) << what;
            else
                EXPECT_EQ(OpenRecentMap(recent, s.index), s.loaded) << what;
            EXPECT_EQ(Entries(recent), s.after) << what;
        }
    }
}

TEST(RecentMaps, MenuShowsFileNamesAndEmptyEntries) {
    const RecentMaps recent = {"/m/west lake.jpg", "scan", "", "/m/图/地图.png", ""};
    List texts;
    for (int i = 0; i < 6; ++i) texts.push_back(RecentMapMenuText(recent, i));
    EXPECT_EQ(texts, (List{"west lake.jpg", "scan", "空", "地图.png", "空", "空"}));
}

// ----- the visible part of the picture -----

TEST(VisiblePart, SourceAndDestinationAtZoomAndScroll) {
    // A 480 × 640 view; an empty destination says nothing is visible.
    constexpr ImageSize kSquare{1000, 1000};
    constexpr double kHalf = 1000.0 / 479 * 0.5;
    // The displayed size, and the image pixel at the view's centre.
    const std::tuple<const char*, ImageSize, double, double, PointF, RectF, Rect> cases[] = {
        {"zoomed in 2x", kSquare, 2000, 2000, {500, 500}, {380, 340, 620, 660}, kView},
        {"fitted", {1000, 500}, 480, 240, {500, 250}, {0, 0, 1000, 500}, {0, 200, 480, 440}},
        {"at left edge", kSquare, 2000, 2000, {0, 500}, {0, 340, 120, 660}, {240, 0, 480, 640}},
        {"small image", {100, 50}, 100, 50, {50, 25}, {0, 0, 100, 50}, {190, 295, 290, 345}},
        // The picture spans 0.5 to 479.5 across: edges round away from zero,
        // so the destination starts a pixel in, half a source pixel later.
        {"half pixels", kSquare, 479, 479, {500, 500}, {kHalf, kHalf, 1e3, 1e3}, {1, 81, 480, 560}},
        {"past the image", kSquare, 2000, 2000, {-200, 500}, {}, {}},
        {"no image", {0, 0}, 480, 240, {0, 0}, {}, {}},
        {"no size", {1000, 500}, 0, 0, {500, 250}, {}, {}},
        {"not a number", {1000, 500}, 480, 240, {NAN, 250}, {}, {}}};
    for (const auto& [what, image, width, height, centre, source, destination] : cases) {
        const VisiblePart part = ComputeVisiblePart(image, width, height, centre, kView);
        EXPECT_EQ(part.empty, destination == Rect{}) << what;
        EXPECT_EQ(part.destination, destination) << what;
        for (double RectF::*edge : {&RectF::left, &RectF::top, &RectF::right, &RectF::bottom})
            EXPECT_NEAR(part.source.*edge, source.*edge, 1e-9) << what;
    }
    // A view away from the screen's corner moves the destination only.
    const VisiblePart inset =
        ComputeVisiblePart({1000, 1000}, 2000, 2000, {500, 500}, {20, 100, 500, 740});
    EXPECT_EQ(inset.destination, (Rect{20, 100, 500, 740}));
    EXPECT_EQ(inset.source, (RectF{380, 340, 620, 660}));
}

}  // namespace
}  // namespace satwalk::map
