// Draws the POI store as a person can read it, whatever its size: the
// canvas is cut into cells of an icon's size and each cell shows the icon
// of the first point that falls in it (store order), the rest counted, not
// drawn; names go to the right of the icons only while few enough points
// are in view, and only where they do not cover a name already drawn. So a
// repaint costs one projection per point and at most one icon per cell,
// and a world view of a million points is a carpet of icons, not one black
// blob of labels. With an index the cost is a walk of its branches instead.
#pragma once

#include <cstdint>
#include <functional>

#include "Canvas.h"
#include "PoiIndex.h"
#include "PoiStore.h"

namespace satwalk::poi {

inline constexpr int kPoiIconSize = 16;
inline constexpr int kPoiIconCells = 31;  // cell i is category i, 0 uncategorised
// Names are drawn only while at most this many points are in view.
inline constexpr std::uint32_t kPoiLabelLimit = 200;

// Signed degrees to screen pixels; false skips the point (no calibrated
// map is shown).
using PoiProjection = std::function<bool(double latitude, double longitude, double& x, double& y)>;

struct PoiDrawStyle {
    int textSize = 30;  // the screens' BaseTextHeight: labels are (2 × it) / 3 + 1 high
    screens::Colour text = screens::kBlack;
};

// What one paint showed.
struct PoiDrawCount {
    std::uint32_t inView = 0;  // points whose icon falls on the canvas
    std::uint32_t icons = 0;   // cells drawn: the others in view are counted only
    std::uint32_t labels = 0;
};

// `icons` is the 496 × 16 icon strip, or null when it could not be loaded
// (the labels are still drawn). With an index of the store and a box
// projection the same picture is drawn by walking the index (see
// PoiIndex.h); without them every point is projected.
PoiDrawCount DrawPois(screens::Canvas& canvas, const PoiStore& store, const PoiProjection& project,
                      const screens::Bitmap* icons, const PoiDrawStyle& style = {},
                      const PoiIndex* index = nullptr, const PoiBoxProjection& projectBox = {});

}  // namespace satwalk::poi
