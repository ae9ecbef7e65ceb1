// The tile pyramid's rules: its levels, the level a zoom draws from, the
// tiles a view needs, where the cache lives, and a cache file's index that is
// used only when every field agrees, and the trimming of the cache.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <tuple>

#include "TilePyramid.h"

namespace satwalk::map {
namespace {

TEST(TilePyramid, LevelsHalveDownToOneTile) {
    const std::tuple<ImageSize, int, int, std::uint32_t> cases[] = {
        // image, levels, last level's width, tiles in all
        {{256, 100}, 1, 256, 1},
        {{257, 100}, 2, 129, 2 + 1},
        {{600, 300}, 3, 150, 3 * 2 + 2 * 1 + 1},
        {{40000, 40000}, 9, 157, 33029},
        {{1, 131072}, 10, 1, 512 + 256 + 128 + 64 + 32 + 16 + 8 + 4 + 2 + 1},
        {{0, 10}, 0, 0, 0},
        {{131073, 1}, 0, 0, 0},
    };
    for (const auto& [image, count, lastWidth, tiles] : cases) {
        const std::vector<PyramidLevel> levels = PyramidLevels(image);
        ASSERT_EQ(levels.size(), static_cast<std::size_t>(count)) << image.width;
        EXPECT_EQ(PyramidTileCount(levels), tiles) << image.width;
        if (count > 0) {
            EXPECT_EQ(levels.back().width, lastWidth) << image.width;
        }
    }
}

TEST(TilePyramid, LevelNeverEnlargedOnScreen) {
    const std::tuple<int, double, int> cases[] = {
        {9, 2.0, 0},  {9, 1.0, 0},   {9, 0.5, 1},    {9, 0.49, 0 + 1},
        {9, 0.25, 2}, {9, 0.012, 6}, {9, 0.0001, 8}, {1, 0.01, 0},
    };
    for (const auto& [count, screenPerImage, level] : cases)
        EXPECT_EQ(ChooseLevel(count, screenPerImage), level) << screenPerImage;
}

TEST(TilePyramid, TilesInView) {
    // 1000 × 600: level 0 has 4 × 3 tiles, level 1 (500 × 300) 2 × 2, level 2
    // (250 × 150) one.
    const std::vector<PyramidLevel> levels = PyramidLevels({1000, 600});
    struct Case {
        int level;
        RectF source;
        int left, top, right, bottom;
        screens::Rect pixels;
    };
    const Case cases[] = {
        {0, {0, 0, 1000, 600}, 0, 0, 4, 3, {0, 0, 1000, 600}},
        {0, {10.5, 20.2, 100, 200}, 0, 0, 1, 1, {10, 20, 100, 200}},
        {0, {250, 250, 260.1, 513}, 0, 0, 2, 3, {250, 250, 261, 513}},
        {0, {768, 512, 1000, 600}, 3, 2, 4, 3, {768, 512, 1000, 600}},
        {0, {-50, -50, 1e9, 1e9}, 0, 0, 4, 3, {0, 0, 1000, 600}},
        {1, {600, 0, 1000, 600}, 1, 0, 2, 2, {300, 0, 500, 300}},
        {1, {511, 511, 513, 513}, 0, 0, 2, 2, {255, 255, 257, 257}},
        {0, {1000, 0, 1200, 600}, 0, 0, 0, 0, {}},  // right of the image
        {3, {0, 0, 10, 10}, 0, 0, 0, 0, {}},        // no such level
    };
    for (const Case& c : cases) {
        const TileRange r = TilesInView(levels, c.level, c.source);
        EXPECT_EQ(std::make_tuple(r.left, r.top, r.right, r.bottom),
                  std::make_tuple(c.left, c.top, c.right, c.bottom))
            << c.level << " " << c.source.left;
        EXPECT_EQ(r.pixels, c.pixels) << c.level << " " << c.source.left;
    }
}

TEST(TilePyramid, CacheFolderAndName) {
    EXPECT_EQ(PyramidCacheFolder("/x/cache/", "/home/u"), "/x/cache/satwalk/pyramids");
    EXPECT_EQ(PyramidCacheFolder("relative", "/home/u"), "/home/u/.cache/satwalk/pyramids");
    EXPECT_EQ(PyramidCacheFolder(nullptr, "/home/u"), "/home/u/.cache/satwalk/pyramids");
    EXPECT_EQ(PyramidCacheFolder("", ""), "");
    EXPECT_EQ(PyramidCacheName("/maps/a.jpg").size(), 16u + 6u);
    EXPECT_NE(PyramidCacheName("/maps/a.jpg"), PyramidCacheName("/maps/b.jpg"));
}

// A 600 × 300 pyramid of nine tiles of ten bytes each, as written.
struct CacheFile {
    ImageSize image{600, 300};
    SourceStamp source{123456, 1700000000123456789};
    std::vector<std::uint8_t> bytes;
    CacheFile() {
        std::vector<TileEntry> tiles(PyramidTileCount(PyramidLevels(image)));
        std::uint64_t offset = kPyramidHeaderSize + tiles.size() * kTileEntrySize;
        bytes = WritePyramidIndex(image, source, tiles);  // for its size
        std::vector<std::uint8_t> data;
        for (std::size_t i = tiles.size(); i-- > 0;) {  // written out of order
            const std::vector<std::uint8_t> tile(10, static_cast<std::uint8_t>(i));
            tiles[i] = {offset + data.size(), 10, Crc32(tile)};
            data.insert(data.end(), tile.begin(), tile.end());
        }
        bytes = WritePyramidIndex(image, source, tiles);
        bytes.insert(bytes.end(), data.begin(), data.end());
    }
    PyramidCheck Read(const std::vector<std::uint8_t>& file, const SourceStamp& stamp,
                      PyramidIndex& index) const {
        const std::uint64_t size = PyramidIndexSize(file);
        if (size == 0 || size > file.size())
            return PyramidCheck::Damaged;
        return ReadPyramidIndex(std::span(file).first(size), file.size(), stamp, index);
    }
};

TEST(TilePyramid, IndexReadsBackAsWritten) {
    const CacheFile file;
    PyramidIndex index;
    ASSERT_EQ(file.Read(file.bytes, file.source, index), PyramidCheck::Valid);
    EXPECT_EQ(index.levels, PyramidLevels(file.image));
    ASSERT_EQ(index.tiles.size(), 9u);
    const TileEntry& last = index.tiles.back();
    EXPECT_EQ(last.offset, kPyramidHeaderSize + 9 * kTileEntrySize);  // written first
    EXPECT_EQ(last.crc, Crc32(std::span(file.bytes).subspan(last.offset, 10)));
}

TEST(TilePyramid, TamperedOrStaleIndexIsNotUsed) {
    const CacheFile file;
    using Edit = std::function<void(std::vector<std::uint8_t>&)>;
    auto set32 = [](std::size_t at, std::uint32_t v) {
        return [at, v](std::vector<std::uint8_t>& b) {
            for (int i = 0; i < 4; ++i) b[at + i] = static_cast<std::uint8_t>(v >> (8 * i));
        };
    };
    // Entries changed and header and index written anew, checksums right: a
    // tamperer's or a bug's file, caught by the bounds alone.
    auto rewrite = [&file](std::function<void(TileEntry&)> change) {
        return [&file, change](std::vector<std::uint8_t>& b) {
            PyramidIndex index;
            ASSERT_EQ(file.Read(b, file.source, index), PyramidCheck::Valid);
            change(index.tiles[2]);
            const std::vector<std::uint8_t> head =
                WritePyramidIndex(file.image, file.source, index.tiles);
            std::copy(head.begin(), head.end(), b.begin());
        };
    };
    const std::size_t firstEntry = kPyramidHeaderSize;
    const std::tuple<const char*, Edit, PyramidCheck> cases[] = {
        {"magic", [](auto& b) { b[0] = 'X'; }, PyramidCheck::Damaged},
        {"width, checksum kept", set32(16, 601), PyramidCheck::Damaged},
        {"index byte", [&](auto& b) { b[firstEntry + 3] ^= 1; }, PyramidCheck::Damaged},
        {"truncated", [](auto& b) { b.pop_back(); }, PyramidCheck::Damaged},
        {"grown", [](auto& b) { b.push_back(0); }, PyramidCheck::Damaged},
        {"header only", [](auto& b) { b.resize(kPyramidHeaderSize); }, PyramidCheck::Damaged},
        {"empty", [](auto& b) { b.clear(); }, PyramidCheck::Damaged},
        {"tile past the end", rewrite([](TileEntry& t) { t.offset += 1000; }),
         PyramidCheck::Damaged},
        {"tile into the index", rewrite([](TileEntry& t) { t.offset = 8; }), PyramidCheck::Damaged},
        {"tile of no bytes", rewrite([](TileEntry& t) { t.length = 0; }), PyramidCheck::Damaged},
        {"tile longer", rewrite([](TileEntry& t) { t.length += 1; }), PyramidCheck::Damaged},
        {"offset wraps", rewrite([](TileEntry& t) { t.offset = ~std::uint64_t{0} - 2; }),
         PyramidCheck::Damaged},
        {"tile data (left to its CRC)", [](auto& b) { b.back() ^= 1; }, PyramidCheck::Valid},
    };
    for (const auto& [what, edit, expected] : cases) {
        std::vector<std::uint8_t> bytes = file.bytes;
        edit(bytes);
        PyramidIndex index;
        EXPECT_EQ(file.Read(bytes, file.source, index), expected) << what;
    }
    PyramidIndex index;
    SourceStamp touched = file.source;
    touched.mtimeNs += 1;
    EXPECT_EQ(file.Read(file.bytes, touched, index), PyramidCheck::Stale);
    EXPECT_TRUE(index.tiles.empty());
}

// The cache keeps within its budget by dropping the pyramids used longest
// ago; what is being built, strangers and fresh half-builds stay.
TEST(TilePyramid, CacheTrimmedOldestFirst) {
    namespace fs = std::filesystem;
    char templ[] = "/tmp/satwalk-pyramids-XXXXXX";
    ASSERT_NE(::mkdtemp(templ), nullptr);
    const fs::path folder(templ);
    const auto now = fs::file_time_type::clock::now();
    // Name, size, age in hours.
    const std::tuple<const char*, int, int> files[] = {
        {"00000000000000a1.tiles", 400, 50},  // the oldest
        {"00000000000000a2.tiles", 300, 40},
        {"00000000000000a3.tiles", 200, 1},
        {"00000000000000ff.tiles", 900, 99},  // being rebuilt: kept
        {"notes.tiles", 5000, 99},            // not a pyramid's name
        {"00000000000000a4.tiles.part", 100, 30},
        {"00000000000000a5.tiles.part", 100, 2},  // a build may still run
    };
    const auto make = [&] {
        for (const auto& [name, size, hours] : files) {
            std::ofstream(folder / name, std::ios::binary) << std::string(size, 'x');
            fs::last_write_time(folder / name, now - std::chrono::hours(hours));
        }
    };
    // Room asked, budget, the files left.
    const std::tuple<int, int, std::set<std::string>> cases[] = {
        {0, 1000, {"00000000000000a1.tiles", "00000000000000a2.tiles", "00000000000000a3.tiles"}},
        {100, 800, {"00000000000000a2.tiles", "00000000000000a3.tiles"}},
        {300, 700, {"00000000000000a3.tiles"}},
        {900, 800, {}},
    };
    for (const auto& [room, budget, left] : cases) {
        fs::remove_all(folder);
        fs::create_directory(folder);
        make();
        TrimPyramidCache(folder.string(), "00000000000000ff.tiles", room, budget);
        std::set<std::string> pyramids;
        for (const auto& e : fs::directory_iterator(folder)) {
            const std::string name = e.path().filename().string();
            if (name.starts_with("00000000000000a") && name.ends_with(".tiles"))
                pyramids.insert(name);
        }
        EXPECT_EQ(pyramids, left) << room << " " << budget;
        for (const char* stays :
             {"00000000000000ff.tiles", "notes.tiles", "00000000000000a5.tiles.part"})
            EXPECT_TRUE(fs::exists(folder / stays)) << stays;
        EXPECT_FALSE(fs::exists(folder / "00000000000000a4.tiles.part"));
    }
    fs::remove_all(folder);
}

}  // namespace
}  // namespace satwalk::map
