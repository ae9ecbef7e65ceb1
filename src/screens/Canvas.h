// The small drawing interface every screen paints through. It mirrors the
// handful of device-context operations the screens need; the application
// backs it with a QPainter on an off-screen image, the tests with a recorder.
//
// Coordinates are integer pixels, y grows downward. Rectangles are
// half-open: right and bottom are one past the last pixel, as in the
// original device-context calls, so an ellipse in (l, t, r, b) is r − l wide.
#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

namespace satwalk::screens {

struct Colour {
    std::uint8_t r = 0, g = 0, b = 0;
    friend constexpr bool operator==(Colour, Colour) = default;
};
constexpr Colour Rgb(int r, int g, int b) {
    return Colour{static_cast<std::uint8_t>(r), static_cast<std::uint8_t>(g),
                  static_cast<std::uint8_t>(b)};
}
inline constexpr Colour kBlack = Rgb(0, 0, 0);
inline constexpr Colour kWhite = Rgb(255, 255, 255);
inline constexpr Colour kMagenta = Rgb(255, 0, 255);
// Background of the tool strips, keyed out when they are drawn.
inline constexpr Colour kStripKey = Rgb(214, 233, 250);

struct Point {
    int x = 0, y = 0;
    friend constexpr bool operator==(Point, Point) = default;
};

// A point between pixels, for outlines worked out in fractions of a pixel.
struct PointF {
    double x = 0, y = 0;
};

struct Size {
    int width = 0, height = 0;
    friend constexpr bool operator==(Size, Size) = default;
};

struct Rect {
    int left = 0, top = 0, right = 0, bottom = 0;
    constexpr int Width() const { return right - left; }
    constexpr int Height() const { return bottom - top; }
    friend constexpr bool operator==(Rect, Rect) = default;
};

// A pen of width 0 or with `null` set draws nothing (the stock null pen).
struct Pen {
    Colour colour = kBlack;
    int width = 1;
    bool null = false;
    friend constexpr bool operator==(Pen, Pen) = default;
};
inline constexpr Pen kNullPen{kBlack, 0, true};

struct Brush {
    Colour colour = kWhite;
    bool null = false;
    friend constexpr bool operator==(Brush, Brush) = default;
};
inline constexpr Brush kNullBrush{kWhite, true};

// A screen font: the system face at a cell height in pixels and a weight
// (0 default, 400 normal, 700 bold).
struct Font {
    int height = 15;
    int weight = 0;
    friend constexpr bool operator==(Font, Font) = default;
};

// Text placement inside a box, combinable.
enum TextFlag : unsigned {
    kTextLeft = 0,
    kTextTop = 0,
    kTextCenter = 1,
    kTextRight = 2,
    kTextVCenter = 4,
    kTextBottom = 8,
};

// Names a bitmap the canvas can draw. The program's own set has the first
// kBuiltInBitmapCount values, named below; bitmaps loaded while the program
// runs (map images, POI icons) are numbered after them by whoever loads them.
struct BitmapId {
    int value = 0;

    static const BitmapId StatusIcons, SmallSymbol, World, SquareSymbol, MapOverlay,
        ToolStripPortrait, ToolStripLandscape, AlarmStrip, Markers;
    friend constexpr bool operator==(BitmapId, BitmapId) = default;
};
inline constexpr BitmapId BitmapId::StatusIcons{0};
inline constexpr BitmapId BitmapId::SmallSymbol{1};
inline constexpr BitmapId BitmapId::World{2};
inline constexpr BitmapId BitmapId::SquareSymbol{3};
inline constexpr BitmapId BitmapId::MapOverlay{4};
inline constexpr BitmapId BitmapId::ToolStripPortrait{5};
inline constexpr BitmapId BitmapId::ToolStripLandscape{6};
inline constexpr BitmapId BitmapId::AlarmStrip{7};
inline constexpr BitmapId BitmapId::Markers{8};
inline constexpr int kBuiltInBitmapCount = 9;

// A handle to a bitmap the canvas knows; width and height are its pixel size.
struct Bitmap {
    BitmapId id;
    int width = 0;
    int height = 0;
};

class Canvas {
  public:
    virtual ~Canvas() = default;

    // The drawable area; nothing is ever drawn outside it.
    virtual Rect Bounds() const = 0;

    virtual void FillRect(Rect rect, Colour colour) = 0;
    virtual void Line(Point from, Point to, Pen pen) = 0;
    // A line from a fractional point: a canvas that places lines between its
    // pixels takes it as it is, so a part of a line lies exactly on the
    // whole; this one rounds it.
    virtual void Line(PointF from, Point to, Pen pen) {
        Line(Point{static_cast<int>(std::lround(from.x)), static_cast<int>(std::lround(from.y))},
             to, pen);
    }
    // Ellipse inscribed in the box, outlined with pen and filled with brush.
    virtual void Ellipse(Rect box, Pen pen, Brush brush) = 0;
    // Rectangle outlined with pen and filled with brush.
    virtual void Rectangle(Rect box, Pen pen, Brush brush) = 0;
    virtual void Polygon(std::span<const Point> points, Pen pen, Brush brush) = 0;
    virtual void Polyline(std::span<const Point> points, Pen pen) = 0;
    // A polygon of fractional points: a canvas with more device pixels than
    // its own (a window drawn larger) places them between its pixels; this
    // one rounds them to its pixels, dropping repeats.
    virtual void PolygonF(std::span<const PointF> points, Pen pen, Brush brush) {
        std::vector<Point> rounded;
        rounded.reserve(points.size());
        for (const PointF& v : points) {
            const Point p{static_cast<int>(std::lround(v.x)), static_cast<int>(std::lround(v.y))};
            if (rounded.empty() || !(rounded.back() == p))
                rounded.push_back(p);
        }
        if (rounded.size() >= 3)
            Polygon(rounded, pen, brush);
    }

    // A picture that only moves with the view, such as the world map's land:
    // the canvas point p shows the picture's point p - `shift`, and
    // `paint(canvas, shift, area)` draws the picture's `area` in the
    // picture's own coordinates with the shift it was given (close to
    // `shift`, on the canvas's device pixels). A canvas that keeps pictures
    // paints more than the view once and copies from that while `key` stays
    // the same and the view within it, and returns true; this one keeps none
    // and returns false, and the caller draws as ever.
    using PicturePainter = std::function<void(Canvas&, PointF shift, Rect area)>;
    virtual bool DrawKeptPicture(std::uint64_t /*key*/, Rect /*view*/, PointF /*shift*/,
                                 const PicturePainter& /*paint*/) {
        return false;
    }

    // Font state: texts are measured and drawn in the selected font.
    virtual void SelectFont(Font font) = 0;
    virtual Font SelectedFont() const = 0;
    // The box a single line of UTF-8 text needs in the selected font.
    virtual Size MeasureText(std::string_view text) = 0;
    // One line of UTF-8 text placed in the box by `flags` (TextFlag), with a
    // transparent background.
    virtual void DrawText(std::string_view text, Rect box, unsigned flags, Colour colour) = 0;

    // Copies src of the bitmap to dst unchanged.
    virtual void Blit(const Bitmap& bitmap, Rect src, Point dst) = 0;
    // Copies src of the bitmap scaled into dst.
    virtual void StretchBlit(const Bitmap& bitmap, Rect src, Rect dst) = 0;
    // Copies src of the bitmap to dst, leaving pixels of colour `key` out.
    virtual void TransparentBlit(const Bitmap& bitmap, Rect src, Point dst, Colour key) = 0;
    // Writes a block of 0xRRGGBB pixels, `stride` pixels per row, at dst.
    virtual void PixelBlock(Point dst, Size size, const std::uint32_t* pixels, int stride) = 0;
};

}  // namespace satwalk::screens
