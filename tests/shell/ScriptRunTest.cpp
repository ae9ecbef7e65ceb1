// The program end to end: scripts run offscreen against the real window.
#include <gtest/gtest.h>

#include <string>

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

// The satellite data dialog against a replayed receiver: opened before the
// first batch it shows blanks, the batches that follow reach it and fill
// its rows, the current screen is -1 while it is shown, and closing it
// brings the screen back.
TEST_F(ScriptRunTest, SatelliteDialogAgainstAReplay) {
    WriteScript(
        "key 3\nkey 3\nstate @/blank.json\n"
        "wait 2300\nstate @/open.json\n"
        "key escape\nstate @/closed.json\n"
        "key 3\nkey 6\nstate @/replaced.json\nquit\n");
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
}

}  // namespace
