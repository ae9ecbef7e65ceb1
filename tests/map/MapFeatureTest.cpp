// The map feature's rules without a display: its menus, keys and tabs, map
// loading and its failures, reference-point placement through the dialog,
// the hold menu and the state dump, with the platform faked.
#include <gtest/gtest.h>

#include <filesystem>
#include <tuple>

#include "MapFeatureFixture.h"
#include "Strings.h"

namespace satwalk::map {
namespace {

namespace fs = std::filesystem;

class MapFeatureTest : public test::MapFeatureFixture {
  protected:
    MapFeatureTest() {
        platform->images[kMap] = {1000, 800};
        ctx.bitmaps[screens::BitmapId::MapOverlay.value].width = 30;
    }

    std::string View() const { return shell::DescribeMenu(shell.BuildViewMenu()); }
    std::string Main() const { return shell::DescribeMenu(shell.BuildMainMenu()); }

    static constexpr const char* kMap = "/maps/lake.png";
};

TEST_F(MapFeatureTest, MenusKeysAndTabsFollowTheLoadedMap) {
    // The world only: no entry for a loaded map, key 5 and tab 2 do nothing,
    // the reference points are greyed, the recent slots empty.
    EXPECT_NE(View().find("  地图 >\n    ( ) 40029 世界地图\t[4]\n    [x] 40031 显示载入地图\n"
                          "    [x] 40053 显示参照点\n"),
              std::string::npos)
        << View();
    EXPECT_NE(Main().find("40034 设置参照点 1 (grey)"), std::string::npos) << Main();
    EXPECT_NE(Main().find("40207 空 (grey)"), std::string::npos) << Main();
    shell.OnKeyDown(shell::Key::Digit5);
    shell.OnTabTapped(2);
    EXPECT_EQ(shell.currentScreen, shell::kScreenGpsInfo);
    shell.OnTabTapped(1);
    EXPECT_EQ(shell.currentScreen, shell::kScreenMap);
    EXPECT_FALSE(shell.display().mapLoaded);

    Load(kMap);
    ASSERT_TRUE(feature->mapLoaded() && shell.display().mapLoaded);
    EXPECT_NE(View().find("(*) 40030 lake.png\t[5]\n    ( ) 40029 世界地图"), std::string::npos)
        << View();
    EXPECT_NE(Main().find("40203 lake.png\n"), std::string::npos) << Main();
    EXPECT_NE(Main().find("40034 设置参照点 1\n"), std::string::npos) << Main();
    shell.OnKeyDown(shell::Key::Digit1);
    shell.OnKeyDown(shell::Key::Digit5);
    EXPECT_EQ(shell.currentScreen, shell::kScreenMap);

    // The show toggles are the map's commands.
    shell.OnCommand(cmd::kShowMap);
    shell.OnCommand(cmd::kShowReferencePoints);
    EXPECT_TRUE(settings.showMap == 0 && settings.showReferencePoints == 0);
}

TEST_F(MapFeatureTest, FailedLoadsSayWhyAndKeepTheMapShown) {
    Load(kMap);
    ui.messages.clear();
    platform->images["/maps/empty.png"] = {0, 0};
    for (const char* path : {"/maps/missing.png", "/maps/empty.png"}) {
        Load(path);
        ASSERT_EQ(ui.messages.size(), 1u) << path;
        EXPECT_EQ(ui.messages[0].second, shell::MessageIcon::Error);
        ui.messages.clear();
    }
    // The missing file left the map; the unreadable size dropped it.
    EXPECT_TRUE(!feature->mapLoaded() && platform->loaded.empty());
    Load("");  // cancelled: nothing happens
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(MapFeatureTest, HugeImageLoadsOnceItsPyramidIsBuilt) {
    const std::string huge = "/maps/huge.jpg";
    const std::tuple<ImageLoadError, const char*> ends[] = {
        {ImageLoadError::Cancelled, nullptr},
        {ImageLoadError::NoDiskSpace, "磁盘空间不足，无法为 huge.jpg 建立地图缓存！"},
        {ImageLoadError::Damaged, "导入 huge.jpg 失败！没有足够内存空间！"},
        {ImageLoadError::NoGdal, "Georeferenced and very large maps need GDAL"},
    };
    for (const auto& [error, message] : ends) {
        Load(kMap);
        ui.messages.clear();
        platform->errors[huge] = ImageLoadError::Pending;
        Load(huge);  // building: nothing said, the map shown stays
        EXPECT_TRUE(ui.messages.empty());
        platform->prepared(huge, error);
        EXPECT_EQ(platform->loaded, kMap);
        ASSERT_EQ(ui.messages.size(), message ? 1u : 0u);
        if (message) {
            EXPECT_TRUE(ui.messages[0].first.starts_with(message)) << ui.messages[0].first;
        }
    }
    // Built: now it loads at once, and the map screen shows it.
    platform->errors.clear();
    platform->images[huge] = {40000, 40000};
    shell.ChooseScreen(shell::kScreenGpsInfo);
    platform->prepared(huge, ImageLoadError::None);
    EXPECT_EQ(platform->loaded, huge);
    EXPECT_EQ(shell.currentScreen, shell::kScreenMap);
}

TEST_F(MapFeatureTest, PlacementThroughTheDialogCalibratesAndSavesTheReferenceFile) {
    Load(kMap);
    Layout();
    // Two corners of the picture, each placed with the soft keys' OK.
    const std::tuple<int, const char*, const char*> points[] = {{0, "30", "120"}, {1, "29", "121"}};
    for (const auto& [slot, latitude, longitude] : points) {
        // The cursor moved away from the first point before the second is confirmed.
        Place(slot, latitude, longitude, 100 + 200 * slot);
        EXPECT_EQ(platform->editedSlot, slot);
        EXPECT_FALSE(shell.softKeys().Plain()) << "placement ends with the dialog's OK";
    }
    EXPECT_TRUE(feature->model().calibration.IsValid());
    EXPECT_NE(State().find("\"calibrated\":true,\"activeReferenceCount\":2"), std::string::npos)
        << State();
    EXPECT_TRUE(fs::exists(MakeReferenceFileName(settings.storageRoot, kMap)));
    EXPECT_TRUE(ui.messages.empty());

    // Placing offers only OK and cancel; cancel restores the cursor and the drop-downs.
    shell.OnCommand(cmd::kSetReferencePoint1 + 2);
    EXPECT_TRUE(shell.softKeys().Plain());
    EXPECT_EQ(shell.softKeys().right, common::LoadString(common::kStrPlacementCancel));
    shell.OnCommand(cmd::kCancelPlacement);
    EXPECT_FALSE(shell.softKeys().Plain());
    EXPECT_NE(State().find("\"placing\":false"), std::string::npos);
}

TEST_F(MapFeatureTest, HoldOpensTheReferenceMenuAndButtonsRepeat) {
    Load(kMap);
    Layout();
    shell.features().NotifyStylusDown(240, 280);
    EXPECT_EQ(platform->Period(MapTimer::Hold), 600);
    ASSERT_TRUE(platform->Fire(MapTimer::Hold));
    EXPECT_EQ(platform->Period(MapTimer::Hold), 0) << "a hold fires once";
    ASSERT_TRUE(platform->holdMenu);
    EXPECT_NE(State().find("\"holdMenuOpen\":true"), std::string::npos);
    platform->holdMenu(cmd::kSetReferencePoint1 + 3);
    EXPECT_NE(State().find("\"placing\":true,\"editedSlot\":3"), std::string::npos) << State();
    shell.OnCommand(cmd::kCancelPlacement);

    // A drag is no hold.
    shell.features().NotifyStylusDown(240, 280);
    shell.features().NotifyStylusMove(300, 280);
    EXPECT_EQ(platform->Period(MapTimer::Hold), 0);
    shell.features().NotifyStylusUp(300, 280);

    // A navigation button repeats: 100 ms to the first tick, then 200 ms.
    const NavigationButtons buttons = LayoutNavigationButtons(ctx);
    const screens::Rect& up = buttons[0];
    shell.features().NotifyStylusDown((up.left + up.right) / 2, (up.top + up.bottom) / 2);
    EXPECT_EQ(platform->Period(MapTimer::Repeat), 100);
    platform->Fire(MapTimer::Repeat);
    EXPECT_EQ(platform->Period(MapTimer::Repeat), 200);
    shell.features().NotifyStylusUp(0, 0);
    EXPECT_EQ(platform->Period(MapTimer::Repeat), 0);
}

}  // namespace
}  // namespace satwalk::map
