// Building tile pyramids from small images: every kind of pixel comes out
// as it would be shown, each level draws the picture, and only a complete,
// untouched pyramid of the source as it is now is ever used.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QTemporaryDir>
#include <functional>
#include <tuple>

#include "ImageFiles.h"
#include "PyramidBuilder.h"
#include "TiledImage.h"

namespace satwalk::map {
namespace {

using namespace testing;

// 600 × 300, three levels: four flat quadrants, one of them see-through;
// as a palette image, or in ARGB32.
QImage Quadrants(bool palette = false) {
    QImage image(600, 300, QImage::Format_Indexed8);
    image.setColorTable({qRgba(200, 30, 30, 255), qRgba(30, 160, 60, 255), qRgba(40, 60, 200, 255),
                         qRgba(0, 0, 0, 0)});
    for (int y = 0; y < 300; ++y)
        for (int x = 0; x < 600; ++x)
            image.setPixel(x, y, static_cast<uint>((y / 150) * 2 + x / 300));
    return palette ? image : image.convertToFormat(QImage::Format_ARGB32);
}

// Where each quadrant's middle lands when `image` is drawn at `scale`.
const QPoint kMiddles[4] = {{150, 75}, {450, 75}, {150, 225}, {450, 225}};

bool Near(QRgb a, QRgb b) {
    return std::abs(qRed(a) - qRed(b)) <= 12 && std::abs(qGreen(a) - qGreen(b)) <= 12 &&
           std::abs(qBlue(a) - qBlue(b)) <= 12;
}

class PyramidBuilder : public ::testing::Test {
  protected:
    std::string Path(const char* name) const { return dir_.filePath(name).toStdString(); }
    std::string Source(const char* name, const QImage& image, const char* format) {
        EXPECT_TRUE(WriteFile(dir_.filePath(name), Encode(image, format)));
        return Path(name);
    }
    PyramidBuild Build(const std::string& source) {
        PyramidProgress progress;
        return BuildPyramid(source, cache_, progress);
    }
    // The whole image drawn `scale` times its size into a white target.
    static QImage Draw(TiledImage& tiled, double scale) {
        const ImageSize size = tiled.Size();
        const screens::Rect view{0, 0, static_cast<int>(size.width * scale),
                                 static_cast<int>(size.height * scale)};
        QImage target(view.Width(), view.Height(), QImage::Format_RGB32);
        target.fill(Qt::white);
        QPainter painter(&target);
        DrawTiledImage(painter, tiled,
                       ComputeVisiblePart(size, view.Width(), view.Height(),
                                          {size.width * 0.5, size.height * 0.5}, view));
        return target;
    }

    QTemporaryDir dir_;
    std::string cache_ = Path("pyramid.tiles");
};

TEST_F(PyramidBuilder, EveryPixelKindDrawsAtEveryLevel) {
    const QImage picture = Quadrants();
    const std::tuple<const char*, QImage, const char*> cases[] = {
        {"rgba.png", picture, "png"},
        {"rgb.jpg", picture.convertToFormat(QImage::Format_RGB32), "jpg"},
        {"rgb.bmp", picture.convertToFormat(QImage::Format_RGB32), "bmp"},
        {"grey.png", picture.convertToFormat(QImage::Format_Grayscale8), "png"},
        {"palette.png", Quadrants(true), "png"},
    };
    for (const auto& [name, image, format] : cases) {
        const std::string source = Source(name, image, format);
        ASSERT_EQ(Build(source), PyramidBuild::Built) << name;
        TiledImage tiled;
        ASSERT_EQ(tiled.Open(cache_, *StampOf(source)), PyramidCheck::Valid) << name;
        EXPECT_EQ(tiled.Levels().size(), 3u);
        // As the whole picture is shown: transparency over white.
        QImage expected(image.size(), QImage::Format_RGB32);
        expected.fill(Qt::white);
        QPainter(&expected).drawImage(0, 0, image);
        for (const double scale : {1.0, 0.5, 0.25}) {  // levels 0, 1, 2
            const QImage drawn = Draw(tiled, scale);
            for (const QPoint& m : kMiddles) {
                EXPECT_TRUE(Near(drawn.pixel(m * scale), expected.pixel(m)))
                    << name << " at " << scale << ": " << std::hex << drawn.pixel(m * scale)
                    << " for " << expected.pixel(m);
            }
        }
        EXPECT_FALSE(tiled.Damaged());
    }
}

TEST_F(PyramidBuilder, CancelledOrFailedBuildLeavesNothing) {
    const std::string source = Source("map.png", Quadrants(), "png");
    ASSERT_TRUE(WriteFile(dir_.filePath("text.png"), "not a picture"));
    PyramidProgress cancelled;
    cancelled.cancel = true;
    EXPECT_EQ(BuildPyramid(source, cache_, cancelled), PyramidBuild::Cancelled);
    EXPECT_EQ(Build(Path("text.png")), PyramidBuild::NotAnImage);
    EXPECT_EQ(Build(Path("missing.png")), PyramidBuild::CannotOpen);
    EXPECT_EQ(QDir(dir_.path()).entryList(QDir::Files).size(), 2);  // the two sources alone
}

TEST_F(PyramidBuilder, TamperedOrStaleCacheIsRebuilt) {
    const std::string source = Source("map.png", Quadrants(), "png");
    using Edit = std::function<void(QByteArray&)>;
    const std::tuple<const char*, Edit, PyramidCheck> cases[] = {
        {"header", [](QByteArray& b) { b[20] = static_cast<char>(b[20] ^ 1); },
         PyramidCheck::Damaged},
        {"truncated", [](QByteArray& b) { b.chop(1); }, PyramidCheck::Damaged},
        {"a tile's bytes",
         [](QByteArray& b) { b[b.size() - 300] = static_cast<char>(~b[b.size() - 300]); },
         PyramidCheck::Valid},
        {"source touched", nullptr, PyramidCheck::Stale},
    };
    for (const auto& [what, edit, check] : cases) {
        ASSERT_EQ(Build(source), PyramidBuild::Built) << what;
        if (edit) {
            QFile file(QString::fromStdString(cache_));
            ASSERT_TRUE(file.open(QIODevice::ReadWrite));
            QByteArray bytes = file.readAll();
            edit(bytes);
            file.resize(0);
            file.write(bytes);
        } else {
            const timeval later[2] = {{2000000000, 0}, {2000000000, 0}};
            ASSERT_EQ(::utimes(source.c_str(), later), 0);
        }
        TiledImage tiled;
        EXPECT_EQ(tiled.Open(cache_, *StampOf(source)), check) << what;
        if (check == PyramidCheck::Valid) {
            // The index holds; the tile does not, and takes the file with it.
            for (const double scale : {1.0, 0.5, 0.25}) Draw(tiled, scale);
            EXPECT_TRUE(tiled.Damaged()) << what;
            EXPECT_FALSE(QFile::exists(QString::fromStdString(cache_))) << what;
        }
    }
}

}  // namespace
}  // namespace satwalk::map
