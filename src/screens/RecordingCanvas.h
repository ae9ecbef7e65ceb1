// A canvas that draws nothing and keeps a log of every call with its
// geometry, for tests. Text is measured with a fixed, font-independent rule
// (each character 0.6 × the font height wide, wide characters 1 × the
// height; the height is the font height), so layouts are reproducible. The
// proportional rule gives each Latin character the width it has in a common
// sans-serif face instead, for checks that texts fit their places.
#pragma once

#include <string>
#include <vector>

#include "Canvas.h"

namespace satwalk::screens {

struct CanvasCall {
    enum class Kind {
        FillRect,
        Line,
        Ellipse,
        Rectangle,
        Polygon,
        Polyline,
        Text,
        Blit,
        StretchBlit,
        TransparentBlit,
        PixelBlock
    };
    Kind kind;
    Rect rect;                  // fill, ellipse box, rectangle, text box, blit src
    Point from, to;             // line ends; blit destination in `to`
    Rect dst;                   // stretch destination
    std::vector<Point> points;  // polygon, polyline
    Pen pen;
    Brush brush;
    Colour colour;       // fill, text, transparent key
    Font font;           // text
    unsigned flags = 0;  // text
    std::string text;
    BitmapId bitmap = BitmapId::StatusIcons;
};

class RecordingCanvas : public Canvas {
  public:
    enum class Metrics { Fixed, Proportional };
    explicit RecordingCanvas(Rect bounds, Metrics metrics = Metrics::Fixed)
        : bounds_(bounds), metrics_(metrics) {}

    const std::vector<CanvasCall>& Calls() const { return calls_; }
    void Clear() { calls_.clear(); }

    // Every call of a kind, in order.
    std::vector<CanvasCall> OfKind(CanvasCall::Kind kind) const;
    // The first text call drawing exactly `text`; null when none.
    const CanvasCall* FindText(const std::string& text) const;

    static Size MeasureWith(Font font, std::string_view text, Metrics metrics = Metrics::Fixed);

    Rect Bounds() const override { return bounds_; }
    void FillRect(Rect rect, Colour colour) override;
    void Line(Point from, Point to, Pen pen) override;
    void Ellipse(Rect box, Pen pen, Brush brush) override;
    void Rectangle(Rect box, Pen pen, Brush brush) override;
    void Polygon(std::span<const Point> points, Pen pen, Brush brush) override;
    void Polyline(std::span<const Point> points, Pen pen) override;
    void SelectFont(Font font) override { font_ = font; }
    Font SelectedFont() const override { return font_; }
    Size MeasureText(std::string_view text) override { return MeasureWith(font_, text, metrics_); }
    void DrawText(std::string_view text, Rect box, unsigned flags, Colour colour) override;
    void Blit(const Bitmap& bitmap, Rect src, Point dst) override;
    void StretchBlit(const Bitmap& bitmap, Rect src, Rect dst) override;
    void TransparentBlit(const Bitmap& bitmap, Rect src, Point dst, Colour key) override;
    void PixelBlock(Point dst, Size size, const std::uint32_t* pixels, int stride) override;

  private:
    Rect bounds_;
    Metrics metrics_;
    Font font_{};
    std::vector<CanvasCall> calls_;
};

}  // namespace satwalk::screens
