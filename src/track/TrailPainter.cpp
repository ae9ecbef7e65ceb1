#include "TrailPainter.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace satwalk::track {

using screens::Point;
using screens::Rect;

namespace {

constexpr int kMarkerBefore = 3;  // a marker covers x − 3 .. x + 2
constexpr int kMarkerSize = 6;
constexpr double kFar = 1e8;  // beyond any screen; keeps the int conversion defined

// Truncated toward zero; NaN and far values end at ±kFar.
int ToPixel(double v) {
    if (!(v > -kFar))  // also NaN
        return static_cast<int>(-kFar);
    if (v > kFar)
        return static_cast<int>(kFar);
    return static_cast<int>(v);
}

}  // namespace

std::span<const Point> TrailPainter::Stroke(std::size_t i) const {
    const std::uint32_t begin = i == 0 ? 0 : strokeEnds_[i - 1];
    return std::span<const Point>(strokes_).subspan(begin, strokeEnds_[i] - begin);
}

std::size_t TrailPainter::MemoryBytes() const {
    return (polyline_.capacity() + strokes_.capacity()) * sizeof(Point) +
           strokeEnds_.capacity() * sizeof(std::uint32_t) + markers_.capacity() * sizeof(Rect) +
           mask_.capacity() + (open_.capacity() + next_.capacity()) * sizeof(Rect);
}

void TrailPainter::Draw(screens::Canvas& canvas, const TrackList& trail,
                        const TrailTransform& transform, Rect view, const TrailStyle& style) {
    const int penWidth = style.line.null ? 0 : style.line.width;
    rebuilt_ = list_ != &trail || stamp_ != trail.Stamp() || !(transform_ == transform) ||
               !(view_ == view) || penWidth_ != penWidth;
    if (rebuilt_)
        Rebuild(trail, transform, view, penWidth);
    for (std::size_t i = 0; i < strokeEnds_.size(); ++i) canvas.Polyline(Stroke(i), style.line);
    for (const Rect& r : markers_) canvas.FillRect(r, style.marker);
}

void TrailPainter::Rebuild(const TrackList& trail, const TrailTransform& t, Rect view,
                           int penWidth) {
    list_ = &trail;
    stamp_ = trail.Stamp();
    transform_ = t;
    view_ = view;
    penWidth_ = penWidth;
    polyline_.clear();

    // Beyond this box neither a line nor a marker reaches into the view.
    const int margin = std::max(penWidth, kMarkerSize) + 2;
    const int left = view.left - margin, right = view.right + margin;
    const int top = view.top - margin, bottom = view.bottom + margin;

    bool havePrevious = false;
    Point previous;
    unsigned runSides = 0;  // sides shared by every point of the run outside
    bool holding = false;   // the run's latest point, not yet drawn
    Point held;
    trail.ForEachSpan([&](std::span<const TrackPoint> span) {
        for (const TrackPoint& p : span) {
            const Point q{ToPixel(p.x * t.scaleX + t.offsetX), ToPixel(p.y * t.scaleY + t.offsetY)};
            if (havePrevious && q == previous)
                continue;
            previous = q;
            havePrevious = true;
            const unsigned sides = (q.x < left ? 1u : 0u) | (q.x >= right ? 2u : 0u) |
                                   (q.y < top ? 4u : 0u) | (q.y >= bottom ? 8u : 0u);
            if ((runSides & sides) != 0) {
                runSides &= sides;
                held = q;
                holding = true;
                continue;
            }
            if (holding) {
                polyline_.push_back(held);
                holding = false;
            }
            polyline_.push_back(q);
            runSides = sides;
        }
    });
    if (holding)
        polyline_.push_back(held);
    BuildStrokes(view, penWidth);
    BuildMarkers(view);
}

void TrailPainter::BuildStrokes(Rect view, int penWidth) {
    strokes_.clear();
    strokeEnds_.clear();
    // How far apart two vertices may be for their markers to hide the line
    // between them: each marker reaches 3 pixels back and 2 on, and a pen
    // of width w strays w / 2 from the ideal line.
    const int reach = penWidth <= 1 ? 4 : penWidth == 2 ? 3 : 0;
    const auto fullMarker = [&](Point p) {
        return p.x - kMarkerBefore >= view.left &&
               p.x - kMarkerBefore + kMarkerSize <= view.right && p.y - kMarkerBefore >= view.top &&
               p.y - kMarkerBefore + kMarkerSize <= view.bottom;
    };
    for (std::size_t i = 1; i < polyline_.size(); ++i) {
        const Point a = polyline_[i - 1], b = polyline_[i];
        if (std::abs(b.x - a.x) <= reach && std::abs(b.y - a.y) <= reach && fullMarker(a) &&
            fullMarker(b))
            continue;
        if (strokes_.empty() || !(strokes_.back() == a)) {  // a new piece starts at a
            strokes_.push_back(a);
            strokeEnds_.push_back(0);
        }
        strokes_.push_back(b);
        strokeEnds_.back() = static_cast<std::uint32_t>(strokes_.size());
    }
}

void TrailPainter::BuildMarkers(Rect view) {
    markers_.clear();
    const int w = view.Width(), h = view.Height();
    if (w <= 0 || h <= 0)
        return;
    mask_.assign(static_cast<std::size_t>(w) * static_cast<std::size_t>(h), 0);
    int firstRow = h, lastRow = -1;
    for (const Point& p : polyline_) {
        const int x0 = std::max(p.x - kMarkerBefore - view.left, 0);
        const int x1 = std::min(p.x - kMarkerBefore + kMarkerSize - view.left, w);
        const int y0 = std::max(p.y - kMarkerBefore - view.top, 0);
        const int y1 = std::min(p.y - kMarkerBefore + kMarkerSize - view.top, h);
        if (x0 >= x1 || y0 >= y1)
            continue;
        std::uint8_t* row = &mask_[static_cast<std::size_t>(y0) * w + x0];
        if (x1 - x0 == kMarkerSize) {
            static constexpr std::uint8_t kSix[kMarkerSize] = {1, 1, 1, 1, 1, 1};
            for (int y = y0; y < y1; ++y, row += w) std::memcpy(row, kSix, kMarkerSize);
        } else {
            for (int y = y0; y < y1; ++y, row += w)
                std::memset(row, 1, static_cast<std::size_t>(x1 - x0));
        }
        firstRow = std::min(firstRow, y0);
        lastRow = std::max(lastRow, y1 - 1);
    }
    // Runs of marked pixels, row by row; a run with the same ends as one in
    // the row above extends that rectangle downward.
    open_.clear();
    for (int y = firstRow; y <= lastRow + 1; ++y) {
        next_.clear();
        std::size_t o = 0;
        const std::uint8_t* row = y <= lastRow ? &mask_[static_cast<std::size_t>(y) * w] : nullptr;
        for (int x = 0; row != nullptr && x < w;) {
            if (row[x] == 0) {
                ++x;
                continue;
            }
            const int start = x;
            while (x < w && row[x] != 0) ++x;
            const int l = start + view.left, r = x + view.left;
            while (o < open_.size() && open_[o].left < l) markers_.push_back(open_[o++]);
            if (o < open_.size() && open_[o].left == l && open_[o].right == r) {
                Rect grown = open_[o++];
                grown.bottom = y + view.top + 1;
                next_.push_back(grown);
            } else {
                next_.push_back(Rect{l, y + view.top, r, y + view.top + 1});
            }
        }
        while (o < open_.size()) markers_.push_back(open_[o++]);
        open_.swap(next_);
    }
}

}  // namespace satwalk::track
