// The program end to end: scripts run offscreen against the real window.
#include <gtest/gtest.h>

#include <QImage>

#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "ScriptRun.h"

namespace {

TEST_F(ScriptRunTest, CommandsKeysSnapshotsAndState) {
    WriteScript(
        "# screens, units and the alarm\n"
        "key 7\nkey right\nkey right\ncommand 40019\ncommand 40058\n"
        "snapshot @/speedometer.png\n"
        "command 40011\n"
        "answer no\ncommand 40003\n"
        "state @/state.json\nquit\n");
    ASSERT_EQ(Run(), 0) << Read("stderr.txt");
    ExpectHas(
        "state.json",
        {"\"currentScreen\":3", "\"speedAlarmOn\":true", "\"speedAlarmLimit\":60", "\"units\":2",
         "\"trackIntervalMs\":60000", "\"linkRunning\":false", "\"alarmPlaying\":false",
         "\"icon\":\"information\"", "\"icon\":\"question\"", "\"gps\":{",
         "请首先在GPS设置中配置GPS接收机。", "您确定要退出程序？", "/home/Documents\""});
    EXPECT_GT(fs::file_size(Path("speedometer.png")), 1000u);
    EXPECT_TRUE(fs::is_directory(Path("home/Documents/My GPS/Track Log")));
    EXPECT_FALSE(fs::exists(Path("options"))) << "neither a refused exit nor quit saves";
}

// A receiver replayed through a pseudo-terminal: the fix arrives, the speed
// climbs 1 knot a second past the 50 km/h alarm, and stopping ends it all.
TEST_F(ScriptRunTest, ReplayedReceiverDrivesFixAndAlarm) {
    WriteScript(
        "command 40045\nwait 2200\nstate @/early.json\n"
        "command 40011\n"  // a second start while running changes nothing
        "wait 5000\nstate @/fast.json\n"
        "key 0\nstate @/stopped.json\nquit\n");
    ASSERT_EQ(Run("--replay '" SATWALK_TEST_DATA "/speed-run.nmea' --replay-rate 5"), 0)
        << Read("stderr.txt");
    ExpectHas("early.json",
              {"\"linkRunning\":true", "\"fixValid\":true", "\"fixTimeKnown\":true",
               "\"alarmPlaying\":false", "\"latitude\":\"2232.1000\"",
               "\"bluetoothReceiver\":true"});  // the replay leaves the settings alone
    // No message box: the second start raised no failure.
    ExpectHas("fast.json", {"\"alarmPlaying\":true", "\"messages\":[]"});
    ExpectHas("stopped.json", {"\"linkRunning\":false", "\"alarmPlaying\":false",
                               "\"latitude\":\"\"", "\"fixTimeLocal\":null"});
}

TEST_F(ScriptRunTest, SecondStartRaisesTheFirstAndEnds) {
    WriteScript("wait 1500\nstate @/state.json\nquit\n");
    std::thread first([this] { EXPECT_EQ(Run("--single-instance"), 0); });
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    const std::string second =
        "env QT_QPA_PLATFORM=offscreen SATWALK_INSTANCE_NAME='satwalk-test-" +
        std::to_string(::getpid()) + "' '" SATWALK_BINARY "' 2>/dev/null";
    EXPECT_EQ(std::system(second.c_str()), 0);
    first.join();
    ExpectHas("state.json", {"\"raiseRequests\":1"});
}

// Taps on the tool strip's tabs (portrait 480 x 640 at 192 dpi: tiles every
// 79 pixels in the strip's bottom row) run their screens' commands; the
// loaded-map tab does nothing while no map is loaded. A tap on an alarm cell
// sets its limit, a second one on the lit cell switches the alarm off.
TEST_F(ScriptRunTest, TabAndAlarmCellTaps) {
    const int expected[6] = {0, 4, 4, 2, 3, 1};
    std::string script = "key 7\n";
    for (int tab = 0; tab < 6; ++tab)
        script += "tap " + std::to_string(42 + tab * 79) + " 603\nstate @/tab" +
                  std::to_string(tab) + ".json\n";
    const std::string tapCell = "tap 211 534\n";  // the fourth cell, 80
    WriteScript(script + tapCell + "state @/cell.json\n" + tapCell + "state @/off.json\nquit\n");
    ASSERT_EQ(Run("--size 480x640 --dpi 192"), 0) << Read("stderr.txt");
    for (int tab = 0; tab < 6; ++tab)
        ExpectHas("tab" + std::to_string(tab) + ".json",
                  {"\"currentScreen\":" + std::to_string(expected[tab]) + ","});
    ExpectHas("cell.json", {"\"speedAlarmOn\":true", "\"speedAlarmLimit\":80,"});
    ExpectHas("off.json", {"\"speedAlarmOn\":false", "\"speedAlarmLimit\":80,"});
}

// Share of pixels that are not white, sampled on a grid.
double InkShare(const QImage& image) {
    int ink = 0, all = 0;
    for (int y = 0; y < image.height(); y += 3) {
        for (int x = 0; x < image.width(); x += 3, ++all) {
            if ((image.pixel(x, y) & 0xFFFFFFu) != 0xFFFFFFu)
                ++ink;
        }
    }
    return all > 0 ? static_cast<double>(ink) / all : 0.0;
}

// The satellite data dialog against a replayed receiver: opened before the
// first batch it shows blanks, the batches that follow reach it and fill
// its rows, the current screen is -1 while it is shown, and closing it
// brings the screen back. Every screen is snapshotted on the way.
TEST_F(ScriptRunTest, SatelliteDialogAndEveryScreenAgainstAReplay) {
    std::string script =
        "key 3\nkey 3\nstate @/blank.json\n"
        "wait 2300\nstate @/open.json\nsnapshot @/screen-dialog.png\n"
        "key escape\nstate @/closed.json\n"
        "key 3\nkey 6\nstate @/replaced.json\n";
    const char* const keys[] = {"1", "2", "6", "7", "4"};
    for (const char* key : keys)
        script += std::string("key ") + key + "\nsnapshot @/screen-" + key + ".png\n";
    script += "quit\n";
    WriteScript(script);
    ASSERT_EQ(Run("--replay '" SATWALK_TEST_DATA "/speed-run.nmea' --replay-rate 5"), 0)
        << Read("stderr.txt");

    ExpectHas("blank.json", {"\"currentScreen\":-1,", "\"satelliteDialogOpen\":true",
                             "\"satelliteDialogRows\":[[\"-\",\"-\",\"-\",\"-\"],"});
    ExpectHas("open.json", {"\"fixValid\":true", "\"currentScreen\":-1,",
                            "\"satelliteDialogRows\":[[\"03\",\"45\",\"120\",\"42\"],"
                            "[\"06\",\"30\",\"200\",\"38\"],",
                            "[\"25\",\"50\",\"015\",\"40\"],[\"-\",\"-\",\"-\",\"-\"],"});
    ExpectHas("closed.json", {"\"currentScreen\":0,", "\"satelliteDialogOpen\":false",
                              "\"satelliteDialogRows\":[]"});
    ExpectHas("replaced.json", {"\"currentScreen\":2,"});

    // Each screen: the window's size (480 x 640 above a 52-pixel soft-key
    // bar at 192 dpi), well inked, and different from the others.
    std::vector<QImage> shots;
    for (const char* name : {"1", "2", "6", "7", "4", "dialog"}) {
        const QImage image(QString::fromStdString(Path(std::string("screen-") + name + ".png")));
        ASSERT_FALSE(image.isNull()) << name;
        EXPECT_EQ(image.width(), 480) << name;
        EXPECT_EQ(image.height(), 640 + 52) << name;
        const double ink = InkShare(image);
        EXPECT_GT(ink, 0.12) << name;
        EXPECT_LT(ink, 0.9) << name;
        for (const QImage& other : shots) EXPECT_NE(image, other) << name;
        shots.push_back(image);
    }
}

}  // namespace

// Tracks and points of interest against the demo drive: a log recorded for
// two ticks at 10 s, ended by stopping the link, then, in a second run,
// viewed on the map beside the sample POIs.
TEST_F(ScriptRunTest, RecordViewAndImport) {
    WriteScript(
        "wait 2000\ncommand 40055\ncommand 40039\nwait 21000\nstate @/recording.json\n"
        "command 40012\nstate @/stopped.json\nquit\n");
    ASSERT_EQ(Run("--replay --replay-rate 10"), 0) << Read("stderr.txt");
    ExpectHas("recording.json", {"\"tracks\":{\"recording\":true", "\"liveWorldPoints\":3",
                                 "\"trackLogOn\":true", "\"messages\":[]"});
    ExpectHas("stopped.json",
              {"\"tracks\":{\"recording\":false,\"trackFile\":\"\",\"liveWorldPoints\":0",
               "\"trackLogOn\":false"});
    const std::string recording = Read("recording.json");
    const std::size_t at = recording.find("\"trackFile\":\"") + 13;
    const std::string log = recording.substr(at, recording.find('"', at) - at);
    ASSERT_EQ(log.rfind(Path("home/Documents/My GPS/Track Log/"), 0), 0u) << log;
    const std::string lines = Read(log.substr(dir_.string().size() + 1));
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 3) << lines;
    EXPECT_EQ(lines.rfind("120.", 0), 0u) << lines;

    WriteScript("command 40040\nchoose " + log +
                "\nwait 500\n"
                "command 40042\nchoose " SATWALK_RESOURCES
                "/demo/poi/Restaurant.csv\n"
                "command 40042\nchoose " SATWALK_RESOURCES
                "/demo/poi/00008.csv\n"
                "state @/viewing.json\nsnapshot @/map.png\n"
                "command 40041\nstate @/closed.json\nquit\n");
    ASSERT_EQ(Run(), 0) << Read("stderr.txt");
    ExpectHas("viewing.json",
              {"\"currentScreen\":4", "\"viewedWorldPoints\":3", "\"viewing\":true",
               "\"viewedPath\":\"" + log + "\"", "\"showPoi\":true", "\"showTrack\":true",
               "{\"category\":17,\"name\":\"Restaurant\",\"points\":8}",
               "{\"category\":19,\"name\":\"Gas Station\",\"points\":4}", "\"messages\":[]"});
    ExpectHas("closed.json", {"\"viewedWorldPoints\":0", "\"viewing\":false"});
    EXPECT_GT(fs::file_size(Path("map.png")), 1000u);
}
