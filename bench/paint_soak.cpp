// Memory over a long run of painting: every instrument screen in turn,
// following the demo drive batch by batch (looping), with the blink and the
// alarm switching, for as many frames as an hour and more of use would paint.
// Prints resident memory after a warm-up and at the end; they must match.
#include <QGuiApplication>
#include <QImage>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "NmeaDecoder.h"
#include "QtCanvas.h"
#include "Screens.h"

using namespace satwalk;
using namespace satwalk::screens;

namespace {

long ResidentKb() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmRSS:", 0) == 0)
            return std::strtol(line.c_str() + 6, nullptr, 10);
    }
    return -1;
}

// The demo drive in 2,047-byte batches of whole lines.
std::vector<std::string> Batches(const char* path) {
    std::ifstream in(path, std::ios::binary);
    std::vector<std::string> out;
    std::string batch;
    std::string line;
    while (std::getline(in, line)) {
        line += '\n';
        if (batch.size() + line.size() > 2047) {
            out.push_back(batch);
            batch.clear();
        }
        batch += line;
    }
    if (!batch.empty())
        out.push_back(batch);
    return out;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const long frames = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 40000;
    const std::vector<std::string> batches = Batches(SATWALK_DEMO_LOG);
    if (batches.empty()) {
        std::fprintf(stderr, "paint_soak: demo log missing\n");
        return 2;
    }
    ScreenBitmaps bitmaps;
    BitmapId failed{};
    if (!bitmaps.Load(true, QStringLiteral(SATWALK_BITMAP_DIR), &failed))
        return 2;
    ScreenContext ctx;
    PrepareScreenContext(ctx, 480, 640, 192, bitmaps);
    ctx.display.linkRunning = true;
    gps::GpsState g;
    gps::GsvAssembly a;
    QImage image;

    long warm = 0;
    for (long i = 0; i < frames; ++i) {
        if (i % 4 == 0) {
            gps::ParseNmeaBuffer(g, a, batches[static_cast<std::size_t>(i / 4) % batches.size()],
                                 nullptr);
            ctx.display.fix = gps::ReadFix(g);
        }
        ctx.display.currentScreen = static_cast<int>(i % 4);
        ctx.display.fixValid = g.status == 'A';
        ctx.display.blinkPhase = (i / 4) % 2 != 0;
        ctx.display.speedAlarmOn = (i / 400) % 2 != 0;
        ctx.display.speedAlarmLimit = 50 + 10 * static_cast<int>((i / 100) % 8);
        ctx.display.unitSystem = static_cast<int>((i / 1000) % 3);
        RenderCurrentScreen(image, ctx, g, bitmaps);
        if (i == 2000)
            warm = ResidentKb();
    }
    const long end = ResidentKb();
    std::printf("paint_soak: %ld frames (%.1f hours of one repaint a second)\n", frames,
                static_cast<double>(frames) / 3600.0);
    std::printf("  resident after 2,000 frames  %ld kB\n", warm);
    std::printf("  resident at the end          %ld kB  (growth %ld kB; budget: flat)\n", end,
                end - warm);
    return end - warm > 512 ? 1 : 0;
}
