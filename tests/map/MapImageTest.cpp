// Map images: every format loads, every hostile file fails with a reason
// and leaves the previous map, the halved levels average what they cover,
// and painting puts the visible part where the view says.
#include <gtest/gtest.h>

#include <QDir>
#include <QPainter>
#include <QTemporaryDir>

#include <tuple>

#include "ImageFiles.h"
#include "MapImage.h"

namespace satwalk::map {
namespace {

using namespace testing;

class MapImageFiles : public ::testing::Test {
  protected:
    QString Write(const QString& name, const QByteArray& bytes) {
        const QString path = dir_.filePath(name);
        EXPECT_TRUE(WriteFile(path, bytes));
        return path;
    }
    QTemporaryDir dir_;
};

TEST_F(MapImageFiles, LoadsEachFormatOrSaysWhyNot) {
    const QImage picture = BusyPicture(300, 200);
    const QByteArray png = Encode(picture, "png"), jpeg = Encode(picture, "jpg", 85),
                     bmp = Encode(picture, "bmp");
    QByteArray garbledPng = png;
    garbledPng.replace(png.size() / 2, 64, QByteArray(64, '\x5A'));
    using E = ImageLoadError;
    const std::tuple<const char*, QByteArray, ImageLoadError, ImageSize> cases[] = {
        {"map.png", png, E::None, {300, 200}},
        {"map.jpg", jpeg, E::None, {300, 200}},
        {"map.bmp", bmp, E::None, {300, 200}},
        {"map.gif", TinyGif(), E::None, {1, 1}},
        {"no suffix", jpeg, E::None, {300, 200}},
        {"empty.png", QByteArray(), E::NotAnImage, {}},
        {"notes.png", "just some text, no picture\n", E::NotAnImage, {}},
        {"icon.png", Encode(picture.scaled(32, 32), "ico"), E::NotAnImage, {}},
        {"cut.png", png.left(png.size() / 2), E::Damaged, {}},
        {"garbled.png", garbledPng, E::Damaged, {}},
        {"zero.png", WithDeclaredSize(png, "png", 0, 0), E::Damaged, {}},
        {"zero.jpg", WithDeclaredSize(jpeg, "jpeg", 0, 0), E::Damaged, {}},
        {"zero.bmp", WithDeclaredSize(bmp, "bmp", 0, 200), E::Damaged, {}},
        {"bomb.png", WithDeclaredSize(png, "png", 60000, 60000), E::TooLarge, {}},
        {"bomb.jpg", WithDeclaredSize(jpeg, "jpeg", 60000, 60000), E::TooLarge, {}},
        {"bomb.bmp", WithDeclaredSize(bmp, "bmp", 60000, 60000), E::TooLarge, {}},
        // One pixel past the budget in a single long row.
        {"long.bmp", WithDeclaredSize(bmp, "bmp", kMaxImageBytes / 4 + 1, 1), E::TooLarge, {}}};
    for (const auto& [name, bytes, error, size] : cases) {
        MapImage image, fromMemory;
        EXPECT_EQ(LoadMapImage(Write(name, bytes), image), error) << name;
        EXPECT_EQ(image.Size().width, size.width) << name;
        EXPECT_EQ(image.Size().height, size.height) << name;
        EXPECT_EQ(LoadMapImageData(bytes, fromMemory), error) << name;
    }
}

TEST_F(MapImageFiles, FailureKeepsThePreviousMap) {
    MapImage image;
    ASSERT_EQ(LoadMapImage(Write("a.png", Encode(BusyPicture(64, 48), "png")), image),
              ImageLoadError::None);
    ASSERT_TRUE(QDir(dir_.path()).mkdir("folder.png"));
    const std::pair<QString, ImageLoadError> cases[] = {
        {dir_.filePath("missing.png"), ImageLoadError::CannotOpen},
        {dir_.filePath("folder.png"), ImageLoadError::CannotOpen},
        {Write("b.png", "PNG?"), ImageLoadError::NotAnImage}};
    for (const auto& [path, error] : cases) {
        EXPECT_EQ(LoadMapImage(path, image), error);
        EXPECT_EQ(image.Size().width, 64);
    }
}

TEST(MapImageLevels, HalvedDownToTheSmallestSide) {
    const std::pair<ImageSize, std::vector<std::pair<int, int>>> cases[] = {
        {{512, 300}, {{512, 300}}},
        {{1200, 900}, {{1200, 900}, {600, 450}, {300, 225}}},
        {{1025, 3}, {{1025, 3}, {513, 2}, {257, 1}}},
        {{1, 2000}, {{1, 2000}, {1, 1000}, {1, 500}}}};
    for (const auto& [size, expected] : cases) {
        const MapImage image =
            MapImage::FromImage(QImage(size.width, size.height, QImage::Format_RGB32));
        std::vector<std::pair<int, int>> levels;
        for (int i = 0; i < image.LevelCount(); ++i)
            levels.emplace_back(image.Level(i).width(), image.Level(i).height());
        EXPECT_EQ(levels, expected) << size.width << "x" << size.height;
        EXPECT_EQ(image.Level(image.LevelCount() - 1).format(), QImage::Format_RGB32);
    }
}

TEST(MapImageLevels, AverageWhatTheyCoverAndLayTransparencyOnWhite) {
    // An odd number of rows and columns: the last ones average with themselves.
    QImage image(1031, 3, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    image.setPixel(0, 0, qRgb(200, 0, 0));
    image.setPixel(1, 0, qRgb(0, 100, 0));
    image.setPixel(0, 1, qRgb(0, 0, 40));
    image.setPixel(1, 1, qRgb(0, 0, 40));
    image.setPixel(1030, 2, qRgb(10, 20, 30));
    image.setPixel(2, 0, qRgba(0, 0, 0, 128));
    const MapImage map = MapImage::FromImage(image);
    ASSERT_EQ(map.LevelCount(), 3);
    EXPECT_EQ(map.Level(0).pixel(5, 0), qRgb(255, 255, 255));
    EXPECT_EQ(map.Level(0).pixel(2, 0), qRgb(127, 127, 127));
    EXPECT_EQ(map.Level(1).pixel(0, 0), qRgb(50, 25, 20));
    EXPECT_EQ(map.Level(1).pixel(515, 1), qRgb(10, 20, 30));
}

TEST(MapImageLevels, LevelForTheZoom) {
    const MapImage map = MapImage::FromImage(QImage(4000, 100, QImage::Format_RGB32));
    ASSERT_EQ(map.LevelCount(), 4);  // 4000, 2000, 1000, 500
    const std::pair<double, int> cases[] = {{8.0, 0}, {1.0, 0},  {0.51, 0}, {0.5, 1},
                                            {0.3, 1}, {0.25, 2}, {0.2, 2},  {0.01, 3}};
    for (auto [scale, level] : cases) EXPECT_EQ(map.LevelFor(scale), level) << scale;
}

// Paints a picture whose left half is red and right half blue, the two
// halves meeting at the view's centre, and reads the target back.
TEST(MapImagePaint, VisiblePartLandsInTheDestination) {
    QImage picture(2000, 1000, QImage::Format_RGB32);
    picture.fill(qRgb(220, 0, 0));
    QPainter(&picture).fillRect(1000, 0, 1000, 1000, QColor(0, 0, 220));
    const MapImage map = MapImage::FromImage(picture);
    const screens::Rect view{0, 0, 480, 640};
    // The displayed width; the height is half of it.
    const std::tuple<const char*, double, PointF> cases[] = {
        {"fitted, from a reduced level", 480, {1000, 500}},
        {"zoomed in", 4000, {1000, 500}},
        {"zoomed in, off centre", 8000, {1000, 250}}};
    for (const auto& [what, width, centre] : cases) {
        const VisiblePart part = ComputeVisiblePart(map.Size(), width, width / 2, centre, view);
        QImage target(480, 640, QImage::Format_RGB32);
        target.fill(Qt::white);
        {
            QPainter painter(&target);
            DrawMapImage(painter, map, part);
        }
        const screens::Rect& d = part.destination;
        EXPECT_EQ(target.pixel(236, d.top + 2), qRgb(220, 0, 0)) << what;
        EXPECT_EQ(target.pixel(244, d.bottom - 2), qRgb(0, 0, 220)) << what;
        if (d.top > 0) {
            EXPECT_EQ(target.pixel(240, d.top - 1), qRgb(255, 255, 255)) << what;
        }
    }
}

}  // namespace
}  // namespace satwalk::map
