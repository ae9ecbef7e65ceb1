// The whole map screen as the window paints it: every layer and the frame
// through the Qt canvas into the 480 × 640 off-screen image. Panning a
// loaded 10,000 × 10,000 image at several zooms, the world map at its widest
// and closest, the worst single paint of a drag over each, and the world map
// and the image in a maximised 1920 × 1080 desktop window with automatic
// "界面缩放".
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QGuiApplication>
#include <QPainter>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>

#include "BenchHarness.h"
#include "MapScreenLayers.h"
#include "QtCanvas.h"
#include "QtMapPlatform.h"
#include "UiScale.h"

using namespace satwalk;
using namespace satwalk::map;

namespace {

constexpr int kSide = 10000;

QTemporaryDir& Folder() {
    static QTemporaryDir dir(QDir::tempPath() + "/satwalk-bench-screen-XXXXXX");
    return dir;
}

// A scan-like picture with a grid and roads, as a JPEG of quality 85.
const MapImage& BigImage() {
    static const MapImage image = [] {
        QImage picture(kSide, kSide, QImage::Format_RGB32);
        for (int y = 0; y < kSide; ++y) {
            auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
            for (int x = 0; x < kSide; ++x)
                row[x] = qRgb(236 - x / 400, 230 - y / 500, 205 + (x + y) / 1000);
        }
        QPainter painter(&picture);
        painter.setPen(QPen(QColor(150, 170, 200), 3));
        for (int i = 0; i < kSide; i += 250) {
            painter.drawLine(i, 0, i, kSide);
            painter.drawLine(0, i, kSide, i);
        }
        painter.end();
        const QString path = Folder().filePath("scan.jpg");
        picture.save(path, "jpg", 85);
        MapImage m;
        LoadMapImage(path, m);
        return m;
    }();
    return image;
}

// The screens of the 480 × 640 window at 192 dpi on the map screen, with a
// fix and the link running, and a map screen with every layer of the map.
// On the desktop: a 1920 × 1080 client area (the soft-key bar included), the
// scale the automatic setting gives, the screen laid out at the area divided
// by it and painted into a picture of the area's device pixels.
struct Screen {
    screens::ScreenBitmaps bitmaps;
    screens::ScreenContext ctx;
    MapScreen mapScreen;
    MapModel model;
    QImage target;
    gps::GpsState fix;

    explicit Screen(bool loadImage, bool desktop = false) {
        screens::BitmapId failed;
        bitmaps.Load(true, QStringLiteral(SATWALK_BITMAP_DIR), &failed);
        if (desktop) {
            constexpr int kWidth = 1920, kHeight = 1080, kDpi = 192;
            const int percent = shell::UiScalePercent(shell::kUiScaleAuto, kWidth, kHeight, kDpi);
            const int area = kHeight - shell::SoftKeyBarHeight(kDpi) * percent / 100;
            screens::PrepareScreenContext(ctx, kWidth * 100 / percent, area * 100 / percent, kDpi,
                                          bitmaps);
            target = QImage(kWidth, area, QImage::Format_RGB32);
            target.setDevicePixelRatio(percent / 100.0);
        } else {
            screens::PrepareScreenContext(ctx, 480, 640, 192, bitmaps);
        }
        LayoutMapOverlay(ctx);
        ctx.display.currentScreen = common::kScreenMap;
        ctx.display.linkRunning = true;
        ctx.display.fixValid = true;
        ctx.display.latitude = 30.25;
        ctx.display.longitude = 120.15;
        auto& layers = mapScreen.layers();
        layers.Add(LayerOrder::BaseMap, std::make_unique<WorldMapLayer>());
        layers.Add(LayerOrder::BaseMap, std::make_unique<qt::MapImageLayer>(BigImage()));
        layers.Add(LayerOrder::BaseMap, std::make_unique<ScaleBarLayer>());
        layers.Add(LayerOrder::ReferenceMarkers, std::make_unique<ReferenceMarkerLayer>(model));
        layers.Add(LayerOrder::Position, std::make_unique<PositionLayer>());
        layers.Add(LayerOrder::Overlay, std::make_unique<MapOverlayLayer>(model));
        mapScreen.viewSource = [this](const screens::ScreenContext& c) {
            model.Layout(c.screen, c.baseTextHeight, ScaleBarPixels(c.baseTextHeight), 0);
            return model.View();
        };
        ctx.paintMapScreen = [this](screens::Canvas& canvas, screens::ScreenContext& c,
                                    const gps::GpsState& g) { mapScreen.Paint(canvas, c, g); };
        model.Layout(ctx.screen, 30, 100, 0);
        if (loadImage) {
            // Calibrated by two corners around Hangzhou.
            ReferencePoints r{};
            r[0] = GeoPoint{1, 30.35, 120.05, 0, 0, 0, 0};
            r[1] = GeoPoint{1, 30.15, 120.25, 0, 0, kSide, kSide};
            const std::string rpt = Folder().filePath("Ref Pt_scan.rpt").toStdString();
            WriteReferenceFile(rpt, r);
            model.ApplyLoadedMap("scan.jpg", BigImage().Size(), rpt);
        }
        model.UpdatePosition(true, true, 30.25, 120.15);
        model.PauseFollowing();
    }
    void Paint() { screens::RenderCurrentScreen(target, ctx, fix, bitmaps); }
};

void BM_MapScreenPanImage(benchmark::State& state) {
    Screen s(true);
    if (BigImage().IsNull()) {
        state.SkipWithError("the JPEG did not load");
        return;
    }
    for (int i = 0; i < state.range(0); ++i) s.model.Zoom(true);
    int n = 0;
    for (auto _ : state) {
        // Seven screen pixels a frame, back and forth across the image.
        s.model.Pan((n++ / 200) % 2 == 0 ? kPanRight : kPanLeft, 7);
        s.Paint();
    }
    state.SetLabel("image " + std::to_string(static_cast<int>(s.model.map.currentWidth)) +
                   " px wide");
}

void BM_MapScreenWorld(benchmark::State& state) {
    Screen s(false);
    s.model.worldScaleIndex = static_cast<int>(state.range(0));
    int n = 0;
    for (auto _ : state) {
        s.model.Pan((n++ / 50) % 2 == 0 ? kPanRight : kPanLeft, 5);
        s.Paint();
    }
    state.SetLabel(std::to_string(kWorldScales[state.range(0)]) + " km bar");
}

// The desktop window: the world map at every scale, and the image at four
// times the fit, panned as above.
void BM_MapScreenDesktop(benchmark::State& state) {
    const int world = static_cast<int>(state.range(0));
    Screen s(world < 0, true);
    if (world < 0) {
        for (int i = 0; i < 3; ++i) s.model.Zoom(true);
    } else {
        s.model.worldScaleIndex = world;
    }
    int n = 0;
    for (auto _ : state) {
        s.model.Pan((n++ / 50) % 2 == 0 ? kPanRight : kPanLeft, 5);
        s.Paint();
    }
    char label[64];
    if (world < 0)
        std::snprintf(label, sizeof label, "image, 4x the fit, 1920x1080 at 200 %%");
    else
        std::snprintf(label, sizeof label, "%g km bar, 1920x1080 at 200 %%", kWorldScales[world]);
    state.SetLabel(label);
}

// A drag of 200 moves through the stylus, a paint after each as the window
// does; the worst paint is the counter.
void BM_DragWorstPaint(benchmark::State& state) {
    const bool image = state.range(0) != 0;
    Screen s(image);
    if (image)
        for (int i = 0; i < 3; ++i) s.model.Zoom(true);
    else
        s.model.worldScaleIndex = 8;
    struct NoWindow final : InteractionSink {
        MapModel& m;
        explicit NoWindow(MapModel& model) : m(model) {}
        void SendArrow(Arrow) override {}
        void StartRepeat() override {}
        void StopRepeat() override {}
        void Pan(int d, int step) override { m.Pan(d, step); }
        void PlacementTap(int, int) override {}
        void ManualMove() override {}
        void Redraw() override {}
    } sink(s.model);
    StylusScene scene;
    scene.onMapScreen = scene.insideMap = true;
    scene.mapMode = image;
    double worst = 0.0;
    for (auto _ : state) {
        OnStylusDown(s.model.stylus, LayoutNavigationButtons(s.ctx), scene, 200, 300, sink);
        for (int i = 1; i <= 200; ++i) {
            const auto t0 = std::chrono::steady_clock::now();
            OnStylusMove(s.model.stylus, scene, 200 + (i % 40) * 3, 300 + (i % 25) * 2, sink);
            s.Paint();
            const std::chrono::duration<double, std::milli> took =
                std::chrono::steady_clock::now() - t0;
            worst = std::max(worst, took.count());
        }
        OnStylusUp(s.model.stylus, sink);
    }
    state.counters["worst_ms"] = worst;
    state.SetLabel(image ? "over the image" : "over the world map");
}

}  // namespace

BENCHMARK(BM_MapScreenPanImage)
    ->Arg(0)  // fitted
    ->Arg(3)  // four times the fit
    ->Arg(5)  // three quarters of full size
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_MapScreenWorld)
    ->Arg(0)
    ->Arg(kWorldScaleCount - 1)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_MapScreenDesktop)
    ->DenseRange(-1, kWorldScaleCount - 1)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_DragWorstPaint)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);

int main(int argc, char** argv) {
    return satwalk::bench::RunOffscreen<QGuiApplication>(argc, argv);
}
