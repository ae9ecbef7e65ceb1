// The real QPainter canvas, offscreen: the bitmaps of both sets load with
// their exact sizes, colour-keyed copies leave the key out, and a kept
// picture is painted again exactly when it must be. Every screen
// painted for real is checked end to end (the script run's snapshots).
#include <gtest/gtest.h>

#include <QImage>
#include <tuple>

#include "QtCanvas.h"
#include "TestSupport.h"

namespace satwalk::screens {
namespace {

const ScreenBitmaps& Bitmaps(bool hi) {
    static ScreenBitmaps sets[2];
    static bool loaded[2] = {false, false};
    if (!loaded[hi]) {
        BitmapId failed{};
        EXPECT_TRUE(sets[hi].Load(hi, QStringLiteral(SATWALK_BITMAP_DIR), &failed))
            << InitializationFailedMessage(failed);
        loaded[hi] = true;
    }
    return sets[hi];
}

TEST(QtScreens, BitmapsOfBothSetsLoadWithTheirSizes) {
    for (bool hi : {true, false}) {
        for (int i = 0; i < kBuiltInBitmapCount; ++i) {
            const BitmapId id{i};
            const QImage& img = Bitmaps(hi).Image(id);
            const Size want = BitmapSize(id, hi);
            EXPECT_EQ(img.width(), want.width) << BitmapFileName(id, hi);
            EXPECT_EQ(img.height(), want.height) << BitmapFileName(id, hi);
        }
    }
}

// Drawn into a picture of twice the device pixels: a bitmap at a whole ratio
// is its pixels repeated, never blended with its neighbours (blurred icons);
// at 1.5 it is smoothed. An outline of fractional points lands between the
// canvas's own pixels where there are device pixels for it.
TEST(QtScreens, LargerPicturesKeepBitmapsSharpAndOutlinesBetweenPixels) {
    ScreenBitmaps bitmaps;
    QImage strip(2, 1, QImage::Format_RGB32);
    strip.setPixel(0, 0, qRgb(0, 0, 0));
    strip.setPixel(1, 0, qRgb(250, 250, 250));
    const BitmapId id = bitmaps.Add(strip);
    const struct {
        qreal ratio;
        bool blended;
    } cases[] = {{2.0, false}, {3.0, false}, {1.5, true}};
    for (const auto& c : cases) {
        QImage target(static_cast<int>(8 * c.ratio), static_cast<int>(2 * c.ratio),
                      QImage::Format_RGB32);
        target.setDevicePixelRatio(c.ratio);
        target.fill(qRgb(255, 0, 0));
        {
            QtCanvas canvas(target, bitmaps);
            canvas.Blit(Bitmap{id, 2, 1}, Rect{0, 0, 2, 1}, Point{0, 0});
        }
        bool blended = false;
        for (int x = 0; x < static_cast<int>(2 * c.ratio); ++x) {
            const QRgb p = target.pixel(x, 0);
            blended = blended || (p != qRgb(0, 0, 0) && p != qRgb(250, 250, 250));
        }
        EXPECT_EQ(blended, c.blended) << c.ratio;
    }
    QImage target(20, 20, QImage::Format_RGB32);
    target.setDevicePixelRatio(2.0);
    target.fill(qRgb(255, 255, 255));
    {
        QtCanvas canvas(target, bitmaps);
        const PointF square[] = {{0.5, 0}, {10, 0}, {10, 10}, {0.5, 10}};
        canvas.PolygonF(square, Pen{kBlack, 0, true}, Brush{kBlack, false});
    }
    // Device column 0 is left of the edge at half a pixel, column 1 right of it.
    EXPECT_EQ(target.pixel(0, 10), qRgb(255, 255, 255));
    EXPECT_EQ(target.pixel(1, 10), qRgb(0, 0, 0));
}

TEST(QtScreens, TransparentCopyLeavesTheKeyOut) {
    ScreenBitmaps bitmaps;
    QImage strip(4, 1, QImage::Format_RGB32);
    strip.setPixel(0, 0, qRgb(214, 233, 250));
    strip.setPixel(1, 0, qRgb(10, 20, 30));
    strip.setPixel(2, 0, qRgb(214, 233, 250));
    strip.setPixel(3, 0, qRgb(214, 233, 251));
    // A bitmap loaded at run time, numbered after the program's own.
    const BitmapId added = bitmaps.Add(strip);
    EXPECT_EQ(added.value, kBuiltInBitmapCount);
    QImage target(6, 2, QImage::Format_RGB32);
    target.fill(qRgb(255, 255, 255));
    {
        QtCanvas canvas(target, bitmaps);
        canvas.TransparentBlit(Bitmap{added, 4, 1}, Rect{0, 0, 4, 1}, Point{1, 1}, kStripKey);
        // Nothing lands outside the bitmap.
        canvas.FillRect(Rect{-50, -50, 500, 0}, kBlack);
    }
    EXPECT_EQ((std::vector{target.pixel(1, 1), target.pixel(2, 1), target.pixel(3, 1),
                           target.pixel(4, 1), target.pixel(0, 0)}),
              (std::vector{qRgb(255, 255, 255), qRgb(10, 20, 30), qRgb(255, 255, 255),
                           qRgb(214, 233, 251), qRgb(255, 255, 255)}));
}

// A picture with a black square at its point (10, 10): painted once, then
// copied while the key stays and the view within what was painted; moved
// with the shift; painted anew for a new key, a view past the margin or a
// canvas of a pixel to a pixel (which keeps none).
TEST(QtScreens, KeptPictureIsPaintedAgainOnlyWhenItMust) {
    ScreenBitmaps bitmaps;
    int paints = 0;
    const Canvas::PicturePainter square = [&](Canvas& c, PointF, Rect area) {
        ++paints;
        c.FillRect(area, kWhite);
        c.FillRect(Rect{10, 10, 14, 14}, kBlack);
    };
    // Ratio, key, shift, painted anew, where the square's corner shows.
    const std::tuple<qreal, std::uint64_t, double, bool, int> steps[] = {
        {2.0, 7, 0.0, true, 10},    // first
        {2.0, 7, 5.0, false, 15},   // panned within the margin: copied
        {2.0, 7, -5.0, false, 5},   // the other way
        {2.0, 8, -5.0, true, 5},    // another scale
        {2.0, 8, 40.0, true, 50},   // past the margin
        {1.0, 8, 40.0, false, -1},  // a pixel to a pixel: not kept
    };
    for (const auto& [ratio, key, shift, anew, corner] : steps) {
        QImage target(static_cast<int>(60 * ratio), static_cast<int>(40 * ratio),
                      QImage::Format_RGB32);
        target.setDevicePixelRatio(ratio);
        target.fill(qRgb(255, 0, 0));
        const int before = paints;
        QtCanvas canvas(target, bitmaps);
        const bool kept = canvas.DrawKeptPicture(key, Rect{0, 0, 60, 40}, PointF{shift, 0}, square);
        EXPECT_EQ(kept, corner >= 0) << key << " " << shift;
        EXPECT_EQ(paints - before, anew ? 1 : 0) << key << " " << shift;
        if (!kept)
            continue;
        const int d = static_cast<int>(ratio);
        EXPECT_EQ(target.pixel(corner * d, 11 * d), qRgb(0, 0, 0)) << key << " " << shift;
        EXPECT_EQ(target.pixel((corner - 1) * d, 11 * d), qRgb(255, 255, 255))
            << key << " " << shift;
        EXPECT_EQ(target.pixel(59 * d, 39 * d), qRgb(255, 255, 255)) << key << " " << shift;
    }
}

}  // namespace
}  // namespace satwalk::screens
