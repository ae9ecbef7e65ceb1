#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "CommandIds.h"
#include "FakeShellParts.h"
#include "Shell.h"
#include "Strings.h"

namespace satwalk::shell {
namespace {

using testing::FakeLink;
using testing::FakeSound;
using testing::FakeUi;

class ShellTest : public ::testing::Test {
  protected:
    ShellTest() : shell(settings, link, ui, sound, nullptr) {
        settings.bluetoothReceiver = 0;
        settings.comPort = 3;
    }
    void SetSpeed(const char* knots) { std::strcpy(link.gps.speedKnots, knots); }

    ProgramSettings settings;
    FakeLink link;
    FakeUi ui;
    FakeSound sound;
    Shell shell;
};

TEST_F(ShellTest, ScreenCommandsAndKeys) {
    struct Case {
        int command;
        Key key;
        int screen;
    };
    const Case cases[] = {
        {cmd::kSkyPlot, Key::Digit2, kScreenSkyPlot},
        {cmd::kCompass, Key::Digit6, kScreenCompass},
        {cmd::kSpeedometer, Key::Digit7, kScreenSpeedometer},
        {cmd::kWorldMap, Key::Digit4, kScreenMap},
        {cmd::kGpsInfo, Key::Digit1, kScreenGpsInfo},
    };
    for (const Case& c : cases) {
        shell.currentScreen = -5;
        shell.OnCommand(c.command);
        EXPECT_EQ(shell.currentScreen, c.screen) << c.command;
        shell.currentScreen = -5;
        shell.OnKeyDown(c.key);
        EXPECT_EQ(shell.currentScreen, c.screen) << c.command;
    }
    // Key 5 and 40030 need a loaded map.
    shell.OnCommand(cmd::kLoadedMap);
    shell.OnKeyDown(Key::Digit5);
    EXPECT_EQ(shell.currentScreen, kScreenGpsInfo);
}

TEST_F(ShellTest, SettingCommands) {
    shell.OnCommand(cmd::kNautical);
    EXPECT_EQ(settings.units, 2u);
    shell.OnCommand(cmd::kImperial);
    EXPECT_EQ(settings.units, 1u);
    shell.OnCommand(cmd::kAlarm50 + 3);
    EXPECT_EQ(settings.speedAlarmLimit, 80u);
    EXPECT_EQ(settings.speedAlarmOn, 1u);
    shell.OnCommand(cmd::kAlarmOff);
    EXPECT_EQ(settings.speedAlarmOn, 0u);
    EXPECT_EQ(settings.speedAlarmLimit, 80u);
    shell.OnCommand(cmd::kTrack10s + 3);
    EXPECT_EQ(settings.trackIntervalMs, 60000u);
    EXPECT_FALSE(ui.trackRunning) << "only a running track timer is restarted";
    shell.OnCommand(cmd::kShowPoi);
    shell.OnCommand(cmd::kShowMap);
    shell.OnCommand(cmd::kShowMap);
    EXPECT_EQ(settings.showPoi, 0u);
    EXPECT_EQ(settings.showMap, 1u);
}

TEST_F(ShellTest, KeyZeroStartsThenStops) {
    shell.OnKeyDown(Key::Digit0);
    EXPECT_TRUE(link.running);
    EXPECT_EQ(link.comPort, 3u);
    EXPECT_EQ(link.baud, 4800u);
    EXPECT_TRUE(ui.blinkRunning);
    EXPECT_TRUE(ui.trackRunning);
    EXPECT_EQ(ui.trackPeriod, 10000u);
    // A running track timer follows a new interval at once.
    shell.OnCommand(cmd::kTrack10s + 1);
    EXPECT_EQ(ui.trackPeriod, 20000u);

    std::strcpy(link.gps.latitude, "2232.1234");
    shell.OnKeyDown(Key::Digit0);
    EXPECT_FALSE(link.running);
    EXPECT_FALSE(ui.blinkRunning);
    EXPECT_FALSE(ui.trackRunning);
    EXPECT_STREQ(link.gps.latitude, "") << "the fix blocks are cleared";
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(ShellTest, StartGpsFailures) {
    struct Case {
        std::uint32_t bluetooth;
        std::uint64_t address;
        bool openOk;
        int expectedString;
        MessageIcon icon;
        int opens;
    };
    const Case cases[] = {
        {1, 0, true, kStrConfigureReceiverFirst, MessageIcon::Information, 0},
        {1, 42, true, kStrBluetoothPortFailed, MessageIcon::Error, 0},
        {0, 0, false, kStrCannotConnect, MessageIcon::Information, 1},
    };
    for (const Case& c : cases) {
        FakeLink l;
        FakeUi u;
        ProgramSettings s;
        s.bluetoothReceiver = c.bluetooth;
        s.bluetoothAddress = c.address;
        l.openOk = c.openOk;
        Shell sh(s, l, u, sound, nullptr);
        sh.OnCommand(cmd::kStartGps);
        ASSERT_EQ(u.messages.size(), 1u);
        const std::string expected = FormatString(LoadString(c.expectedString), l.error);
        EXPECT_EQ(u.messages[0].first, expected);
        EXPECT_EQ(u.messages[0].second, c.icon);
        EXPECT_EQ(l.opens, c.opens);
        EXPECT_FALSE(l.running);
        EXPECT_FALSE(u.blinkRunning);
    }
}

TEST_F(ShellTest, StopReportsLossReason) {
    for (int reason : {1, 2}) {
        shell.OnCommand(cmd::kStartGps);
        link.lossReason = reason;
        ui.messages.clear();
        shell.OnCommand(cmd::kStopGps);
        ASSERT_EQ(ui.messages.size(), 1u);
        EXPECT_EQ(ui.messages[0].first,
                  LoadString(reason == 1 ? kStrConnectionLost : kStrDataTimeout));
        EXPECT_EQ(ui.messages[0].second, MessageIcon::Error);
    }
}

TEST_F(ShellTest, LeftRightStepTheAlarmOnTheSpeedometerOnly) {
    shell.OnKeyDown(Key::Right);
    EXPECT_EQ(settings.speedAlarmOn, 0u) << "not on the speedometer";
    shell.OnCommand(cmd::kSpeedometer);
    shell.OnKeyDown(Key::Right);
    EXPECT_EQ(settings.speedAlarmOn, 1u);
    EXPECT_EQ(settings.speedAlarmLimit, 50u);
    shell.OnKeyDown(Key::Left);
    EXPECT_EQ(settings.speedAlarmOn, 0u);
    shell.OnKeyDown(Key::Left);
    EXPECT_EQ(settings.speedAlarmOn, 0u);
    for (int i = 0; i < 12; ++i) shell.OnKeyDown(Key::Right);
    EXPECT_EQ(settings.speedAlarmLimit, 120u);
    shell.OnKeyDown(Key::Left);
    EXPECT_EQ(settings.speedAlarmLimit, 110u);
}

TEST_F(ShellTest, StarOpensSettingsOnlyWhileStopped) {
    int calls = 0;
    shell.RegisterCommand(cmd::kGpsSettings, [&](int) { ++calls; });
    shell.OnKeyDown(Key::Star);
    shell.OnCommand(cmd::kStartGps);
    shell.OnKeyDown(Key::Star);
    EXPECT_EQ(calls, 1);
}

TEST_F(ShellTest, AlarmFollowsTheSpeed) {
    shell.OnCommand(cmd::kStartGps);
    shell.OnCommand(cmd::kAlarm50);
    struct Step {
        const char* knots;
        std::uint32_t units;
        bool playing;
    };
    const Step steps[] = {
        {"27.0", 0, false},                      // 49.95 km/h
        {"27.1", 0, true},                       // 50.135 km/h
        {"30.0", 0, true},  {"30.0", 2, false},  // 30 knots against a limit of 50
        {"50.0", 2, true},  {"43.5", 1, true},   // 50.112 MPH
        {"", 0, false},                          // empty reads as 0
    };
    for (const Step& s : steps) {
        settings.units = s.units;
        SetSpeed(s.knots);
        shell.OnGpsData();
        EXPECT_EQ(shell.alarm().playing(), s.playing) << s.knots << " units " << s.units;
        EXPECT_EQ(sound.looping, s.playing) << s.knots;
    }
    EXPECT_EQ(sound.playCalls, 2) << "a running alarm is not restarted";
}

TEST_F(ShellTest, StopGpsSilencesTheAlarm) {
    shell.OnCommand(cmd::kStartGps);
    shell.OnCommand(cmd::kAlarm50);
    SetSpeed("60");
    shell.OnGpsData();
    ASSERT_TRUE(sound.looping);
    shell.OnCommand(cmd::kStopGps);
    EXPECT_FALSE(sound.looping);
    EXPECT_FALSE(shell.alarm().playing());
}

TEST(SpeedAlarmTest, FailingSoundIsRetriedABoundedNumberOfTimes) {
    FakeSound sound;
    sound.failing = true;
    SpeedAlarm alarm(sound, 3);
    alarm.CheckSpeedAlarm(60, true, 50, true);
    EXPECT_TRUE(alarm.playing());
    EXPECT_EQ(sound.playCalls, 3);
    alarm.CheckSpeedAlarm(10, true, 50, true);
    EXPECT_FALSE(alarm.playing());
    EXPECT_EQ(sound.stopCalls, 3);
}

TEST(SpeedAlarmTest, OffOrStoppedSilencesButKeepsTheFlag) {
    FakeSound sound;
    SpeedAlarm alarm(sound);
    alarm.CheckSpeedAlarm(60, true, 50, true);
    alarm.CheckSpeedAlarm(60, false, 50, true);
    EXPECT_FALSE(sound.looping);
    EXPECT_TRUE(alarm.playing());
    alarm.CheckSpeedAlarm(40, true, 50, true);
    EXPECT_FALSE(alarm.playing());
}

TEST(CurrentSpeedTest, Factors) {
    gps::GpsState g;
    std::strcpy(g.speedKnots, "10");
    EXPECT_DOUBLE_EQ(CurrentSpeed(g, 0), 18.5);
    EXPECT_DOUBLE_EQ(CurrentSpeed(g, 1), 11.52);
    EXPECT_DOUBLE_EQ(CurrentSpeed(g, 2), 10.0);
}

TEST_F(ShellTest, ExitSavesOnlyOnYes) {
    namespace fs = std::filesystem;
    const fs::path path =
        fs::temp_directory_path() / ("satwalk-exit-" + std::to_string(::getpid()));
    fs::remove(path);
    OptionsStore store(path.string());
    store.LoadOptions(settings);
    Shell sh(settings, link, ui, sound, &store);
    sh.OnCommand(cmd::kStartGps);

    ui.answerYes = false;
    sh.OnCommand(cmd::kExit);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_FALSE(ui.closed);
    EXPECT_TRUE(link.running);
    EXPECT_EQ(ui.messages.back().second, MessageIcon::Question);
    EXPECT_EQ(ui.messages.back().first, LoadString(kStrConfirmExit));

    ui.answerYes = true;
    sh.OnCommand(cmd::kExit);
    EXPECT_TRUE(fs::exists(path));
    EXPECT_EQ(fs::file_size(path), kOptionsRecordSize);
    EXPECT_TRUE(ui.closed);
    EXPECT_FALSE(link.running);
    EXPECT_FALSE(ui.backlight) << "the backlight hold is released";
    fs::remove(path);
}

TEST_F(ShellTest, MenuStateAfterStartAndStop) {
    auto menu = shell.BuildMainMenu();
    ASSERT_NE(FindMenuEntry(menu, cmd::kStartGps), nullptr);
    EXPECT_EQ(FindMenuEntry(menu, cmd::kStopGps), nullptr);
    EXPECT_EQ(menu.items[0].text, "启动 GPS\t[0]");

    shell.OnCommand(cmd::kStartGps);
    menu = shell.BuildMainMenu();
    EXPECT_EQ(menu.items[0].id, cmd::kStopGps);
    EXPECT_EQ(menu.items[0].text, "停止 GPS\t[0]");
    EXPECT_FALSE(FindMenuEntry(menu, cmd::kGpsSettings)->enabled);

    shell.OnCommand(cmd::kStopGps);
    menu = shell.BuildMainMenu();
    EXPECT_EQ(menu.items[0].id, cmd::kStartGps);
}

TEST_F(ShellTest, MenuMarks) {
    shell.OnCommand(cmd::kAlarm50 + 2);
    shell.OnCommand(cmd::kTrack10s + 2);
    shell.OnCommand(cmd::kNautical);
    shell.OnCommand(cmd::kCompass);
    shell.OnCommand(cmd::kShowTrack);
    const MenuEntry menu = shell.BuildMainMenu();
    const MenuEntry view = shell.BuildViewMenu();
    struct Case {
        const MenuEntry* root;
        int id;
        bool checked;
    };
    const Case cases[] = {
        {&menu, cmd::kAlarm50 + 2, true},  {&menu, cmd::kAlarmOff, false},
        {&menu, cmd::kTrack10s + 2, true}, {&menu, cmd::kTrack10s, false},
        {&menu, cmd::kNautical, true},     {&menu, cmd::kMetric, false},
        {&view, cmd::kCompass, true},      {&view, cmd::kGpsInfo, false},
        {&view, cmd::kShowTrack, false},   {&view, cmd::kShowMap, true},
    };
    for (const Case& c : cases) {
        const MenuEntry* e = FindMenuEntry(*c.root, c.id);
        ASSERT_NE(e, nullptr) << c.id;
        EXPECT_EQ(e->checked, c.checked) << c.id;
    }
    // Entries of later parts are present and greyed until a handler comes.
    EXPECT_FALSE(FindMenuEntry(menu, cmd::kLoadMap)->enabled);
    EXPECT_EQ(FindMenuEntry(menu, cmd::kRecentMap1 + 4)->text, "空");
    shell.RegisterCommand(cmd::kLoadMap, [](int) {});
    EXPECT_TRUE(FindMenuEntry(shell.BuildMainMenu(), cmd::kLoadMap)->enabled);
}

TEST_F(ShellTest, MenuTexts) {
    const std::string view = DescribeMenu(shell.BuildViewMenu());
    const std::string menu = DescribeMenu(shell.BuildMainMenu());
    for (const char* text :
         {"视图 >", "40059 GPS 信息\t[1]", "卫星 >", "40013 卫星图\t[2]", "40014 卫星数据\t[3]",
          "40029 世界地图\t[4]", "40031 显示载入地图", "40053 显示参照点", "40032 显示轨迹",
          "40033 显示 POI", "40016 指南针\t[6]", "40015 时速\t[7]"}) {
        EXPECT_NE(view.find(text), std::string::npos) << text;
    }
    for (const char* text : {"菜单 >",
                             "40043 GPS 设置\t[*]",
                             "最近载入地图 >",
                             "40038 设置参照点 5",
                             "POI >",
                             "40042 导入 POI",
                             "40068 全部删除",
                             "40058 间隔 60s",
                             "40039 保存轨迹记录",
                             "40040 查看轨迹记录",
                             "时速警报 >",
                             "40044 关闭",
                             "40052 120",
                             "40017 米制",
                             "40018 英制",
                             "40019 海里",
                             "40197 选项",
                             "帮助 >",
                             "40201 用户手册",
                             "40006 关于",
                             "40003 退出"}) {
        EXPECT_NE(menu.find(text), std::string::npos) << text;
    }
}

TEST_F(ShellTest, BlinkAndClock) {
    shell.OnCommand(cmd::kStartGps);
    shell.OnBlinkTick();
    EXPECT_TRUE(shell.blinkPhase);
    link.fixValid = true;
    shell.OnBlinkTick();
    EXPECT_TRUE(shell.blinkPhase) << "no blinking with a valid fix";

    shell.OnGpsTime();
    EXPECT_TRUE(shell.fixTimeKnown);
    EXPECT_EQ(ui.clockStarts, 1);
    link.gps.fixTimeLocal = 100;
    shell.OnClockTick();
    EXPECT_EQ(link.gps.fixTimeLocal, 100 + gps::kFileTimeTicksPerSecond);
    shell.OnCommand(cmd::kStopGps);
    EXPECT_FALSE(shell.fixTimeKnown);
}

}  // namespace
}  // namespace satwalk::shell
