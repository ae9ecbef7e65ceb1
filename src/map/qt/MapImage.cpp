#include "MapImage.h"

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

namespace satwalk::map {

namespace {

bool IsMapFormat(const QByteArray& format) {
    return format == "bmp" || format == "jpeg" || format == "jpg" || format == "gif" ||
           format == "png" || format == "tiff";  // TIFF for GeoTIFF maps
}

bool WithinBudget(std::int64_t width, std::int64_t height) {
    return width > 0 && height > 0 && width * height * 4 <= kMaxImageBytes;
}

// Premultiplied pixels laid over white: each channel gains what the pixel
// lets through. Done in place, so a large transparent PNG needs no copy.
void OverWhite(QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const std::uint32_t p = row[x];
            const std::uint32_t through = 255 - (p >> 24);
            const std::uint32_t r = ((p >> 16) & 0xFF) + through;
            const std::uint32_t g = ((p >> 8) & 0xFF) + through;
            const std::uint32_t b = (p & 0xFF) + through;
            row[x] = 0xFF000000u | (r << 16) | (g << 8) | b;
        }
    }
    image.reinterpretAsFormat(QImage::Format_RGB32);
}

// Any decoded image as opaque Format_RGB32; null when memory ran out.
QImage ToRgb32(QImage image) {
    if (image.format() == QImage::Format_RGB32)
        return image;
    if (image.hasAlphaChannel()) {
        image.convertTo(QImage::Format_ARGB32_Premultiplied);
        if (image.format() != QImage::Format_ARGB32_Premultiplied || image.isNull())
            return {};
        OverWhite(image);
        return image;
    }
    image.convertTo(QImage::Format_RGB32);
    return image.format() == QImage::Format_RGB32 ? image : QImage();
}

QImage Halve(const QImage& src) {
    const int w = (src.width() + 1) / 2, h = (src.height() + 1) / 2;
    QImage dst(w, h, QImage::Format_RGB32);
    if (dst.isNull())
        return dst;
    const int lastY = src.height() - 1;
    for (int y = 0; y < h; ++y) {
        HalveRow(
            reinterpret_cast<const std::uint32_t*>(src.constScanLine(2 * y)),
            reinterpret_cast<const std::uint32_t*>(src.constScanLine(std::min(2 * y + 1, lastY))),
            src.width(), reinterpret_cast<std::uint32_t*>(dst.scanLine(y)));
    }
    return dst;
}

std::uint32_t Le32(const uchar* p) {
    return p[0] | p[1] << 8 | p[2] << 16 | std::uint32_t{p[3]} << 24;
}
std::uint16_t Le16(const uchar* p) {
    return static_cast<std::uint16_t>(p[0] | p[1] << 8);
}

// What the decoders let through, checked on the file's bytes: a JPEG cut
// short decodes with its missing rows grey and an uncompressed BMP cut short
// with them black, both without an error; a map with a grey hole is a
// damaged file here. A BMP's declared size is read here as well, since its
// decoder refuses an absurd one as damaged rather than as too large.
ImageLoadError CheckBytes(const uchar* bytes, qint64 size, const QByteArray& format) {
    if (format == "jpeg" || format == "jpg") {
        // Scanning back from the end, the end-of-image marker must come
        // before any start of scan: scan data never hold FF D9 or FF DA.
        for (qint64 i = size - 2; i >= 0; --i) {
            if (bytes[i] != 0xFF)
                continue;
            if (bytes[i + 1] == 0xD9)
                return ImageLoadError::None;
            if (bytes[i + 1] == 0xDA)
                break;
        }
        return ImageLoadError::Damaged;
    }
    if (format == "bmp" && size >= 30) {
        const std::uint32_t dataOffset = Le32(bytes + 10), headerSize = Le32(bytes + 14);
        std::int64_t width = 0, height = 0, bits = 0, compression = 0;
        if (headerSize == 12) {
            width = Le16(bytes + 18);
            height = Le16(bytes + 20);
            bits = Le16(bytes + 24);
        } else if (headerSize >= 40 && size >= 34) {
            width = static_cast<std::int32_t>(Le32(bytes + 18));
            height = static_cast<std::int32_t>(Le32(bytes + 22));
            bits = Le16(bytes + 28);
            compression = Le32(bytes + 30);
        }
        height = height < 0 ? -height : height;
        if (width > 0 && height > 0 && !WithinBudget(width, height))
            return ImageLoadError::TooLarge;
        if (compression == 0 || compression == 3 || compression == 6) {
            const std::int64_t stride = (width * bits + 31) / 32 * 4;
            if (std::int64_t{dataOffset} + stride * height > size)
                return ImageLoadError::Damaged;
        }
    }
    return ImageLoadError::None;
}

ImageLoadError FromReaderError(QImageReader::ImageReaderError error) {
    switch (error) {
        case QImageReader::FileNotFoundError:
        case QImageReader::DeviceError:
            return ImageLoadError::CannotOpen;
        case QImageReader::UnsupportedFormatError:
            return ImageLoadError::NotAnImage;
        default:
            return ImageLoadError::Damaged;
    }
}

}  // namespace

void HalveRow(const std::uint32_t* a, const std::uint32_t* b, int width, std::uint32_t* out) {
    // Red and blue (green and alpha) sum side by side in one word with room
    // to spare.
    const int lastX = width - 1;
    for (int x = 0; x < (width + 1) / 2; ++x) {
        const int x0 = 2 * x, x1 = std::min(2 * x + 1, lastX);
        const std::uint32_t p[4] = {a[x0], a[x1], b[x0], b[x1]};
        std::uint32_t rb = 0x00020002u, ga = 0x00020002u;
        for (std::uint32_t q : p) {
            rb += q & 0x00FF00FFu;
            ga += (q >> 8) & 0x00FF00FFu;
        }
        out[x] = ((rb >> 2) & 0x00FF00FFu) | (((ga >> 2) & 0x00FF00FFu) << 8);
    }
}

ImageSize MapImage::Size() const {
    if (levels_.empty())
        return {};
    return {levels_.front().width(), levels_.front().height()};
}

int MapImage::LevelFor(double screenPerImage) const {
    if (levels_.empty())
        return 0;
    int level = 0;
    // Level k shows 2^-k of the image's pixels; take the last one that still
    // has a pixel for every screen pixel.
    double levelScale = 0.5;
    while (level + 1 < LevelCount() && levelScale >= screenPerImage) {
        ++level;
        levelScale *= 0.5;
    }
    return level;
}

std::int64_t MapImage::ByteCount() const {
    std::int64_t bytes = 0;
    for (const QImage& level : levels_) bytes += level.sizeInBytes();
    return bytes;
}

MapImage MapImage::FromImage(QImage image) {
    MapImage map;
    QImage base = ToRgb32(std::move(image));
    if (base.isNull())
        return map;
    map.levels_.push_back(std::move(base));
    while (std::max(map.levels_.back().width(), map.levels_.back().height()) > kSmallestLevelSide) {
        QImage half = Halve(map.levels_.back());
        if (half.isNull())
            break;  // short of memory: the finer levels still draw, only slower
        map.levels_.push_back(std::move(half));
    }
    return map;
}

namespace {

// `device` reads the bytes `bytes` holds, `size` of them.
ImageLoadError Decode(QIODevice& device, const uchar* bytes, qint64 size, MapImage& image) {
    if (size == 0)
        return ImageLoadError::NotAnImage;
    QImageReader reader(&device);
    reader.setDecideFormatFromContent(true);
    // The decoders check their own allocations against this as well.
    reader.setAllocationLimit(static_cast<int>(kMaxImageBytes >> 20));
    const QByteArray format = reader.format();
    if (!IsMapFormat(format)) {
        return reader.error() == QImageReader::DeviceError ? ImageLoadError::CannotOpen
                                                           : ImageLoadError::NotAnImage;
    }
    if (const ImageLoadError e = CheckBytes(bytes, size, format); e != ImageLoadError::None)
        return e;
    // The header alone: a size past the budget is refused before anything
    // of that size is allocated.
    const QSize declared = reader.size();
    if (!declared.isValid() || declared.isEmpty())
        return ImageLoadError::Damaged;
    if (!WithinBudget(declared.width(), declared.height()))
        return ImageLoadError::TooLarge;

    QImage decoded;
    if (!reader.read(&decoded))
        return FromReaderError(reader.error());
    if (decoded.isNull())
        return ImageLoadError::Damaged;
    if (!WithinBudget(decoded.width(), decoded.height()))
        return ImageLoadError::TooLarge;

    MapImage loaded = MapImage::FromImage(std::move(decoded));
    if (loaded.IsNull())
        return ImageLoadError::TooLarge;
    image = std::move(loaded);
    return ImageLoadError::None;
}

}  // namespace

ImageLoadError LoadMapImage(const QString& path, MapImage& image) {
    const QFileInfo info(path);
    if (!info.exists() || !info.isFile() || !info.isReadable())
        return ImageLoadError::CannotOpen;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return ImageLoadError::CannotOpen;
    const qint64 size = file.size();
    if (size == 0)
        return ImageLoadError::NotAnImage;
    // Mapped, not read: a scan of a hundred megabytes costs no copy.
    const uchar* bytes = file.map(0, size);
    if (bytes == nullptr)
        return ImageLoadError::CannotOpen;
    const ImageLoadError result = Decode(file, bytes, size, image);
    file.unmap(const_cast<uchar*>(bytes));
    return result;
}

ImageLoadError LoadMapImageData(const QByteArray& data, MapImage& image) {
    QByteArray copy = data;  // shares the bytes; QBuffer wants a mutable array
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    return Decode(buffer, reinterpret_cast<const uchar*>(copy.constData()), copy.size(), image);
}

void DrawMapImage(QPainter& painter, const MapImage& image, const VisiblePart& part) {
    if (part.empty || image.IsNull())
        return;
    const screens::Rect& d = part.destination;
    const double screenPerImage =
        std::max(d.Width() / part.source.Width(), d.Height() / part.source.Height());
    const QImage& level = image.Level(image.LevelFor(screenPerImage));
    const ImageSize full = image.Size();
    const double fx = static_cast<double>(level.width()) / full.width;
    const double fy = static_cast<double>(level.height()) / full.height;
    DrawLevelPixels(painter, d, level,
                    QRectF(part.source.left * fx, part.source.top * fy, part.source.Width() * fx,
                           part.source.Height() * fy));
}

void DrawLevelPixels(QPainter& painter, const screens::Rect& destination, const QImage& level,
                     const QRectF& source) {
    // A plain copy of the nearest pixel, as the map has always been drawn;
    // the level already did the averaging a reduction needs.
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(
        QRectF(destination.left, destination.top, destination.Width(), destination.Height()), level,
        source);
    painter.restore();
}

}  // namespace satwalk::map
