// satwalk: the GPS display window.
//
//   satwalk [--options PATH] [--size WxH] [--dpi N] [--port SOURCE]
//           [--replay [FILE] [--replay-rate X]] [--script FILE] [--single-instance]
//           [--all-talkers] [--relay [HOST:]PORT] [--language zh_CN|en|auto]
//   satwalk --help | --version | --list-commands
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QScreen>
#include <QStandardPaths>
#include <QTimer>

#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "CommandIds.h"
#include "CommandTable.h"
#include "DataFiles.h"
#include "FeatureList.h"
#include "Language.h"
#include "LanguageOption.h"
#include "MainWindow.h"
#include "MapLayers.h"
#include "MessageBoxes.h"
#include "QtPlatform.h"
#include "ScreenAdapter.h"
#include "ScriptRunner.h"
#include "Settings.h"
#include "StateJson.h"
#include "Strings.h"
#include "TrackGpxOption.h"
#include "UiScale.h"
#include "WindowGeometry.h"

#include "AppLink.h"
#include "RelaySetting.h"
#include "ReplayReceiver.h"

namespace {

using namespace satwalk;

const char* Usage() {
    return common::LoadString(common::kStrUsage);
}

struct Arguments {
    QString optionsPath;
    QSize size{480, 640};
    bool sizeGiven = false;
    int dpi = 192;
    std::optional<std::uint32_t> scale;
    QString port;
    bool replay = false;
    QString replayFile;
    double replayRate = 1.0;
    QString script;
    bool singleInstance = false;
    bool allTalkers = false;
    bool listCommands = false;
    QString relay;
    QString language;  // for this run only; empty: the saved choice
};

// Qt's own options (-platform offscreen, -style fusion...): left to the
// application object, which reads them; the ones that take a value.
constexpr std::string_view kQtValueOptions[] = {"platform",
                                                "platformpluginpath",
                                                "platformtheme",
                                                "plugin",
                                                "qwindowgeometry",
                                                "geometry",
                                                "qwindowtitle",
                                                "title",
                                                "qwindowicon",
                                                "icon",
                                                "display",
                                                "style",
                                                "stylesheet",
                                                "session",
                                                "name",
                                                "qmljsdebugger"};
constexpr std::string_view kQtFlagOptions[] = {"reverse", "nograb",      "dograb",
                                               "sync",    "widgetcount", "testability"};

// The number of arguments a Qt option takes up (1 or 2), 0 for none of Qt's.
int QtOptionLength(std::string_view arg) {
    if (arg.size() < 2 || arg[0] != '-')
        return 0;
    arg.remove_prefix(arg.substr(0, 2) == "--" ? 2 : 1);
    for (const std::string_view o : kQtValueOptions) {
        if (arg == o)
            return 2;
    }
    for (const std::string_view o : kQtFlagOptions) {
        if (arg == o)
            return 1;
    }
    return 0;
}

// Reads the command line before anything of Qt starts; on a bad option
// returns nothing and says why in `error` (the option and what is wrong).
std::optional<Arguments> ParseArguments(int argc, char** argv, std::string& error) {
    Arguments a;
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (const int qt = QtOptionLength(arg); qt > 0) {
            i += qt - 1;
            continue;
        }
        auto value = [&](std::string_view& out) {
            if (i + 1 >= argc) {
                error = std::string(arg) + " needs a value";
                return false;
            }
            out = argv[++i];
            return true;
        };
        auto bad = [&](std::string_view v, std::string_view why) {
            error = std::string(arg) + ' ' + std::string(v) + ": " + std::string(why);
            return std::nullopt;
        };
        const auto local = [](std::string_view v) {
            return QString::fromLocal8Bit(v.data(), static_cast<qsizetype>(v.size()));
        };
        std::string_view v;
        if (arg == "--options") {
            if (!value(v))
                return std::nullopt;
            a.optionsPath = local(v);
        } else if (arg == "--size") {
            if (!value(v))
                return std::nullopt;
            const QStringList wh = local(v).split(QLatin1Char('x'));
            bool okW = false;
            bool okH = false;
            if (wh.size() == 2)
                a.size = QSize(wh[0].toInt(&okW), wh[1].toInt(&okH));
            a.sizeGiven = true;
            if (!okW || !okH)
                return bad(v, "not WIDTHxHEIGHT");
            if (a.size.width() <= 0 || a.size.height() <= 0)
                return bad(v, "width and height must be positive");
            if (a.size.width() < 16 || a.size.height() < 16 || a.size.width() > 8192 ||
                a.size.height() > 8192) {
                return bad(v, "width and height must be 16 to 8192");
            }
        } else if (arg == "--dpi") {
            bool ok = false;
            if (!value(v))
                return std::nullopt;
            a.dpi = local(v).toInt(&ok);
            if (!ok || a.dpi < 48 || a.dpi > 960)
                return bad(v, "the density must be a whole number from 48 to 960");
        } else if (arg == "--scale") {
            std::uint32_t scale = 0;
            if (!value(v))
                return std::nullopt;
            if (!shell::ParseUiScale(v, scale))
                return bad(v, "choose auto, 100, 150, 200 or 300");
            a.scale = scale;
        } else if (arg == "--port") {
            if (!value(v))
                return std::nullopt;
            a.port = local(v);
        } else if (arg == "--replay") {
            a.replay = true;
            if (i + 1 < argc && argv[i + 1][0] != '-')
                a.replayFile = local(argv[++i]);
        } else if (arg == "--replay-rate") {
            bool ok = false;
            if (!value(v))
                return std::nullopt;
            a.replayRate = local(v).toDouble(&ok);
            if (!ok || !(a.replayRate > 0) || a.replayRate > 1000)
                return bad(v, "the rate must be above 0 and at most 1000");
        } else if (arg == "--script") {
            if (!value(v))
                return std::nullopt;
            a.script = local(v);
        } else if (arg == "--single-instance") {
            a.singleInstance = true;
        } else if (arg == "--all-talkers") {
            a.allTalkers = true;
        } else if (arg == "--relay") {
            if (!value(v))
                return std::nullopt;
            if (!link::IsRelayAddress(std::string(v)))
                return bad(v, "not [HOST:]PORT with a numeric host");
            a.relay = local(v);
        } else if (arg == "--language") {
            if (!value(v))
                return std::nullopt;
            if (!shell::IsLanguageChoice(v))
                return bad(v, "choose zh_CN, en or auto");
            a.language = local(v);
        } else if (arg == "--list-commands") {
            a.listCommands = true;
        } else if (!arg.empty() && arg[0] == '-') {
            error = "unknown option " + std::string(arg);
            return std::nullopt;
        } else {
            error = "unexpected argument " + std::string(arg);
            return std::nullopt;
        }
    }
    return a;
}

// Qt's messages while the application object starts: held back, so that a
// display that cannot be opened is said in one plain line rather than as
// Qt's abort.
std::vector<std::pair<QtMsgType, QString>>& StartupMessages() {
    static std::vector<std::pair<QtMsgType, QString>> messages;
    return messages;
}

void NoDisplayHandler(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtFatalMsg) {
        if (StartupMessages().size() < 100)
            StartupMessages().emplace_back(type, message);
        return;
    }
    const char* display = std::getenv("DISPLAY");
    const char* wayland = std::getenv("WAYLAND_DISPLAY");
    const bool none =
        (display == nullptr || *display == '\0') && (wayland == nullptr || *wayland == '\0');
    if (none) {
        std::fputs(
            "satwalk: no display to open: neither DISPLAY nor WAYLAND_DISPLAY is set "
            "(QT_QPA_PLATFORM=offscreen runs without one)\n",
            stderr);
    } else {
        std::fprintf(stderr, "satwalk: cannot open the display %s\n",
                     display != nullptr && *display != '\0' ? display : wayland);
    }
    std::fflush(stderr);
    std::_Exit(1);
}

// Milliseconds since this process started, for the start-up figure.
long long MillisecondsSinceProcessStart() {
    std::ifstream stat("/proc/self/stat");
    std::string all((std::istreambuf_iterator<char>(stat)), {});
    const std::size_t close = all.rfind(')');
    if (close == std::string::npos)
        return -1;
    std::istringstream rest(all.substr(close + 2));
    std::string field;
    unsigned long long startTicks = 0;
    for (int i = 3; i <= 22 && rest >> field; ++i) {
        if (i == 22)
            startTicks = std::stoull(field);
    }
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const long hz = sysconf(_SC_CLK_TCK);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000 -
           static_cast<long long>(startTicks * 1000ULL / static_cast<unsigned long long>(hz));
}

// The command table of the whole program, features included, as a fresh
// start with the built-in settings would have it.
int ListCommands(const Arguments& args) {
    shell::ProgramSettings settings;
    app::AppLink link;
    app::QtAlarmSound sound{QString()};
    app::ScreenAdapter screens;
    app::MainWindow window(settings, link, sound, nullptr, args.size, args.dpi);
    const std::vector<std::unique_ptr<shell::Feature>> features =
        app::MakeFeatures(window, screens);
    for (const auto& feature : features) window.shell().features().Add(*feature);
    std::fputs(shell::CommandTable(window.shell()).c_str(), stdout);
    return 0;
}

bool HasArgument(int argc, char** argv, std::initializer_list<std::string_view> names) {
    for (int i = 1; i < argc; ++i) {
        if (std::find(names.begin(), names.end(), std::string_view(argv[i])) != names.end())
            return true;
    }
    return false;
}

// The value after `name`, for the answers given before the arguments are
// parsed; empty when it is not there.
QString ArgumentValue(int argc, char** argv, std::string_view name) {
    for (int i = 1; i + 1 < argc; ++i) {
        if (name == argv[i])
            return QString::fromLocal8Bit(argv[i + 1]);
    }
    return {};
}

// The options file: the one named, else "options" in the XDG config folder.
QString OptionsPath(const QString& named) {
    if (!named.isEmpty())
        return named;
    const QString dir = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    return QDir(dir).filePath("options");
}

// The language of this run: the one named for it, else the saved choice in
// the `language` file beside the options; "auto" follows the environment.
QString ChooseLanguage(const QString& named, const QString& optionsPath) {
    const std::string choice =
        !named.isEmpty() && shell::IsLanguageChoice(named.toStdString())
            ? named.toStdString()
            : shell::LoadLanguageOption(shell::LanguageOptionPath(optionsPath.toStdString()));
    return QString::fromStdString(shell::ResolveLanguage(choice, std::getenv));
}

// The table's texts in `code` for this run; said on standard error when the
// translation cannot be read (the interface then stays in Chinese).
void UseLanguage(const QString& code) {
    if (!app::InstallLanguage(code)) {
        std::fprintf(stderr, "satwalk: no translation for %s, the interface stays in Chinese\n",
                     qPrintable(code));
    }
}

}  // namespace

int main(int argc, char** argv) {
    // These need no display: they answer before Qt looks for one, and so
    // does a command line that cannot be read.
    QCoreApplication::setApplicationName("satwalk");
    if (HasArgument(argc, argv, {"--help", "-h"})) {
        UseLanguage(ChooseLanguage(ArgumentValue(argc, argv, "--language"),
                                   OptionsPath(ArgumentValue(argc, argv, "--options"))));
        std::fputs(Usage(), stdout);
        return 0;
    }
    if (HasArgument(argc, argv, {"--version"})) {
        std::printf("satwalk %s\n", SATWALK_VERSION);
        return 0;
    }
    std::string error;
    const std::optional<Arguments> parsed = ParseArguments(argc, argv, error);
    if (!parsed) {
        std::fprintf(stderr, "satwalk: %s\n(satwalk --help lists the options)\n", error.c_str());
        return 2;
    }
    const Arguments& args = *parsed;
    if (args.listCommands)
        qputenv("QT_QPA_PLATFORM", "offscreen");

    const QtMessageHandler previous = qInstallMessageHandler(NoDisplayHandler);
    QApplication app(argc, argv);
    qInstallMessageHandler(previous);
    for (const auto& [type, message] : StartupMessages())
        qt_message_output(type, QMessageLogContext(), message);
    StartupMessages().clear();
    QApplication::setApplicationName("satwalk");
    QApplication::setApplicationVersion(SATWALK_VERSION);
    // The language, once, before any text is shown; the standard buttons
    // follow it.
    const QString optionsPath = OptionsPath(args.optionsPath);
    const QString language = ChooseLanguage(args.language, optionsPath);
    UseLanguage(language);
    app::InstallQtTranslation(app, language);

    if (args.listCommands)
        return ListCommands(args);
    const bool scriptMode = !args.script.isEmpty();

    // One copy at a time: a second start brings the first forward.
    const char* instanceEnv = std::getenv("SATWALK_INSTANCE_NAME");
    app::SingleInstance instance(instanceEnv != nullptr ? QString(instanceEnv)
                                                        : QStringLiteral("Orvane_Satwalk"));
    if ((!scriptMode || args.singleInstance) && !instance.Claim())
        return 0;

    // Options, before anything is shown.
    if (args.optionsPath.isEmpty())
        QDir().mkpath(QFileInfo(optionsPath).path());
    shell::ProgramSettings settings;
    shell::OptionsStore options(optionsPath.toStdString());
    options.LoadOptions(settings);
    settings.saveGpxTrackFile = shell::TrackGpxOptionPath(optionsPath.toStdString());
    settings.saveGpxTrack = shell::LoadTrackGpxOption(settings.saveGpxTrackFile) ? 1 : 0;
    settings.uiScaleFile = shell::UiScalePath(optionsPath.toStdString());
    settings.uiScale = args.scale.value_or(shell::LoadUiScale(settings.uiScaleFile));
    settings.languageFile = shell::LanguageOptionPath(optionsPath.toStdString());
    settings.language = shell::LoadLanguageOption(settings.languageFile);

    // Storage root and the My GPS folders.
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    settings.storageRoot = shell::ResolveStorageRoot(settings.storageRoot, documents.toStdString());
    const shell::StorageFolders folders = shell::MakeStorageFolders(settings.storageRoot);
    shell::PrepareStorageFolders(folders);

    app::AppLink link;
    link.SetNmeaFolder(folders.nmea);
    link.SetRecordNmea(settings.recordNmea != 0);
    // The flag turns the setting on for this run; the saved choice stays.
    link.SetAllTalkers(settings.allTalkers != 0 || args.allTalkers);
    // COMn to device paths, beside the options file.
    link.LoadPortMap(QFileInfo(optionsPath).dir().filePath("ports").toStdString());
    // The relay's setting, beside them too; --relay is for this run only.
    link.LoadRelaySetting(QFileInfo(optionsPath).dir().filePath("relay").toStdString());
    if (!args.relay.isEmpty())
        link.OverrideRelay(args.relay.toStdString());
    std::unique_ptr<link::ReplayReceiver> replay;
    if (args.replay) {
        replay = std::make_unique<link::ReplayReceiver>();
        const QString file = args.replayFile.isEmpty() ? shell::qt::DataFile("demo/demo-drive.nmea")
                                                       : args.replayFile;
        if (!replay->Open() || !replay->LoadFile(file.toStdString()) ||
            !replay->Start({args.replayRate, true})) {
            std::fprintf(stderr, "satwalk: cannot replay %s: %s\n", qPrintable(file),
                         replay->error().c_str());
            return 1;
        }
        link.SetOverridePath(replay->slavePath());
    } else if (!args.port.isEmpty()) {
        link.SetOverridePath(args.port.toStdString());
    }

    map::SetWorldLandFile(shell::qt::DataFile("map/world-land-50m.txt").toStdString());
    app::QtAlarmSound sound(shell::qt::DataFile("alarm.wav"));
    app::IdleInhibitor inhibitor;
    app::ScreenAdapter screens;
    app::MainWindow window(settings, link, sound, &options, args.size, args.dpi);
    window.SetScriptMode(scriptMode);
    // The screen bitmaps of the density's set; without them the window
    // cannot be made and start-up ends.
    screens::BitmapId failedBitmap{};
    if (!screens.LoadBitmaps(args.dpi, &failedBitmap)) {
        window.ShowMessage(screens::InitializationFailedMessage(failedBitmap),
                           shell::MessageIcon::Error, shell::MessageButtons::Ok);
        return 0;
    }
    window.SetScreenPainter(&screens);
    const std::vector<std::unique_ptr<shell::Feature>> features =
        app::MakeFeatures(window, screens);
    for (const auto& feature : features) window.shell().features().Add(*feature);
    window.onBacklight = [&inhibitor](bool hold) { inhibitor.Hold(hold); };
    link.AttachWindow(&window);
    // A port given for this run stands for the receiver; the saved choice of
    // receiver is left as it is.
    window.shell().forceComPort = link.HasOverride();
    QObject::connect(&instance, &app::SingleInstance::raiseRequested, &window, [&window] {
        window.showNormal();
        window.raise();
        window.activateWindow();
        window.setProperty("raiseRequests", window.property("raiseRequests").toInt() + 1);
    });

    auto stateJson = [&] {
        shell::StateExtras extras;
        extras.storageRoot = settings.storageRoot;
        extras.optionsPath = optionsPath.toStdString();
        extras.messages = window.messages();
        extras.raiseRequests = window.property("raiseRequests").toInt();
        return shell::BuildStateJson(window.shell(), extras);
    };
    app::ScriptRunner runner(window, stateJson);
    if (scriptMode && !runner.Load(args.script))
        return 2;

    const bool reportTiming = std::getenv("SATWALK_REPORT_STARTUP") != nullptr;
    window.onFirstFrame = [&] {
        if (reportTiming) {
            std::fprintf(stderr, "satwalk: first frame %lld ms after process start\n",
                         MillisecondsSinceProcessStart());
        }
        if (settings.backlightAlwaysOn != 0)
            inhibitor.Hold(true);
        if (args.replay)
            window.shell().OnCommand(shell::cmd::kStartGps);
        if (scriptMode)
            runner.Start();
    };
    // The window's size and place of the last run, unless this run names a
    // size or is a script (whose snapshots must not depend on it).
    const std::string geometryPath = shell::WindowGeometryPath(optionsPath.toStdString());
    const bool keepGeometry = !scriptMode && !args.sizeGiven;
    bool maximized = false;
    if (const auto wish = keepGeometry ? shell::LoadWindowGeometry(geometryPath) : std::nullopt) {
        std::vector<shell::ScreenRect> screenRects;
        for (const QScreen* screen : QGuiApplication::screens()) {
            const QRect r = screen->availableGeometry();
            const shell::ScreenRect rect{r.x(), r.y(), r.width(), r.height()};
            if (screen == QGuiApplication::primaryScreen())
                screenRects.insert(screenRects.begin(), rect);
            else
                screenRects.push_back(rect);
        }
        const shell::WindowGeometry g =
            shell::Sanitize(*wish, screenRects, window.minimumWidth(), window.minimumHeight());
        window.setGeometry(g.x, g.y, g.width, g.height);
        maximized = g.maximized;
    }
    if (maximized)
        window.showMaximized();
    else
        window.show();

    int code = QApplication::exec();
    if (keepGeometry) {
        QRect r = window.isMaximized() ? window.normalGeometry() : window.geometry();
        if (!r.isValid())
            r = window.geometry();
        if (!shell::SaveWindowGeometry(
                geometryPath, {r.x(), r.y(), r.width(), r.height(), window.isMaximized()})) {
            std::fprintf(stderr, "satwalk: cannot save the window's size and place to %s\n",
                         geometryPath.c_str());
        }
    }
    if (scriptMode && code == 0)
        code = runner.exitCode();
    link.Shutdown();
    inhibitor.Hold(false);
    return code;
}
