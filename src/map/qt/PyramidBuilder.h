// Building the tile pyramid of an image too large to decode whole
// (TilePyramid.h has the file's layout).
//
// GDAL reads the source a band of 256 rows at a time (its JPEG, PNG, BMP and
// GIF drivers decode top to bottom without holding the image); each band is
// cut into level-0 tiles and halved into the band of the next level, which
// is cut once full and halved in turn, so memory stays at two bands of the
// widest level whatever the height. Tiles are JPEG through libjpeg, each
// band's on two threads. The file is written as NAME.part and renamed only
// once complete, so a cancelled, failed or interrupted build leaves nothing
// that could be taken for a pyramid. Runs on any thread; one build at a time
// per cache file.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "MapGeometry.h"

namespace satwalk::map {

// Shared between the building thread and the one watching it.
struct PyramidProgress {
    std::atomic<bool> cancel{false};      // set to stop the build
    std::atomic<std::uint64_t> done{0};   // tiles written
    std::atomic<std::uint64_t> total{0};  // tiles in all, once known
};

enum class PyramidBuild {
    Built,
    Cancelled,
    CannotOpen,   // missing or unreadable
    NotAnImage,   // none of the map formats
    Damaged,      // the decoder failed part way
    TooLarge,     // past kMaxPyramidSide, or the decoder's own memory limit
    NoDiskSpace,  // the cache's disk lacks PyramidDiskEstimate, or filled up
    CannotWrite,  // the cache folder or file cannot be written
    NoGdal,       // GDAL, which reads the source, cannot be loaded
};

// The JPEG quality of the tiles.
inline constexpr int kTileQuality = 85;

// Builds the pyramid of `source` into `cacheFile` (its folder must exist),
// replacing any file there only on success.
PyramidBuild BuildPyramid(const std::string& source, const std::string& cacheFile,
                          PyramidProgress& progress);

}  // namespace satwalk::map
