// Shared helpers of the track tests: a scratch folder and whole-file reads.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "TrackLogReader.h"

namespace satwalk::track::test {

inline std::string ScratchFolder(const std::string& name) {
    const std::string dir = ::testing::TempDir() + "track-" + name;
    std::string rm = "rm -rf '" + dir + "' && mkdir -p '" + dir + "'";
    EXPECT_EQ(std::system(rm.c_str()), 0);
    return dir;
}

inline std::string ReadFile(const std::string& path) {
    std::ifstream f(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(f), {});
}

inline void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline TrackTime Time(int y, int mo, int d, int h, int mi, int s) {
    TrackTime t;
    t.year = static_cast<std::int16_t>(y);
    t.month = static_cast<std::int8_t>(mo);
    t.day = static_cast<std::int8_t>(d);
    t.hour = static_cast<std::int8_t>(h);
    t.minute = static_cast<std::int8_t>(mi);
    t.second = static_cast<std::int8_t>(s);
    return t;
}

}  // namespace satwalk::track::test
