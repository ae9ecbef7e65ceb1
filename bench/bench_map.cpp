// The map screen's heavy work, offscreen: loading a 10,000 × 10,000 JPEG
// (time and peak resident memory), refusing a 60,000 × 60,000 header,
// repainting the 480 × 640 view while panning that image at several zooms,
// and repainting the world map at its widest and closest.
//
// The inputs are drawn at run time into a temporary folder, removed at exit.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QDir>
#include <QGuiApplication>
#include <QPainter>
#include <QTemporaryDir>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>

#include "BenchHarness.h"
#include "ImageFiles.h"
#include "ImageViewport.h"
#include "MapImage.h"
#include "QtCanvas.h"
#include "WorldMap.h"

using namespace satwalk;
using namespace satwalk::map;

namespace {

constexpr int kSide = 10000;
const screens::Rect kView{0, 0, 480, 640};

QTemporaryDir& Folder() {
    static QTemporaryDir dir(QDir::tempPath() + "/satwalk-bench-XXXXXX");
    return dir;
}

using bench::PeakResidentMb;
using bench::ResetPeakResident;

// A scan-like picture: tinted paper, a grid, roads and labels; encoded as a
// JPEG of quality 85 (about what a scanner writes).
const QString& BigJpeg() {
    static const QString path = [] {
        const QString p = Folder().filePath("scan-10000.jpg");
        QImage image(kSide, kSide, QImage::Format_RGB32);
        for (int y = 0; y < kSide; ++y) {
            auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
            for (int x = 0; x < kSide; ++x)
                row[x] = qRgb(236 - x / 400, 230 - y / 500, 205 + (x + y) / 1000);
        }
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor(150, 170, 200), 3));
        for (int i = 0; i < kSide; i += 250) {
            painter.drawLine(i, 0, i, kSide);
            painter.drawLine(0, i, kSide, i);
        }
        painter.setPen(QPen(QColor(190, 60, 40), 14));
        for (int i = 0; i < 60; ++i)
            painter.drawLine((i * 7919) % kSide, (i * 104729) % kSide, (i * 1301) % kSide,
                             (i * 7741 + 5000) % kSide);
        QFont font;
        font.setPixelSize(60);
        painter.setFont(font);
        painter.setPen(Qt::black);
        for (int y = 200; y < kSide; y += 700)
            for (int x = 100; x < kSide; x += 1500)
                painter.drawText(x, y, QStringLiteral("Hangzhou 杭州 %1,%2").arg(x).arg(y));
        painter.end();
        image.save(p, "jpg", 85);
        return p;
    }();
    return path;
}

const MapImage& BigImage() {
    static const MapImage image = [] {
        MapImage m;
        LoadMapImage(BigJpeg(), m);
        return m;
    }();
    return image;
}

void BM_LoadJpeg10000(benchmark::State& state) {
    const QString& path = BigJpeg();
    double peak = 0.0;
    for (auto _ : state) {
        ResetPeakResident();
        MapImage image;
        const ImageLoadError error = LoadMapImage(path, image);
        peak = std::max(peak, PeakResidentMb());
        if (error != ImageLoadError::None) {
            state.SkipWithError("the JPEG did not load");
            return;
        }
        benchmark::DoNotOptimize(image.Level(0).constBits());
        state.counters["levels"] = image.LevelCount();
        state.counters["kept_MB"] = static_cast<double>(image.ByteCount()) / (1 << 20);
    }
    state.counters["peak_MB"] = peak;
    state.counters["file_MB"] = static_cast<double>(QFileInfo(path).size()) / (1 << 20);
}

void BM_RefuseHugeHeader(benchmark::State& state) {
    const QByteArray png = map::testing::Encode(map::testing::BusyPicture(16, 16), "png");
    const QString path = Folder().filePath("bomb-60000.png");
    map::testing::WriteFile(path, map::testing::WithDeclaredSize(png, "png", 60000, 60000));
    ResetPeakResident();
    const double before = PeakResidentMb();
    for (auto _ : state) {
        MapImage image;
        if (LoadMapImage(path, image) != ImageLoadError::TooLarge) {
            state.SkipWithError("the header was not refused");
            return;
        }
    }
    state.counters["peak_growth_MB"] = PeakResidentMb() - before;
}

// One repaint of the view while panning: white, then the visible part. The
// scroll centre walks a few pixels a frame, as a drag moves it.
void BM_PanImage(benchmark::State& state) {
    const MapImage& image = BigImage();
    if (image.IsNull()) {
        state.SkipWithError("the JPEG did not load");
        return;
    }
    // Screen pixels per image pixel: 0.048 is the fitted width (480 / 10,000).
    const double zoom = static_cast<double>(state.range(0)) / 1000.0;
    const double shown = kSide * zoom;
    QImage target(kView.Width(), kView.Height(), QImage::Format_RGB32);
    PointF centre{kSide * 0.37, kSide * 0.41};
    const double step = 7.0 / zoom;  // seven screen pixels a frame
    for (auto _ : state) {
        centre.x += step;
        centre.y += step * 0.5;
        if (centre.x > kSide * 0.63)
            centre = {kSide * 0.37, kSide * 0.41};
        QPainter painter(&target);
        painter.fillRect(0, 0, kView.Width(), kView.Height(), Qt::white);
        DrawMapImage(painter, image, ComputeVisiblePart(image.Size(), shown, shown, centre, kView));
    }
    state.SetLabel("zoom " + std::to_string(zoom));
}

const WorldLand& Land() {
    static const WorldLand land = [] {
        WorldLand l;
        LoadWorldLand(SATWALK_WORLD_LAND_FILE, l);
        return l;
    }();
    return land;
}

// The world map in the 480 × 640 view through the Qt canvas, centred on
// Hangzhou, the scale bar of 100 pixels standing for `range(0)` metres.
void BM_WorldMap(benchmark::State& state) {
    if (Land().rings.empty()) {
        state.SkipWithError("no land data");
        return;
    }
    const double km = static_cast<double>(state.range(0)) / 1000.0;
    WorldView view;
    view.scale = km;
    view.scaleBarPixels = 100;
    view.rect = kView;
    view.origin.longitude = 120.15;
    view.origin.screenX = 240;
    view.origin.screenY = 320 + MercatorNorthing(30.25, km, 100);
    QImage target(kView.Width(), kView.Height(), QImage::Format_RGB32);
    const screens::ScreenBitmaps bitmaps;
    for (auto _ : state) {
        screens::QtCanvas canvas(target, bitmaps);
        DrawWorldMap(canvas, Land(), view);
    }
    state.SetLabel(km > 1000 ? "widest: the whole world across" : "closest: streets");
}

}  // namespace

BENCHMARK(BM_LoadJpeg10000)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();
BENCHMARK(BM_RefuseHugeHeader)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PanImage)
    ->Arg(48)    // fitted: the whole image across the view
    ->Arg(200)   // a fifth
    ->Arg(700)   // just under full size
    ->Arg(1000)  // full size
    ->Arg(3000)  // zoomed in three times
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);
// 8,574 km per 100 pixels puts the 360° of longitude across 480 pixels.
BENCHMARK(BM_WorldMap)
    ->Arg(8'574'000)
    ->Arg(100)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

int main(int argc, char** argv) {
    return satwalk::bench::RunOffscreen<QGuiApplication>(argc, argv);
}
