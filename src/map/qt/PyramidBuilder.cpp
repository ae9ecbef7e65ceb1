#include "PyramidBuilder.h"

#include <QByteArray>
#include <QImage>
#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

// After <cstdio>: it uses FILE and size_t without including them.
#include <jpeglib.h>

#include "GdalBackend.h"
#include "MapImage.h"
#include "TilePyramid.h"

namespace satwalk::map {

namespace {

// libjpeg's errors return here instead of ending the process.
struct JpegError {
    jpeg_error_mgr manager;
    std::jmp_buf jump;
};

[[noreturn]] void OnJpegError(j_common_ptr c) {
    std::longjmp(reinterpret_cast<JpegError*>(c->err)->jump, 1);
}

// `rows` rows of `width` RGB32 pixels, `stride` bytes apart, as a JPEG;
// empty when the encoder failed. libjpeg reads the pixels as they are
// (B, G, R, X on a little-endian machine): no conversion, no copy.
QByteArray EncodeTile(const std::uint8_t* pixels, int width, int rows, std::ptrdiff_t stride) {
    jpeg_compress_struct c{};
    JpegError error{};
    c.err = jpeg_std_error(&error.manager);
    error.manager.error_exit = OnJpegError;
    // Both written through their addresses only, so kept in memory across
    // the jump.
    unsigned char* out = nullptr;
    unsigned long size = 0;
    if (setjmp(error.jump) != 0) {
        jpeg_destroy_compress(&c);
        std::free(out);
        return {};
    }
    jpeg_create_compress(&c);
    jpeg_mem_dest(&c, &out, &size);
    c.image_width = static_cast<JDIMENSION>(width);
    c.image_height = static_cast<JDIMENSION>(rows);
    c.input_components = 4;
    c.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&c);
    jpeg_set_quality(&c, kTileQuality, TRUE);
    jpeg_start_compress(&c, TRUE);
    while (c.next_scanline < c.image_height) {
        auto* row = const_cast<JSAMPROW>(pixels + stride * c.next_scanline);
        jpeg_write_scanlines(&c, &row, 1);
    }
    jpeg_finish_compress(&c);
    QByteArray bytes(reinterpret_cast<const char*>(out), static_cast<qsizetype>(size));
    jpeg_destroy_compress(&c);
    std::free(out);
    return bytes;
}

// The cache file being written: tiles appended, header and index last.
class PyramidWriter {
  public:
    PyramidWriter(const std::string& path, std::size_t indexBytes, std::size_t tileCount)
        : path_(path), tiles_(tileCount) {
        file_ = std::fopen(path.c_str(), "wb");
        if (file_ == nullptr)
            return;
        const std::vector<char> zeros(indexBytes, 0);
        Write(zeros.data(), zeros.size());
        offset_ = indexBytes;
    }
    ~PyramidWriter() {
        if (file_ != nullptr)
            std::fclose(file_);
    }
    PyramidWriter(const PyramidWriter&) = delete;
    PyramidWriter& operator=(const PyramidWriter&) = delete;

    bool Ok() const { return file_ != nullptr && error_ == 0; }
    int Error() const { return file_ == nullptr ? EACCES : error_; }

    void AddTile(std::uint32_t index, const QByteArray& bytes) {
        const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.constData());
        const auto length = static_cast<std::uint32_t>(bytes.size());
        tiles_[index] = {offset_, length, Crc32({data, length})};
        Write(bytes.constData(), length);
        offset_ += length;
    }

    // Writes header and index over the placeholder and closes the file.
    bool Finish(ImageSize image, const SourceStamp& source) {
        const std::vector<std::uint8_t> index = WritePyramidIndex(image, source, tiles_);
        if (Ok() && std::fseek(file_, 0, SEEK_SET) != 0)
            error_ = errno;
        Write(index.data(), index.size());
        if (Ok() && std::fflush(file_) != 0)
            error_ = errno;
        if (std::fclose(file_) != 0 && error_ == 0)
            error_ = errno;
        file_ = nullptr;
        return error_ == 0;
    }

  private:
    void Write(const void* data, std::size_t size) {
        if (Ok() && std::fwrite(data, 1, size, file_) != size)
            error_ = errno != 0 ? errno : EIO;
    }

    std::string path_;
    std::FILE* file_ = nullptr;
    int error_ = 0;
    std::uint64_t offset_ = 0;
    std::vector<TileEntry> tiles_;
};

// One level's band of up to kTileSide rows being filled from the level
// above, and the tile row it becomes.
struct LevelBand {
    QImage pixels;
    int filled = 0;
    int row = 0;
};

class Builder {
  public:
    Builder(std::vector<PyramidLevel> levels, PyramidWriter& writer, PyramidProgress& progress)
        : levels_(std::move(levels)), writer_(writer), progress_(progress) {}

    bool Allocate() {
        for (const PyramidLevel& l : levels_) {
            LevelBand band;
            band.pixels = QImage(l.width, std::min(l.height, kTileSide), QImage::Format_RGB32);
            if (band.pixels.isNull())
                return false;
            band.pixels.fill(0xFFFFFFFFu);
            bands_.push_back(std::move(band));
        }
        return true;
    }
    QImage& Top() { return bands_.front().pixels; }

    // The top level's band holds `rows` new rows: cut it, and halve it into
    // the levels below, cutting each band that fills or ends its level.
    bool Push(int rows) {
        std::size_t k = 0;
        for (;;) {
            LevelBand& band = bands_[k];
            const PyramidLevel& level = levels_[k];
            if (!Cut(k, rows))
                return false;
            const bool lastRow = band.row == level.rows;
            if (k + 1 == levels_.size())
                return true;
            LevelBand& next = bands_[k + 1];
            const int halfRows = (rows + 1) / 2;
            const int srcStride = static_cast<int>(band.pixels.bytesPerLine() / 4);
            const auto* src = reinterpret_cast<const std::uint32_t*>(band.pixels.constBits());
            for (int y = 0; y < halfRows; ++y) {
                const std::uint32_t* a = src + std::ptrdiff_t{2 * y} * srcStride;
                const std::uint32_t* b = 2 * y + 1 < rows ? a + srcStride : a;
                HalveRow(a, b, level.width,
                         reinterpret_cast<std::uint32_t*>(next.pixels.scanLine(next.filled + y)));
            }
            next.filled += halfRows;
            if (next.filled < next.pixels.height() && !lastRow)
                return true;
            rows = std::exchange(next.filled, 0);
            ++k;
        }
    }

  private:
    // Encodes the band's tiles, columns [first, last), into `out`; false
    // when cancelled or the encoder failed.
    bool Encode(const QImage& px, const PyramidLevel& level, int rows, int first, int last,
                std::vector<QByteArray>& out) {
        for (int c = first; c < last; ++c) {
            if (progress_.cancel.load(std::memory_order_relaxed))
                return false;
            const int x = c * kTileSide;
            QByteArray& bytes = out[static_cast<std::size_t>(c)];
            bytes = EncodeTile(px.constBits() + std::ptrdiff_t{x} * 4,
                               std::min(kTileSide, level.width - x), rows, px.bytesPerLine());
            if (bytes.isEmpty())
                return false;
            progress_.done.fetch_add(1, std::memory_order_relaxed);
        }
        return true;
    }

    // The band's tiles, encoded on two threads (each half of the columns;
    // the band is only read meanwhile), then written in order.
    bool Cut(std::size_t k, int rows) {
        LevelBand& band = bands_[k];
        const PyramidLevel& level = levels_[k];
        std::vector<QByteArray> tiles(static_cast<std::size_t>(level.columns));
        const int half = level.columns / 2;
        bool helped = true;
        std::thread helper;
        if (half > 0) {
            helper = std::thread(
                [&] { helped = Encode(band.pixels, level, rows, half, level.columns, tiles); });
        }
        const bool own =
            Encode(band.pixels, level, rows, 0, half > 0 ? half : level.columns, tiles);
        if (helper.joinable())
            helper.join();
        if (!own || !helped)
            return false;
        for (int c = 0; c < level.columns && writer_.Ok(); ++c) {
            writer_.AddTile(
                level.firstTile + static_cast<std::uint32_t>(band.row * level.columns + c),
                tiles[static_cast<std::size_t>(c)]);
        }
        ++band.row;
        return writer_.Ok();
    }

    std::vector<PyramidLevel> levels_;
    PyramidWriter& writer_;
    PyramidProgress& progress_;
    std::vector<LevelBand> bands_;
};

}  // namespace

PyramidBuild BuildPyramid(const std::string& source, const std::string& cacheFile,
                          PyramidProgress& progress) {
    const std::optional<SourceStamp> stamp = StampOf(source);
    if (!stamp)
        return PyramidBuild::CannotOpen;
    const GdalBackend* gdal = GdalLibrary();
    if (gdal == nullptr)
        return PyramidBuild::NoGdal;
    RasterOpen opened = RasterOpen::Opened;
    const std::unique_ptr<RasterRows> rows = gdal->OpenRaster(source, opened);
    switch (opened) {
        case RasterOpen::Opened:
            break;
        case RasterOpen::CannotOpen:
            return PyramidBuild::CannotOpen;
        case RasterOpen::NotAnImage:
            return PyramidBuild::NotAnImage;
        case RasterOpen::Damaged:
            return PyramidBuild::Damaged;
    }
    const ImageSize image = rows->Size();
    std::vector<PyramidLevel> levels = PyramidLevels(image);
    if (levels.empty())
        return PyramidBuild::TooLarge;
    const std::uint32_t tileCount = PyramidTileCount(levels);
    progress.total = tileCount;
    progress.done = 0;

    const std::filesystem::path target(cacheFile);
    std::error_code ec;
    TrimPyramidCache(target.parent_path().string(), target.filename().string(),
                     PyramidDiskEstimate(image));
    const std::filesystem::space_info space = std::filesystem::space(target.parent_path(), ec);
    if (ec)
        return PyramidBuild::CannotWrite;
    if (space.available < PyramidDiskEstimate(image))
        return PyramidBuild::NoDiskSpace;

    const std::string part = cacheFile + ".part";
    PyramidBuild result = PyramidBuild::Built;
    {
        PyramidWriter writer(part, kPyramidHeaderSize + std::size_t{tileCount} * kTileEntrySize,
                             tileCount);
        Builder builder(levels, writer, progress);
        if (!writer.Ok() || !builder.Allocate()) {
            result = writer.Ok() ? PyramidBuild::TooLarge : PyramidBuild::CannotWrite;
        } else {
            for (int y = 0; y < image.height && result == PyramidBuild::Built; y += kTileSide) {
                const int n = std::min(kTileSide, image.height - y);
                QImage& top = builder.Top();
                if (!rows->Read(y, n, top.bits(), top.bytesPerLine()))
                    result = PyramidBuild::Damaged;
                else if (!builder.Push(n))
                    result = progress.cancel ? PyramidBuild::Cancelled : PyramidBuild::CannotWrite;
            }
            if (result == PyramidBuild::Built && !writer.Finish(image, *stamp))
                result = PyramidBuild::CannotWrite;
        }
        if (result == PyramidBuild::CannotWrite && writer.Error() == ENOSPC)
            result = PyramidBuild::NoDiskSpace;
    }
    if (result == PyramidBuild::Built) {
        std::filesystem::rename(part, target, ec);
        if (!ec)
            return result;
        result = PyramidBuild::CannotWrite;
    }
    std::filesystem::remove(part, ec);
    return result;
}

}  // namespace satwalk::map
