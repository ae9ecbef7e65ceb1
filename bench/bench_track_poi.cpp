// Track logs, trails and POIs at the sizes a long trip makes: reading a
// 1,000,000-line log, repainting a 1,000,000-point trail at 480 × 640,
// repainting 100,000 POIs with a few hundred on screen, and repainting
// 100,000 and 1,000,000 POIs all in view. Painting goes to a canvas that
// only counts what it is asked to draw, so the figures are the core's own
// cost; the POIs all in view are painted through the Qt canvas into a
// picture too, when the program's Qt part is built. The counters give the
// memory of the trails, the kept polyline and the store.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdio>
#include <map>
#include <random>
#include <string>

#include "BenchHarness.h"
#include "Canvas.h"
#include "MapView.h"
#include "PoiFeature.h"
#include "PoiPainter.h"
#include "TrackLogFile.h"
#include "TrackState.h"
#include "TrailPainter.h"

#ifdef SATWALK_BENCH_QT
#include <QGuiApplication>
#include <QImage>

#include "QtCanvas.h"
#endif

namespace {

using namespace satwalk;

constexpr int kLogLines = 1'000'000;

// Lines as the recorder writes them, wandering around West Lake at 1 s.
const std::string& LogPath() {
    static const bench::TemporaryFile file(".log", [](std::FILE* f) {
        std::mt19937 rng(7);
        std::uniform_real_distribution<double> step(-0.00005, 0.00005);
        double lon = 120.15, lat = 30.25;
        track::TrackTime t{2024, 5, 1, 8, 0, 0, 0, 0};
        for (int i = 0; i < kLogLines; ++i) {
            lon += step(rng);
            lat += step(rng);
            t.second = static_cast<std::int8_t>(i % 60);
            t.minute = static_cast<std::int8_t>(i / 60 % 60);
            t.hour = static_cast<std::int8_t>(i / 3600 % 24);
            const std::string line = track::FormatTrackLine(lon, lat, t, "12.5", "270.3", "10.4");
            std::fwrite(line.data(), 1, line.size(), f);
        }
    });
    return file.path();
}

// Reads the log into both viewed trails as viewing a log does.
void BM_ReadTrackLog(benchmark::State& state) {
    const std::string& path = LogPath();
    track::TrackProjections projections;
    projections.world = [](double lat, double lon) {
        return track::MapXY{(lon + 180) * 2.7, (80 - lat) * 2.7};
    };
    projections.map = [](double lat, double lon) {
        return track::MapXY{(lon - 120) * 40000, (31 - lat) * 40000};
    };
    std::size_t bytes = 0, trailBytes = 0, points = 0;
    for (auto _ : state) {
        track::TrackState s;
        if (track::ViewTrackLog(s, path, "bench.log", projections) != track::ViewResult::Shown)
            state.SkipWithError("log not read");
        points = s.viewedWorldTrail.Count();
        trailBytes = s.viewedWorldTrail.MemoryBytes() + s.viewedMapTrail.MemoryBytes();
    }
    FILE* f = std::fopen(path.c_str(), "rb");
    std::fseek(f, 0, SEEK_END);
    bytes = static_cast<std::size_t>(std::ftell(f));
    std::fclose(f);
    state.counters["points"] = static_cast<double>(points);
    state.counters["logMB"] = static_cast<double>(bytes) / 1e6;
    state.counters["trailsMB"] = static_cast<double>(trailBytes) / 1e6;
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}
BENCHMARK(BM_ReadTrackLog)->Unit(benchmark::kMillisecond)->MinTime(3);

// Counts calls and points; measures text as 0.6 × the font height a byte.
class CountingCanvas final : public screens::Canvas {
  public:
    screens::Rect Bounds() const override { return {0, 0, 480, 640}; }
    void FillRect(screens::Rect, screens::Colour) override { ++calls; }
    void Line(screens::Point, screens::Point, screens::Pen) override { ++calls; }
    void Ellipse(screens::Rect, screens::Pen, screens::Brush) override { ++calls; }
    void Rectangle(screens::Rect, screens::Pen, screens::Brush) override { ++calls; }
    void Polygon(std::span<const screens::Point> p, screens::Pen, screens::Brush) override {
        ++calls;
        points += p.size();
    }
    void Polyline(std::span<const screens::Point> p, screens::Pen) override {
        ++calls;
        points += p.size();
    }
    void SelectFont(screens::Font f) override { font = f; }
    screens::Font SelectedFont() const override { return font; }
    screens::Size MeasureText(std::string_view text) override {
        return {static_cast<int>(text.size()) * font.height * 6 / 10, font.height};
    }
    void DrawText(std::string_view, screens::Rect, unsigned, screens::Colour) override { ++calls; }
    void Blit(const screens::Bitmap&, screens::Rect, screens::Point) override { ++calls; }
    void StretchBlit(const screens::Bitmap&, screens::Rect, screens::Rect) override { ++calls; }
    void TransparentBlit(const screens::Bitmap&, screens::Rect, screens::Point,
                         screens::Colour) override {
        ++calls;
    }
    void PixelBlock(screens::Point, screens::Size, const std::uint32_t*, int) override { ++calls; }

    screens::Font font;
    std::size_t calls = 0;
    std::size_t points = 0;
};

// A million samples of a day's wandering, in image pixels of a city map.
const track::TrackList& MillionPointTrail() {
    static const track::TrackList trail = [] {
        track::TrackList list;
        std::mt19937 rng(11);
        std::normal_distribution<float> step(0.f, 1.5f);
        float x = 0, y = 0;
        for (int i = 0; i < 1'000'000; ++i) {
            x += step(rng);
            y += step(rng);
            list.Append(track::TrackPoint{x, y, {}});
        }
        return list;
    }();
    return trail;
}

// range(0): 0 the view unchanged between paints (the kept polyline is
// drawn), 1 the view moved before every paint (built again);
// range(1): zoom, 1 shows about a tenth of the trail's extent, 0.1 all of it.
void BM_TrailRepaint(benchmark::State& state) {
    const track::TrackList& trail = MillionPointTrail();
    const bool moving = state.range(0) != 0;
    const double zoom = static_cast<double>(state.range(1)) / 100.0;
    track::TrailPainter painter;
    const screens::Rect view{0, 0, 480, 640};
    CountingCanvas canvas;
    double shift = 0;
    for (auto _ : state) {
        if (moving)
            shift += 1;
        painter.Draw(canvas, trail, {zoom, 240 + shift, zoom, 320}, view);
    }
    std::size_t drawn = 0;
    for (std::size_t i = 0; i < painter.StrokeCount(); ++i) drawn += painter.Stroke(i).size();
    state.counters["vertices"] = static_cast<double>(painter.Polyline().size());
    state.counters["linePoints"] = static_cast<double>(drawn);
    state.counters["lineCalls"] = static_cast<double>(painter.StrokeCount());
    state.counters["markerRects"] = static_cast<double>(painter.MarkerRects().size());
    state.counters["trailMB"] = static_cast<double>(trail.MemoryBytes()) / 1e6;
    state.counters["painterMB"] = static_cast<double>(painter.MemoryBytes()) / 1e6;
}
BENCHMARK(BM_TrailRepaint)
    ->ArgsProduct({{0, 1}, {100, 10}})
    ->ArgNames({"moving", "zoomx100"})
    ->Unit(benchmark::kMillisecond);

// 100,000 POIs in ten groups over a 40 × 40 km square; the view shows
// about a 2 km square of it.
const poi::PoiStore& HundredThousandPois() {
    static const poi::PoiStore store = [] {
        poi::PoiStore s;
        std::mt19937 rng(5);
        std::uniform_real_distribution<double> lat(30.05, 30.45), lon(119.95, 120.35);
        for (int g = 0; g < 10; ++g) {
            poi::PoiGroup group;
            group.category = static_cast<std::uint32_t>(g * 3);
            for (int i = 0; i < 10'000; ++i) {
                poi::PoiRecord r;
                r.latitude = lat(rng);
                r.longitude = lon(rng);
                std::snprintf(r.name, sizeof r.name, "Point %d-%d", g, i);
                group.points.Append(r);
            }
            s.Append(std::move(group));
        }
        return s;
    }();
    return store;
}

// Draws the whole store with the markers' icons on every iteration; the
// draw calls of the last one.
std::size_t TimeDrawPois(benchmark::State& state, const poi::PoiStore& store,
                         const poi::PoiProjection& project) {
    const screens::Bitmap icons{screens::BitmapId::Markers, 496, 16};
    CountingCanvas canvas;
    std::size_t calls = 0;
    for (auto _ : state) {
        canvas.calls = 0;
        poi::DrawPois(canvas, store, project, &icons);
        calls = canvas.calls;
    }
    return calls;
}

void BM_PoiRepaint(benchmark::State& state) {
    const poi::PoiStore& store = HundredThousandPois();
    // Degrees to pixels: 2 km is about 0.02° across 480 pixels.
    const poi::PoiProjection project = [](double lat, double lon, double& x, double& y) {
        x = (lon - 120.14) * 24000;
        y = (30.26 - lat) * 24000;
        return true;
    };
    const std::size_t calls = TimeDrawPois(state, store, project);
    std::size_t bytes = store.MemoryBytes();
    for (std::uint32_t g = 0; g < store.Count(); ++g) bytes += store.At(g).points.MemoryBytes();
    state.counters["drawCalls"] = static_cast<double>(calls);
    state.counters["storeMB"] = static_cast<double>(bytes) / 1e6;
}
BENCHMARK(BM_PoiRepaint)->Unit(benchmark::kMillisecond);

// The same store placed as the map screen's POI layer places it: through
// the map view's own projection, on a world view about 2 km across.
void BM_PoiLayerProjection(benchmark::State& state) {
    const poi::PoiStore& store = HundredThousandPois();
    map::MapView view;
    view.viewRect = {0, 0, 480, 560};
    view.viewScale = 0.4;  // the 100-pixel scale bar stands for 400 m
    view.worldOrigin.latitude = 0;
    view.worldOrigin.longitude = 120.14;
    view.worldOrigin.screenX = 240;
    map::GeoPoint centre;
    centre.latitude = 30.26;
    view.worldOrigin.screenY =
        280 + map::MercatorNorthing(centre.latitude, view.viewScale, view.scaleBarPixels);
    const poi::PoiProjection project = [&view](double lat, double lon, double& x, double& y) {
        map::PointF p;
        if (!map::ProjectToScreen(view, lat, lon, p))
            return false;
        x = p.x;
        y = p.y;
        return true;
    };
    const std::size_t calls = TimeDrawPois(state, store, project);
    state.counters["drawCalls"] = static_cast<double>(calls);
}
BENCHMARK(BM_PoiLayerProjection)->Unit(benchmark::kMillisecond);

// `count` POIs spread over a 2 × 2.6 km rectangle that a world view of the
// map screen shows whole at 480 × 640.
const poi::PoiStore& PoisInView(int count) {
    static std::map<int, poi::PoiStore> stores;
    poi::PoiStore& s = stores[count];
    if (!s.Empty())
        return s;
    std::mt19937 rng(9);
    std::uniform_real_distribution<double> lat(30.249, 30.271), lon(120.130, 120.150);
    for (int g = 0; g < 10; ++g) {
        poi::PoiGroup group;
        group.category = static_cast<std::uint32_t>(g * 3);
        for (int i = 0; i < count / 10; ++i) {
            poi::PoiRecord r;
            r.latitude = lat(rng);
            r.longitude = lon(rng);
            std::snprintf(r.name, sizeof r.name, "Point %d-%d", g, i);
            group.points.Append(r);
            group.positions.push_back({r.latitude, r.longitude});  // as an import keeps them
        }
        s.Append(std::move(group));
    }
    return s;
}

map::MapView WorldViewOfTheStore() {
    map::MapView view;
    view.viewRect = {0, 0, 480, 640};
    view.viewScale = 0.5;  // the 100-pixel scale bar stands for 500 m
    view.worldOrigin.latitude = 0;
    view.worldOrigin.longitude = 120.14;
    view.worldOrigin.screenX = 240;
    view.worldOrigin.screenY =
        320 + map::MercatorNorthing(30.26, view.viewScale, view.scaleBarPixels);
    return view;
}

// range(0): POIs in the store, every one of them in view; range(1): 1 drawn
// through the store's index as the map screen draws it, 0 each point
// projected.
void BM_PoiRepaintAllInView(benchmark::State& state) {
    const poi::PoiStore& store = PoisInView(static_cast<int>(state.range(0)));
    const map::MapView view = WorldViewOfTheStore();
    const map::ScreenProjector projector(view);
    const poi::PoiProjection project = poi::ProjectionOf(projector);
    poi::PoiIndex index;
    if (state.range(1) != 0)
        index.Build(store);
    const poi::PoiBoxProjection box = poi::BoxProjectionOf(view, projector);
    const screens::Bitmap icons{screens::BitmapId::Markers, 496, 16};
    CountingCanvas canvas;
    poi::PoiDrawCount drawn;
    for (auto _ : state) drawn = poi::DrawPois(canvas, store, project, &icons, {}, &index, box);
    state.counters["inView"] = drawn.inView;
    state.counters["icons"] = drawn.icons;
    state.counters["labels"] = drawn.labels;
    state.counters["indexMB"] = static_cast<double>(index.MemoryBytes()) / 1e6;
}
BENCHMARK(BM_PoiRepaintAllInView)
    ->ArgsProduct({{100'000, 1'000'000}, {0, 1}})
    ->ArgNames({"pois", "indexed"})
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

// Building the index after an import of range(0) POIs.
void BM_PoiIndexBuild(benchmark::State& state) {
    const poi::PoiStore& store = PoisInView(static_cast<int>(state.range(0)));
    poi::PoiIndex index;
    for (auto _ : state) index.Build(store);
    state.counters["indexMB"] = static_cast<double>(index.MemoryBytes()) / 1e6;
}
BENCHMARK(BM_PoiIndexBuild)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

#ifdef SATWALK_BENCH_QT
// The same into a 480 × 640 picture through the program's Qt canvas, the
// icons from a strip of the real size.
void BM_PoiRepaintAllInViewQt(benchmark::State& state) {
    const poi::PoiStore& store = PoisInView(static_cast<int>(state.range(0)));
    const map::MapView view = WorldViewOfTheStore();
    const map::ScreenProjector projector(view);
    const poi::PoiProjection project = poi::ProjectionOf(projector);
    screens::ScreenBitmaps bitmaps;
    QImage strip(496, 16, QImage::Format_ARGB32);
    strip.fill(qRgb(200, 40, 40));
    const screens::Bitmap icons{bitmaps.Add(std::move(strip)), 496, 16};
    QImage target(480, 640, QImage::Format_RGB32);
    poi::PoiIndex index;
    index.Build(store);
    const poi::PoiBoxProjection box = poi::BoxProjectionOf(view, projector);
    poi::PoiDrawCount drawn;
    for (auto _ : state) {
        target.fill(Qt::white);
        screens::QtCanvas canvas(target, bitmaps);
        drawn = poi::DrawPois(canvas, store, project, &icons, {}, &index, box);
    }
    state.counters["icons"] = drawn.icons;
}
BENCHMARK(BM_PoiRepaintAllInViewQt)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);
#endif

}  // namespace

#ifdef SATWALK_BENCH_QT
int main(int argc, char** argv) {
    return satwalk::bench::RunOffscreen<QGuiApplication>(argc, argv);
}
#else
BENCHMARK_MAIN();
#endif
