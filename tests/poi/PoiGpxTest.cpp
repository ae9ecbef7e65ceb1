// GPX waypoints as a POI group: names as they stand, icons by symbol or type.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "PoiGpx.h"
#include "PoiStore.h"

namespace satwalk::poi {
namespace {

TEST(PoiGpx, WaypointsBecomeRecords) {
    const struct {
        const char* name;
        track::TrackWaypoint waypoint;
        const char* stored;
        std::uint32_t category;
    } cases[] = {
        {"a symbol by name, any case", {1, 2, "Shell", "gas station", ""}, "Shell", 19},
        {"a type by code when the symbol names none", {1, 2, "x", "Flag, Blue", "00011"}, "x", 17},
        {"neither", {1, 2, "西湖", "Geocache", "Geocache|Traditional Cache"}, "西湖", 0},
        {"a long name: 57 bytes", {1, 2, std::string(60, 'x'), "", ""}, "", 0},
        {"a long Chinese name: whole characters",
         {1, 2, "西湖西湖西湖西湖西湖西湖西湖西湖西湖西湖", "", ""},
         "西湖西湖西湖西湖西湖西湖西湖西湖西湖西",
         0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const PoiRecord r = PoiFromWaypoint(c.waypoint);
        EXPECT_EQ(r.category, c.category);
        EXPECT_EQ(std::string(r.name), *c.stored != '\0' ? c.stored : std::string(57, 'x'));
    }
}

TEST(PoiGpx, TheContentDecidesTheImport) {
    const std::string dir = ::testing::TempDir() + "poigpx";
    std::filesystem::create_directories(dir);
    const std::string path = dir + "/Restaurant.csv";  // a GPX, whatever its name
    std::ofstream(path, std::ios::binary)
        << "<gpx><wpt lat='30.1' lon='120.2'><name>A</name><sym>Bank</sym></wpt>"
           "<trk><trkseg><trkpt lat='1' lon='2'/></trkseg></trk><wpt lat='x' lon='1'/></gpx>";
    PoiStore store;
    const PoiImport imported = ImportPoiFile(store, path);
    EXPECT_TRUE(imported.read);
    EXPECT_EQ(imported.category, 17u);  // the file's name first
    ASSERT_EQ(imported.points, 1u);
    EXPECT_EQ(store.At(0).points.At(0).category, 4u);
    EXPECT_EQ(store.At(0).points.At(0).latitude, 30.1);

    std::ofstream(path, std::ios::binary) << "<html/>";
    EXPECT_FALSE(ImportPoiFile(store, path).read);
}

}  // namespace
}  // namespace satwalk::poi
