// The GPX option's own file beside the options file.
#include <gtest/gtest.h>

#include <fstream>

#include "TrackGpxOption.h"

namespace satwalk::shell {
namespace {

TEST(TrackGpxOption, FileBesideTheOptions) {
    EXPECT_EQ(TrackGpxOptionPath("/home/u/.config/satwalk/options"),
              "/home/u/.config/satwalk/track-gpx");
    const std::string path = ::testing::TempDir() + "shell-track-gpx-option";
    const struct {
        const char* bytes;
        bool on;
    } cases[] = {{"1\n", true}, {"1", true},   {"1\r\n", true}, {"0\n", false},
                 {"", false},   {"11", false}, {"yes", false}};
    for (const auto& c : cases) {
        std::ofstream(path, std::ios::binary) << c.bytes;
        EXPECT_EQ(LoadTrackGpxOption(path), c.on) << c.bytes;
    }
    for (const bool on : {true, false}) {
        EXPECT_TRUE(SaveTrackGpxOption(path, on));
        EXPECT_EQ(LoadTrackGpxOption(path), on);
    }
    EXPECT_FALSE(LoadTrackGpxOption(path + "-missing"));
    EXPECT_FALSE(SaveTrackGpxOption("/no/such/folder/track-gpx", true));
}

}  // namespace
}  // namespace satwalk::shell
