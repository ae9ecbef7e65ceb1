// The map screen end to end: scripts drive the running program offscreen
// through its buttons, drags, the file browser and the reference-point
// dialog, and read the state's `map`.
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "ScriptRun.h"

namespace {

QJsonObject MapState(const std::string& text) {
    return QJsonDocument::fromJson(QByteArray::fromStdString(text)).object()["map"].toObject();
}

using MapScriptTest = ScriptRunTest;

// 480 × 640 at 192 dpi: the button column's right button and zoom-in button.
TEST_F(MapScriptTest, WorldMapPansAndZoomsByButtonsDragAndKeys) {
    WriteScript(
        "key 4\n"
        "state @/start.json\n"
        // Right: one key at once, then ticks from 300 ms on.
        "press 462 191\n"
        "wait 1500\n"
        "release 462 191\n"
        "state @/button.json\n"
        "tap 462 225\n"
        "state @/zoomed.json\n"
        // A drag of (-10, +6) moves the map with the stylus.
        "press 200 300\nmove 190 306\nrelease 190 306\n"
        "state @/dragged.json\n"
        "key down\n"
        "key return\nkey up\n"
        "state @/keys.json\n"
        "quit\n");
    ASSERT_EQ(Run("--size 480x640 --dpi 192"), 0) << Read("stderr.txt");
    const QJsonObject start = MapState(Read("start.json"));
    const QJsonObject button = MapState(Read("button.json"));
    const QJsonObject zoomed = MapState(Read("zoomed.json"));
    const QJsonObject dragged = MapState(Read("dragged.json"));
    const QJsonObject keys = MapState(Read("keys.json"));
    EXPECT_EQ(start["mode"].toString(), "world");
    EXPECT_EQ(start["viewScale"].toDouble(), 10000);
    // The key at once, three ticks of one pixel, then 7, 13, ...: at least
    // one fast tick, however late a busy machine runs the timer.
    const double moved = start["worldOriginX"].toDouble() - button["worldOriginX"].toDouble();
    EXPECT_GE(moved, 11);
    EXPECT_LE(moved, 80);
    EXPECT_EQ(button["panStep"].toInt(), 1) << "slow again after the release";
    EXPECT_EQ(zoomed["viewScale"].toDouble(), 5000);
    EXPECT_EQ(zoomed["panMode"].toInt(), 1) << "the pan mode comes back after a zoom button";
    EXPECT_DOUBLE_EQ(dragged["worldOriginX"].toDouble() - zoomed["worldOriginX"].toDouble(), -10);
    EXPECT_DOUBLE_EQ(dragged["worldOriginY"].toDouble() - zoomed["worldOriginY"].toDouble(), 6);
    // Down pans by a keyboard step; Return makes up zoom in.
    EXPECT_LT(keys["worldOriginY"].toDouble(), dragged["worldOriginY"].toDouble());
    EXPECT_EQ(keys["viewScale"].toDouble(), 2000);
    EXPECT_EQ(keys["panMode"].toInt(), 0);
}

TEST_F(MapScriptTest, DemoMapLoadsThroughTheBrowserAndCalibratesThroughTheDialog) {
    fs::create_directories(dir_ / "maps");
    fs::copy_file(SATWALK_DEMO_MAP, dir_ / "maps/west-lake-demo.png");
    WriteScript(
        "command 40020\n"
        "choose @/maps/west-lake-demo.png\n"
        "state @/loaded.json\n"
        // Slot 1 at image (250, 61.25): 30°15'30\" N 120°08'00\" E.
        "command 40034\n"
        "tap 100 100\n"
        "command 40007\n"
        "set 1013 1\n"
        "set 1003 30\nset 1004 15\nset 1005 30\n"
        "set 1007 120\nset 1008 8\nset 1009 0\n"
        "answer ok\n"
        "state @/one.json\n"
        // Slot 2 at image (950, 811.25): 30°14'00\" N 120°10'30\" E.
        "command 40035\n"
        "tap 380 400\n"
        "key return\n"
        "set 1013 1\n"
        "set 1003 30\nset 1004 14\nset 1005 0\n"
        "set 1007 120\nset 1008 10\nset 1009 30\n"
        "answer ok\n"
        "state @/two.json\n"
        "quit\n");
    ASSERT_EQ(Run("--size 480x640 --dpi 192"), 0) << Read("stderr.txt");
    const QJsonObject loaded = MapState(Read("loaded.json"));
    EXPECT_EQ(loaded["mode"].toString(), "map");
    EXPECT_EQ(loaded["imageWidth"].toInt(), 1200);
    EXPECT_EQ(loaded["imageHeight"].toInt(), 900);
    EXPECT_FALSE(loaded["calibrated"].toBool());
    EXPECT_EQ(loaded["recentMaps"].toArray()[0].toString().toStdString(),
              (dir_ / "maps/west-lake-demo.png").string());
    const QJsonObject one = MapState(Read("one.json"));
    EXPECT_EQ(one["activeReferenceCount"].toInt(), 1);
    EXPECT_FALSE(one["calibrated"].toBool());
    EXPECT_FALSE(one["placing"].toBool());
    const QJsonObject two = MapState(Read("two.json"));
    EXPECT_TRUE(two["calibrated"].toBool());
    EXPECT_EQ(two["activeReferenceCount"].toInt(), 2);
    const QJsonArray points = two["slots"].toArray();
    EXPECT_NEAR(points[0].toObject()["latitude"].toDouble(), 30.258333, 1e-6);
    EXPECT_NEAR(points[1].toObject()["longitude"].toDouble(), 120.175, 1e-6);
    EXPECT_DOUBLE_EQ(points[1].toObject()["imageX"].toDouble(), 950);
    // The file beside the other reference files, under the documents folder.
    std::string rpt;
    for (const auto& e : fs::recursive_directory_iterator(dir_ / "home"))
        if (e.path().filename() == "Ref Pt_west-lake-demo.rpt")
            rpt = e.path().string();
    ASSERT_FALSE(rpt.empty());
    std::ifstream in(rpt, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(text.rfind("1,30.258333,120.133333,250.000000,61.250000,\r\n"
                         "1,30.233333,120.175000,950.000000,811.250000,\r\n",
                         0),
              0u)
        << text;
}

}  // namespace
