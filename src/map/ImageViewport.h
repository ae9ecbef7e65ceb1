// Which part of a loaded map image the view shows and where: the image is
// displayed `currentWidth` × `currentHeight` screen pixels large with the
// image pixel `scrollCentre` at the view's centre. Only this part is ever
// scaled when the map is painted, however large the image. Plain arithmetic.
#pragma once

#include "Canvas.h"
#include "MapGeometry.h"

namespace satwalk::map {

// A rectangle in image pixels; fractional, right and bottom exclusive.
struct RectF {
    double left = 0.0, top = 0.0, right = 0.0, bottom = 0.0;
    constexpr double Width() const { return right - left; }
    constexpr double Height() const { return bottom - top; }
    friend constexpr bool operator==(const RectF&, const RectF&) = default;
};

struct VisiblePart {
    bool empty = true;  // no pixel of the picture falls in the view
    // Screen position of the image's top-left corner at the current zoom:
    // the display origin of DisplayToImage and ImageToDisplay.
    PointF displayOrigin;
    RectF source;               // image pixels shown
    screens::Rect destination;  // where they go: whole pixels inside the view
};

// The picture's edges are rounded to whole screen pixels and clipped to the
// view; the source is the image under that destination, kept inside the
// image.
VisiblePart ComputeVisiblePart(ImageSize image, double currentWidth, double currentHeight,
                               PointF scrollCentre, screens::Rect view);

}  // namespace satwalk::map
