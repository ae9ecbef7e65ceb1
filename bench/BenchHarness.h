// What the benchmark programs share: their main for a Qt application drawing
// offscreen, and the peak resident size they report beside their times.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <string>

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

// Peak resident set size of this process in MB since the last reset.
inline double PeakResidentMb() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmHWM:", 0) == 0)
            return std::stod(line.substr(6)) / 1024.0;
    return 0.0;
}

// Starts the peak over from the current resident size (Linux 4.0 on).
inline void ResetPeakResident() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

}  // namespace satwalk::bench
