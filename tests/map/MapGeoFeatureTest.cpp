// Georeferenced maps in the map feature, with the platform faked and the
// files beside the image written by the test: a world file calibrates, a
// broken one keeps the map shown before, the user's points take over only
// once they calibrate, and "关闭地图" goes back to the world.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "MapFeatureFixture.h"

namespace satwalk::map {
namespace {

namespace fs = std::filesystem;

class MapGeoFeatureTest : public test::MapFeatureFixture {
  protected:
    MapGeoFeatureTest() {
        fs::create_directories(root / "maps");
        utm = (root / "maps/utm.png").string();
        broken = (root / "maps/broken.png").string();
        platform->images[utm] = platform->images[broken] = {1000, 800};
        Write("utm.pgw", "25\n0\n0\n-25\n210012.5\n3352987.5\n");
        Write("utm.prj", "EPSG:32651");
        Write("broken.pgw", "0\n0\n0\n0\n210012.5\n3352987.5\n");
    }

    void Write(const char* name, const char* text) {
        std::ofstream(root / "maps" / name, std::ios::binary) << text;
    }
    void Load(const std::string& path) {
        MapFeatureFixture::Load(path);
        Layout();
    }

    std::string utm, broken;
};

TEST_F(MapGeoFeatureTest, WorldFileCalibratesAndABrokenOneKeepsTheMap) {
    Load(utm);
    const MapModel& m = feature->model();
    ASSERT_TRUE(m.calibration.Georeferenced()) << State();
    EXPECT_EQ(m.calibrationSource, "worldfile");
    // 480 px show 1000 px of 25 m: the 100 px bar is about 5.2 km.
    EXPECT_NEAR(m.scaleBarDistance, 100 * 1000 * 25.0 / 480 / 1000, 0.1);
    EXPECT_NEAR(m.extent.centre.latitude, 30.2, 0.2);
    EXPECT_TRUE(ui.messages.empty());

    Load(broken);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_NE(ui.messages[0].first.find("broken.pgw"), std::string::npos) << ui.messages[0].first;
    EXPECT_EQ(platform->loaded, utm);
    EXPECT_EQ(m.mapPath, utm);
    EXPECT_TRUE(m.calibration.Georeferenced());
}

TEST_F(MapGeoFeatureTest, TheUsersPointsWinOnceTheyCalibrate) {
    Load(utm);
    Place(0, "30", "120", 100);
    EXPECT_TRUE(feature->model().calibration.Georeferenced()) << "one point does not calibrate";
    // Slot 1 is measured against the world file: a point typed far off shows.
    const std::string state = State();
    const std::size_t at = state.find("\"residualsMetres\":[");
    ASSERT_NE(at, std::string::npos);
    EXPECT_GT(std::stod(state.substr(at + 19)), 1000.0) << state.substr(at, 60);
    EXPECT_EQ(state.substr(state.find(']', at) - 20, 21), ",null,null,null,null]");
    Place(1, "29", "121", 300);
    EXPECT_FALSE(feature->model().calibration.Georeferenced());
    EXPECT_EQ(feature->model().calibrationSource, "rpt");
    // Loaded again, the saved file wins over the world file.
    Load(utm);
    EXPECT_FALSE(feature->model().calibration.Georeferenced());
    EXPECT_TRUE(feature->model().calibration.IsValid());
}

TEST_F(MapGeoFeatureTest, CloseMapGoesBackToTheWorld) {
    const auto closeEntry = [this] {
        const std::string menu = shell::DescribeMenu(shell.BuildMainMenu());
        const std::size_t at = menu.find("40021 关闭地图");
        return at == std::string::npos ? std::string() : menu.substr(at, menu.find('\n', at) - at);
    };
    EXPECT_EQ(closeEntry(), "40021 关闭地图 (grey)");
    Load(utm);
    EXPECT_EQ(closeEntry(), "40021 关闭地图");
    shell.OnCommand(cmd::kCloseMap);
    EXPECT_EQ(
        std::tuple(feature->mapLoaded(), platform->loaded.empty(), feature->model().map.mapMode,
                   feature->model().calibration.IsValid(), shell.currentScreen),
        std::tuple(false, true, 0, false, shell::kScreenMap));
    EXPECT_EQ(settings.recentMaps[0], utm) << "the recent list keeps it";
}

}  // namespace
}  // namespace satwalk::map
