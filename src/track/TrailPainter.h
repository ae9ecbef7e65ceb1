// Draws a trail (a TrackList) as one polyline in list order with a 6 × 6
// red square on every vertex, through the screens' Canvas.
//
// A trail can hold a million points, so the painter draws what the screen
// can show instead: points that land on the same pixel as the one before
// are drawn once, and a stretch of points that all lie beyond one edge of
// the view (where no segment between them can be seen) is drawn as its
// first and last point. A segment that the markers of its two ends cover
// entirely (both ends in the view, at most 4 pixels apart for a thin pen)
// is left out of the lines, as the markers are drawn over it anyway. The
// markers are gathered into a mask of the view and drawn as the rectangles
// that cover it. The result is kept and only built again when the trail,
// the transform or the view changes.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "Canvas.h"
#include "TrackPoint.h"

namespace satwalk::track {

// Trail pixels to screen pixels, per axis: screen = point × scale + offset,
// truncated. The world map's view and a calibrated map's zoom and scroll
// are both of this form.
struct TrailTransform {
    double scaleX = 1, offsetX = 0;
    double scaleY = 1, offsetY = 0;
    friend bool operator==(const TrailTransform&, const TrailTransform&) = default;
};

struct TrailStyle {
    screens::Pen line{screens::kBlack, 1};
    screens::Colour marker = screens::Rgb(255, 0, 0);
    friend bool operator==(const TrailStyle&, const TrailStyle&) = default;
};

// One painter per trail drawn (it keeps that trail's simplified form).
class TrailPainter {
  public:
    // Draws `trail` into `view` (markers are clipped to it). The caller
    // holds the lock that guards the trail.
    void Draw(screens::Canvas& canvas, const TrackList& trail, const TrailTransform& transform,
              screens::Rect view, const TrailStyle& style = {});

    // What the last Draw drew, and whether it had to build it: the
    // simplified vertices (each gets a marker), the pieces of line drawn,
    // the marker rectangles.
    std::span<const screens::Point> Polyline() const { return polyline_; }
    std::size_t StrokeCount() const { return strokeEnds_.size(); }
    std::span<const screens::Point> Stroke(std::size_t i) const;
    std::span<const screens::Rect> MarkerRects() const { return markers_; }
    bool Rebuilt() const { return rebuilt_; }
    std::size_t MemoryBytes() const;

  private:
    void Rebuild(const TrackList& trail, const TrailTransform& transform, screens::Rect view,
                 int penWidth);
    void BuildStrokes(screens::Rect view, int penWidth);
    void BuildMarkers(screens::Rect view);

    // The key of the kept result.
    const TrackList* list_ = nullptr;
    std::uint64_t stamp_ = 0;
    TrailTransform transform_;
    screens::Rect view_;
    int penWidth_ = -1;

    bool rebuilt_ = false;
    std::vector<screens::Point> polyline_;
    std::vector<screens::Point> strokes_;    // the pieces of line, one after another
    std::vector<std::uint32_t> strokeEnds_;  // where each piece ends in strokes_
    std::vector<screens::Rect> markers_;
    std::vector<std::uint8_t> mask_;
    std::vector<screens::Rect> open_, next_;
};

}  // namespace satwalk::track
