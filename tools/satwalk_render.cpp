// satwalk-render: decodes an NMEA log and writes a PNG of every instrument
// screen in portrait and landscape, in both pixel sets, for looking at the
// screens and for screenshots. Runs with QT_QPA_PLATFORM=offscreen.
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <charconv>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "BatchSplitter.h"
#include "NmeaDecoder.h"
#include "QtCanvas.h"
#include "Screens.h"

using namespace satwalk;
using namespace satwalk::screens;

namespace {

constexpr const char* kUsage =
    "usage: satwalk-render [options] NMEA_FILE\n"
    "       satwalk-render --help | --version\n"
    "  Decodes an NMEA log and writes a PNG of every instrument screen, in portrait\n"
    "  and landscape and in both pixel sets (no display needed).\n"
    "  --batch N       stop after batch N (2047-byte batches of whole lines; default all)\n"
    "  --out DIR       output folder (default .)\n"
    "  --units U       0 metric, 1 imperial, 2 nautical\n"
    "  --alarm N       speed alarm on at N (50..120)\n"
    "  --north-up      compass north-up\n"
    "  --link-down     paint as if the receiver link were stopped\n"
    "  --recording     NMEA recording on\n"
    "  --screens LIST  comma-separated screen numbers (default 0,1,2,3)\n";

class Sync final : public gps::TimeSyncSink {
  public:
    void OnGpsTime() override { synced = true; }
    bool synced = false;
};

// A whole number from `text` within [low, high].
bool ParseInt(std::string_view text, long low, long high, long& out) {
    const auto r = std::from_chars(text.data(), text.data() + text.size(), out);
    return r.ec == std::errc() && r.ptr == text.data() + text.size() && out >= low && out <= high;
}

int Fail(const std::string& why) {
    std::fprintf(stderr, "satwalk-render: %s\n(satwalk-render --help lists the options)\n",
                 why.c_str());
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    long lastBatch = -1;
    QString outDir = ".";
    int units = 0, alarm = 0;
    bool northUp = false, linkDown = false, recording = false;
    std::string screensArg = "0,1,2,3";
    const char* path = nullptr;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        const bool takesValue =
            a == "--batch" || a == "--out" || a == "--units" || a == "--alarm" || a == "--screens";
        if (takesValue && i + 1 >= argc)
            return Fail(a + " needs a value");
        const std::string_view v = takesValue ? std::string_view(argv[++i]) : std::string_view();
        long number = 0;
        const auto bad = [&](const char* why) {
            return Fail(a + ' ' + std::string(v) + ": " + why);
        };
        if (a == "--batch") {
            if (!ParseInt(v, 1, LONG_MAX, number))
                return bad("must be a positive whole number");
            lastBatch = number;
        } else if (a == "--out") {
            outDir = QString::fromLocal8Bit(v.data(), static_cast<qsizetype>(v.size()));
        } else if (a == "--units") {
            if (!ParseInt(v, 0, 2, number))
                return bad("must be 0, 1 or 2");
            units = static_cast<int>(number);
        } else if (a == "--alarm") {
            if (!ParseInt(v, 50, 120, number))
                return bad("must be 50 to 120");
            alarm = static_cast<int>(number);
        } else if (a == "--screens") {
            screensArg = v;
        } else if (a == "--north-up") {
            northUp = true;
        } else if (a == "--link-down") {
            linkDown = true;
        } else if (a == "--recording") {
            recording = true;
        } else if (a == "-h" || a == "--help") {
            std::fputs(kUsage, stdout);
            return 0;
        } else if (a == "--version") {
            std::printf("satwalk-render %s\n", SATWALK_VERSION);
            return 0;
        } else if (!a.empty() && a[0] == '-') {
            return Fail("unknown option " + a);
        } else if (path != nullptr) {
            return Fail("only one NMEA_FILE may be given");
        } else {
            path = argv[i];
        }
    }
    if (!path)
        return Fail("no NMEA_FILE given");
    // PNGs only: no window, so no display is needed.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);

    FILE* in = std::fopen(path, "rb");
    if (!in) {
        std::fprintf(stderr, "satwalk-render: cannot open %s\n", path);
        return 1;
    }
    gps::GpsState gps;
    gps::GsvAssembly assembly;
    Sync sync;
    tools::BatchSplitter splitter(
        [in](char* buf, std::size_t n) { return static_cast<long>(std::fread(buf, 1, n, in)); },
        2047, false);
    std::string_view batch;
    long count = 0;
    while ((lastBatch < 0 || count < lastBatch) && splitter.Next(batch)) {
        gps::ParseNmeaBuffer(gps, assembly, batch, &sync);
        ++count;
    }
    std::fclose(in);

    QDir().mkpath(outDir);
    struct Variant {
        const char* name;
        int w, h, dpi;
    };
    const Variant variants[] = {{"portrait-hi", 480, 640, 192},
                                {"landscape-hi", 640, 480, 192},
                                {"portrait-lo", 240, 320, 96},
                                {"landscape-lo", 320, 240, 96}};
    static const char* kScreenNames[] = {"gpsinfo", "skyplot", "compass", "speedometer", "map"};
    for (const Variant& v : variants) {
        ScreenBitmaps bitmaps;
        BitmapId failed{};
        if (!bitmaps.Load(v.dpi != 96, QStringLiteral(SATWALK_BITMAP_DIR), &failed)) {
            std::fprintf(stderr, "%s\n", InitializationFailedMessage(failed).c_str());
            return 1;
        }
        ScreenContext ctx;
        PrepareScreenContext(ctx, v.w, v.h, v.dpi, bitmaps);
        ctx.display.unitSystem = units;
        ctx.display.speedAlarmOn = alarm != 0;
        ctx.display.speedAlarmLimit = alarm != 0 ? alarm : 50;
        ctx.display.compassOrientation = northUp ? 1 : 0;
        ctx.display.linkRunning = !linkDown;
        ctx.display.fix = gps::ReadFix(gps);
        ctx.display.fixValid = ctx.display.linkRunning && ctx.display.fix.valid;
        ctx.display.blinkPhase = true;
        ctx.display.recording = recording;
        ctx.display.fixTimeKnown = sync.synced;
        ctx.display.latitude = ctx.display.fix.latitude.value_or(gps::kAbsentDegrees);
        ctx.display.longitude = ctx.display.fix.longitude.value_or(gps::kAbsentDegrees);
        QImage image;
        for (const char* p = screensArg.c_str(); *p;) {
            const int screen = std::atoi(p);
            ctx.display.currentScreen = screen;
            RenderCurrentScreen(image, ctx, gps, bitmaps);
            const char* name = screen >= 0 && screen <= 4 ? kScreenNames[screen] : "blank";
            const QString file =
                QStringLiteral("%1/%2-%3.png")
                    .arg(outDir, QString::fromLatin1(name), QString::fromLatin1(v.name));
            if (!image.save(file)) {
                std::fprintf(stderr, "satwalk-render: cannot write %s\n", qPrintable(file));
                return 1;
            }
            while (*p && *p != ',') ++p;
            if (*p == ',')
                ++p;
        }
    }
    return 0;
}
