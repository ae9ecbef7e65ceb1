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
