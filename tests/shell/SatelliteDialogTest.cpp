// The satellite data dialog's rules in the shell, and what the window hands
// to the screens before each paint.
#include <gtest/gtest.h>

#include <cstring>

#include "CommandIds.h"
#include "FakeShellParts.h"
#include "ScreenView.h"
#include "Screens.h"
#include "Shell.h"

namespace satwalk::shell {
namespace {

using testing::FakeLink;
using testing::FakeSound;
using testing::FakeUi;

class SatelliteDialogTest : public ::testing::Test {
  protected:
    SatelliteDialogTest() : shell(settings, link, ui, sound, nullptr) {}

    ProgramSettings settings;
    FakeLink link;
    FakeUi ui;
    FakeSound sound;
    Shell shell;
};

TEST_F(SatelliteDialogTest, OpensByCommandOrKeyAndStandsInForTheScreen) {
    for (bool byKey : {false, true}) {
        shell.currentScreen = kScreenCompass;
        if (byKey)
            shell.OnKeyDown(Key::Digit3);
        else
            shell.OnCommand(cmd::kSatelliteData);
        EXPECT_EQ(shell.currentScreen, kScreenSatelliteData);
        EXPECT_TRUE(shell.satelliteDialogOpen);
        EXPECT_TRUE(ui.satelliteDialogShown);
        EXPECT_EQ(ui.satelliteFills, 1) << "filled as it opens";

        const MenuEntry view = shell.BuildViewMenu();
        const MenuEntry* entry = FindMenuEntry(view, cmd::kSatelliteData);
        ASSERT_NE(entry, nullptr);
        EXPECT_TRUE(entry->enabled);
        EXPECT_TRUE(entry->checked);

        // Opening again changes nothing: closing still goes back to the compass.
        shell.OnKeyDown(Key::Digit3);
        EXPECT_EQ(ui.satelliteFills, 1);
        shell.OnSatelliteDialogClosed();
        EXPECT_EQ(shell.currentScreen, kScreenCompass);
        EXPECT_FALSE(shell.satelliteDialogOpen);
        EXPECT_FALSE(ui.satelliteDialogShown);
        ui.satelliteFills = 0;
    }
}

TEST_F(SatelliteDialogTest, FilledOnEveryBatchOnlyWhileOpen) {
    shell.OnGpsData();
    EXPECT_EQ(ui.satelliteFills, 0);
    shell.OnCommand(cmd::kSatelliteData);
    shell.OnGpsData();
    shell.OnGpsData();
    EXPECT_EQ(ui.satelliteFills, 3);
    shell.OnSatelliteDialogClosed();
    shell.OnGpsData();
    EXPECT_EQ(ui.satelliteFills, 3);
}

TEST_F(SatelliteDialogTest, ScreenChosenWhileOpenReplacesTheDialog) {
    struct Case {
        int command;
        Key key;
        int screen;
    };
    const Case cases[] = {
        {cmd::kGpsInfo, Key::Digit1, kScreenGpsInfo},
        {cmd::kSkyPlot, Key::Digit2, kScreenSkyPlot},
        {cmd::kWorldMap, Key::Digit4, kScreenMap},
        {cmd::kCompass, Key::Digit6, kScreenCompass},
        {cmd::kSpeedometer, Key::Digit7, kScreenSpeedometer},
    };
    for (const Case& c : cases) {
        for (bool byKey : {false, true}) {
            shell.currentScreen = kScreenSpeedometer;
            shell.OnCommand(cmd::kSatelliteData);
            if (byKey)
                shell.OnKeyDown(c.key);
            else
                shell.OnCommand(c.command);
            EXPECT_EQ(shell.currentScreen, c.screen) << c.command;
            EXPECT_FALSE(shell.satelliteDialogOpen) << c.command;
            EXPECT_FALSE(ui.satelliteDialogShown) << c.command;
        }
    }
    // Without a loaded map, 40030 and key 5 do nothing, so the dialog stays.
    shell.OnCommand(cmd::kSatelliteData);
    shell.OnCommand(cmd::kLoadedMap);
    shell.OnKeyDown(Key::Digit5);
    EXPECT_TRUE(shell.satelliteDialogOpen);
    EXPECT_EQ(shell.currentScreen, kScreenSatelliteData);
    // Settings change underneath it.
    shell.OnCommand(cmd::kNautical);
    EXPECT_EQ(settings.units, 2u);
    EXPECT_TRUE(shell.satelliteDialogOpen);
}

TEST_F(SatelliteDialogTest, ConfirmedExitClosesIt) {
    shell.OnCommand(cmd::kSatelliteData);
    ui.answerYes = false;
    shell.OnCommand(cmd::kExit);
    EXPECT_TRUE(ui.satelliteDialogShown);
    ui.answerYes = true;
    shell.OnCommand(cmd::kExit);
    EXPECT_FALSE(ui.satelliteDialogShown);
    EXPECT_TRUE(ui.closed);
}

TEST(ScreenSyncTest, CopiesTheWindowStateIntoTheContext) {
    gps::GpsState g;
    std::strcpy(g.latitude, "3014.7487");
    g.northSouth = 'S';
    std::strcpy(g.longitude, "12009.7660");
    g.eastWest = 'E';
    ProgramSettings s;
    s.units = 2;
    s.speedAlarmOn = 1;
    s.speedAlarmLimit = 110;
    s.recordNmea = 1;

    ScreenView v;
    v.gps = &g;
    v.settings = &s;
    v.currentScreen = kScreenSatelliteData;
    v.linkRunning = v.fixValid = v.fixTimeKnown = v.blinkPhase = v.mapLoaded = true;

    screens::ScreenContext ctx;
    ctx.frame = screens::Rect{0, 0, 480, 640};
    SyncScreenContext(v, ctx);
    EXPECT_EQ(ctx.currentScreen, -1);
    EXPECT_EQ(ctx.unitSystem, screens::kNautical);
    EXPECT_TRUE(ctx.speedAlarmOn);
    EXPECT_EQ(ctx.speedAlarmLimit, 110);
    EXPECT_TRUE(ctx.recording && ctx.linkRunning && ctx.fixValid && ctx.fixTimeKnown &&
                ctx.blinkPhase && ctx.mapLoaded);
    EXPECT_NEAR(ctx.latitude, -(30 + 14.7487 / 60), 1e-9);
    EXPECT_NEAR(ctx.longitude, 120 + 9.766 / 60, 1e-9);
    EXPECT_EQ(ctx.frame.Width(), 480) << "the layout is not the sync's business";

    // Without a fix the last position stays; an absurd unit reads as metric.
    v.fixValid = false;
    s.units = 7;
    s.speedAlarmOn = 0;
    s.recordNmea = 0;
    std::strcpy(g.latitude, "0000.0000");
    SyncScreenContext(v, ctx);
    EXPECT_NEAR(ctx.latitude, -(30 + 14.7487 / 60), 1e-9);
    EXPECT_EQ(ctx.unitSystem, screens::kMetric);
    EXPECT_FALSE(ctx.speedAlarmOn);
    EXPECT_FALSE(ctx.recording);
    EXPECT_FALSE(ctx.fixValid);
}

}  // namespace
}  // namespace satwalk::shell
