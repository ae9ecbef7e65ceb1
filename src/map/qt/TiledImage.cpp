#include "TiledImage.h"

#include <QByteArray>
#include <QFile>
#include <QPainter>
#include <algorithm>
#include <cstring>

#include "MapImage.h"

namespace satwalk::map {

TiledImage::TiledImage() = default;
TiledImage::~TiledImage() = default;
TiledImage::TiledImage(TiledImage&&) noexcept = default;
TiledImage& TiledImage::operator=(TiledImage&&) noexcept = default;

PyramidCheck TiledImage::Open(const std::string& cacheFile, const SourceStamp& source) {
    auto file = std::make_unique<QFile>(QString::fromStdString(cacheFile));
    if (!file->open(QIODevice::ReadOnly))
        return PyramidCheck::Damaged;
    const std::uint64_t fileSize = static_cast<std::uint64_t>(file->size());
    const QByteArray header = file->read(kPyramidHeaderSize);
    const std::uint64_t indexSize = PyramidIndexSize(
        {reinterpret_cast<const std::uint8_t*>(header.constData()), std::size_t(header.size())});
    if (indexSize == 0 || indexSize > fileSize)
        return PyramidCheck::Damaged;
    file->seek(0);
    const QByteArray bytes = file->read(static_cast<qint64>(indexSize));
    PyramidIndex index;
    const PyramidCheck check = ReadPyramidIndex(
        {reinterpret_cast<const std::uint8_t*>(bytes.constData()), std::size_t(bytes.size())},
        fileSize, source, index);
    if (check != PyramidCheck::Valid)
        return check;
    *this = TiledImage{};
    path_ = cacheFile;
    file_ = std::move(file);
    index_ = std::move(index);
    return check;
}

QImage TiledImage::Tile(int level, int column, int row) {
    if (IsNull() || level < 0 || level >= static_cast<int>(index_.levels.size()))
        return {};
    const PyramidLevel& l = index_.levels[static_cast<std::size_t>(level)];
    if (column < 0 || column >= l.columns || row < 0 || row >= l.rows)
        return {};
    const std::uint32_t i = l.firstTile + static_cast<std::uint32_t>(row * l.columns + column);
    if (const auto found = where_.find(i); found != where_.end()) {
        decoded_.splice(decoded_.begin(), decoded_, found->second);
        return found->second->second;
    }
    const TileEntry& e = index_.tiles[i];
    QImage tile;
    QByteArray bytes;
    if (file_->seek(static_cast<qint64>(e.offset)))
        bytes = file_->read(e.length);
    const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.constData());
    const int width = std::min(kTileSide, l.width - column * kTileSide);
    const int height = std::min(kTileSide, l.height - row * kTileSide);
    if (bytes.size() == e.length && Crc32({data, e.length}) == e.crc)
        tile.loadFromData(bytes, "JPEG");
    if (tile.width() != width || tile.height() != height) {
        // Written by someone else, or the disk changed under us: never
        // trusted again.
        tile = {};
        if (!damaged_)
            QFile::remove(QString::fromStdString(path_));
        damaged_ = true;
        return tile;
    }
    if (tile.format() != QImage::Format_RGB32)
        tile.convertTo(QImage::Format_RGB32);
    decoded_.emplace_front(i, tile);
    where_[i] = decoded_.begin();
    if (decoded_.size() > kDecodedTileCount) {
        where_.erase(decoded_.back().first);
        decoded_.pop_back();
    }
    return tile;
}

void DrawTiledImage(QPainter& painter, TiledImage& image, const VisiblePart& part) {
    if (part.empty || image.IsNull())
        return;
    const screens::Rect& d = part.destination;
    const double screenPerImage =
        std::max(d.Width() / part.source.Width(), d.Height() / part.source.Height());
    const std::vector<PyramidLevel>& levels = image.Levels();
    const int level = ChooseLevel(static_cast<int>(levels.size()), screenPerImage);
    const TileRange range = TilesInView(levels, level, part.source);
    if (range.Empty())
        return;
    const screens::Rect& px = range.pixels;
    // The tiles in view side by side, copied row by row: no seams, and the
    // one scaling below is today's.
    QImage composite(px.Width(), px.Height(), QImage::Format_RGB32);
    if (composite.isNull())
        return;
    composite.fill(Qt::white);
    for (int r = range.top; r < range.bottom; ++r) {
        for (int c = range.left; c < range.right; ++c) {
            const QImage tile = image.Tile(level, c, r);
            if (tile.isNull())
                continue;
            const int x0 = std::max(px.left, c * kTileSide),
                      x1 = std::min(px.right, c * kTileSide + tile.width());
            const int y0 = std::max(px.top, r * kTileSide),
                      y1 = std::min(px.bottom, r * kTileSide + tile.height());
            for (int y = y0; y < y1; ++y) {
                std::memcpy(
                    composite.scanLine(y - px.top) + std::ptrdiff_t{x0 - px.left} * 4,
                    tile.constScanLine(y - r * kTileSide) + std::ptrdiff_t{x0 - c * kTileSide} * 4,
                    static_cast<std::size_t>(x1 - x0) * 4);
            }
        }
    }
    const PyramidLevel& at = levels[static_cast<std::size_t>(level)];
    const double fx = static_cast<double>(at.width) / levels.front().width;
    const double fy = static_cast<double>(at.height) / levels.front().height;
    DrawLevelPixels(painter, d, composite,
                    QRectF(part.source.left * fx - px.left, part.source.top * fy - px.top,
                           part.source.Width() * fx, part.source.Height() * fy));
}

}  // namespace satwalk::map
