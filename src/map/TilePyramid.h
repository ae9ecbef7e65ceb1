// A map image too large to decode whole, kept as a pyramid of tiles in a
// cache file: the levels' sizes, which level a zoom draws from, which tiles
// a view needs, where the cache lives, and the cache file's header and index
// (written by the builder, read back with every field checked). Plain values
// and POSIX; decoding and encoding the tiles is the Qt side's
// (PyramidBuilder.h, TiledImage.h).
//
// The cache file, all numbers little-endian:
//   header (64 bytes): magic "SWTILES1", format version, tile side, image
//     width and height, level count, tile count, the source file's size and
//     modification time (ns), the index's CRC-32, the data's total length,
//     the header's own CRC-32 over the bytes before it;
//   index: per tile, level by level and row by row, its offset in the file
//     (u64), its length (u32) and the CRC-32 of its bytes (u32);
//   data: one JPEG per tile, back to back in the order they were made,
//     ending the file.
// A file whose header, index or length disagree, or that describes another
// version of the source, is not used; a tile whose bytes fail their CRC is
// not drawn.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ImageViewport.h"
#include "MapGeometry.h"

namespace satwalk::map {

inline constexpr int kTileSide = 256;
// The largest side a pyramid is built for: the builder's bands then take
// about 270 MB, and the index 6 MB.
inline constexpr int kMaxPyramidSide = 1 << 17;
inline constexpr std::size_t kPyramidHeaderSize = 64;
inline constexpr std::size_t kTileEntrySize = 16;
inline constexpr std::uint32_t kPyramidVersion = 1;

struct PyramidLevel {
    int width = 0, height = 0;
    int columns = 0, rows = 0;
    std::uint32_t firstTile = 0;  // index of its top-left tile in the file
    friend bool operator==(const PyramidLevel&, const PyramidLevel&) = default;
};

// Level 0 is the image, each further level half the one before (rounded
// up), the last the first whose longer side fits one tile. Empty for an
// empty image or one past kMaxPyramidSide.
std::vector<PyramidLevel> PyramidLevels(ImageSize image);
std::uint32_t PyramidTileCount(const std::vector<PyramidLevel>& levels);

// The coarsest level that still has at least one pixel for each screen
// pixel at `screenPerImage` screen pixels per level-0 pixel, so drawing
// never enlarges a reduced level.
int ChooseLevel(int levelCount, double screenPerImage);

// The tiles of `level` under `source` (level-0 pixels): columns
// [left, right) and rows [top, bottom), and the level's pixels they must
// cover, [pixels.left, pixels.right) × [pixels.top, pixels.bottom).
struct TileRange {
    int left = 0, top = 0, right = 0, bottom = 0;
    screens::Rect pixels;
    bool Empty() const { return right <= left || bottom <= top; }
};
TileRange TilesInView(const std::vector<PyramidLevel>& levels, int level, const RectF& source);

// ----- the cache -----

// What the pyramid was built from; a change of either rebuilds it.
struct SourceStamp {
    std::uint64_t size = 0;
    std::int64_t mtimeNs = 0;
    friend bool operator==(const SourceStamp&, const SourceStamp&) = default;
};
// The stamp of the file at `path`; nullopt when it is no regular file.
std::optional<SourceStamp> StampOf(const std::string& path);

// The folder pyramids go in: $XDG_CACHE_HOME/satwalk/pyramids, or
// $HOME/.cache/satwalk/pyramids when it is unset or not absolute; "" when
// neither is known.
std::string PyramidCacheFolder(const char* xdgCacheHome, const char* home);
// The cache file's name for the source's absolute path: a 64-bit FNV-1a
// hash in hex, ".tiles".
std::string PyramidCacheName(std::string_view absolutePath);

// What the pyramids of all the maps a user has opened may take together;
// past it, the ones used longest ago make way for a new build.
inline constexpr std::uint64_t kPyramidCacheBudget = std::uint64_t{8} << 30;

// Makes room in the cache folder for a pyramid of `room` bytes: removes
// pyramids ("<16 hex digits>.tiles"), oldest modification first (opening a
// pyramid renews its time), until the rest and `room` fit in `budget`, and
// the ".part" files of builds that ended without finishing once they are a
// day old. `keep` (a name in the folder) and files of other names are never
// touched. Returns the number of files removed.
int TrimPyramidCache(const std::string& folder, std::string_view keep, std::uint64_t room,
                     std::uint64_t budget = kPyramidCacheBudget);
// Marks the pyramid as just used, for the trimming above.
void TouchPyramid(const std::string& cacheFile);

// Bytes the pyramid of `image` may take on disk, generously (a noisy scan
// compresses worst); a build starts only with this much free.
std::uint64_t PyramidDiskEstimate(ImageSize image);

std::uint32_t Crc32(std::span<const std::uint8_t> bytes, std::uint32_t crc = 0);

struct TileEntry {
    std::uint64_t offset = 0;
    std::uint32_t length = 0;
    std::uint32_t crc = 0;
};

struct PyramidIndex {
    ImageSize image;
    SourceStamp source;
    std::vector<PyramidLevel> levels;
    std::vector<TileEntry> tiles;
};

enum class PyramidCheck {
    Valid,
    Damaged,  // not a pyramid, truncated, checksums or offsets wrong
    Stale,    // a sound pyramid of another version of the source
};

// The bytes of header and index the file starts with, from its first
// kPyramidHeaderSize bytes; 0 when they are no header of this format.
std::uint64_t PyramidIndexSize(std::span<const std::uint8_t> header);
// Reads header and index (`bytes`, the first PyramidIndexSize bytes of a
// file `fileSize` long) into `index`, checking them against each other, the
// file's length and `source`.
PyramidCheck ReadPyramidIndex(std::span<const std::uint8_t> bytes, std::uint64_t fileSize,
                              const SourceStamp& source, PyramidIndex& index);
// Header and index for `tiles`, which follow them in the file in order.
std::vector<std::uint8_t> WritePyramidIndex(ImageSize image, const SourceStamp& source,
                                            const std::vector<TileEntry>& tiles);

}  // namespace satwalk::map
