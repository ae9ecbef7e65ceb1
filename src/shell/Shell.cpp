#include "Shell.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "BaudRates.h"
#include "CommandIds.h"
#include "ErrorCodes.h"
#include "Strings.h"

namespace satwalk::shell {

namespace {

using common::FormatString;
using common::LoadString;

// Commands that show a screen.
struct ScreenCommand {
    int id;
    int screen;
};
constexpr ScreenCommand kScreenCommands[] = {
    {cmd::kGpsInfo, kScreenGpsInfo},
    {cmd::kSkyPlot, kScreenSkyPlot},
    {cmd::kCompass, kScreenCompass},
    {cmd::kSpeedometer, kScreenSpeedometer},
};

// The shell's hardware keys: the command each sends, and when. Features
// add their own (the map's 4 and 5).
enum class When { Always, Stopped, Running };
struct KeyCommand {
    Key key;
    int id;
    When when;
};
constexpr KeyCommand kKeyCommands[] = {
    {Key::Digit0, cmd::kStartGps, When::Stopped},     {Key::Digit0, cmd::kStopGps, When::Running},
    {Key::Digit1, cmd::kGpsInfo, When::Always},       {Key::Digit2, cmd::kSkyPlot, When::Always},
    {Key::Digit3, cmd::kSatelliteData, When::Always}, {Key::Digit6, cmd::kCompass, When::Always},
    {Key::Digit7, cmd::kSpeedometer, When::Always},   {Key::Star, cmd::kGpsSettings, When::Stopped},
};

// The tool strip's tabs in strip order; 0 where a feature sets the command
// (tabs 1 and 2 are the map's).
constexpr int kTabCommands[] = {cmd::kGpsInfo, 0, 0, cmd::kCompass, cmd::kSpeedometer,
                                cmd::kSkyPlot};

}  // namespace

const char* MessageIconName(MessageIcon icon) {
    switch (icon) {
        case MessageIcon::Error:
            return "error";
        case MessageIcon::Information:
            return "information";
        case MessageIcon::Question:
            return "question";
        case MessageIcon::Exclamation:
            return "exclamation";
    }
    return "information";
}

Shell::Shell(ProgramSettings& settings, LinkControl& link, ShellUi& ui, AlarmSound& sound,
             OptionsStore* options)
    : settings_(settings), link_(link), ui_(ui), alarm_(sound), options_(options) {
    RegisterOwnCommands();
    RefreshDisplay();
}

void Shell::RegisterCommand(int id, std::function<void(int id)> handler) {
    features_.AddCommand(id, Command{std::move(handler), {}});
}

void Shell::RegisterOwnCommands() {
    for (const ScreenCommand& c : kScreenCommands) {
        RegisterCommand(c.id, [this, screen = c.screen](int) { ChooseScreen(screen); });
    }
    for (int id = cmd::kMetric; id <= cmd::kNautical; ++id) {
        RegisterCommand(id, [this](int unit) {
            settings_.units = static_cast<std::uint32_t>(unit - cmd::kMetric);
            Repaint();
        });
    }
    for (int i = 0; i < static_cast<int>(std::size(kAlarmLimits)); ++i) {
        RegisterCommand(cmd::kAlarm50 + i, [this, i](int) {
            settings_.speedAlarmLimit = kAlarmLimits[i];
            settings_.speedAlarmOn = 1;
            Repaint();
        });
    }
    RegisterCommand(cmd::kAlarmOff, [this](int) {
        settings_.speedAlarmOn = 0;
        Repaint();
    });
    RegisterCommand(cmd::kExit, [this](int) { Exit(); });
    RegisterCommand(cmd::kStartGps, [this](int) { StartGps(); });
    RegisterCommand(cmd::kStopGps, [this](int) { StopGps(); });
    RegisterCommand(cmd::kAbout, [this](int) {
        Message(FormatString(LoadString(common::kStrAboutText), version), MessageIcon::Information);
    });
}

void Shell::Message(const std::string& text, MessageIcon icon) {
    ui_.ShowMessage(text, icon, MessageButtons::Ok);
}

void Shell::RefreshDisplay() {
    screens::DisplayState& d = display_;
    d.currentScreen = currentScreen;
    d.linkRunning = link_.Running();
    d.fixValid = link_.FixValid();
    d.blinkPhase = blinkPhase;
    d.fixTimeKnown = fixTimeKnown;
    d.mapLoaded = false;
    d.speedAlarmSounding = SpeedAlarmShowing();
    d.alarmFlashPhase = alarmFlashPhase;
    d.unitSystem = settings_.units <= 2 ? static_cast<int>(settings_.units) : common::kMetric;
    d.speedAlarmOn = settings_.speedAlarmOn != 0;
    d.speedAlarmLimit = static_cast<int>(settings_.speedAlarmLimit);
    d.recording = settings_.recordNmea != 0;
    d.fix = fixValues_;
    d.recordingFailed = recordingFaults_.Any();
    // Without a fix the last position stays.
    if (d.linkRunning && d.fixValid) {
        d.latitude = fixValues_.latitude.value_or(gps::kAbsentDegrees);
        d.longitude = fixValues_.longitude.value_or(gps::kAbsentDegrees);
    }
    features_.ContributeDisplay(d);
}

void Shell::Repaint() {
    RefreshDisplay();
    ui_.Repaint();
}

void Shell::ChooseScreen(int screen) {
    features_.NotifyScreenChosen();
    currentScreen = screen;
    Repaint();
}

void Shell::OnCommand(int id) {
    if (const Command* command = features_.FindCommand(id); command != nullptr && command->run)
        command->run(id);
}

void Shell::OnTabTapped(int tab) {
    if (tab < 0 || tab >= static_cast<int>(std::size(kTabCommands)))
        return;
    const int id = features_.TabCommand(tab);
    OnCommand(id != 0 ? id : kTabCommands[tab]);
}

void Shell::SetSoftKeys(SoftKeys keys) {
    softKeys_ = std::move(keys);
}

void Shell::StartGps() {
    // The menu and key 0 only offer a start while stopped; a start sent
    // anyway (a script) must not reopen the port under a running reader.
    if (link_.Running())
        return;
    Repaint();
    if (settings_.autoBluetooth != 0 && !link_.SwitchRadioOn())
        Message(LoadString(common::kStrRadioSwitchFailed), MessageIcon::Error);
    if (settings_.bluetoothReceiver != 0 && !forceComPort) {
        if (settings_.bluetoothAddress == 0) {
            Message(LoadString(common::kStrConfigureReceiverFirst), MessageIcon::Information);
            return;
        }
        if (!link_.RegisterBluetoothPort(settings_.bluetoothAddress)) {
            Message(
                FormatString(LoadString(common::kStrBluetoothPortFailed), link_.LastErrorCode()),
                MessageIcon::Error);
            return;
        }
    } else {
        link_.SetComPort(settings_.comPort);
    }
    const std::uint32_t baud = settings_.baudIndex < std::size(common::kBaudRates)
                                   ? common::kBaudRates[settings_.baudIndex]
                                   : common::kBaudRates[0];
    link_.SetBaudRate(baud);
    if (!link_.OpenPort()) {
        Message(FormatString(LoadString(common::kStrCannotConnect), link_.LastErrorCode()),
                MessageIcon::Information);
        return;
    }
    if (!link_.StartLink()) {
        Message(FormatString(LoadString(common::kStrStartLinkFailed), link_.LastErrorCode()),
                MessageIcon::Error);
        return;
    }
    ui_.StartBlinkTimer();
    features_.NotifyLinkStarted();
    Repaint();
}

void Shell::ReportLoss(int reason) {
    if (reason == 1)
        Message(LoadString(common::kStrConnectionLost), MessageIcon::Error);
    if (reason == 2)
        Message(LoadString(common::kStrDataTimeout), MessageIcon::Error);
}

void Shell::StopGps() {
    ui_.StopBlinkTimer();
    const int reason = link_.StopLink();
    features_.NotifyLinkStopped();
    fixTimeKnown = false;
    alarm_.Silence();
    alarmFlashPhase = false;
    ReportLoss(reason);
    // The reader has ended: the link's fix and the copy are emptied alike.
    link_.ClearFixBlocks();
    fix_.ClearAllBlocks();
    fixValues_ = {};
    Repaint();
}

void Shell::Exit() {
    const MessageAnswer answer = ui_.ShowMessage(LoadString(common::kStrConfirmExit),
                                                 MessageIcon::Question, MessageButtons::YesNo);
    if (answer != MessageAnswer::Yes)
        return;
    if (options_ != nullptr && !options_->SaveOptions(settings_)) {
        // Said before the window goes, so the user can still act on it.
        const std::string text = common::FormatStrings(
            LoadString(common::kStrSaveOptionsFailed),
            {options_->path(), common::WriteFailureReason(options_->saveError())});
        std::fprintf(stderr, "satwalk: %s (%s)\n", text.c_str(),
                     std::strerror(options_->saveError()));
        Message(text, MessageIcon::Error);
    }
    ui_.StopBlinkTimer();
    if (link_.Running()) {
        const int reason = link_.StopLink();
        fixTimeKnown = false;
        ReportLoss(reason);
    }
    alarm_.Silence();
    features_.NotifyExit();
    link_.SwitchRadioBackOff();
    if (settings_.backlightAlwaysOn != 0)
        ui_.SetBacklightHold(false);
    exited = true;
    ui_.CloseWindow();
}

void Shell::OnKeyDown(Key key) {
    if (features_.NotifyKeyDown(key))
        return;
    if (key == Key::Left || key == Key::Right) {
        if (currentScreen == kScreenSpeedometer)
            StepAlarm(key == Key::Right ? 1 : -1);
        return;
    }
    const bool running = link_.Running();
    for (const KeyCommand& k : kKeyCommands) {
        if (k.key != key)
            continue;
        const bool now = k.when == When::Always || (k.when == When::Stopped && !running) ||
                         (k.when == When::Running && running);
        if (now) {
            OnCommand(k.id);
            return;
        }
    }
    if (const int id = features_.KeyCommand(key); id != 0)
        OnCommand(id);
}

void Shell::StepAlarm(int direction) {
    // Steps: off, 50, 60, ... 120 as positions 0..8.
    constexpr int kLastStep = static_cast<int>(std::size(kAlarmLimits));
    int step = 0;
    if (settings_.speedAlarmOn != 0) {
        step = 1;
        for (int k = 0; k < kLastStep; ++k) {
            if (kAlarmLimits[k] == settings_.speedAlarmLimit)
                step = k + 1;
        }
    }
    step = std::clamp(step + direction, 0, kLastStep);
    OnCommand(step == 0 ? cmd::kAlarmOff : cmd::kAlarm50 + step - 1);
}

void Shell::OnAlarmCellTap(int cell) {
    if (cell < 0 || cell >= static_cast<int>(std::size(kAlarmLimits)))
        return;
    const bool lit = settings_.speedAlarmOn != 0 && settings_.speedAlarmLimit == kAlarmLimits[cell];
    OnCommand(lit ? cmd::kAlarmOff : cmd::kAlarm50 + cell);
}

bool Shell::SpeedAlarmShowing() const {
    return alarm_.playing() && settings_.speedAlarmOn != 0 && link_.Running();
}

void Shell::OnGpsData() {
    // The reader waits until this returns: the one moment the link's fix
    // holds still. The clock keeps its own count between time syncs.
    const gps::FileTime clock = fix_.fixTimeLocal;
    fix_ = link_.Gps();
    fix_.TerminateTexts();
    fixValues_ = gps::ReadFix(fix_);
    if (!timeSyncedThisBatch_)
        fix_.fixTimeLocal = clock;
    timeSyncedThisBatch_ = false;
    const bool wasShowing = SpeedAlarmShowing();
    alarm_.CheckSpeedAlarm(CurrentSpeed(fixValues_, settings_.units), settings_.speedAlarmOn != 0,
                           settings_.speedAlarmLimit, link_.Running());
    // The flash starts red at once and goes with the alarm.
    if (SpeedAlarmShowing() != wasShowing)
        alarmFlashPhase = !wasShowing;
    if (alarm_.soundFailed())
        UpdateStatus();
    // The features hear of the batch first; then one paint is asked for,
    // which the window makes after the reader has been let go.
    RefreshDisplay();
    features_.NotifyGpsData();
    RefreshDisplay();
    ui_.RequestRepaint();
}

void Shell::ReportRecordingWrite(Recording recording, int error) {
    if (!recordingFaults_.Report(recording, error))
        return;
    UpdateStatus();
    Repaint();
}

void Shell::UpdateStatus() {
    std::string text = recordingFaults_.Text();
    if (alarm_.soundFailed()) {
        if (!text.empty())
            text += "；";
        text += LoadString(common::kStrAlarmSoundFailed);
    }
    if (text == status)
        return;
    status = std::move(text);
    ui_.ShowStatus(status);
}

void Shell::OnGpsTime() {
    if (!ui_.StartClockTimer()) {
        Message(FormatString(LoadString(common::kStrClockTimerFailed), common::err::kClockTimer),
                MessageIcon::Error);
    }
    fixTimeKnown = true;
    timeSyncedThisBatch_ = true;
}

void Shell::OnClockTick() {
    fix_.fixTimeLocal += gps::kFileTimeTicksPerSecond;
    if (currentScreen == kScreenGpsInfo)
        Repaint();
}

void Shell::OnBlinkTick() {
    // The same 1-second timer runs while the link does: it blinks the
    // receiver icon without a fix and flashes the speed alarm.
    bool changed = false;
    if (link_.Running() && !link_.FixValid()) {
        blinkPhase = !blinkPhase;
        changed = true;
    }
    if (SpeedAlarmShowing()) {
        alarmFlashPhase = !alarmFlashPhase;
        changed = true;
    } else if (alarmFlashPhase) {
        alarmFlashPhase = false;
        changed = true;
    }
    if (changed)
        Repaint();
}

void Shell::OnOtherTalkersOnly() {
    if (otherTalkersHintShown)
        return;
    otherTalkersHintShown = true;
    Message(common::OtherTalkersHint(), MessageIcon::Information);
}

// ---- menus ----

MenuEntry Shell::FeatureMenu(int textId, MenuPlace place) const {
    return MenuSub(LoadString(textId), features_.MenuEntriesAt(place));
}

MenuEntry Shell::BuildViewMenu() const {
    const int s = currentScreen;
    auto screen = [s](int id, int textId, int screenId) {
        return MenuRadio(id, LoadString(textId), s == screenId);
    };
    return Decorated(MenuSub(
        LoadString(common::kStrView),
        {screen(cmd::kGpsInfo, common::kStrMenuGpsInfo, kScreenGpsInfo),
         MenuSub(
             LoadString(common::kStrMenuSatellites),
             {screen(cmd::kSkyPlot, common::kStrMenuSkyPlot, kScreenSkyPlot),
              screen(cmd::kSatelliteData, common::kStrMenuSatelliteData, kScreenSatelliteData)}),
         FeatureMenu(common::kStrMenuMap, MenuPlace::ViewMap),
         screen(cmd::kCompass, common::kStrMenuCompass, kScreenCompass),
         screen(cmd::kSpeedometer, common::kStrMenuSpeedometer, kScreenSpeedometer)}));
}

MenuEntry Shell::BuildMainMenu() const {
    const bool running = link_.Running();
    // An entry whose command no one handles yet is greyed.
    auto later = [this](int id, int textId) {
        return MenuItem(id, LoadString(textId), HasHandler(id));
    };

    std::vector<MenuEntry> alarm{
        MenuRadio(cmd::kAlarmOff, LoadString(common::kStrOff), settings_.speedAlarmOn == 0)};
    for (int i = 0; i < static_cast<int>(std::size(kAlarmLimits)); ++i) {
        alarm.push_back(
            MenuRadio(cmd::kAlarm50 + i, std::to_string(kAlarmLimits[i]),
                      settings_.speedAlarmOn != 0 && settings_.speedAlarmLimit == kAlarmLimits[i]));
    }
    std::vector<MenuEntry> units;
    for (int u = 0; u < 3; ++u) {
        units.push_back(MenuRadio(cmd::kMetric + u, LoadString(common::kStrMenuMetric + u),
                                  settings_.units == static_cast<std::uint32_t>(u)));
    }

    MenuEntry settingsEntry = later(cmd::kGpsSettings, common::kStrMenuGpsSettings);
    if (running)
        settingsEntry.enabled = false;

    return Decorated(MenuSub(LoadString(common::kStrMenu),
                             {running ? MenuItem(cmd::kStopGps, LoadString(common::kStrStopGps))
                                      : MenuItem(cmd::kStartGps, LoadString(common::kStrStartGps)),
                              settingsEntry, FeatureMenu(common::kStrMenuMap, MenuPlace::MainMap),
                              FeatureMenu(common::kStrMenuPoi, MenuPlace::MainPoi),
                              FeatureMenu(common::kStrMenuTrack, MenuPlace::MainTrack),
                              MenuSub(LoadString(common::kStrMenuSpeedAlarm), std::move(alarm)),
                              MenuSub(LoadString(common::kStrMenuUnits), std::move(units)),
                              later(cmd::kOptions, common::kStrMenuOptions),
                              MenuSub(LoadString(common::kStrMenuHelp),
                                      {later(cmd::kUserManual, common::kStrMenuUserManual),
                                       MenuItem(cmd::kAbout, LoadString(common::kStrMenuAbout))}),
                              MenuItem(cmd::kExit, LoadString(common::kStrMenuExit))}));
}

MenuEntry Shell::Decorated(MenuEntry entry) const {
    std::vector<MenuEntry> items;
    for (MenuEntry& item : entry.items) {
        const Command* command = item.IsSubmenu() ? nullptr : features_.FindCommand(item.id);
        if (command != nullptr && command->state && !command->state(item.id).present)
            continue;
        MenuEntry decorated = Decorated(std::move(item));
        // A sub-menu that no feature fills is left out.
        if (decorated.IsSubmenu() && decorated.items.empty())
            continue;
        items.push_back(std::move(decorated));
    }
    entry.items = std::move(items);
    if (entry.IsSubmenu())
        return entry;
    // A feature's own view of its entry: greyed, checked, or named anew.
    const Command* command = features_.FindCommand(entry.id);
    if (command == nullptr || !command->state)
        return entry;
    const EntryState state = command->state(entry.id);
    entry.enabled = entry.enabled && state.enabled;
    if (entry.checkable)
        entry.checked = state.checked;
    if (!state.text.empty())
        entry.text = state.text;
    return entry;
}

}  // namespace satwalk::shell
