// Conversions through a georeferenced map's calibration: image pixels to
// degrees and back through a projected transform (UTM zone 51N), in batches
// of a trail's size and one point at a time as the position and the
// markers convert, beside the reference-point kind they replace.
// Budget: under 1 µs a point in batches (1M trail points under 1 s).
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <vector>

#include "Georeference.h"
#include "MapGeometry.h"
#include "ReferencePoints.h"

using namespace satwalk::map;

namespace {

const MapCalibration& Projected() {
    static const MapCalibration c = [] {
        std::shared_ptr<const MapProjection> utm = UtmProjection(51, false);
        return GeoreferencedCalibration(
            GeoTransform::Make({210000.0, 2.0, 0.0, 3353000.0, 0.0, -2.0}, utm));
    }();
    return c;
}

void BM_ImageToGeoBatch(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    std::vector<double> x(n), y(n);
    for (auto _ : state) {
        for (std::size_t i = 0; i < n; ++i) {
            x[i] = static_cast<double>(i % 5000);
            y[i] = static_cast<double>(i % 3000);
        }
        Projected().geo->ImageToLonLat(x.data(), y.data(), n);
        benchmark::DoNotOptimize(x.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ImageToGeoBatch)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

void BM_GeoToImageBatch(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    std::vector<double> x(n), y(n);
    for (auto _ : state) {
        for (std::size_t i = 0; i < n; ++i) {
            x[i] = 120.0 + 1e-5 * static_cast<double>(i % 5000);
            y[i] = 30.2 + 1e-5 * static_cast<double>(i % 3000);
        }
        Projected().geo->LonLatToImage(x.data(), y.data(), n);
        benchmark::DoNotOptimize(x.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_GeoToImageBatch)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

// One point a call, as GeoToImage is called for the position and by the
// trail reader's per-point projection.
void BM_GeoToImageSingle(benchmark::State& state) {
    GeoPoint p;
    double lon = 120.0;
    for (auto _ : state) {
        lon = lon > 120.05 ? 120.0 : lon + 1e-6;
        benchmark::DoNotOptimize(GeoToImage(Projected(), p, 30.25, lon));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_GeoToImageSingle);

void BM_GeoToImageReferencePoints(benchmark::State& state) {
    ReferencePoints r{};
    r[0] = GeoPoint{1, 30.3, 120.0, 0, 0, 0, 0};
    r[1] = GeoPoint{1, 30.2, 120.1, 0, 0, 5000, 3000};
    const MapCalibration c = ComputeCalibration(r);
    GeoPoint p;
    double lon = 120.0;
    for (auto _ : state) {
        lon = lon > 120.05 ? 120.0 : lon + 1e-6;
        benchmark::DoNotOptimize(GeoToImage(c, p, 30.25, lon));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_GeoToImageReferencePoints);

// What loading a map adds before the image is decoded: finding what
// calibrates it. arg 0: the reference file in the storage folder (today's
// maps); 1: a world file beside the image (reading its .prj builds the
// projection); 2: nothing anywhere (the folder is looked through).
void BM_LocateCalibration(benchmark::State& state) {
    namespace fs = std::filesystem;
    const fs::path dir =
        fs::temp_directory_path() / ("satwalk-bench-geo-" + std::to_string(::getpid()));
    fs::create_directories(dir / "My GPS/Reference Points");
    const std::string image = (dir / "map.png").string();
    const std::string storage = MakeReferenceFileName(dir.string(), image);
    if (state.range(0) == 0)
        std::ofstream(storage) << "1,30,120,0,0,\r\n1,29,121,100,100,\r\n";
    if (state.range(0) == 1) {
        std::ofstream(dir / "map.pgw") << "25\n0\n0\n-25\n210012.5\n3352987.5\n";
        std::ofstream(dir / "map.prj") << "EPSG:32651";
    }
    for (int i = 0; i < 50; ++i) std::ofstream(dir / ("other" + std::to_string(i) + ".png"));
    for (auto _ : state) benchmark::DoNotOptimize(LocateCalibration(image, storage));
    fs::remove_all(dir);
}
BENCHMARK(BM_LocateCalibration)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
