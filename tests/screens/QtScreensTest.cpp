// The screens through the real QPainter canvas, offscreen: every screen in
// every orientation and set paints into its bitmap, the bitmaps of both sets
// load with their exact sizes, and colour-keyed copies leave the key out.
#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QTableWidget>

#include "QtCanvas.h"
#include "SatelliteTable.h"
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

gps::GpsState DriveFix() {
    gps::GpsState g;
    gps::GsvAssembly a;
    const char* text =
        "$GPRMC,081500.00,A,3031.0240,N,11421.0000,E,20.0,33.5,211126,,,A*52\r\n"
        "$GPGGA,081500.00,3031.0240,N,11421.0000,E,1,08,0.9,23.4,M,-13.0,M,,*7B\r\n"
        "$GPGSA,A,3,02,05,09,12,15,17,21,24,,,,,1.8,0.9,1.6*3F\r\n"
        "$GPGSV,3,1,11,02,72,040,48,05,35,095,36,09,12,160,23,12,55,210,40*76\r\n"
        "$GPGSV,3,2,11,15,20,300,,17,05,250,07,21,48,330,35,24,85,120,50*7A\r\n"
        "$GPGSV,3,3,11,26,28,020,19,29,61,270,43,31,03,180,*4B\r\n";
    gps::ParseNmeaBuffer(g, a, text, nullptr);
    return g;
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

TEST(QtScreens, EveryScreenPaintsItsWholeBitmap) {
    const gps::GpsState g = DriveFix();
    ASSERT_EQ(g.status, 'A');
    for (const auto& v : test::kAllVariants) {
        const bool hi = v.dpi != 96;
        ScreenContext ctx;
        PrepareScreenContext(ctx, v.width, v.height, v.dpi, Bitmaps(hi));
        ctx.display.linkRunning = ctx.display.fixValid = true;
        ctx.display.speedAlarmOn = true;
        ctx.display.speedAlarmLimit = 70;
        ctx.display.fix = gps::ReadFix(g);
        for (int screen = 0; screen <= 3; ++screen) {
            ctx.display.currentScreen = screen;
            QImage image;
            RenderCurrentScreen(image, ctx, g, Bitmaps(hi));
            ASSERT_EQ(image.width(), v.width);
            ASSERT_EQ(image.height(), v.height);
            // Mostly white, with ink in the content area and in the strip.
            int ink = 0, stripInk = 0;
            for (int y = 0; y < image.height(); y += 2) {
                for (int x = 0; x < image.width(); x += 2) {
                    if (image.pixel(x, y) == qRgb(255, 255, 255))
                        continue;
                    ++ink;
                    if (!(x >= ctx.screen.left && x < ctx.screen.right && y < ctx.screen.bottom))
                        ++stripInk;
                }
            }
            const int samples = (image.width() / 2) * (image.height() / 2);
            EXPECT_GT(ink, samples / 50) << v.name << " screen " << screen;
            EXPECT_LT(ink, samples / 2) << v.name << " screen " << screen;
            EXPECT_GT(stripInk, 100) << v.name << " screen " << screen;
            // The strip's key colour shows in the lit tab only.
            const int lit = screen == 0 ? 0 : screen == 1 ? 5 : screen + 1;
            for (int tab = 0; tab < 6; ++tab) {
                const Rect r = TabRect(ctx, tab);
                int key = 0;
                for (int y = r.top; y < r.bottom; ++y)
                    for (int x = r.left; x < r.right; ++x)
                        key += image.pixel(x, y) == qRgb(214, 233, 250);
                if (tab == lit) {
                    EXPECT_GT(key, r.Width() * r.Height() / 3) << v.name << " screen " << screen;
                } else {
                    EXPECT_EQ(key, 0) << v.name << " screen " << screen << " tab " << tab;
                }
            }
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
    EXPECT_EQ(target.pixel(1, 1), qRgb(255, 255, 255));
    EXPECT_EQ(target.pixel(2, 1), qRgb(10, 20, 30));
    EXPECT_EQ(target.pixel(3, 1), qRgb(255, 255, 255));
    EXPECT_EQ(target.pixel(4, 1), qRgb(214, 233, 251));
    EXPECT_EQ(target.pixel(0, 0), qRgb(255, 255, 255));
}

TEST(SatelliteTable, RowsShowTextsOrDash) {
    const gps::GpsState g = DriveFix();
    EXPECT_EQ(SatelliteRowTexts(g, 0), (QStringList{"02", "72", "040", "48"}));
    EXPECT_EQ(SatelliteRowTexts(g, 4), (QStringList{"15", "20", "300", "-"}));
    EXPECT_EQ(SatelliteRowTexts(g, 11), (QStringList{"-", "-", "-", "-"}));
    SatelliteDataTable table;
    table.Fill(g);
    EXPECT_EQ(table.Table()->rowCount(), 12);
    EXPECT_EQ(table.Table()->item(10, 0)->text(), "31");
    EXPECT_EQ(table.Table()->item(10, 3)->text(), "-");
}

}  // namespace
}  // namespace satwalk::screens

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
