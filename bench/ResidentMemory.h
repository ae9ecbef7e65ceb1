// The peak resident size the benchmarks report beside their times, read
// from the kernel's own count for this process.
#pragma once

#include <fstream>
#include <string>

namespace satwalk::bench {

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
