// Any bytes as a tile pyramid's cache file: the index reader answers without
// a crash or an allocation past the header's plan, and an index it takes is
// in bounds, accounts for every byte after it, and writes back byte for
// byte; the tiles in view of its levels stay inside them.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "TilePyramid.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace satwalk::map;
    const std::span<const std::uint8_t> file(data, size);
    const std::uint64_t indexSize = PyramidIndexSize(file);
    if (indexSize == 0 || indexSize > size)
        return 0;
    // The stamp the header names, so that sound files get past it.
    SourceStamp stamp;
    std::memcpy(&stamp.size, data + 32, 8);
    std::memcpy(&stamp.mtimeNs, data + 40, 8);
    PyramidIndex index;
    if (ReadPyramidIndex(file.first(indexSize), size, stamp, index) != PyramidCheck::Valid)
        return 0;
    std::uint64_t total = 0;
    for (const TileEntry& t : index.tiles) {
        if (t.offset < indexSize || t.offset + t.length > size)
            __builtin_trap();
        total += t.length;
    }
    if (total != size - indexSize)
        __builtin_trap();
    const std::vector<std::uint8_t> again = WritePyramidIndex(index.image, stamp, index.tiles);
    if (again.size() != indexSize || std::memcmp(again.data(), data, again.size()) != 0)
        __builtin_trap();
    const double w = index.image.width, h = index.image.height;
    for (int level = 0; level < static_cast<int>(index.levels.size()); ++level) {
        const PyramidLevel& l = index.levels[static_cast<std::size_t>(level)];
        for (const RectF& r : {RectF{0, 0, w, h}, RectF{w * 0.3, h * 0.6, w * 0.31, h}}) {
            const TileRange range = TilesInView(index.levels, level, r);
            if (range.left < 0 || range.top < 0 || range.right > l.columns || range.bottom > l.rows)
                __builtin_trap();
        }
    }
    return 0;
}
