#include "Shell.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "BaudRates.h"
#include "CommandIds.h"
#include "ErrorCodes.h"
#include "FixText.h"
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
    {cmd::kGpsInfo, kScreenGpsInfo}, {cmd::kSkyPlot, kScreenSkyPlot},
    {cmd::kCompass, kScreenCompass}, {cmd::kSpeedometer, kScreenSpeedometer},
    {cmd::kWorldMap, kScreenMap},
};

// Commands that flip a setting on or off.
struct ToggleCommand {
    int id;
    std::uint32_t ProgramSettings::*flag;
};
constexpr ToggleCommand kToggleCommands[] = {
    {cmd::kShowMap, &ProgramSettings::showMap},
    {cmd::kShowReferencePoints, &ProgramSettings::showReferencePoints},
    {cmd::kShowTrack, &ProgramSettings::showTrack},
    {cmd::kShowPoi, &ProgramSettings::showPoi},
};

// The hardware keys: the command each sends, and when.
enum class When { Always, Stopped, Running, MapLoaded };
struct KeyCommand {
    Key key;
    int id;
    When when;
};
constexpr KeyCommand kKeyCommands[] = {
    {Key::Digit0, cmd::kStartGps, When::Stopped},     {Key::Digit0, cmd::kStopGps, When::Running},
    {Key::Digit1, cmd::kGpsInfo, When::Always},       {Key::Digit2, cmd::kSkyPlot, When::Always},
    {Key::Digit3, cmd::kSatelliteData, When::Always}, {Key::Digit4, cmd::kWorldMap, When::Always},
    {Key::Digit5, cmd::kLoadedMap, When::MapLoaded},  {Key::Digit6, cmd::kCompass, When::Always},
    {Key::Digit7, cmd::kSpeedometer, When::Always},   {Key::Star, cmd::kGpsSettings, When::Stopped},
};

// The tool strip's tabs in strip order.
constexpr int kTabCommands[] = {cmd::kGpsInfo, cmd::kWorldMap,    cmd::kLoadedMap,
                                cmd::kCompass, cmd::kSpeedometer, cmd::kSkyPlot};

}  // namespace

// "The alarm sound cannot play; the alarm shows on the screen."
const char* const kAlarmSoundFailedStatus = "警报声音无法播放，警报在屏幕上显示";

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
    for (const ToggleCommand& c : kToggleCommands) {
        RegisterCommand(c.id, [this, flag = c.flag](int) {
            settings_.*flag ^= 1u;
            Repaint();
        });
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
    for (int i = 0; i < static_cast<int>(std::size(kTrackIntervals)); ++i) {
        RegisterCommand(cmd::kTrack10s + i, [this, i](int) {
            settings_.trackIntervalMs = kTrackIntervals[i];
            if (ui_.TrackTimerRunning()) {
                ui_.StopTrackTimer();
                if (!ui_.StartTrackTimer(settings_.trackIntervalMs)) {
                    Message(std::string("Create Track Timer failed: ") + common::err::kTrackTimer +
                                "\n\nPress OK to continue...",
                            MessageIcon::Error);
                }
            }
        });
    }
    RegisterCommand(cmd::kLoadedMap, [this](int) {
        if (mapLoaded)
            ChooseScreen(kScreenMap);
    });
    RegisterCommand(cmd::kExit, [this](int) { Exit(); });
    RegisterCommand(cmd::kStartGps, [this](int) { StartGps(); });
    RegisterCommand(cmd::kStopGps, [this](int) { StopGps(); });
    RegisterCommand(cmd::kAbout, [this](int) {
        Message(std::string(LoadString(common::kStrCaption)) + " " + version +
                    "\nGPS 显示与记录 (GPS display and logging)",
                MessageIcon::Information);
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
    d.mapLoaded = mapLoaded;
    d.speedAlarmSounding = SpeedAlarmShowing();
    d.alarmFlashPhase = alarmFlashPhase;
    d.unitSystem = settings_.units <= 2 ? static_cast<int>(settings_.units) : common::kMetric;
    d.speedAlarmOn = settings_.speedAlarmOn != 0;
    d.speedAlarmLimit = static_cast<int>(settings_.speedAlarmLimit);
    d.recording = settings_.recordNmea != 0;
    d.recordingFailed = recordingFaults_.Any();
    // Without a fix the last position stays.
    if (d.linkRunning && d.fixValid) {
        common::NmeaToDegrees(fix_.latitude, fix_.northSouth, fix_.longitude, fix_.eastWest,
                              &d.latitude, &d.longitude);
    }
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
    if (tab >= 0 && tab < static_cast<int>(std::size(kTabCommands)))
        OnCommand(kTabCommands[tab]);
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
    settings_.showTrack = 1;
    features_.NotifyLinkStarted();
    ui_.StopTrackTimer();
    if (!ui_.StartTrackTimer(settings_.trackIntervalMs)) {
        Message(FormatString("Create Track Timer failed:%s\n\nPress OK to continue...",
                             std::string(" ") + common::err::kTrackTimer),
                MessageIcon::Error);
    }
    Repaint();
}

void Shell::ReportLoss(int reason) {
    if (reason == 1)
        Message(LoadString(common::kStrConnectionLost), MessageIcon::Error);
    if (reason == 2)
        Message(LoadString(common::kStrDataTimeout), MessageIcon::Error);
}

void Shell::StopGps() {
    ui_.StopTrackTimer();
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
    ui_.StopTrackTimer();
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
                         (k.when == When::Running && running) ||
                         (k.when == When::MapLoaded && mapLoaded);
        if (now) {
            OnCommand(k.id);
            return;
        }
    }
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
    const common::FileTime clock = fix_.fixTimeLocal;
    fix_ = link_.Gps();
    fix_.TerminateTexts();
    if (!timeSyncedThisBatch_)
        fix_.fixTimeLocal = clock;
    timeSyncedThisBatch_ = false;
    const bool wasShowing = SpeedAlarmShowing();
    alarm_.CheckSpeedAlarm(CurrentSpeed(fix_, settings_.units), settings_.speedAlarmOn != 0,
                           settings_.speedAlarmLimit, link_.Running());
    // The flash starts red at once and goes with the alarm.
    if (SpeedAlarmShowing() != wasShowing)
        alarmFlashPhase = !wasShowing;
    if (alarm_.soundFailed())
        UpdateStatus();
    Repaint();
    features_.NotifyGpsData();
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
        text += kAlarmSoundFailedStatus;
    }
    if (text == status)
        return;
    status = std::move(text);
    ui_.ShowStatus(status);
}

void Shell::OnGpsTime() {
    if (!ui_.StartClockTimer()) {
        Message(std::string("Create Time Timer failed: ") + common::err::kClockTimer +
                    "\n\nPress OK to continue...",
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

namespace {

MenuEntry Item(int id, std::string text, bool enabled = true) {
    MenuEntry e;
    e.id = id;
    e.text = std::move(text);
    e.enabled = enabled;
    return e;
}

MenuEntry Radio(int id, std::string text, bool checked) {
    MenuEntry e = Item(id, std::move(text));
    e.checkable = true;
    e.radio = true;
    e.checked = checked;
    return e;
}

MenuEntry Check(int id, std::string text, bool checked) {
    MenuEntry e = Item(id, std::move(text));
    e.checkable = true;
    e.checked = checked;
    return e;
}

MenuEntry Sub(std::string text, std::vector<MenuEntry> items) {
    MenuEntry e;
    e.text = std::move(text);
    e.items = std::move(items);
    return e;
}

std::string FileNamePart(const std::string& path) {
    const std::size_t slash = path.find_last_of("/\\");
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

MenuEntry Shell::BuildViewMenu() const {
    const int s = currentScreen;
    std::vector<MenuEntry> map;
    if (mapLoaded) {
        map.push_back(Radio(cmd::kLoadedMap, mapLabel + "\t[5]", s == kScreenMap));
    }
    map.push_back(Radio(cmd::kWorldMap, "世界地图\t[4]", s == kScreenMap && !mapLoaded));
    map.push_back(Check(cmd::kShowMap, "显示载入地图", settings_.showMap != 0));
    map.push_back(
        Check(cmd::kShowReferencePoints, "显示参照点", settings_.showReferencePoints != 0));
    map.push_back(Check(cmd::kShowTrack, "显示轨迹", settings_.showTrack != 0));
    map.push_back(Check(cmd::kShowPoi, "显示 POI", settings_.showPoi != 0));

    MenuEntry satData = Radio(cmd::kSatelliteData, "卫星数据\t[3]", s == kScreenSatelliteData);

    return Decorated(
        Sub(LoadString(common::kStrView),
            {Radio(cmd::kGpsInfo, "GPS 信息\t[1]", s == kScreenGpsInfo),
             Sub("卫星", {Radio(cmd::kSkyPlot, "卫星图\t[2]", s == kScreenSkyPlot), satData}),
             Sub("地图", std::move(map)), Radio(cmd::kCompass, "指南针\t[6]", s == kScreenCompass),
             Radio(cmd::kSpeedometer, "时速\t[7]", s == kScreenSpeedometer)}));
}

MenuEntry Shell::BuildMainMenu() const {
    const bool running = link_.Running();
    auto later = [this](int id, std::string text) {
        return Item(id, std::move(text), HasHandler(id));
    };

    std::vector<MenuEntry> recent;
    for (int i = 0; i < kRecentMapSlots; ++i) {
        const std::string& path = settings_.recentMaps[static_cast<std::size_t>(i)];
        MenuEntry e = later(cmd::kRecentMap1 + i, path.empty() ? "空" : FileNamePart(path));
        if (path.empty())
            e.enabled = false;
        recent.push_back(std::move(e));
    }
    std::vector<MenuEntry> map{later(cmd::kLoadMap, "加载地图"),
                               Sub("最近载入地图", std::move(recent))};
    for (int i = 0; i < 5; ++i) {
        MenuEntry e = later(cmd::kSetReferencePoint1 + i, "设置参照点 " + std::to_string(i + 1));
        if (!mapLoaded)
            e.enabled = false;
        map.push_back(std::move(e));
    }

    std::vector<MenuEntry> track;
    for (int i = 0; i < 4; ++i) {
        static const char* const kTexts[] = {"间隔 10s", "间隔 20s", "间隔 30s", "间隔 60s"};
        track.push_back(
            Radio(cmd::kTrack10s + i, kTexts[i], settings_.trackIntervalMs == kTrackIntervals[i]));
    }
    MenuEntry save = Check(cmd::kSaveTrack, "保存轨迹记录", settings_.trackLogOn != 0);
    save.enabled = HasHandler(cmd::kSaveTrack);
    track.push_back(std::move(save));
    track.push_back(later(cmd::kViewTrack, "查看轨迹记录"));
    // Present only while a log is viewed (its feature says when).
    if (HasHandler(cmd::kCloseTrack))
        track.push_back(Item(cmd::kCloseTrack, "关闭轨迹记录"));

    std::vector<MenuEntry> alarm{Radio(cmd::kAlarmOff, "关闭", settings_.speedAlarmOn == 0)};
    for (int i = 0; i < 8; ++i) {
        alarm.push_back(
            Radio(cmd::kAlarm50 + i, std::to_string(kAlarmLimits[i]),
                  settings_.speedAlarmOn != 0 && settings_.speedAlarmLimit == kAlarmLimits[i]));
    }

    MenuEntry settingsEntry = later(cmd::kGpsSettings, "GPS 设置\t[*]");
    if (running)
        settingsEntry.enabled = false;

    return Decorated(Sub(
        LoadString(common::kStrMenu),
        {running ? Item(cmd::kStopGps, LoadString(common::kStrStopGps))
                 : Item(cmd::kStartGps, LoadString(common::kStrStartGps)),
         settingsEntry, Sub("地图", std::move(map)),
         Sub("POI", {later(cmd::kImportPoi, "导入 POI"), later(cmd::kDeleteAllPoi, "全部删除")}),
         Sub("轨迹", std::move(track)), Sub("时速警报", std::move(alarm)),
         Sub("单位", {Radio(cmd::kMetric, "米制", settings_.units == 0),
                      Radio(cmd::kImperial, "英制", settings_.units == 1),
                      Radio(cmd::kNautical, "海里", settings_.units == 2)}),
         later(cmd::kOptions, "选项"),
         Sub("帮助", {later(cmd::kUserManual, "用户手册"), Item(cmd::kAbout, "关于")}),
         Item(cmd::kExit, "退出")}));
}

MenuEntry Shell::Decorated(MenuEntry entry) const {
    std::vector<MenuEntry> items;
    for (MenuEntry& item : entry.items) {
        const Command* command = item.IsSubmenu() ? nullptr : features_.FindCommand(item.id);
        if (command != nullptr && command->state && !command->state(item.id).present)
            continue;
        items.push_back(Decorated(std::move(item)));
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

const MenuEntry* FindMenuEntry(const MenuEntry& root, int id) {
    if (root.id == id && id != 0)
        return &root;
    for (const MenuEntry& e : root.items) {
        if (const MenuEntry* found = FindMenuEntry(e, id))
            return found;
    }
    return nullptr;
}

namespace {

void Describe(const MenuEntry& e, int depth, std::string& out) {
    out.append(static_cast<std::size_t>(depth) * 2, ' ');
    if (e.IsSubmenu()) {
        out += e.text + " >\n";
        for (const MenuEntry& c : e.items) Describe(c, depth + 1, out);
        return;
    }
    if (e.checkable)
        out += e.checked ? (e.radio ? "(*) " : "[x] ") : (e.radio ? "( ) " : "[ ] ");
    out += std::to_string(e.id) + " " + e.text;
    if (!e.enabled)
        out += " (grey)";
    out += "\n";
}

}  // namespace

std::string DescribeMenu(const MenuEntry& root) {
    std::string out;
    Describe(root, 0, out);
    return out;
}

}  // namespace satwalk::shell
