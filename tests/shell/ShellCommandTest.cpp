// The shell's rules through its commands and keys, with the window, the
// link and the sound faked, and what the window hands to the screens.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include <cstring>

#include "CommandIds.h"
#include "FakeShellParts.h"
#include "SatelliteDataFeature.h"
#include "Shell.h"
#include "StateJson.h"
#include "Strings.h"

namespace satwalk::shell {
namespace {

using common::FormatString;
using common::LoadString;
using testing::FakeLink;
using testing::FakeSatelliteView;
using testing::FakeSound;
using testing::FakeUi;

class ShellTest : public ::testing::Test, protected testing::FakeShell {
  protected:
    ShellTest() : satelliteData(shell, satelliteView) {
        settings.bluetoothReceiver = 0;
        settings.comPort = 3;
        shell.features().Add(satelliteData);
    }
    // A batch from the receiver at this speed.
    void DriveAt(const char* knots) {
        std::strcpy(link.gps.speedKnots, knots);
        shell.OnGpsData();
    }

    FakeSatelliteView satelliteView;
    SatelliteDataFeature satelliteData;
};

TEST_F(ShellTest, ScreenCommandsAndKeysAlsoReplaceTheDialog) {
    const struct {
        int command;
        Key key;
        int screen;
    } cases[] = {{cmd::kSkyPlot, Key::Digit2, kScreenSkyPlot},
                 {cmd::kCompass, Key::Digit6, kScreenCompass}};
    for (const auto& c : cases) {
        for (const bool dialog : {false, true}) {
            for (const bool byKey : {false, true}) {
                shell.currentScreen = -5;
                if (dialog)
                    shell.OnCommand(cmd::kSatelliteData);
                if (byKey)
                    shell.OnKeyDown(c.key);
                else
                    shell.OnCommand(c.command);
                EXPECT_EQ(shell.currentScreen, c.screen) << c.command << " " << dialog << byKey;
                EXPECT_FALSE(satelliteData.open()) << c.command;
                EXPECT_FALSE(satelliteView.shown) << c.command;
            }
        }
    }
    // A key no one binds does nothing, so the dialog stays.
    shell.OnCommand(cmd::kSatelliteData);
    shell.OnKeyDown(Key::Digit5);
    EXPECT_TRUE(satelliteData.open());
    EXPECT_EQ(shell.currentScreen, kScreenSatelliteData);
    // Settings change underneath it.
    shell.OnCommand(cmd::kNautical);
    EXPECT_EQ(settings.units, 2u);
    EXPECT_TRUE(satelliteData.open());
}

// Tabs 1 and 2 (world and loaded map) belong to the map feature, absent here.
TEST_F(ShellTest, TabsChooseTheirScreens) {
    const int tabs[][2] = {{0, kScreenGpsInfo}, {3, kScreenCompass}, {4, kScreenSpeedometer},
                           {5, kScreenSkyPlot}, {2, kScreenSkyPlot}, {6, kScreenSkyPlot}};
    for (const auto& [tab, screen] : tabs) {
        shell.OnTabTapped(tab);
        EXPECT_EQ(shell.currentScreen, screen) << tab;
    }
}

TEST_F(ShellTest, KeyZeroStartsThenStops) {
    shell.OnKeyDown(Key::Digit0);
    EXPECT_EQ(std::tuple(link.running, link.comPort, link.baud, ui.blinkRunning),
              std::tuple(true, 3u, 4800u, true));

    shell.OnCommand(cmd::kAlarm50);
    DriveAt("60");
    ASSERT_TRUE(sound.looping);
    std::strcpy(link.gps.latitude, "2232.1234");
    shell.OnKeyDown(Key::Digit0);
    EXPECT_FALSE(link.running);
    EXPECT_FALSE(sound.looping) << "stopping silences the alarm";
    EXPECT_FALSE(shell.alarm().playing() || ui.blinkRunning);
    EXPECT_STREQ(link.gps.latitude, "") << "the fix blocks are cleared";
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(ShellTest, StartGpsFailures) {
    const int kRadio = common::kStrRadioSwitchFailed;
    const int kConfigure = common::kStrConfigureReceiverFirst;
    const int kPort = common::kStrBluetoothPortFailed;
    const MessageIcon kInfo = MessageIcon::Information, kError = MessageIcon::Error;
    const struct {
        std::uint32_t bluetooth;
        std::uint64_t address;
        bool openOk;
        std::vector<int> strings;  // the messages, in order
        MessageIcon icon;          // of the last one
        int opens;
        std::uint32_t autoBluetooth = 0;
        bool radioOk = true;
    } cases[] = {{1, 0, true, {kConfigure}, kInfo, 0},
                 {1, 42, true, {kPort}, kError, 0},
                 {0, 0, false, {common::kStrCannotConnect}, kInfo, 1},
                 // The radio is switched on first; its failure is said and the start goes on.
                 {1, 0, true, {kRadio, kConfigure}, kInfo, 0, 1, false},
                 {1, 42, true, {kPort}, kError, 0, 1, true}};
    for (const auto& c : cases) {
        FakeLink l;
        FakeUi u;
        ProgramSettings s;
        s.bluetoothReceiver = c.bluetooth;
        s.bluetoothAddress = c.address;
        s.autoBluetooth = c.autoBluetooth;
        l.openOk = c.openOk;
        l.radioOk = c.radioOk;
        Shell sh(s, l, u, sound, nullptr);
        sh.OnCommand(cmd::kStartGps);
        ASSERT_EQ(u.messages.size(), c.strings.size());
        for (std::size_t i = 0; i < c.strings.size(); ++i)
            EXPECT_EQ(u.messages[i].first, FormatString(LoadString(c.strings[i]), l.error));
        EXPECT_EQ(std::tuple(u.messages.back().second, l.opens, l.running, u.blinkRunning,
                             l.radioSwitchedOn),
                  std::tuple(c.icon, c.opens, false, false, c.autoBluetooth != 0 && c.radioOk));
        sh.OnCommand(cmd::kExit);
        EXPECT_FALSE(l.radioSwitchedOn) << "off again at exit";
    }
}

TEST_F(ShellTest, StopReportsLossReason) {
    for (int reason : {1, 2}) {
        shell.OnCommand(cmd::kStartGps);
        link.lossReason = reason;
        ui.messages.clear();
        shell.OnCommand(cmd::kStopGps);
        const int id = reason == 1 ? common::kStrConnectionLost : common::kStrDataTimeout;
        EXPECT_EQ(ui.messages, (decltype(ui.messages){{LoadString(id), MessageIcon::Error}}));
    }
}

TEST_F(ShellTest, AlarmFollowsTheSpeed) {
    shell.OnCommand(cmd::kStartGps);
    shell.OnCommand(cmd::kAlarm50);
    const struct {
        const char* knots;
        std::uint32_t units;
        bool playing;
    } steps[] = {
        {"27.0", 0, false},                      // 49.95 km/h
        {"27.1", 0, true},                       // 50.135 km/h
        {"30.0", 0, true},  {"30.0", 2, false},  // 30 knots against a limit of 50
        {"50.0", 2, true},  {"43.5", 1, true},   // 50.112 MPH
        {"", 0, false}                           // empty reads as 0
    };
    for (const auto& s : steps) {
        settings.units = s.units;
        DriveAt(s.knots);
        EXPECT_EQ(std::tuple(shell.alarm().playing(), sound.looping),
                  std::tuple(s.playing, s.playing))
            << s.knots << " units " << s.units;
    }
    EXPECT_EQ(sound.playCalls, 2) << "a running alarm is not restarted";
    EXPECT_TRUE(ui.statuses.empty()) << "a sound that plays needs no status";
}

TEST_F(ShellTest, AlarmFlashesEverySecondWhileItShows) {
    shell.OnCommand(cmd::kStartGps);
    shell.OnCommand(cmd::kAlarm50);
    const struct {
        const char* knots;  // a batch at this speed, or null for the 1-second tick
        int command;        // instead, when not 0
        bool showing, phase;
    } steps[] = {{"20", 0, false, false},
                 {nullptr, 0, false, false},  // below the limit
                 {"30", 0, true, true},       // red at once
                 {nullptr, 0, true, false},
                 {nullptr, 0, true, true},
                 {"31", 0, true, true},
                 {"20", 0, false, false},  // the drop ends it
                 {"30", 0, true, true},
                 {nullptr, cmd::kAlarmOff, false, true},
                 {nullptr, 0, false, false},  // the tick clears it
                 {nullptr, cmd::kStopGps, false, false}};
    for (const auto& s : steps) {
        if (s.command != 0)
            shell.OnCommand(s.command);
        else if (s.knots != nullptr)
            DriveAt(s.knots);
        else
            shell.OnBlinkTick();
        EXPECT_EQ(std::tuple(shell.SpeedAlarmShowing(), shell.alarmFlashPhase),
                  std::tuple(s.showing, s.phase))
            << (s.knots ? s.knots : "tick");
    }
}

TEST_F(ShellTest, AlarmCellTapSetsItsLimitOrSwitchesTheLitOneOff) {
    const struct {
        std::uint32_t on, limit;
        int cell;
        std::uint32_t onAfter, limitAfter;
    } cases[] = {
        {0, 50, 3, 1, 80},   // off: a cell switches on at its limit
        {1, 50, 7, 1, 120},  // another cell moves the limit
        {1, 90, 4, 0, 90},   // the lit cell switches off, the limit stays
        {1, 55, 0, 1, 50},   // an odd limit lights cell 0 but 50 is not it
        {1, 70, -1, 1, 70}   // not a cell
    };
    for (const auto& c : cases) {
        settings.speedAlarmOn = c.on;
        settings.speedAlarmLimit = c.limit;
        shell.OnAlarmCellTap(c.cell);
        EXPECT_EQ(std::tuple(settings.speedAlarmOn, settings.speedAlarmLimit),
                  std::tuple(c.onAfter, c.limitAfter))
            << c.on << " " << c.limit << " " << c.cell;
    }
}

TEST_F(ShellTest, FirstSoundFailureIsReportedOnceInTheStatus) {
    sound.failing = true;
    shell.OnCommand(cmd::kStartGps);
    shell.OnCommand(cmd::kAlarm50);
    for (const char* knots : {"20", "30", "31", "10", "30"}) {
        DriveAt(knots);
        EXPECT_EQ(shell.status,
                  knots == std::string("20") ? "" : LoadString(common::kStrAlarmSoundFailed));
    }
    EXPECT_EQ(ui.statuses.size(), 1u);
    EXPECT_TRUE(ui.messages.empty()) << "no message box while driving";
}

// A recording that cannot be written stands in the status and crosses out
// the recording icon until a write works again; no message box.
TEST_F(ShellTest, RecordingFaultsShowUntilAWriteWorks) {
    const struct {
        Recording recording;
        int error;
        const char* status;
    } steps[] = {{Recording::Track, ENOSPC, "轨迹记录失败：磁盘已满"},
                 {Recording::Track, EFBIG, "轨迹记录失败：磁盘已满"},
                 {Recording::Nmea, ENOENT, "轨迹记录失败：磁盘已满；NMEA 记录失败：文件夹不存在"},
                 {Recording::Track, 0, "NMEA 记录失败：文件夹不存在"},
                 {Recording::Nmea, EACCES, "NMEA 记录失败：没有写入权限"},
                 {Recording::Nmea, 0, ""}};
    for (const auto& step : steps) {
        shell.ReportRecordingWrite(step.recording, step.error);
        EXPECT_EQ(shell.status, step.status) << step.error;
        EXPECT_EQ(shell.display().recordingFailed, *step.status != '\0') << step.error;
    }
    EXPECT_EQ(ui.statuses.size(), 5u) << "a fault said again changes nothing";
    EXPECT_TRUE(ui.messages.empty());
}

TEST(SpeedAlarmTest, FailingSoundIsRetriedABoundedNumberOfTimes) {
    FakeSound sound;
    sound.failing = true;
    SpeedAlarm alarm(sound, 3);
    alarm.CheckSpeedAlarm(60, true, 50, true);
    EXPECT_EQ(std::tuple(alarm.playing(), sound.playCalls), std::tuple(true, 3));
    alarm.CheckSpeedAlarm(10, true, 50, true);
    EXPECT_EQ(std::tuple(alarm.playing(), sound.stopCalls), std::tuple(false, 3));
}

// The settings' file in a folder that is missing: the folder is made; one
// that cannot be made is said before the window closes.
TEST(ShellExitTest, SettingsThatCannotBeSavedAreSaid) {
    const std::string dir = ::testing::TempDir() + "exit-save";
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    std::ofstream(dir + "/file") << "x";
    for (const bool saved : {true, false}) {
        const std::string path = dir + (saved ? "/new/folder/options" : "/file/options");
        ProgramSettings settings;
        FakeLink link;
        FakeUi ui;
        FakeSound sound;
        OptionsStore options(path);
        Shell shell(settings, link, ui, sound, &options);
        ui.answerYes = true;
        shell.OnCommand(cmd::kExit);
        EXPECT_TRUE(ui.closed);
        EXPECT_EQ(std::filesystem::exists(path), saved) << path;
        ASSERT_EQ(ui.messages.size(), saved ? 1u : 2u) << path;  // the question, then the failure
        EXPECT_TRUE(saved || ui.messages[1].first.find(path) != std::string::npos);
    }
    std::filesystem::remove_all(dir);
}

TEST_F(ShellTest, MenuStateAfterStartAndStop) {
    auto menu = shell.BuildMainMenu();
    ASSERT_NE(FindMenuEntry(menu, cmd::kStartGps), nullptr);
    EXPECT_EQ(FindMenuEntry(menu, cmd::kStopGps), nullptr);

    shell.OnCommand(cmd::kStartGps);
    menu = shell.BuildMainMenu();
    EXPECT_EQ(menu.items[0].id, cmd::kStopGps);
    EXPECT_FALSE(FindMenuEntry(menu, cmd::kGpsSettings)->enabled);

    shell.OnCommand(cmd::kStopGps);
    menu = shell.BuildMainMenu();
    EXPECT_EQ(menu.items[0].id, cmd::kStartGps);
}

TEST_F(ShellTest, MenuMarks) {
    shell.OnCommand(cmd::kAlarm50 + 2);
    shell.OnCommand(cmd::kNautical);
    shell.OnCommand(cmd::kCompass);
    const MenuEntry menu = shell.BuildMainMenu();
    const MenuEntry view = shell.BuildViewMenu();
    const struct {
        const MenuEntry* root;
        int id;
        bool checked;
    } cases[] = {{&menu, cmd::kAlarm50 + 2, true},
                 {&menu, cmd::kAlarmOff, false},
                 {&menu, cmd::kNautical, true},
                 {&view, cmd::kCompass, true}};
    for (const auto& c : cases) {
        const MenuEntry* e = FindMenuEntry(*c.root, c.id);
        ASSERT_NE(e, nullptr) << c.id;
        EXPECT_EQ(e->checked, c.checked) << c.id;
    }
    // The shell's entries are present and greyed until a handler comes;
    // the sub-menus no feature fills are left out.
    EXPECT_FALSE(FindMenuEntry(menu, cmd::kUserManual)->enabled);
    shell.RegisterCommand(cmd::kUserManual, [](int) {});
    EXPECT_TRUE(FindMenuEntry(shell.BuildMainMenu(), cmd::kUserManual)->enabled);
    EXPECT_EQ(DescribeMenu(menu).find("地图"), std::string::npos);
}

TEST_F(ShellTest, OtherTalkersHintNamesTheSettingOnce) {
    shell.OnOtherTalkersOnly();
    shell.OnOtherTalkersOnly();
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_NE(ui.messages[0].first.find("接收所有卫星系统"), std::string::npos);
    EXPECT_EQ(ui.messages[0].second, MessageIcon::Information);
}

TEST_F(ShellTest, BlinkAndClock) {
    shell.OnCommand(cmd::kStartGps);
    shell.OnBlinkTick();
    EXPECT_TRUE(shell.blinkPhase);
    link.fixValid = true;
    shell.OnBlinkTick();
    EXPECT_TRUE(shell.blinkPhase) << "no blinking with a valid fix";

    // A time sync takes the link's fix time; the clock then counts on the
    // shell's copy, which later batches without a sync leave alone.
    link.gps.fixTimeLocal = 100;
    shell.OnGpsTime();
    shell.OnGpsData();
    EXPECT_TRUE(shell.fixTimeKnown);
    EXPECT_EQ(ui.clockStarts, 1);
    shell.OnClockTick();
    shell.OnGpsData();
    EXPECT_EQ(shell.fix().fixTimeLocal, 100 + gps::kFileTimeTicksPerSecond);
    EXPECT_EQ(link.gps.fixTimeLocal, 100u) << "the link's fix is not the clock's";
    link.gps.fixTimeLocal = 500;
    shell.OnGpsTime();
    shell.OnGpsData();
    EXPECT_EQ(shell.fix().fixTimeLocal, 500u);
    shell.OnCommand(cmd::kStopGps);
    EXPECT_FALSE(shell.fixTimeKnown);
}

TEST_F(ShellTest, DisplayStateFollowsTheShell) {
    std::strcpy(link.gps.latitude, "3014.7487");
    link.gps.northSouth = 'S';
    std::strcpy(link.gps.longitude, "12009.7660");
    link.gps.eastWest = 'E';
    settings.recordNmea = 1;
    shell.OnCommand(cmd::kAlarm50 + 6);
    shell.OnCommand(cmd::kNautical);
    shell.OnCommand(cmd::kStartGps);
    link.fixValid = true;
    shell.OnGpsTime();
    shell.OnGpsData();
    shell.OnCommand(cmd::kSatelliteData);

    const screens::DisplayState& d = shell.display();
    EXPECT_EQ(std::tuple(d.currentScreen, d.unitSystem, d.speedAlarmOn, d.speedAlarmLimit),
              std::tuple(-1, common::kNautical, true, 110));
    EXPECT_TRUE(d.recording && d.linkRunning && d.fixValid && d.fixTimeKnown);
    EXPECT_NEAR(d.latitude, -(30 + 14.7487 / 60), 1e-9);
    EXPECT_NEAR(d.longitude, 120 + 9.766 / 60, 1e-9);

    // Without a fix the last position stays; an absurd unit reads as metric.
    link.fixValid = false;
    settings.units = 7;
    std::strcpy(link.gps.latitude, "0000.0000");
    shell.OnGpsData();
    EXPECT_NEAR(d.latitude, -(30 + 14.7487 / 60), 1e-9);
    EXPECT_EQ(std::tuple(d.unitSystem, d.fixValid), std::tuple(common::kMetric, false));
}

TEST_F(ShellTest, FeaturesPlugInCommandsMenusKeysTabsAndStateSections) {
    constexpr int kProbe = 49001;
    constexpr int kSecond = 49002;
    struct Probe final : Feature {
        int runs = 0;
        bool checked = false;
        bool keyLive = false;
        int settingsChanges = 0;
        void Register(FeatureRegistry& registry) override {
            registry.AddCommand(kProbe, Command{[this](int) { ++runs; },
                                                [this](int) {
                                                    return EntryState{true, checked, "Probe!"};
                                                }});
            // Ranked after the first, though registered before it.
            registry.AddMenuEntries(MenuPlace::ViewMap, 5, [] {
                return std::vector<MenuEntry>{MenuItem(kSecond, "second")};
            });
            registry.AddMenuEntries(MenuPlace::ViewMap, 0, [] {
                return std::vector<MenuEntry>{MenuCheck(kProbe, "probe", false)};
            });
            registry.AddKey(Key::Digit9, kProbe, [this] { return keyLive; });
            registry.SetTabCommand(1, kProbe);
            registry.AddDisplayContribution([](screens::DisplayState& d) { d.mapLoaded = true; });
            registry.AddStateSection([this](common::JsonMembers& m) { m.Int("probeRuns", runs); });
            registry.AddScriptStep(
                "probe", [this](const std::vector<std::string>& words, std::string& error) {
                    runs += static_cast<int>(words.size());
                    error = "never";
                    return !words.empty();
                });
        }
        void OnSettingsChanged() override { ++settingsChanges; }
    } probe;
    shell.features().Add(probe);

    shell.OnCommand(kProbe);
    shell.OnKeyDown(Key::Digit9);  // not live yet
    shell.OnTabTapped(1);
    probe.keyLive = true;
    shell.OnKeyDown(Key::Digit9);
    EXPECT_EQ(probe.runs, 3);
    probe.checked = true;
    const MenuEntry view = shell.BuildViewMenu();
    const std::string described = DescribeMenu(view);
    EXPECT_NE(described.find("  地图 >\n    [x] 49001 Probe!\n    49002 second\n"),
              std::string::npos)
        << described;
    shell.Repaint();
    EXPECT_TRUE(shell.display().mapLoaded);
    shell.features().NotifySettingsChanged();
    EXPECT_EQ(probe.settingsChanges, 1);

    const ScriptStep* step = shell.features().FindScriptStep("probe");
    ASSERT_NE(step, nullptr);
    std::string error;
    EXPECT_TRUE((*step)({"a", "b"}, error));
    EXPECT_EQ(shell.features().FindScriptStep("nothing"), nullptr);

    const std::string json = BuildStateJson(shell, StateExtras{});
    EXPECT_NE(json.find("\"probeRuns\":5,"), std::string::npos) << json;
    EXPECT_NE(json.find("\"satelliteDialogRows\":[]"), std::string::npos) << json;
}

}  // namespace
}  // namespace satwalk::shell
