// The real QPainter canvas, offscreen: the bitmaps of both sets load with
// their exact sizes, and colour-keyed copies leave the key out. Every screen
// painted for real is checked end to end (the script run's snapshots).
#include <gtest/gtest.h>

#include <QImage>

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

}  // namespace
}  // namespace satwalk::screens
