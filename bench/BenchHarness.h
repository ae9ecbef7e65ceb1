// The main of the benchmark programs that run in a Qt application drawing
// offscreen, and the peak resident size they report beside their times.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdlib>

#include "ResidentMemory.h"

namespace satwalk::bench {

// Runs the benchmarks named on the command line inside an `App`
// (QGuiApplication or QApplication) on the offscreen platform.
template <typename App>
int RunOffscreen(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    App app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}  // namespace satwalk::bench
