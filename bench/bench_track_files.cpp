// Track files at the sizes of the budgets: a GPX of 1,000,000 track points
// (about 100 MB) read into both viewed trails with its statistics, the same
// points as a log for comparison, the statistics of 1,000,000 points alone,
// and a 50 MB NMEA recording viewed as a track. The counters give the
// trails' memory, so the GPX and the log can be compared.
//
//   build/default/bench/bench_track_files [--benchmark_filter=Gpx]
//
// The files are made once into /tmp and removed at exit.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "BenchHarness.h"
#include "BenchTrack.h"
#include "GpxWriter.h"
#include "TrackLogFile.h"
#include "TrackState.h"
#include "TrackStatistics.h"

namespace {

using namespace satwalk;

constexpr int kPoints = 1'000'000;

// A walk around West Lake at one point a second, with elevation.
std::vector<track::TrackFilePoint> Walk() {
    std::vector<track::TrackFilePoint> points;
    points.reserve(kPoints);
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> step(-0.00005, 0.00005);
    double lon = 120.15, lat = 30.25, ele = 20;
    for (int i = 0; i < kPoints; ++i) {
        lon += step(rng);
        lat += step(rng);
        ele += step(rng) * 20000;
        track::TrackFilePoint p;
        p.latitude = lat;
        p.longitude = lon;
        p.elevation = ele;
        p.time = bench::SecondsIntoMay(i);
        p.hasTime = true;
        points.push_back(p);
    }
    return points;
}

const std::string& GpxPath() {
    static const bench::TemporaryFile file(".gpx", [](std::FILE* f) {
        std::string out = track::GpxHeader();
        track::LocalToUtc zone;
        for (const track::TrackFilePoint& point : Walk()) {
            track::AppendGpxPoint(out, point, zone);
            if (out.size() > (1 << 20)) {
                std::fwrite(out.data(), 1, out.size(), f);
                out.clear();
            }
        }
        out += track::kGpxTrailer;
        std::fwrite(out.data(), 1, out.size(), f);
    });
    return file.path();
}

const std::string& LogPath() {
    static const bench::TemporaryFile file(".log", [](std::FILE* f) {
        for (const track::TrackFilePoint& point : Walk()) {
            const std::string line = track::FormatTrackLine(point.longitude, point.latitude,
                                                            point.time, "1.0", "90.0", "20.0");
            std::fwrite(line.data(), 1, line.size(), f);
        }
    });
    return file.path();
}

// 50 MB of the demo drive, repeated.
const std::string& NmeaPath() {
    static const bench::TemporaryFile file(".nmea", [](std::FILE* f) {
        FILE* in = std::fopen(SATWALK_DEMO_LOG, "rb");
        std::string drive;
        char buffer[65536];
        std::size_t n;
        while (in != nullptr && (n = std::fread(buffer, 1, sizeof buffer, in)) > 0)
            drive.append(buffer, n);
        if (in != nullptr)
            std::fclose(in);
        for (std::size_t written = 0; !drive.empty() && written < 50'000'000;
             written += drive.size())
            std::fwrite(drive.data(), 1, drive.size(), f);
    });
    return file.path();
}

track::TrackProjections Projections() {
    track::TrackProjections projections;
    projections.world = [](double lat, double lon) {
        return track::MapXY{(lon + 180) * 2.7, (80 - lat) * 2.7};
    };
    projections.map = [](double lat, double lon) {
        return track::MapXY{(lon - 120) * 40000, (31 - lat) * 40000};
    };
    return projections;
}

void ReadIntoTrails(benchmark::State& state, const std::string& path) {
    const track::TrackProjections projections = Projections();
    std::size_t memory = 0, points = 0;
    for (auto _ : state) {
        const track::TrackRead read = track::ReadTrackTrails(path, projections);
        points = read.world.Count();
        memory = read.world.MemoryBytes() + read.map.MemoryBytes();
        benchmark::DoNotOptimize(read.stats.distance());
    }
    state.counters["points"] = static_cast<double>(points);
    state.counters["trailMB"] = static_cast<double>(memory) / 1e6;
}

void BM_ReadGpxIntoTrails(benchmark::State& state) {
    ReadIntoTrails(state, GpxPath());
}
BENCHMARK(BM_ReadGpxIntoTrails)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ReadLogIntoTrails(benchmark::State& state) {
    ReadIntoTrails(state, LogPath());
}
BENCHMARK(BM_ReadLogIntoTrails)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_NmeaRecordingAsTrack(benchmark::State& state) {
    ReadIntoTrails(state, NmeaPath());
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * 50'000'000);
}
BENCHMARK(BM_NmeaRecordingAsTrack)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_Statistics(benchmark::State& state) {
    const std::vector<track::TrackFilePoint> points = Walk();
    for (auto _ : state) {
        track::TrackStatistics stats;
        for (const track::TrackFilePoint& p : points) stats.Add(p);
        benchmark::DoNotOptimize(stats.Profile().size());
    }
    state.counters["points"] = kPoints;
}
BENCHMARK(BM_Statistics)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
