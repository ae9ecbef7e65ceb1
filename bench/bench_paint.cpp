// Paint time of each instrument screen, frame included, into the off-screen
// image through the QPainter canvas (offscreen platform), in both pixel sets,
// and at a maximised 1920 × 1080 desktop window with automatic "界面缩放".
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>

#include "BenchHarness.h"
#include "NmeaDecoder.h"
#include "QtCanvas.h"
#include "Screens.h"
#include "UiScale.h"

using namespace satwalk;
using namespace satwalk::screens;

namespace {

gps::GpsState BusyFix() {
    gps::GpsState g;
    gps::GsvAssembly a;
    const char* text =
        "$GPRMC,081500.00,A,3031.0240,N,11421.0000,E,20.0,33.5,211126,,,A*52\r\n"
        "$GPGGA,081500.00,3031.0240,N,11421.0000,E,1,08,0.9,23.4,M,-13.0,M,,*7B\r\n"
        "$GPGSA,A,3,02,05,09,12,15,17,21,24,,,,,1.8,0.9,1.6*3F\r\n"
        "$GPGSV,3,1,11,02,72,040,48,05,35,095,36,09,12,160,23,12,55,210,40*76\r\n"
        "$GPGSV,3,2,11,15,20,300,,17,05,250,07,21,48,330,35,24,85,120,50*7A\r\n"
        "$GPGSV,3,3,11,26,28,020,19,29,61,270,43,31,03,180,*4B\r\n";
    gps::ParseNmeaBuffer(g, a, text, nullptr);
    return g;
}

void BM_PaintScreen(benchmark::State& state) {
    const int screen = static_cast<int>(state.range(0));
    const bool hi = state.range(1) != 0;
    const bool landscape = state.range(2) != 0;
    ScreenBitmaps bitmaps;
    BitmapId failed{};
    if (!bitmaps.Load(hi, QStringLiteral(SATWALK_BITMAP_DIR), &failed)) {
        state.SkipWithError("bitmaps missing");
        return;
    }
    const int w = hi ? 480 : 240, h = hi ? 640 : 320;
    ScreenContext ctx;
    PrepareScreenContext(ctx, landscape ? h : w, landscape ? w : h, hi ? 192 : 96, bitmaps);
    ctx.display.currentScreen = screen;
    ctx.display.linkRunning = ctx.display.fixValid = true;
    ctx.display.speedAlarmOn = true;
    ctx.display.speedAlarmLimit = 80;
    const gps::GpsState g = BusyFix();
    ctx.display.fix = gps::ReadFix(g);  // once per batch, as the shell reads it
    QImage image;
    RenderCurrentScreen(image, ctx, g, bitmaps);  // warm the font and key caches
    for (auto _ : state) {
        RenderCurrentScreen(image, ctx, g, bitmaps);
        benchmark::DoNotOptimize(image.constBits());
    }
    static const char* kNames[] = {"gpsinfo", "skyplot", "compass", "speedometer"};
    state.SetLabel(std::string(kNames[screen]) + (hi ? " 480x640" : " 240x320") +
                   (landscape ? " landscape" : " portrait"));
}

// The window's way: a 1920 × 1080 client area (the soft-key bar included),
// the scale the automatic setting gives, the screens laid out at the area
// divided by it and painted into a picture of the area's device pixels.
void BM_PaintScaledScreen(benchmark::State& state) {
    const int screen = static_cast<int>(state.range(0));
    ScreenBitmaps bitmaps;
    BitmapId failed{};
    if (!bitmaps.Load(true, QStringLiteral(SATWALK_BITMAP_DIR), &failed)) {
        state.SkipWithError("bitmaps missing");
        return;
    }
    constexpr int kWidth = 1920, kHeight = 1080, kDpi = 192;
    const int percent = shell::UiScalePercent(shell::kUiScaleAuto, kWidth, kHeight, kDpi);
    const int areaHeight = kHeight - shell::SoftKeyBarHeight(kDpi) * percent / 100;
    ScreenContext ctx;
    PrepareScreenContext(ctx, kWidth * 100 / percent, areaHeight * 100 / percent, kDpi, bitmaps);
    ctx.display.currentScreen = screen;
    ctx.display.linkRunning = ctx.display.fixValid = true;
    ctx.display.speedAlarmOn = true;
    ctx.display.speedAlarmLimit = 80;
    const gps::GpsState g = BusyFix();
    ctx.display.fix = gps::ReadFix(g);
    QImage image(kWidth, areaHeight, QImage::Format_RGB32);
    image.setDevicePixelRatio(percent / 100.0);
    RenderCurrentScreen(image, ctx, g, bitmaps);
    for (auto _ : state) {
        RenderCurrentScreen(image, ctx, g, bitmaps);
        benchmark::DoNotOptimize(image.constBits());
    }
    static const char* kNames[] = {"gpsinfo", "skyplot", "compass", "speedometer"};
    state.SetLabel(std::string(kNames[screen]) + " 1920x1080 at " + std::to_string(percent) + " %");
}

}  // namespace

BENCHMARK(BM_PaintScaledScreen)
    ->DenseRange(0, 3)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

BENCHMARK(BM_PaintScreen)
    ->ArgsProduct({{0, 1, 2, 3}, {1, 0}, {0, 1}})
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

int main(int argc, char** argv) {
    return satwalk::bench::RunOffscreen<QGuiApplication>(argc, argv);
}
