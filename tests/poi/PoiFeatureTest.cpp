// The POI feature through the shell's commands, and its map layer.
#include <gtest/gtest.h>

#include "CommandIds.h"
#include "FeatureFixture.h"
#include "PoiCommands.h"
#include "PoiFeature.h"
#include "RecordingCanvas.h"
#include "StateJson.h"

namespace satwalk::poi {
namespace {

using screens::CanvasCall;
using track::test::WriteFile;

class FakeIcons : public PoiPlatform {
  public:
    bool LoadIcons(screens::Bitmap& icons) override {
        ++loads;
        icons = screens::Bitmap{screens::BitmapId{42}, 496, 16};
        return ok;
    }
    bool ok = true;
    int loads = 0;
};

class PoiFeatureTest : public track::test::FeatureFixture {
  protected:
    PoiFeatureTest() {
        auto fake = std::make_unique<FakeIcons>();
        icons = fake.get();
        feature = std::make_unique<PoiFeature>(shell, chooser, std::move(fake));
        shell.features().Add(*feature);
    }
    void Import(const std::string& path) {
        shell.OnCommand(cmd::kImportPoi);
        chooser.Pick(path);
    }

    FakeIcons* icons = nullptr;
    std::unique_ptr<PoiFeature> feature;
};

TEST_F(PoiFeatureTest, ImportAddsOneGroupPerFile) {
    const std::string dir = settings.storageRoot + "/";
    WriteFile(dir + "Restaurant.csv", "120.1,30.2,Noodles,7-21\r\n120.2,30.3,Grill\r\n");
    WriteFile(dir + "gas station.csv", "120.1,30.2,Pump\r\n");
    const struct {
        const char* name;
        std::string pick;
        bool iconsLoad;
        std::vector<std::string> messages;
        std::uint32_t groups, lastCategory;
    } cases[] = {{"icons missing: goes on",
                  dir + "Restaurant.csv",
                  false,
                  {"Load POI Icons failed: 0x08200a19\n\nPress OK to continue..."},
                  1,
                  17},
                 {"by name in any case", dir + "gas station.csv", true, {}, 2, 19},
                 {"cancelled", "", true, {}, 2, 19},
                 {"missing file", dir + "gone.csv", true, {"Open POI File failed!"}, 2, 19}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ui.messages.clear();
        icons->ok = c.iconsLoad;
        settings.showPoi = 0;
        shell.currentScreen = shell::kScreenCompass;
        Import(c.pick);
        EXPECT_EQ(std::tuple(chooser.modes.back(), MessageTexts()), std::tuple(3, c.messages));
        ASSERT_EQ(feature->store().Count(), c.groups);
        EXPECT_EQ(feature->store().At(c.groups - 1).category, c.lastCategory);
        const bool shown = !c.pick.empty();
        EXPECT_EQ(std::tuple(settings.showPoi, shell.currentScreen),
                  std::tuple(shown ? 1u : 0u, shown ? shell::kScreenMap : shell::kScreenCompass));
    }
    EXPECT_EQ(icons->loads, 2) << "tried again after a failure, then kept";
    EXPECT_NE(feature->icons(), nullptr);
    EXPECT_NE(shell::BuildStateJson(shell, {}).find(
                  "\"poi\":{\"groups\":[{\"category\":17,\"name\":\"Restaurant\",\"points\":2},"
                  "{\"category\":19,\"name\":\"Gas Station\",\"points\":1}]}"),
              std::string::npos);

    shell.OnCommand(cmd::kDeleteAllPoi);
    EXPECT_TRUE(feature->store().Empty());
    Import(dir + "Restaurant.csv");
    EXPECT_EQ(feature->store().Count(), 1u);
}

TEST_F(PoiFeatureTest, LayerDrawsWhereTheMapShowsThePoint) {
    WriteFile(settings.storageRoot + "/00011.csv", "120.5,30.5,Here\r\n");
    Import(settings.storageRoot + "/00011.csv");
    map::MapView world;
    world.viewRect = {0, 0, 480, 560};
    map::FitWorld(world);
    map::MapView lake = world;
    lake.mapMode = 1;
    lake.imageSize = {1000, 1000};
    lake.currentWidth = lake.currentHeight = 1000;
    lake.scrollCentre = {500, 500};
    map::MapView uncalibrated = lake;
    map::ReferencePoints refs{};
    refs[0] = map::GeoPoint{1, 31, 120, 0, 0, 0, 0};
    refs[1] = map::GeoPoint{1, 30, 121, 0, 0, 1000, 1000};
    lake.calibration = map::ComputeCalibration(refs);

    const struct {
        const char* name;
        bool show;
        const map::MapView& view;
        bool drawn;
    } cases[] = {{"world", true, world, true},
                 {"hidden", false, world, false},
                 {"map without calibration", true, uncalibrated, false},
                 {"calibrated map", true, lake, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::uint32_t show = c.show ? 1 : 0;
        PoiLayer layer(*feature, show);
        screens::RecordingCanvas canvas(c.view.viewRect);
        screens::ScreenContext ctx;
        ctx.baseTextHeight = 30;
        layer.Paint(canvas, c.view, ctx, gps::GpsState{});
        const auto blits = canvas.OfKind(CanvasCall::Kind::Blit);
        ASSERT_EQ(blits.size(), c.drawn ? 1u : 0u);
        if (!c.drawn)
            continue;
        map::PointF at;
        ASSERT_TRUE(map::ProjectToScreen(c.view, 30.5, 120.5, at));
        const screens::Point icon{static_cast<int>(at.x) - 8, static_cast<int>(at.y) - 8};
        EXPECT_EQ(blits[0].to, icon) << "centred on the point";
    }
}

}  // namespace
}  // namespace satwalk::poi
