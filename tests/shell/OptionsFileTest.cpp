#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "../common/FullDisk.h"
#include "OptionsRecord.h"
#include "Settings.h"

namespace satwalk::shell {
namespace {

namespace fs = std::filesystem;

class OptionsFileTest : public ::testing::Test {
  protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() /
               ("satwalk-options-" + std::to_string(::getpid()) + "-" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir_);
        fs::create_directories(dir_);
        path_ = (dir_ / "options").string();
    }
    void TearDown() override { fs::remove_all(dir_); }

    std::vector<std::uint8_t> ReadAll() const {
        std::ifstream in(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    void WriteAll(const std::vector<std::uint8_t>& bytes) const {
        std::ofstream out(path_, std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
    }
    static std::uint32_t Word(const std::vector<std::uint8_t>& b, std::size_t at) {
        return b[at] | (b[at + 1] << 8) | (b[at + 2] << 16) | (std::uint32_t{b[at + 3]} << 24);
    }

    fs::path dir_;
    std::string path_;
};

TEST_F(OptionsFileTest, OnlyARegularFileIsAnOptionsFile) {
    // A folder or a FIFO at the path: built-in values, no hang, no save.
    const struct {
        const char* name;
        int (*make)(const char*);
    } cases[] = {{"folder", [](const char* p) { return ::mkdir(p, 0755); }},
                 {"fifo", [](const char* p) { return ::mkfifo(p, 0644); }}};
    for (const auto& c : cases) {
        fs::remove_all(path_);
        ASSERT_EQ(c.make(path_.c_str()), 0) << c.name;
        ProgramSettings s;
        OptionsStore store(path_);
        EXPECT_FALSE(store.LoadOptions(s)) << c.name;
        EXPECT_EQ(s.speedAlarmOn, 0u) << c.name;
        EXPECT_FALSE(store.SaveOptions(s)) << c.name;
    }
}

TEST_F(OptionsFileTest, ShortFileFillsOnlyItsBytes) {
    std::vector<std::uint8_t> bytes(100, 0);
    bytes[44] = 2;   // units: nautical
    bytes[36] = 90;  // alarm limit
    WriteAll(bytes);
    ProgramSettings s;
    OptionsStore store(path_);
    ASSERT_TRUE(store.LoadOptions(s));
    EXPECT_EQ(std::tuple(s.units, s.speedAlarmLimit), std::tuple(2u, 90u));
    EXPECT_EQ(s.showMap, 0u) << "taken from the file";
    EXPECT_EQ(s.trackIntervalMs, 10000u) << "zero in the file is no valid period";
    // Past byte 100 the record defaults stand: the alarm switch is on.
    EXPECT_EQ(std::tuple(s.backlightAlwaysOn, store.record().backlightAlwaysOn),
              std::tuple(1u, 1u));
    EXPECT_EQ(store.record().speedAlarmOn, 0u) << "offset 40 lies inside the 100 bytes";
}

TEST_F(OptionsFileTest, AFailedSaveLeavesTheOldFileAsItWas) {
    const std::vector<std::uint8_t> old(kOptionsRecordSize, 0x42);
    OptionsRecord nautical{};
    SetOptionDefaults(nautical);
    nautical.units = 2;
    const struct {
        const char* name;
        bool oldFile;
        rlim_t limit;
        bool saved;
    } cases[] = {{"disk full, old file", true, 1000, false},
                 {"disk full, no file yet", false, 1000, false},
                 {"room enough", true, 1 << 20, true}};
    for (const auto& c : cases) {
        fs::remove_all(dir_);
        fs::create_directories(dir_);
        if (c.oldFile)
            WriteAll(old);
        EXPECT_EQ(OnAFullDisk(c.limit, [&] { return WriteOptionsFile(path_, nautical, 1); }),
                  c.saved ? 1 : 0)
            << c.name;
        EXPECT_EQ(std::distance(fs::directory_iterator(dir_), fs::directory_iterator()),
                  c.oldFile || c.saved ? 1 : 0)
            << c.name << ": a file left beside the options";
        if (c.saved) {
            EXPECT_EQ(Word(ReadAll(), 44), 2u) << c.name;
        } else if (c.oldFile) {
            EXPECT_EQ(ReadAll(), old) << c.name;
        }
    }
}

TEST_F(OptionsFileTest, FreshSaveWritesTheWholeRecordWithDefaults) {
    ProgramSettings s;
    s.storageRoot = "/media/卡/My Documents";
    s.recentMaps[2] = "/home/u/maps/城市.png";
    s.bluetoothName = "GPS-1";
    s.bluetoothAddress = 0x0011223344556677ull;
    OptionsStore store(path_);
    EXPECT_FALSE(store.LoadOptions(s)) << "no file: built-in values";
    EXPECT_FALSE(fs::exists(path_)) << "loading never creates the file";
    EXPECT_FALSE(s.receiverConfigured);
    ASSERT_TRUE(store.SaveOptions(s));
    const auto out = ReadAll();
    ASSERT_EQ(out.size(), kOptionsRecordSize);
    EXPECT_EQ(std::tuple(Word(out, 576), Word(out, 580)), std::tuple(0x44556677u, 0x00112233u));

    ProgramSettings back;
    OptionsStore again(path_);
    ASSERT_TRUE(again.LoadOptions(back));
    EXPECT_EQ(std::tuple(back.storageRoot, back.recentMaps[2], back.receiverConfigured),
              std::tuple(s.storageRoot, s.recentMaps[2], true));
}

TEST(OptionsRecordTest, OddValuesAreMadeSane) {
    const struct {
        std::size_t offset;
        std::uint32_t value;
        std::uint32_t ProgramSettings::*field;
        std::uint32_t expected;
    } cases[] = {{44, 7, &ProgramSettings::units, 0},
                 {20, 6, &ProgramSettings::baudIndex, 0},
                 {32, 15000, &ProgramSettings::trackIntervalMs, 10000},
                 {32, 60000, &ProgramSettings::trackIntervalMs, 60000},
                 {0, 0xFFFFFFFF, &ProgramSettings::showMap, 1},
                 {36, 55, &ProgramSettings::speedAlarmLimit, 55}};
    for (const auto& c : cases) {
        OptionsRecord r{};
        SetOptionDefaults(r);
        std::memcpy(reinterpret_cast<std::uint8_t*>(&r) + c.offset, &c.value, 4);
        ProgramSettings s;
        SettingsFromRecord(r, s);
        EXPECT_EQ(s.*c.field, c.expected) << "offset " << c.offset << " value " << c.value;
    }
}

TEST(OptionsRecordTest, AllTalkersByteIsOnOnlyAtOneAndOtherValuesAreKept) {
    const struct {
        std::uint8_t read;
        std::uint32_t setting;  // as read
        std::uint32_t changedTo;
        std::uint8_t written;
    } cases[] = {{0, 0, 0, 0}, {1, 1, 1, 1}, {1, 1, 0, 0}, {0x5A, 0, 0, 0x5A}, {0x5A, 0, 1, 1}};
    for (const auto& c : cases) {
        OptionsRecord r{};
        SetOptionDefaults(r);
        r.allTalkers = c.read;
        ProgramSettings s;
        SettingsFromRecord(r, s);
        EXPECT_EQ(s.allTalkers, c.setting) << int{c.read};
        s.allTalkers = c.changedTo;
        RecordFromSettings(s, r);
        EXPECT_EQ(r.allTalkers, c.written) << int{c.read} << " -> " << c.changedTo;
    }
}

TEST(OptionsRecordTest, PathWithoutTerminatorIsCutAtItsSlot) {
    OptionsRecord r{};
    SetOptionDefaults(r);
    for (char16_t& c : r.storageLocation) c = u'x';
    for (char16_t& c : r.recentMaps[0]) c = u'y';
    ProgramSettings s;
    SettingsFromRecord(r, s);
    // The last unit is the terminator's place, so a load and a save agree.
    EXPECT_EQ(s.storageRoot, std::string(kPathChars - 1, 'x'));
    RecordFromSettings(s, r);
    EXPECT_EQ(r.storageLocation[kPathChars - 1], 0);
    EXPECT_EQ(r.storageLocation[kPathChars - 2], u'x');
    ProgramSettings again;
    SettingsFromRecord(r, again);
    EXPECT_EQ(again.storageRoot, s.storageRoot);
    // A surrogate pair that would straddle the terminator's place is cut whole.
    for (char16_t& c : r.storageLocation) c = u'z';
    r.storageLocation[kPathChars - 2] = 0xD83D;
    r.storageLocation[kPathChars - 1] = 0xDE00;
    SettingsFromRecord(r, s);
    RecordFromSettings(s, r);
    SettingsFromRecord(r, again);
    EXPECT_EQ(again.storageRoot, s.storageRoot);
}

TEST(StorageTest, FallsBackToDocumentsAndBuildsTheTree) {
    const fs::path base =
        fs::temp_directory_path() / ("satwalk-storage-" + std::to_string(::getpid()));
    fs::remove_all(base);
    const std::string docs = (base / "Documents").string();
    // A root on a volume that is gone cannot be created.
    const std::string root = ResolveStorageRoot("/proc/no-such-card/My Documents", docs + "/");
    EXPECT_EQ(root, docs);
    // A relative path names no place.
    EXPECT_EQ(ResolveStorageRoot("relative/root", docs), docs);
    const StorageFolders f = MakeStorageFolders(root);
    PrepareStorageFolders(f);
    for (const fs::path& made :
         {fs::path(f.referencePoints), fs::path(f.trackLog), base / "Documents/My GPS/NMEA0183"})
        EXPECT_TRUE(fs::is_directory(made)) << made;

    // A file where the base folder should be: nothing is created.
    const StorageFolders g = MakeStorageFolders((base / "other").string());
    fs::create_directories(g.root);
    std::ofstream(g.base) << "x";
    PrepareStorageFolders(g);
    EXPECT_FALSE(fs::exists(g.trackLog));
    fs::remove_all(base);
}

}  // namespace
}  // namespace satwalk::shell
