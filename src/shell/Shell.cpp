#include "Shell.h"

#include "CommandIds.h"
#include "Strings.h"

namespace satwalk::shell {

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

const char* ScreenName(int screen) {
    switch (screen) {
        case kScreenGpsInfo:
            return "GPS 信息";
        case kScreenSkyPlot:
            return "卫星图";
        case kScreenCompass:
            return "指南针";
        case kScreenSpeedometer:
            return "时速";
        case kScreenMap:
            return "世界地图";
        default:
            return "";
    }
}

Shell::Shell(ProgramSettings& settings, LinkControl& link, ShellUi& ui, AlarmSound& sound,
             OptionsStore* options)
    : settings_(settings), link_(link), ui_(ui), alarm_(sound), options_(options) {}

void Shell::RegisterCommand(int id, CommandHandler handler) {
    handlers_[id] = std::move(handler);
}

void Shell::Message(const std::string& text, MessageIcon icon) {
    ui_.ShowMessage(text, icon, MessageButtons::Ok);
}

void Shell::SetScreen(int screen) {
    // A screen chosen while the satellite data dialog is open takes its
    // place: the dialog goes.
    CloseSatelliteDialog();
    currentScreen = screen;
    ui_.Repaint();
}

void Shell::OpenSatelliteDialog() {
    if (satelliteDialogOpen)
        return;
    screenBeforeDialog = currentScreen;
    currentScreen = kScreenSatelliteData;
    satelliteDialogOpen = true;
    ui_.ShowSatelliteDialog(true);
    ui_.FillSatelliteDialog();
    ui_.Repaint();
}

void Shell::CloseSatelliteDialog() {
    if (!satelliteDialogOpen)
        return;
    satelliteDialogOpen = false;
    ui_.ShowSatelliteDialog(false);
}

void Shell::OnSatelliteDialogClosed() {
    if (!satelliteDialogOpen)
        return;
    CloseSatelliteDialog();
    currentScreen = screenBeforeDialog;
    ui_.Repaint();
}

void Shell::OnCommand(int id) {
    if (id >= cmd::kAlarm50 && id <= cmd::kAlarm50 + 7) {
        settings_.speedAlarmLimit = kAlarmLimits[id - cmd::kAlarm50];
        settings_.speedAlarmOn = 1;
        ui_.Repaint();
        return;
    }
    if (id >= cmd::kTrack10s && id <= cmd::kTrack10s + 3) {
        settings_.trackIntervalMs = kTrackIntervals[id - cmd::kTrack10s];
        if (ui_.TrackTimerRunning()) {
            ui_.StopTrackTimer();
            if (!ui_.StartTrackTimer(settings_.trackIntervalMs)) {
                Message("Create Track Timer failed: 0x08200a13\n\nPress OK to continue...",
                        MessageIcon::Error);
            }
        }
        return;
    }
    switch (id) {
        case cmd::kExit:
            Exit();
            return;
        case cmd::kStartGps:
            StartGps();
            return;
        case cmd::kStopGps:
            StopGps();
            return;
        case cmd::kGpsInfo:
            SetScreen(kScreenGpsInfo);
            return;
        case cmd::kSkyPlot:
            SetScreen(kScreenSkyPlot);
            return;
        case cmd::kSatelliteData:
            OpenSatelliteDialog();
            return;
        case cmd::kCompass:
            SetScreen(kScreenCompass);
            return;
        case cmd::kSpeedometer:
            SetScreen(kScreenSpeedometer);
            return;
        case cmd::kWorldMap:
            SetScreen(kScreenMap);
            return;
        case cmd::kLoadedMap:
            if (mapLoaded)
                SetScreen(kScreenMap);
            return;
        case cmd::kShowMap:
            settings_.showMap ^= 1u;
            ui_.Repaint();
            return;
        case cmd::kShowReferencePoints:
            settings_.showReferencePoints ^= 1u;
            ui_.Repaint();
            return;
        case cmd::kShowTrack:
            settings_.showTrack ^= 1u;
            ui_.Repaint();
            return;
        case cmd::kShowPoi:
            settings_.showPoi ^= 1u;
            ui_.Repaint();
            return;
        case cmd::kMetric:
        case cmd::kImperial:
        case cmd::kNautical:
            settings_.units = static_cast<std::uint32_t>(id - cmd::kMetric);
            ui_.Repaint();
            return;
        case cmd::kAlarmOff:
            settings_.speedAlarmOn = 0;
            ui_.Repaint();
            return;
        case cmd::kAbout:
            Message(std::string(LoadString(kStrCaption)) + " " + version +
                        "\nGPS 显示与记录 (GPS display and logging)",
                    MessageIcon::Information);
            return;
        default:
            break;
    }
    const auto it = handlers_.find(id);
    if (it != handlers_.end())
        it->second(id);
}

void Shell::StartGps() {
    // The menu and key 0 only offer a start while stopped; a start sent
    // anyway (a script) must not reopen the port under a running reader.
    if (link_.Running())
        return;
    ui_.Repaint();
    if (settings_.bluetoothReceiver != 0 && !forceComPort) {
        if (settings_.bluetoothAddress == 0) {
            Message(LoadString(kStrConfigureReceiverFirst), MessageIcon::Information);
            return;
        }
        if (!link_.RegisterBluetoothPort(settings_.bluetoothAddress)) {
            Message(FormatString(LoadString(kStrBluetoothPortFailed), link_.LastErrorCode()),
                    MessageIcon::Error);
            return;
        }
    } else {
        link_.SetComPort(settings_.comPort);
    }
    const std::uint32_t baud = settings_.baudIndex < std::size(kBaudRates)
                                   ? kBaudRates[settings_.baudIndex]
                                   : kBaudRates[0];
    link_.SetBaudRate(baud);
    if (!link_.OpenPort()) {
        Message(FormatString(LoadString(kStrCannotConnect), link_.LastErrorCode()),
                MessageIcon::Information);
        return;
    }
    if (!link_.StartLink()) {
        Message(FormatString(LoadString(kStrStartLinkFailed), link_.LastErrorCode()),
                MessageIcon::Error);
        return;
    }
    ui_.StartBlinkTimer();
    settings_.showTrack = 1;
    ui_.StopTrackTimer();
    if (!ui_.StartTrackTimer(settings_.trackIntervalMs)) {
        Message(
            FormatString("Create Track Timer failed:%s\n\nPress OK to continue...", " 0x08200a13"),
            MessageIcon::Error);
    }
    ui_.Repaint();
}

void Shell::ReportLoss(int reason) {
    if (reason == 1)
        Message(LoadString(kStrConnectionLost), MessageIcon::Error);
    if (reason == 2)
        Message(LoadString(kStrDataTimeout), MessageIcon::Error);
}

void Shell::StopGps() {
    ui_.StopTrackTimer();
    ui_.StopBlinkTimer();
    const int reason = link_.StopLink();
    fixTimeKnown = false;
    alarm_.Silence();
    alarmFlashPhase = false;
    ReportLoss(reason);
    link_.Gps().ClearAllBlocks();
    ui_.Repaint();
}

void Shell::Exit() {
    const MessageAnswer answer =
        ui_.ShowMessage(LoadString(kStrConfirmExit), MessageIcon::Question, MessageButtons::YesNo);
    if (answer != MessageAnswer::Yes)
        return;
    if (options_ != nullptr)
        options_->SaveOptions(settings_);
    ui_.StopTrackTimer();
    ui_.StopBlinkTimer();
    if (link_.Running()) {
        const int reason = link_.StopLink();
        fixTimeKnown = false;
        ReportLoss(reason);
    }
    alarm_.Silence();
    CloseSatelliteDialog();
    if (settings_.backlightAlwaysOn != 0)
        ui_.SetBacklightHold(false);
    exited = true;
    ui_.CloseWindow();
}

void Shell::OnKeyDown(Key key) {
    switch (key) {
        case Key::Digit0:
            OnCommand(link_.Running() ? cmd::kStopGps : cmd::kStartGps);
            return;
        case Key::Digit1:
            OnCommand(cmd::kGpsInfo);
            return;
        case Key::Digit2:
            OnCommand(cmd::kSkyPlot);
            return;
        case Key::Digit3:
            OnCommand(cmd::kSatelliteData);
            return;
        case Key::Digit4:
            OnCommand(cmd::kWorldMap);
            return;
        case Key::Digit5:
            if (mapLoaded)
                OnCommand(cmd::kLoadedMap);
            return;
        case Key::Digit6:
            OnCommand(cmd::kCompass);
            return;
        case Key::Digit7:
            OnCommand(cmd::kSpeedometer);
            return;
        case Key::Star:
            if (!link_.Running())
                OnCommand(cmd::kGpsSettings);
            return;
        case Key::Left:
        case Key::Right: {
            if (currentScreen != kScreenSpeedometer)
                return;
            // Steps: off, 50, 60, ... 120 as positions 0..8.
            int step = 0;
            if (settings_.speedAlarmOn != 0) {
                step = 1;
                for (int k = 0; k < 8; ++k) {
                    if (kAlarmLimits[k] == settings_.speedAlarmLimit)
                        step = k + 1;
                }
            }
            step += key == Key::Right ? 1 : -1;
            if (step < 0)
                step = 0;
            if (step > 8)
                step = 8;
            OnCommand(step == 0 ? cmd::kAlarmOff : cmd::kAlarm50 + step - 1);
            return;
        }
        default:
            return;
    }
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
    gps::GpsState& state = link_.Gps();
    // The map takes the position here once it exists.
    const bool wasShowing = SpeedAlarmShowing();
    alarm_.CheckSpeedAlarm(CurrentSpeed(state, settings_.units), settings_.speedAlarmOn != 0,
                           settings_.speedAlarmLimit, link_.Running());
    // The flash starts red at once and goes with the alarm.
    if (SpeedAlarmShowing() != wasShowing)
        alarmFlashPhase = !wasShowing;
    if (alarm_.soundFailed() && status.empty()) {
        status = kAlarmSoundFailedStatus;
        ui_.ShowStatus(status);
    }
    ui_.Repaint();
    if (satelliteDialogOpen)
        ui_.FillSatelliteDialog();
}

void Shell::OnGpsTime() {
    if (!ui_.StartClockTimer()) {
        Message("Create Time Timer failed: 0x08200a21\n\nPress OK to continue...",
                MessageIcon::Error);
    }
    fixTimeKnown = true;
}

void Shell::OnClockTick() {
    link_.Gps().fixTimeLocal += gps::kFileTimeTicksPerSecond;
    if (currentScreen == kScreenGpsInfo)
        ui_.Repaint();
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
        ui_.Repaint();
}

void Shell::OnOtherTalkersOnly() {
    if (otherTalkersHintShown)
        return;
    otherTalkersHintShown = true;
    Message(OtherTalkersHint(), MessageIcon::Information);
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

    return Sub(
        LoadString(kStrView),
        {Radio(cmd::kGpsInfo, "GPS 信息\t[1]", s == kScreenGpsInfo),
         Sub("卫星", {Radio(cmd::kSkyPlot, "卫星图\t[2]", s == kScreenSkyPlot), satData}),
         Sub("地图", std::move(map)), Radio(cmd::kCompass, "指南针\t[6]", s == kScreenCompass),
         Radio(cmd::kSpeedometer, "时速\t[7]", s == kScreenSpeedometer)});
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
    track.push_back(later(cmd::kSaveTrack, "保存轨迹记录"));
    track.push_back(later(cmd::kViewTrack, "查看轨迹记录"));

    std::vector<MenuEntry> alarm{Radio(cmd::kAlarmOff, "关闭", settings_.speedAlarmOn == 0)};
    for (int i = 0; i < 8; ++i) {
        alarm.push_back(
            Radio(cmd::kAlarm50 + i, std::to_string(kAlarmLimits[i]),
                  settings_.speedAlarmOn != 0 && settings_.speedAlarmLimit == kAlarmLimits[i]));
    }

    MenuEntry settingsEntry = later(cmd::kGpsSettings, "GPS 设置\t[*]");
    if (running)
        settingsEntry.enabled = false;

    return Sub(
        LoadString(kStrMenu),
        {running ? Item(cmd::kStopGps, LoadString(kStrStopGps))
                 : Item(cmd::kStartGps, LoadString(kStrStartGps)),
         settingsEntry, Sub("地图", std::move(map)),
         Sub("POI", {later(cmd::kImportPoi, "导入 POI"), later(cmd::kDeleteAllPoi, "全部删除")}),
         Sub("轨迹", std::move(track)), Sub("时速警报", std::move(alarm)),
         Sub("单位", {Radio(cmd::kMetric, "米制", settings_.units == 0),
                      Radio(cmd::kImperial, "英制", settings_.units == 1),
                      Radio(cmd::kNautical, "海里", settings_.units == 2)}),
         later(cmd::kOptions, "选项"),
         Sub("帮助", {later(cmd::kUserManual, "用户手册"), Item(cmd::kAbout, "关于")}),
         Item(cmd::kExit, "退出")});
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
