#include "RecordingCanvas.h"

namespace satwalk::screens {

using K = CanvasCall::Kind;

std::vector<CanvasCall> RecordingCanvas::OfKind(CanvasCall::Kind kind) const {
    std::vector<CanvasCall> out;
    for (const auto& c : calls_)
        if (c.kind == kind)
            out.push_back(c);
    return out;
}

const CanvasCall* RecordingCanvas::FindText(const std::string& text) const {
    for (const auto& c : calls_)
        if (c.kind == K::Text && c.text == text)
            return &c;
    return nullptr;
}

namespace {

// Hundredths of the font height a character takes in a common sans face.
int ProportionalWidth(unsigned char c) {
    if (c == ' ' || c == '.' || c == ',' || c == ':' || c == '\'' || c == '!' || c == 'i' ||
        c == 'l' || c == 'j')
        return 28;
    if (c == '/' || c == '-' || c == 'f' || c == 't' || c == 'r' || c == 'I')
        return 38;
    if (c == 'W' || c == 'M' || c == 'm' || c == 'w')
        return 88;
    if (c >= 'A' && c <= 'Z')
        return 66;
    return 56;  // digits, lower case, the rest
}

}  // namespace

Size RecordingCanvas::MeasureWith(Font font, std::string_view text, Metrics metrics) {
    int hundredths = 0;
    for (std::size_t i = 0; i < text.size();) {
        const auto c = static_cast<unsigned char>(text[i]);
        std::size_t len = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
        if (len >= 3) {
            hundredths += 100;  // CJK and the like are square
        } else if (metrics == Metrics::Fixed) {
            hundredths += 60;
        } else {
            hundredths += len == 1 ? ProportionalWidth(c) : 45;  // the degree sign
        }
        i += len;
    }
    return Size{hundredths * font.height / 100, font.height};
}

void RecordingCanvas::FillRect(Rect rect, Colour colour) {
    CanvasCall c{K::FillRect, rect, {}, {}, {}, {}, {}, {}, colour, {}, 0, {}, {}};
    calls_.push_back(std::move(c));
}

void RecordingCanvas::Line(Point from, Point to, Pen pen) {
    calls_.push_back(CanvasCall{K::Line, {}, from, to, {}, {}, pen, {}, {}, {}, 0, {}, {}});
}

void RecordingCanvas::Ellipse(Rect box, Pen pen, Brush brush) {
    calls_.push_back(CanvasCall{K::Ellipse, box, {}, {}, {}, {}, pen, brush, {}, {}, 0, {}, {}});
}

void RecordingCanvas::Rectangle(Rect box, Pen pen, Brush brush) {
    calls_.push_back(CanvasCall{K::Rectangle, box, {}, {}, {}, {}, pen, brush, {}, {}, 0, {}, {}});
}

void RecordingCanvas::Polygon(std::span<const Point> points, Pen pen, Brush brush) {
    calls_.push_back(CanvasCall{
        K::Polygon, {}, {}, {}, {}, {points.begin(), points.end()}, pen, brush, {}, {}, 0, {}, {}});
}

void RecordingCanvas::Polyline(std::span<const Point> points, Pen pen) {
    calls_.push_back(CanvasCall{
        K::Polyline, {}, {}, {}, {}, {points.begin(), points.end()}, pen, {}, {}, {}, 0, {}, {}});
}

void RecordingCanvas::DrawText(std::string_view text, Rect box, unsigned flags, Colour colour) {
    calls_.push_back(CanvasCall{
        K::Text, box, {}, {}, {}, {}, {}, {}, colour, font_, flags, std::string(text), {}});
}

void RecordingCanvas::Blit(const Bitmap& bitmap, Rect src, Point dst) {
    calls_.push_back(CanvasCall{K::Blit, src, {}, dst, {}, {}, {}, {}, {}, {}, 0, {}, bitmap.id});
}

void RecordingCanvas::StretchBlit(const Bitmap& bitmap, Rect src, Rect dst) {
    calls_.push_back(
        CanvasCall{K::StretchBlit, src, {}, {}, dst, {}, {}, {}, {}, {}, 0, {}, bitmap.id});
}

void RecordingCanvas::TransparentBlit(const Bitmap& bitmap, Rect src, Point dst, Colour key) {
    calls_.push_back(
        CanvasCall{K::TransparentBlit, src, {}, dst, {}, {}, {}, {}, key, {}, 0, {}, bitmap.id});
}

void RecordingCanvas::PixelBlock(Point dst, Size size, const std::uint32_t*, int) {
    calls_.push_back(CanvasCall{K::PixelBlock,
                                Rect{dst.x, dst.y, dst.x + size.width, dst.y + size.height},
                                {},
                                dst,
                                {},
                                {},
                                {},
                                {},
                                {},
                                {},
                                0,
                                {},
                                {}});
}

}  // namespace satwalk::screens
