// The main window's rules without the window: the command dispatcher, the
// hardware keys, the receiver-data handlers and the menu state. The
// platform edge supplies the window side through ShellUi and the receiver
// through LinkControl.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "GpsState.h"
#include "MenuModel.h"
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
    virtual void Repaint() = 0;
    virtual void StartBlinkTimer() = 0;
    virtual void StopBlinkTimer() = 0;
    virtual bool StartTrackTimer(std::uint32_t periodMs) = 0;
    virtual void StopTrackTimer() = 0;
    virtual bool TrackTimerRunning() const = 0;
    virtual bool StartClockTimer() = 0;  // (re)starts the 1-second clock
    virtual void SetBacklightHold(bool hold) = 0;
    virtual void CloseWindow() = 0;  // the end of a confirmed exit
    // The satellite data dialog: shown over the screen area or taken away,
    // and its twelve rows filled from the current fix.
    virtual void ShowSatelliteDialog(bool show) = 0;
    virtual void FillSatelliteDialog() = 0;
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
    virtual gps::GpsState& Gps() = 0;
    const gps::GpsState& Gps() const { return const_cast<LinkControl*>(this)->Gps(); }

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

inline constexpr int kScreenGpsInfo = 0;
inline constexpr int kScreenSkyPlot = 1;
inline constexpr int kScreenCompass = 2;
inline constexpr int kScreenSpeedometer = 3;
inline constexpr int kScreenMap = 4;
inline constexpr int kScreenSatelliteData = -1;

const char* ScreenName(int screen);

// The status shown when the alarm sound fails to play.
extern const char* const kAlarmSoundFailedStatus;

class Shell {
  public:
    Shell(ProgramSettings& settings, LinkControl& link, ShellUi& ui, AlarmSound& sound,
          OptionsStore* options);

    // Commands of later parts (dialogs, maps, tracks, POIs) slot in here;
    // an id without a handler is greyed in the menus and does nothing.
    using CommandHandler = std::function<void(int id)>;
    void RegisterCommand(int id, CommandHandler handler);
    bool HasHandler(int id) const { return handlers_.count(id) != 0; }

    void OnCommand(int id);
    void OnKeyDown(Key key);
    void OnGpsData();    // WM_GPS_DATA
    void OnGpsTime();    // WM_GPS_TIME
    void OnClockTick();  // timer 1028: one second more on the fix clock
    void OnBlinkTick();
    // A tap on alarm cell 0..7 (50..120): sets that limit as the menu's
    // entries do, or switches the alarm off when it is the lit cell.
    void OnAlarmCellTap(int cell);
    // The link has heard only other satellite systems' talkers for ten
    // seconds: the hint that names the all-talkers setting, once a run.
    void OnOtherTalkersOnly();
    // The user closed the satellite data dialog (its own button or key):
    // the screen it stood in for comes back.
    void OnSatelliteDialogClosed();

    // The two drop-downs as they are at this moment.
    MenuEntry BuildViewMenu() const;
    MenuEntry BuildMainMenu() const;

    ProgramSettings& settings() { return settings_; }
    const ProgramSettings& settings() const { return settings_; }
    LinkControl& link() { return link_; }
    const LinkControl& link() const { return link_; }
    const SpeedAlarm& alarm() const { return alarm_; }
    // The speed is at or above the limit with the alarm on and the link
    // running: the screens flash it whether or not the sound plays.
    bool SpeedAlarmShowing() const;

    // -1 while the satellite data dialog is shown in the screen's place.
    int currentScreen = kScreenGpsInfo;
    bool satelliteDialogOpen = false;
    int screenBeforeDialog = kScreenGpsInfo;
    bool fixTimeKnown = false;
    bool blinkPhase = false;
    // Flipped every second while the speed alarm shows; red when set.
    bool alarmFlashPhase = false;
    // The window's status line: set once, at the first alarm sound that
    // could not play.
    std::string status;
    bool mapLoaded = false;
    std::string mapLabel;
    bool exited = false;
    bool otherTalkersHintShown = false;
    // A port given for this run (a replay, --port) stands for the receiver:
    // start GPS opens it whatever receiver the settings name.
    bool forceComPort = false;
    std::string version = "0";

  private:
    void StartGps();
    void StopGps();
    void Exit();
    void SetScreen(int screen);
    void OpenSatelliteDialog();
    void CloseSatelliteDialog();
    void ReportLoss(int reason);
    void Message(const std::string& text, MessageIcon icon);

    ProgramSettings& settings_;
    LinkControl& link_;
    ShellUi& ui_;
    SpeedAlarm alarm_;
    OptionsStore* options_;
    std::map<int, CommandHandler> handlers_;
};

}  // namespace satwalk::shell
