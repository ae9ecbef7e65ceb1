// "轨迹信息" opened on the statistics of a 1,000,000-point track: the
// dialog made, laid out and painted once (numbers and both profiles) at
// 480 × 640, offscreen. Budget: under 100 ms.
//
//   QT_QPA_PLATFORM=offscreen build/default/bench/bench_track_dialog
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <QWidget>

#include "BenchHarness.h"
#include "BenchTrack.h"
#include "Dialogs.h"
#include "TrackInfoDialog.h"
#include "TrackStatistics.h"

namespace {

using namespace satwalk;

track::TrackStatistics Statistics() {
    track::TrackStatistics stats;
    for (int i = 0; i < 1'000'000; ++i) {
        track::TrackFilePoint p;
        p.latitude = 30.25 + i * 1e-6;
        p.longitude = 120.15 + (i % 1000) * 1e-6;
        p.elevation = 20 + (i % 5000) * 0.01;
        p.time = bench::SecondsIntoMay(i);
        p.hasTime = true;
        stats.Add(p);
    }
    return stats;
}

void BM_OpenTrackInfoDialog(benchmark::State& state) {
    const track::TrackStatistics stats = Statistics();
    QWidget window;
    window.resize(480, 640);
    shell::qt::DialogStack stack(window, 30);
    stack.SetArea(QRect(0, 0, 480, 580));
    QImage frame(480, 580, QImage::Format_RGB32);
    for (auto _ : state) {
        auto* dialog = new track::qt::TrackInfoDialog(stack, "walk.gpx", stats, 0);
        stack.Open(dialog);
        dialog->render(&frame);  // lay out and paint everything once
        dialog->Reject();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}
BENCHMARK(BM_OpenTrackInfoDialog)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    return satwalk::bench::RunOffscreen<QApplication>(argc, argv);
}
