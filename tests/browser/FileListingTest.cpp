// The browser's listing rules and size texts, and the folder reader on
// awkward folders made for the purpose.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <tuple>
#include <vector>

#include "DirectoryReader.h"
#include "FileListing.h"

namespace satwalk::browser {
namespace {

TEST(SizeText, ThresholdsAndDecimals) {
    constexpr std::uint64_t K = 1024, M = K * K, G = M * K;
    const std::pair<std::uint64_t, const char*> cases[] = {
        {0, "0B"},           {1024, "1024B"},
        {1025, "1.00K"},     {10 * K, "10.0K"},
        {150 * K, "150K"},   {M + 1, "1.00M"},
        {G, "1024M"},        {99 * G + G / 2, "99.5G"},
        {3000 * G, "3000G"}, {~std::uint64_t{0}, "17179869184G"}};
    for (const auto& [bytes, text] : cases) EXPECT_EQ(SizeText(bytes), text) << bytes;
}

TEST(Listing, ModeFilters) {
    constexpr int M = kBrowseMaps, T = kBrowseTrackLogs, P = kBrowsePoi;
    const std::tuple<int, const char*, bool> cases[] = {
        {M, "MAP.Bmp", true},      {M, "a.GIF", true},      {M, "photo.jpeg", false},
        {M, ".jpg", true},         {M, "jpg", false},       {M, "x.jpg.txt", false},
        {M, "scan.tif", true},     {M, "Scan.TIFF", true},  {M, "scan.tiff.bak", false},
        {M, "tiff", false},        {T, "scan.tif", false},  {P, "scan.tiff", false},
        {T, "20260516.LOG", true}, {T, "walk.GPX", true},   {T, "x_NMEA0183.nmea", true},
        {P, "fuel.CSV", true},     {P, "caches.gpx", true}, {P, "fuel.log", false},
        {0, "a.jpg", false},       {4, "a.csv", false}};
    for (const auto& [mode, name, listed] : cases)
        EXPECT_EQ(MatchesMode(mode, name), listed) << mode << " " << name;
    EXPECT_EQ(FilterCaption(kBrowseMaps), "地图 [*.BMP; *.JPG; *.GIF; *.PNG]");
    EXPECT_EQ(FilterCaption(kBrowsePoi), "POI [*.csv; *.gpx]");
    EXPECT_EQ(FilterCaption(9), "");
}

using List = std::vector<std::string>;

List Names(const std::vector<ListingRow>& rows) {
    List n;
    for (const ListingRow& r : rows) n.push_back(r.displayName + (r.isFolder ? "/" : ""));
    return n;
}

TEST(Listing, RowsOrderAndTheWayUp) {
    const std::vector<DirEntry> entries = {
        {"zeta.jpg", false, 2048}, {"Alpha", true, 0},  {"beta.PNG", false, 10},
        {"notes.txt", false, 5},   {".", true, 0},      {"..", true, 0},
        {"alpha.gif", false, 1},   {"!first", true, 0}, {"track.log", true, 0},
        {"bad\xff.jpg", false, 3}};
    const std::tuple<int, const char*, List> cases[] = {
        {kBrowseMaps,
         "/home/u",
         {"../", "!first/", "Alpha/", "alpha.gif", "bad\xEF\xBF\xBD.jpg", "beta.PNG", "track.log/",
          "zeta.jpg"}},
        {kBrowseTrackLogs, "/", {"!first/", "Alpha/", "track.log/"}},
        {kBrowsePoi, "/media/", {"../", "!first/", "Alpha/", "track.log/"}},
        {7, "/", {}}};
    for (const auto& [mode, folder, names] : cases)
        EXPECT_EQ(Names(BuildListing(mode, folder, entries)), names) << folder;

    const auto rows = BuildListing(kBrowseMaps, "/home/u", entries);
    EXPECT_TRUE(rows[0].isUp);
    EXPECT_EQ(rows[4].name, "bad\xff.jpg");  // the real name opens the file
    EXPECT_EQ(rows[7].sizeText + "|" + rows[2].sizeText, "2.00K|");
    EXPECT_EQ(InitialRow(rows, "Alpha"), 2u);
    EXPECT_EQ(InitialRow(rows, "gone"), 0u);
    EXPECT_EQ(InitialRow(rows, ".."), 0u);
}

TEST(Listing, WalkingPaths) {
    const std::tuple<const char*, const char*, const char*, bool> cases[] = {
        {"/", "/", "", true},
        {"/home", "/", "home", false},
        {"/home/u/", "/home", "u", false},
        {"//", "/", "", true}};
    for (const auto& [folder, parent, name, root] : cases) {
        EXPECT_EQ(ParentFolder(folder), parent) << folder;
        EXPECT_EQ(FolderName(folder), name) << folder;
        EXPECT_EQ(IsRoot(folder), root) << folder;
    }
    EXPECT_EQ(ChildPath("/", "home"), "/home");
    EXPECT_EQ(ChildPath("/home/u/", "a.jpg"), "/home/u/a.jpg");
}

TEST(Listing, DisplayNamesAreValidUtf8) {
    const std::pair<std::string, std::string> cases[] = {
        {"地图.jpg", "地图.jpg"},
        {"\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD"},                    // overlong '/'
        {"\xED\xA0\x80x", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBDx"},  // surrogate
        {"a\xE5\x9C", "a\xEF\xBF\xBD\xEF\xBF\xBD"},                  // cut short
        {"\xB5\xD8.jpg", "\xEF\xBF\xBD\xEF\xBF\xBD.jpg"}};           // GB18030
    for (const auto& [raw, shown] : cases) EXPECT_EQ(SafeDisplayName(raw), shown);
}

class Folder : public ::testing::Test {
  protected:
    void SetUp() override {
        root_ = ::testing::TempDir() + "browser_" + std::to_string(::getpid());
        ::mkdir(root_.c_str(), 0755);
    }
    void TearDown() override { std::system(("rm -rf '" + root_ + "'").c_str()); }
    void File(const std::string& name, std::size_t size) {
        std::ofstream(root_ + "/" + name, std::ios::binary) << std::string(size, 'x');
    }
    std::string root_;
};

TEST_F(Folder, ReaderKeepsFoldersAndFilesAndSurvivesLinks) {
    File("a.jpg", 1536);
    File("b\xfe.png", 3);
    ::mkdir((root_ + "/sub").c_str(), 0755);
    ASSERT_EQ(::symlink(".", (root_ + "/loop").c_str()), 0);             // a folder again
    ASSERT_EQ(::symlink("self.jpg", (root_ + "/self.jpg").c_str()), 0);  // loops on itself
    ASSERT_EQ(::symlink("missing", (root_ + "/dangling.jpg").c_str()), 0);
    ASSERT_EQ(::mkfifo((root_ + "/pipe.jpg").c_str(), 0644), 0);

    const DirectoryRead r = ReadDirectory(root_);
    ASSERT_TRUE(r.ok);
    const auto rows = BuildListing(kBrowseMaps, root_, r.entries);
    EXPECT_EQ(Names(rows), (List{"../", "a.jpg", "b\xEF\xBF\xBD.png", "loop/", "sub/"}));
    EXPECT_EQ(rows[1].sizeText, "1.50K");

    // Walking into the looping link keeps working until the path is too long.
    std::string deep = root_;
    for (int i = 0; i < 40; ++i) deep = ChildPath(deep, "loop");
    const DirectoryRead d = ReadDirectory(deep);
    if (!d.ok) {
        EXPECT_EQ(Names(BuildListing(kBrowseMaps, deep, d.entries)), List{"../"});
    }
}

TEST_F(Folder, UnreadableFolderShowsOnlyTheWayUp) {
    const DirectoryRead missing = ReadDirectory(root_ + "/none");
    EXPECT_TRUE(!missing.ok && missing.error == ENOENT);
    EXPECT_EQ(Names(BuildListing(kBrowseMaps, root_ + "/none", missing.entries)), List{"../"});

    File("plain.jpg", 1);
    EXPECT_FALSE(ReadDirectory(root_ + "/plain.jpg").ok);

    const std::string locked = root_ + "/locked";
    ::mkdir(locked.c_str(), 0);
    if (::geteuid() != 0) {  // root reads it anyway
        EXPECT_FALSE(ReadDirectory(locked).ok);
    }
}

TEST_F(Folder, ThousandsOfEntries) {
    for (int i = 0; i < 3000; ++i) File(std::to_string(i) + (i % 2 ? ".JPG" : ".txt"), 0);
    const DirectoryRead r = ReadDirectory(root_);
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.entries.size(), 3000u);
    const auto rows = BuildListing(kBrowseMaps, root_, r.entries);
    ASSERT_EQ(rows.size(), 1501u);
    EXPECT_EQ(rows[1].name + " " + rows[2].name, "1.JPG 1001.JPG");
}

}  // namespace
}  // namespace satwalk::browser
