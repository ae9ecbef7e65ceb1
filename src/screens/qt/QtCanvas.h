// The Canvas on a QPainter over an off-screen QImage: a screen paints the
// whole image, and the window shows it in one copy.
#pragma once

#include <QFont>
#include <QImage>
#include <QPainter>
#include <QString>
#include <string>
#include <vector>

#include "Canvas.h"
#include "Screens.h"

namespace satwalk::screens {

// The bitmaps a canvas draws: the program's own set of one pixel density,
// loaded at window creation, and any bitmap added while the program runs
// (map images, POI icons). Colour-keyed variants are prepared once.
class ScreenBitmaps {
  public:
    // Loads every bitmap of the program's own set from its resources,
    // falling back to `folder` (the bitmaps folder of the source tree) when a
    // file is missing there. On failure returns false and sets `failedId` to
    // the first bitmap that could not be loaded or has the wrong size.
    bool Load(bool highResolution, const QString& folder, BitmapId* failedId);

    // A null image for an id that names nothing.
    const QImage& Image(BitmapId id) const;
    // The bitmap with pixels of `key` made transparent (computed on first use).
    const QImage& Keyed(BitmapId id, Colour key) const;
    void Set(BitmapId id, QImage image);
    // Adds a bitmap after every one known so far and returns its id.
    BitmapId Add(QImage image);

  private:
    struct Entry {
        QImage image;
        QImage keyed;
        Colour keyedWith;
    };
    mutable std::vector<Entry> entries_ = std::vector<Entry>(kBuiltInBitmapCount);
};

// The face every screen font uses: a Simplified Chinese system face.
QString ScreenFontFamily();

class QtCanvas final : public Canvas {
  public:
    // Paints onto `target` (kept alive by the caller) with `bitmaps`.
    QtCanvas(QImage& target, const ScreenBitmaps& bitmaps);
    ~QtCanvas() override;

    Rect Bounds() const override;
    void FillRect(Rect rect, Colour colour) override;
    void Line(Point from, Point to, Pen pen) override;
    void Line(PointF from, Point to, Pen pen) override;
    void Ellipse(Rect box, Pen pen, Brush brush) override;
    void Rectangle(Rect box, Pen pen, Brush brush) override;
    void Polygon(std::span<const Point> points, Pen pen, Brush brush) override;
    void Polyline(std::span<const Point> points, Pen pen) override;
    void PolygonF(std::span<const PointF> points, Pen pen, Brush brush) override;
    void SelectFont(Font font) override;
    Font SelectedFont() const override { return font_; }
    Size MeasureText(std::string_view text) override;
    void DrawText(std::string_view text, Rect box, unsigned flags, Colour colour) override;
    void Blit(const Bitmap& bitmap, Rect src, Point dst) override;
    void StretchBlit(const Bitmap& bitmap, Rect src, Rect dst) override;
    void TransparentBlit(const Bitmap& bitmap, Rect src, Point dst, Colour key) override;
    void PixelBlock(Point dst, Size size, const std::uint32_t* pixels, int stride) override;
    // Kept only on a canvas of a whole number of device pixels a pixel above
    // one: at a pixel to a pixel every picture is drawn as ever.
    bool DrawKeptPicture(std::uint64_t key, Rect view, PointF shift,
                         const PicturePainter& paint) override;

    // For layers that paint with Qt themselves (the loaded map image).
    QPainter& painter() { return painter_; }

  private:
    void ApplyPen(Pen pen);
    void ApplyBrush(Brush brush);

    QImage& target_;
    const ScreenBitmaps& bitmaps_;
    QPainter painter_;
    // Bitmaps drawn larger than their pixels by a ratio that is not whole
    // are smoothed; a whole ratio repeats each pixel, which keeps the icons'
    // edges as sharp as at 100 %.
    bool smoothBitmaps_ = false;
    Font font_{};
};

}  // namespace satwalk::screens

namespace satwalk::screens {

// The size of a picture in the pixels it is painted in: its device pixels
// over its device pixel ratio, which "界面缩放" sets.
QSize LogicalImageSize(const QImage& image);

// Sets up a context for a screen of width × height pixels at `dpi`: the base
// text height, the layout measured with the real fonts and the bitmap
// handles of the matching set. The caller sets the rest (screen, units, ...).
void PrepareScreenContext(ScreenContext& ctx, int width, int height, int dpi,
                          const ScreenBitmaps& bitmaps);

// Paints the current screen into `image` (made the screen's size when it is
// not), the whole off-screen picture the window then shows in one copy.
void RenderCurrentScreen(QImage& image, ScreenContext& ctx, const gps::GpsState& gps,
                         const ScreenBitmaps& bitmaps);

}  // namespace satwalk::screens
