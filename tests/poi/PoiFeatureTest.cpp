// The POI feature through the shell's commands, and its map layer.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>

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
    const map::MapView lake = track::test::LakeMap(1000);
    const map::MapView uncalibrated = track::test::LakeMap(1000, false);

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

// Drawing through the index shows exactly what projecting every point shows:
// the same icons in the same order, the same names, the same counts; on
// views across the meridian opposite their centre too.
TEST(PoiIndexTest, DrawsWhatEveryPointProjectedDraws) {
    const struct {
        const char* what;
        int points;
        double latitude, longitude, spread;  // degrees around the view's centre
        double scale;                        // of the world view
    } cases[] = {{"dense, no names", 20000, 30.26, 120.14, 0.02, 0.5},
                 {"few, with names", 150, 30.26, 120.14, 0.02, 0.5},
                 {"half outside the view", 5000, 30.26, 120.14, 0.05, 0.5},
                 {"across the far meridian", 5000, -16.5, 179.99, 0.05, 1},
                 {"one place", 3000, 10, 10, 0, 2},
                 {"the whole world", 5000, 0, 20, 180, 8000}};
    const auto describe = [](const screens::RecordingCanvas& canvas) {
        std::string out;
        for (const CanvasCall& c : canvas.Calls()) {
            out += std::to_string(static_cast<int>(c.kind)) + " " + std::to_string(c.to.x) + "," +
                   std::to_string(c.to.y) + " " + std::to_string(c.rect.left) + "," +
                   std::to_string(c.rect.top) + " " + c.text + "\n";
        }
        return out;
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        std::mt19937 rng(3);
        std::uniform_real_distribution<double> unit(-1, 1);
        PoiStore store;
        for (int g = 0; g < 3; ++g) {
            PoiGroup group;
            group.category = static_cast<std::uint32_t>(g * 5);
            for (int i = 0; i < c.points / 3; ++i) {
                PoiRecord r{};
                r.latitude = c.latitude + std::min(c.spread, 70.0) * unit(rng);
                r.longitude = std::remainder(c.longitude + c.spread * unit(rng), 360.0);
                std::snprintf(r.name, sizeof r.name, "P%d.%d", g, i);
                group.points.Append(r);
                if (g != 1)  // one group as a hand-built one, without positions
                    group.positions.push_back({r.latitude, r.longitude});
            }
            store.Append(std::move(group));
        }
        map::MapView view;
        view.viewRect = {0, 0, 480, 640};
        view.viewScale = c.scale;
        view.worldOrigin.longitude = c.longitude;
        view.worldOrigin.screenX = 240;
        view.worldOrigin.screenY =
            320 + map::MercatorNorthing(c.latitude, view.viewScale, view.scaleBarPixels);
        const map::ScreenProjector projector(view);
        const PoiProjection project = ProjectionOf(projector);
        PoiIndex index;
        index.Build(store);
        const screens::Bitmap icons{screens::BitmapId::Markers, 496, 16};
        screens::RecordingCanvas each(view.viewRect), indexed(view.viewRect);
        const PoiDrawCount a = DrawPois(each, store, project, &icons);
        const PoiDrawCount b =
            DrawPois(indexed, store, project, &icons, {}, &index, BoxProjectionOf(view, projector));
        EXPECT_EQ(std::tuple(a.inView, a.icons, a.labels), std::tuple(b.inView, b.icons, b.labels));
        EXPECT_GT(a.icons, 0u);
        EXPECT_EQ(describe(each), describe(indexed));
    }
}

}  // namespace
}  // namespace satwalk::poi
