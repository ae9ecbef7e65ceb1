// The main of the benchmark programs that run in a Qt application drawing
// offscreen, the peak resident size they report beside their times, and the
// large input files they make for a run.
#pragma once

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

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

// A file of this run in /tmp, written once by `write` and removed when the
// program ends (a static's destructor, which runs before those of anything
// made earlier: the path is still there to remove).
class TemporaryFile {
  public:
    TemporaryFile(const char* extension, const std::function<void(std::FILE*)>& write)
        : path_("/tmp/satwalk-bench-" + std::to_string(::getpid()) + extension) {
        std::FILE* f = std::fopen(path_.c_str(), "wb");
        if (f == nullptr) {
            std::perror(path_.c_str());
            std::exit(1);
        }
        write(f);
        std::fclose(f);
    }
    ~TemporaryFile() { std::remove(path_.c_str()); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

}  // namespace satwalk::bench
