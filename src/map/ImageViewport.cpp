#include "ImageViewport.h"

#include <algorithm>
#include <cmath>

namespace satwalk::map {

namespace {

// Screen coordinates stay far inside int whatever the zoom: a picture
// scrolled a billion pixels away is simply not visible.
constexpr double kFarAway = 1.0e9;

int RoundedEdge(double v) {
    return static_cast<int>(std::lround(std::clamp(v, -kFarAway, kFarAway)));
}

}  // namespace

VisiblePart ComputeVisiblePart(ImageSize image, double currentWidth, double currentHeight,
                               PointF scrollCentre, screens::Rect view) {
    VisiblePart part;
    if (image.width <= 0 || image.height <= 0 || !(currentWidth > 0.0) || !(currentHeight > 0.0) ||
        view.Width() <= 0 || view.Height() <= 0)
        return part;
    const double w = image.width, h = image.height;
    const PointF span{currentWidth, currentHeight};
    const PointF viewCentre{view.left + view.Width() * 0.5, view.top + view.Height() * 0.5};
    part.displayOrigin = {viewCentre.x - scrollCentre.x / w * currentWidth,
                          viewCentre.y - scrollCentre.y / h * currentHeight};
    if (!std::isfinite(part.displayOrigin.x) || !std::isfinite(part.displayOrigin.y))
        return part;

    screens::Rect& d = part.destination;
    d.left = std::max(view.left, RoundedEdge(part.displayOrigin.x));
    d.top = std::max(view.top, RoundedEdge(part.displayOrigin.y));
    d.right = std::min(view.right, RoundedEdge(part.displayOrigin.x + currentWidth));
    d.bottom = std::min(view.bottom, RoundedEdge(part.displayOrigin.y + currentHeight));
    if (d.Width() <= 0 || d.Height() <= 0) {
        d = {};
        return part;
    }
    const PointF topLeft =
        DisplayToImage(span, part.displayOrigin, {}, {1.0 * d.left, 1.0 * d.top}, image);
    const PointF bottomRight =
        DisplayToImage(span, part.displayOrigin, {}, {1.0 * d.right, 1.0 * d.bottom}, image);
    part.source = {std::clamp(topLeft.x, 0.0, w), std::clamp(topLeft.y, 0.0, h),
                   std::clamp(bottomRight.x, 0.0, w), std::clamp(bottomRight.y, 0.0, h)};
    part.empty = !(part.source.Width() > 0.0 && part.source.Height() > 0.0);
    return part;
}

}  // namespace satwalk::map
