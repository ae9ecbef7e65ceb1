// A map image drawn from its tile pyramid in the cache (TilePyramid.h):
// only the index is read on opening; tiles are read, checked against their
// CRC and decoded as a view needs them, and the most recent ones kept
// decoded. A tile that fails its check is left blank and the cache file is
// deleted, so the next opening builds the pyramid anew. The window's thread
// only.
#pragma once

#include <QImage>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <unordered_map>

#include "ImageViewport.h"
#include "TilePyramid.h"

class QFile;
class QPainter;

namespace satwalk::map {

// Decoded tiles kept: a view of 480 × 640 at most needs 30.
inline constexpr std::size_t kDecodedTileCount = 96;

class TiledImage {
  public:
    TiledImage();
    ~TiledImage();
    TiledImage(TiledImage&&) noexcept;
    TiledImage& operator=(TiledImage&&) noexcept;

    // Opens the pyramid at `cacheFile` if it is sound and was built from a
    // source with `source`'s stamp; on anything else this stays as it was.
    PyramidCheck Open(const std::string& cacheFile, const SourceStamp& source);
    bool IsNull() const { return index_.levels.empty(); }
    ImageSize Size() const { return index_.image; }
    const std::vector<PyramidLevel>& Levels() const { return index_.levels; }
    // True once a tile failed its check since opening.
    bool Damaged() const { return damaged_; }

    // The tile, decoded as Format_RGB32; null when out of range, unreadable
    // or damaged.
    QImage Tile(int level, int column, int row);

  private:
    std::string path_;
    std::unique_ptr<QFile> file_;
    PyramidIndex index_;
    bool damaged_ = false;
    // Most recently used first.
    std::list<std::pair<std::uint32_t, QImage>> decoded_;
    std::unordered_map<std::uint32_t, std::list<std::pair<std::uint32_t, QImage>>::iterator> where_;
};

// Paints the visible part from the level that fits the zoom: its tiles in
// view laid side by side, then scaled into the destination as DrawMapImage
// does.
void DrawTiledImage(QPainter& painter, TiledImage& image, const VisiblePart& part);

}  // namespace satwalk::map
