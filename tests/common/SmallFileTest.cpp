// The program's small files: read only their start, replaced whole or not at
// all, named beside another file.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "SmallFile.h"

namespace satwalk::common {
namespace {

TEST(SmallFile, ReadsAtMostItsStart) {
    const std::string path = ::testing::TempDir() + "common-small-file";
    std::ofstream(path, std::ios::binary) << std::string(100, 'x');
    EXPECT_EQ(ReadFileStart(path, 8), std::string(8, 'x'));
    EXPECT_EQ(ReadFileStart(path, 500), std::string(100, 'x'));
    EXPECT_EQ(ReadFileStart(path + "-missing", 8), std::nullopt);
}

TEST(SmallFile, ReplacesTheOldFileOrLeavesIt) {
    const std::string path = ::testing::TempDir() + "common-small-file-replaced";
    EXPECT_TRUE(ReplaceFile(path, "a longer first text"));
    EXPECT_TRUE(ReplaceFile(path, "short"));
    EXPECT_EQ(ReadFileStart(path, 100), "short");
    EXPECT_EQ(ReadFileStart(path + ".new", 1), std::nullopt);
    // A folder in the way of the rename: the temporary goes, nothing else.
    const std::string folder = ::testing::TempDir() + "common-small-file-folder";
    std::filesystem::create_directories(folder + "/inside");
    EXPECT_FALSE(ReplaceFile(folder, "x"));
    EXPECT_TRUE(std::filesystem::is_directory(folder));
    EXPECT_FALSE(std::filesystem::exists(folder + ".new"));
    EXPECT_FALSE(ReplaceFile("/no/such/folder/file", "x"));
}

TEST(SmallFile, PathBesideAnother) {
    EXPECT_EQ(PathBeside("/home/u/.config/satwalk/options", "window"),
              "/home/u/.config/satwalk/window");
    EXPECT_EQ(PathBeside("options", "window"), "window");
    EXPECT_EQ(PathBeside("/options", "window"), "/window");
}

}  // namespace
}  // namespace satwalk::common
