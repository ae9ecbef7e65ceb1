// A map image in memory, and loading and painting it.
//
// Loading goes through QImageReader and refuses, before any large
// allocation, an image whose declared size would decode past a fixed budget,
// so a decompression bomb or a giant scan never exhausts the machine (the
// map's platform then opens it from a tile pyramid, TiledImage.h, built a
// band at a time). The image is kept as
// 32-bit RGB at full resolution, with halved copies down to a few hundred
// pixels, so that painting scales only the visible part, from the copy
// nearest the zoom. Load on any thread; paint on the painting thread.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <cstdint>
#include <vector>

#include "ImageViewport.h"
#include "MapGeometry.h"
#include "MapLoading.h"

class QPainter;

namespace satwalk::map {

// Bytes the full-resolution image may take decoded (4 bytes a pixel): a
// 10,000 × 10,000 scan fits, 60,000 × 60,000 does not.
inline constexpr std::int64_t kMaxImageBytes = std::int64_t{512} << 20;
// Halved copies stop once the longer side is at most this.
inline constexpr int kSmallestLevelSide = 512;

class MapImage {
  public:
    bool IsNull() const { return levels_.empty(); }
    ImageSize Size() const;
    // Level 0 is the image itself, each further level half the one before
    // (rounded up), all Format_RGB32.
    int LevelCount() const { return static_cast<int>(levels_.size()); }
    const QImage& Level(int level) const { return levels_[static_cast<std::size_t>(level)]; }
    // The smallest level still at least `screenPerImage` screen pixels per
    // image pixel of level 0, so painting never enlarges a reduced copy.
    int LevelFor(double screenPerImage) const;
    std::int64_t ByteCount() const;

    // Takes a decoded image (any format; transparency is laid over white)
    // and builds the halved levels.
    static MapImage FromImage(QImage image);

  private:
    std::vector<QImage> levels_;
};

// One row of the 2 × 2 box average of RGB32 pixels: rows `a` and `b`, each
// `width` long, into (width + 1) / 2 pixels at `out`; an odd last column is
// averaged with itself (pass the same row twice for an odd last row).
void HalveRow(const std::uint32_t* a, const std::uint32_t* b, int width, std::uint32_t* out);

// Reads the file into `image`. On failure `image` is left as it was: the
// previous map stays loaded.
ImageLoadError LoadMapImage(const QString& path, MapImage& image);
// The same from bytes in memory.
ImageLoadError LoadMapImageData(const QByteArray& data, MapImage& image);

// Paints the visible part into `painter` (unscaled painter coordinates),
// from the level nearest the zoom; nothing for an empty part or image.
void DrawMapImage(QPainter& painter, const MapImage& image, const VisiblePart& part);
// `source` (pixels of a level) scaled into `destination`, nearest pixel.
void DrawLevelPixels(QPainter& painter, const screens::Rect& destination, const QImage& level,
                     const QRectF& source);

}  // namespace satwalk::map
