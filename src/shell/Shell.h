// The main window's rules without the window: the command dispatcher, the
// hardware keys, the receiver-data handlers and the menu state. The
// platform edge supplies the window side through ShellUi and the receiver
// through LinkControl.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "DisplayState.h"
#include "Features.h"
#include "GpsState.h"
#include "MenuModel.h"
#include "ReceiverSettingsModel.h"
#include "RecordingStatus.h"
#include "RelaySetting.h"
#include "ScreenIds.h"
#include "Settings.h"
#include "SpeedAlarm.h"

namespace satwalk::shell {

enum class MessageIcon { Error, Information, Question, Exclamation };
enum class MessageButtons { Ok, YesNo };
enum class MessageAnswer { Ok, Cancel, Yes, No };

const char* MessageIconName(MessageIcon icon);

// What the shell asks of the window and its timers.
class ShellUi {
  public:
    virtual MessageAnswer ShowMessage(const std::string& text, MessageIcon icon,
                                      MessageButtons buttons) = 0;
    // Paints the window now.
    virtual void Repaint() = 0;
    // Asks for one paint soon, after the handler that asks has returned;
    // requests before that paint are folded into it.
    virtual void RequestRepaint() { Repaint(); }
    virtual void StartBlinkTimer() = 0;
    virtual void StopBlinkTimer() = 0;
    virtual bool StartClockTimer() = 0;  // (re)starts the 1-second clock
    virtual void SetBacklightHold(bool hold) = 0;
    virtual void CloseWindow() = 0;  // the end of a confirmed exit
    // A short status that stays in view without stopping the user (the
    // window's title); empty clears it.
    virtual void ShowStatus(const std::string& status) { (void)status; }

  protected:
    ~ShellUi() = default;
};

// The receiver link as the shell drives it.
class LinkControl {
  public:
    // Registers a Bluetooth port for the receiver and makes it the port to
    // open. False with lastErrorCode() set when that fails.
    virtual bool RegisterBluetoothPort(std::uint64_t address) = 0;
    virtual void SetComPort(std::uint32_t comPort) = 0;
    virtual void SetBaudRate(std::uint32_t baudRate) = 0;
    virtual bool OpenPort() = 0;
    virtual bool StartLink() = 0;
    virtual int StopLink() = 0;  // the loss reason: 0 none, 1 device gone, 2 time-out
    virtual bool Running() const = 0;
    virtual bool FixValid() const = 0;
    virtual std::string LastErrorCode() const = 0;
    // The link's own fix, which the reader thread decodes into. Read only
    // while the reader waits for the shell (inside OnGpsData and OnGpsTime)
    // or while the link is stopped; everything else reads the shell's copy.
    virtual const gps::GpsState& Gps() const = 0;
    // Empties the four blocks of the link's fix (the stop command); the fix
    // time and its sync request stay. Only while the link is stopped.
    virtual void ClearFixBlocks() = 0;

    // The Bluetooth radio (autoBluetooth): switched on when it is off. False
    // only when switching was tried and failed. A radio the program switched
    // on, here or by a search, is switched off again by SwitchRadioBackOff.
    virtual bool SwitchRadioOn() { return true; }
    virtual void SwitchRadioBackOff() {}
    // A search switched the radio on.
    virtual void NoteRadioSwitchedOn() {}
    // The ten COM indexes as the receiver settings offer them.
    virtual std::vector<link::PortSlot> PortSlots() { return std::vector<link::PortSlot>(10); }
    // The receiver settings were confirmed with this COM number.
    virtual void PortChosen(std::uint32_t comPort) { (void)comPort; }

    // What the options dialog changes while the program runs: recording
    // from the next batch on or not, the folder of the next recording, a new
    // dated recording file from now on (while running), and the talkers the
    // decoder accepts.
    virtual void SetRecordNmea(bool on) { (void)on; }
    virtual void SetNmeaFolder(const std::string& folder) { (void)folder; }
    virtual void StartNewNmeaLog() {}
    virtual void SetAllTalkers(bool on) { (void)on; }
    // The NMEA relay: as set, and a change (kept in its file, and in effect
    // at once while the receiver runs).
    virtual link::RelaySetting Relay() const { return {}; }
    virtual void SetRelay(const link::RelaySetting& setting) { (void)setting; }

  protected:
    ~LinkControl() = default;
};

enum class Key {
    Digit0,
    Digit1,
    Digit2,
    Digit3,
    Digit4,
    Digit5,
    Digit6,
    Digit7,
    Digit8,
    Digit9,
    Star,
    Left,
    Right,
    Up,
    Down,
    Return,
    Escape,
    Back
};

using common::kScreenCompass;
using common::kScreenGpsInfo;
using common::kScreenMap;
using common::kScreenSatelliteData;
using common::kScreenSkyPlot;
using common::kScreenSpeedometer;

// The soft-key bar while a mode replaces the two drop-downs by two plain
// buttons (reference-point placement: "确定" and "取消"). Empty texts: the
// drop-downs.
struct SoftKeys {
    std::string left;
    int leftCommand = 0;
    std::string right;
    int rightCommand = 0;
    bool Plain() const { return !left.empty() || !right.empty(); }
};

class Shell {
  public:
    Shell(ProgramSettings& settings, LinkControl& link, ShellUi& ui, AlarmSound& sound,
          OptionsStore* options);

    // Where features register their commands, state sections and script
    // steps; the shell's own commands are registered here too. A command id
    // without a handler is greyed in the menus and does nothing.
    FeatureRegistry& features() { return features_; }
    const FeatureRegistry& features() const { return features_; }
    void RegisterCommand(int id, std::function<void(int id)> handler);
    bool HasHandler(int id) const { return features_.FindCommand(id) != nullptr; }

    void OnCommand(int id);
    void OnKeyDown(Key key);
    // A tap on tab `tab` (0..5, tool-strip order) of the tool strip.
    void OnTabTapped(int tab);
    // The soft-key bar: plain buttons while a mode sets them, the two
    // drop-downs when they are empty.
    void SetSoftKeys(SoftKeys keys);
    const SoftKeys& softKeys() const { return softKeys_; }
    // WM_GPS_DATA: called while the reader thread waits, so the shell takes
    // its copy of the link's fix here.
    void OnGpsData();
    void OnGpsTime();    // WM_GPS_TIME, also while the reader waits
    void OnClockTick();  // timer 1028: one second more on the fix clock
    void OnBlinkTick();

    // A screen chosen by a command, a key or a tab: whatever stands in the
    // screen area (the satellite data dialog) goes first.
    void ChooseScreen(int screen);
    // Rebuilds the display state from the shell and repaints the window.
    void Repaint();

    // The user-interface thread's copy of the fix: what the screens, the
    // dialogs and the state dump read, its texts in fix() and its numbers,
    // read once per batch, in fixValues().
    const gps::GpsState& fix() const { return fix_; }
    const gps::FixValues& fixValues() const { return fixValues_; }
    // What the screens show, rebuilt by every Repaint.
    const screens::DisplayState& display() const { return display_; }
    // A tap on alarm cell 0..7 (50..120): sets that limit as the menu's
    // entries do, or switches the alarm off when it is the lit cell.
    void OnAlarmCellTap(int cell);
    // The link has heard only other satellite systems' talkers for ten
    // seconds: the hint that names the all-talkers setting, once a run.
    void OnOtherTalkersOnly();
    // A write of a recording failed (`error` its errno) or, with 0, worked:
    // the status and the recording icon show the faults that stand.
    void ReportRecordingWrite(Recording recording, int error);

    // The two drop-downs as they are at this moment.
    MenuEntry BuildViewMenu() const;
    MenuEntry BuildMainMenu() const;

    ShellUi& ui() { return ui_; }
    ProgramSettings& settings() { return settings_; }
    const ProgramSettings& settings() const { return settings_; }
    LinkControl& link() { return link_; }
    const LinkControl& link() const { return link_; }
    const SpeedAlarm& alarm() const { return alarm_; }
    // The speed is at or above the limit with the alarm on and the link
    // running: the screens flash it whether or not the sound plays.
    bool SpeedAlarmShowing() const;

    // kScreenSatelliteData while a dialog stands in the screen's place.
    int currentScreen = kScreenGpsInfo;
    bool fixTimeKnown = false;
    bool blinkPhase = false;
    // Flipped every second while the speed alarm shows; red when set.
    bool alarmFlashPhase = false;
    // The window's status line: the recordings that fail, and the alarm
    // sound that could not play.
    std::string status;
    bool exited = false;
    bool otherTalkersHintShown = false;
    // A port given for this run (a replay, --port) stands for the receiver:
    // start GPS opens it whatever receiver the settings name.
    bool forceComPort = false;
    std::string version = "0";

  private:
    void RegisterOwnCommands();
    void StartGps();
    void StopGps();
    void Exit();
    void StepAlarm(int direction);
    void ReportLoss(int reason);
    void Message(const std::string& text, MessageIcon icon);
    void RefreshDisplay();
    void UpdateStatus();
    MenuEntry Decorated(MenuEntry entry) const;
    MenuEntry FeatureMenu(int textId, MenuPlace place) const;

    ProgramSettings& settings_;
    LinkControl& link_;
    ShellUi& ui_;
    SpeedAlarm alarm_;
    RecordingFaults recordingFaults_;
    OptionsStore* options_;
    FeatureRegistry features_;
    gps::GpsState fix_;
    gps::FixValues fixValues_;
    bool timeSyncedThisBatch_ = false;
    screens::DisplayState display_;
    SoftKeys softKeys_;
};

}  // namespace satwalk::shell
