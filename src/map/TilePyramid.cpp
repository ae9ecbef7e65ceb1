#include "TilePyramid.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstring>
#include <filesystem>

namespace satwalk::map {

namespace {

constexpr char kMagic[8] = {'S', 'W', 'T', 'I', 'L', 'E', 'S', '1'};
// Header fields' offsets.
constexpr std::size_t kVersionAt = 8, kTileSideAt = 12, kWidthAt = 16, kHeightAt = 20,
                      kLevelCountAt = 24, kTileCountAt = 28, kSourceSizeAt = 32, kMtimeAt = 40,
                      kIndexCrcAt = 48, kDataLengthAt = 52, kHeaderCrcAt = 60;
// No sound tile is larger: 256 × 256 pixels at three bytes, twice over.
constexpr std::uint32_t kMaxTileBytes = kTileSide * kTileSide * 6;

std::uint32_t Get32(const std::uint8_t* p) {
    return p[0] | p[1] << 8 | p[2] << 16 | std::uint32_t{p[3]} << 24;
}
std::uint64_t Get64(const std::uint8_t* p) {
    return Get32(p) | std::uint64_t{Get32(p + 4)} << 32;
}
void Put32(std::uint8_t* p, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) p[i] = static_cast<std::uint8_t>(v >> (8 * i));
}
void Put64(std::uint8_t* p, std::uint64_t v) {
    Put32(p, static_cast<std::uint32_t>(v));
    Put32(p + 4, static_cast<std::uint32_t>(v >> 32));
}

constexpr std::array<std::uint32_t, 256> MakeCrcTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t c = i;
        for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
        table[i] = c;
    }
    return table;
}
constexpr std::array<std::uint32_t, 256> kCrcTable = MakeCrcTable();

// The header's fields once its magic, version and checksum hold.
struct Header {
    ImageSize image;
    std::uint32_t levelCount = 0, tileCount = 0, indexCrc = 0;
    std::uint64_t dataLength = 0;
    SourceStamp source;
};

std::optional<Header> ReadHeader(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < kPyramidHeaderSize || std::memcmp(bytes.data(), kMagic, 8) != 0)
        return std::nullopt;
    const std::uint8_t* p = bytes.data();
    if (Get32(p + kHeaderCrcAt) != Crc32(bytes.first(kHeaderCrcAt)) ||
        Get32(p + kVersionAt) != kPyramidVersion || Get32(p + kTileSideAt) != kTileSide)
        return std::nullopt;
    const std::uint32_t width = Get32(p + kWidthAt), height = Get32(p + kHeightAt);
    if (width == 0 || height == 0 || width > kMaxPyramidSide || height > kMaxPyramidSide)
        return std::nullopt;
    Header h;
    h.image = {static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)};
    h.levelCount = Get32(p + kLevelCountAt);
    h.tileCount = Get32(p + kTileCountAt);
    h.indexCrc = Get32(p + kIndexCrcAt);
    h.dataLength = Get64(p + kDataLengthAt);
    h.source = {Get64(p + kSourceSizeAt), static_cast<std::int64_t>(Get64(p + kMtimeAt))};
    const std::vector<PyramidLevel> levels = PyramidLevels(h.image);
    if (h.levelCount != levels.size() || h.tileCount != PyramidTileCount(levels))
        return std::nullopt;
    return h;
}

}  // namespace

std::vector<PyramidLevel> PyramidLevels(ImageSize image) {
    std::vector<PyramidLevel> levels;
    if (image.width <= 0 || image.height <= 0 || image.width > kMaxPyramidSide ||
        image.height > kMaxPyramidSide)
        return levels;
    int w = image.width, h = image.height;
    std::uint32_t first = 0;
    for (;;) {
        const int columns = (w + kTileSide - 1) / kTileSide, rows = (h + kTileSide - 1) / kTileSide;
        levels.push_back({w, h, columns, rows, first});
        first += static_cast<std::uint32_t>(columns) * static_cast<std::uint32_t>(rows);
        if (std::max(w, h) <= kTileSide)
            return levels;
        w = (w + 1) / 2;
        h = (h + 1) / 2;
    }
}

std::uint32_t PyramidTileCount(const std::vector<PyramidLevel>& levels) {
    if (levels.empty())
        return 0;
    const PyramidLevel& last = levels.back();
    return last.firstTile + static_cast<std::uint32_t>(last.columns * last.rows);
}

int ChooseLevel(int levelCount, double screenPerImage) {
    int level = 0;
    double next = 0.5;  // level k + 1 has 2^-(k+1) of the image's pixels
    while (level + 1 < levelCount && next >= screenPerImage) {
        ++level;
        next *= 0.5;
    }
    return level;
}

TileRange TilesInView(const std::vector<PyramidLevel>& levels, int level, const RectF& source) {
    TileRange range;
    if (level < 0 || level >= static_cast<int>(levels.size()))
        return range;
    const PyramidLevel& base = levels.front();
    const PyramidLevel& at = levels[static_cast<std::size_t>(level)];
    const double fx = static_cast<double>(at.width) / base.width;
    const double fy = static_cast<double>(at.height) / base.height;
    auto edge = [](double v, int limit, bool up) {
        if (!std::isfinite(v))
            return v > 0 ? limit : 0;
        const double r = up ? std::ceil(v) : std::floor(v);
        return static_cast<int>(std::clamp(r, 0.0, static_cast<double>(limit)));
    };
    screens::Rect& px = range.pixels;
    px = {edge(source.left * fx, at.width, false), edge(source.top * fy, at.height, false),
          edge(source.right * fx, at.width, true), edge(source.bottom * fy, at.height, true)};
    if (px.Width() <= 0 || px.Height() <= 0) {
        px = {};
        return range;
    }
    range.left = px.left / kTileSide;
    range.top = px.top / kTileSide;
    range.right = (px.right - 1) / kTileSide + 1;
    range.bottom = (px.bottom - 1) / kTileSide + 1;
    return range;
}

std::optional<SourceStamp> StampOf(const std::string& path) {
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode))
        return std::nullopt;
    return SourceStamp{static_cast<std::uint64_t>(st.st_size),
                       std::int64_t{st.st_mtim.tv_sec} * 1'000'000'000 + st.st_mtim.tv_nsec};
}

std::string PyramidCacheFolder(const char* xdgCacheHome, const char* home) {
    std::string base;
    if (xdgCacheHome != nullptr && xdgCacheHome[0] == '/')
        base = xdgCacheHome;
    else if (home != nullptr && home[0] != '\0')
        base = std::string(home) + "/.cache";
    else
        return {};
    while (base.size() > 1 && base.back() == '/') base.pop_back();
    return base + "/satwalk/pyramids";
}

std::string PyramidCacheName(std::string_view absolutePath) {
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (const char c : absolutePath) {
        hash ^= static_cast<std::uint8_t>(c);
        hash *= 0x100000001B3u;
    }
    static constexpr char kHex[] = "0123456789abcdef";
    std::string name(16, '0');
    for (int i = 15; i >= 0; --i, hash >>= 4) name[static_cast<std::size_t>(i)] = kHex[hash & 15];
    return name + ".tiles";
}

namespace {

bool IsPyramidName(std::string_view name) {
    constexpr std::string_view kSuffix = ".tiles";
    if (name.size() != 16 + kSuffix.size() || name.substr(16) != kSuffix)
        return false;
    return std::all_of(name.begin(), name.begin() + 16,
                       [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

}  // namespace

int TrimPyramidCache(const std::string& folder, std::string_view keep, std::uint64_t room,
                     std::uint64_t budget) {
    namespace fs = std::filesystem;
    struct Entry {
        fs::path path;
        fs::file_time_type time;
        std::uint64_t size;
    };
    std::vector<Entry> pyramids;
    std::uint64_t total = room;
    int removed = 0;
    std::error_code ec;
    const auto dayAgo = fs::file_time_type::clock::now() - std::chrono::hours(24);
    // A bounded walk: a folder of millions of strangers is not ours to sort.
    constexpr int kMaxEntries = 100000;
    int seen = 0;
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end && seen < kMaxEntries;
         it.increment(ec), ++seen) {
        const std::string name = it->path().filename().string();
        if (name == keep || !it->is_regular_file(ec))
            continue;
        const fs::file_time_type time = it->last_write_time(ec);
        if (ec)
            continue;
        const bool part = name.size() > 5 && name.ends_with(".part") &&
                          IsPyramidName(std::string_view(name).substr(0, name.size() - 5));
        if (part && time < dayAgo) {
            removed += fs::remove(it->path(), ec) ? 1 : 0;
        } else if (IsPyramidName(name)) {
            const std::uint64_t size = it->file_size(ec);
            if (!ec) {
                pyramids.push_back({it->path(), time, size});
                total += size;
            }
        }
        ec.clear();
    }
    std::sort(pyramids.begin(), pyramids.end(),
              [](const Entry& a, const Entry& b) { return a.time < b.time; });
    for (const Entry& e : pyramids) {
        if (total <= budget)
            break;
        if (fs::remove(e.path, ec)) {
            total -= e.size;
            ++removed;
        }
    }
    return removed;
}

void TouchPyramid(const std::string& cacheFile) {
    std::error_code ec;
    std::filesystem::last_write_time(cacheFile, std::filesystem::file_time_type::clock::now(), ec);
}

std::uint64_t PyramidDiskEstimate(ImageSize image) {
    const std::vector<PyramidLevel> levels = PyramidLevels(image);
    std::uint64_t bytes =
        kPyramidHeaderSize + std::uint64_t{PyramidTileCount(levels)} * kTileEntrySize;
    // A JPEG tile of a scan at the builder's quality stays under a byte a
    // pixel; white noise comes close.
    for (const PyramidLevel& l : levels) bytes += std::uint64_t(l.width) * std::uint64_t(l.height);
    return bytes;
}

std::uint32_t Crc32(std::span<const std::uint8_t> bytes, std::uint32_t crc) {
    crc = ~crc;
    for (const std::uint8_t b : bytes) crc = kCrcTable[(crc ^ b) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

std::uint64_t PyramidIndexSize(std::span<const std::uint8_t> header) {
    const std::optional<Header> h = ReadHeader(header);
    return h ? kPyramidHeaderSize + std::uint64_t{h->tileCount} * kTileEntrySize : 0;
}

PyramidCheck ReadPyramidIndex(std::span<const std::uint8_t> bytes, std::uint64_t fileSize,
                              const SourceStamp& source, PyramidIndex& index) {
    const std::optional<Header> h = ReadHeader(bytes);
    if (!h)
        return PyramidCheck::Damaged;
    const std::uint64_t dataStart =
        kPyramidHeaderSize + std::uint64_t{h->tileCount} * kTileEntrySize;
    if (bytes.size() != dataStart || fileSize < dataStart ||
        fileSize - dataStart != h->dataLength ||
        Crc32(bytes.subspan(kPyramidHeaderSize)) != h->indexCrc)
        return PyramidCheck::Damaged;
    std::vector<TileEntry> tiles(h->tileCount);
    std::uint64_t total = 0;
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        const std::uint8_t* p = bytes.data() + kPyramidHeaderSize + i * kTileEntrySize;
        TileEntry& t = tiles[i];
        t = {Get64(p), Get32(p + 8), Get32(p + 12)};
        // Each of a sane length inside the data; together exactly the data
        // (the builder writes them in the order it finishes them).
        if (t.offset < dataStart || t.offset > fileSize || t.length == 0 ||
            t.length > kMaxTileBytes || t.length > fileSize - t.offset)
            return PyramidCheck::Damaged;
        total += t.length;
    }
    if (total != h->dataLength)
        return PyramidCheck::Damaged;
    if (!(h->source == source))
        return PyramidCheck::Stale;
    index.image = h->image;
    index.source = h->source;
    index.levels = PyramidLevels(h->image);
    index.tiles = std::move(tiles);
    return PyramidCheck::Valid;
}

std::vector<std::uint8_t> WritePyramidIndex(ImageSize image, const SourceStamp& source,
                                            const std::vector<TileEntry>& tiles) {
    const std::vector<PyramidLevel> levels = PyramidLevels(image);
    std::vector<std::uint8_t> out(kPyramidHeaderSize + tiles.size() * kTileEntrySize);
    std::uint8_t* p = out.data();
    std::memcpy(p, kMagic, 8);
    Put32(p + kVersionAt, kPyramidVersion);
    Put32(p + kTileSideAt, kTileSide);
    Put32(p + kWidthAt, static_cast<std::uint32_t>(image.width));
    Put32(p + kHeightAt, static_cast<std::uint32_t>(image.height));
    Put32(p + kLevelCountAt, static_cast<std::uint32_t>(levels.size()));
    Put32(p + kTileCountAt, static_cast<std::uint32_t>(tiles.size()));
    Put64(p + kSourceSizeAt, source.size);
    Put64(p + kMtimeAt, static_cast<std::uint64_t>(source.mtimeNs));
    std::uint64_t dataLength = 0;
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        std::uint8_t* e = p + kPyramidHeaderSize + i * kTileEntrySize;
        Put64(e, tiles[i].offset);
        Put32(e + 8, tiles[i].length);
        Put32(e + 12, tiles[i].crc);
        dataLength += tiles[i].length;
    }
    Put64(p + kDataLengthAt, dataLength);
    Put32(p + kIndexCrcAt, Crc32(std::span<const std::uint8_t>(out).subspan(kPyramidHeaderSize)));
    Put32(p + kHeaderCrcAt, Crc32(std::span<const std::uint8_t>(out).first(kHeaderCrcAt)));
    return out;
}

}  // namespace satwalk::map
