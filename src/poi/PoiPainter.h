// Draws the POI store: for every point its category's icon centred on it
// and its name to the right, the label's bottom level with the icon's.
// Points whose icon and label both fall outside the canvas are skipped
// before any text is measured, so a store of 100,000 points with a few
// hundred on screen costs little more than projecting them.
#pragma once

#include <functional>

#include "Canvas.h"
#include "PoiStore.h"

namespace satwalk::poi {

inline constexpr int kPoiIconSize = 16;
inline constexpr int kPoiIconCells = 31;  // cell i is category i, 0 uncategorised

// Signed degrees to screen pixels; false skips the point (no calibrated
// map is shown).
using PoiProjection = std::function<bool(double latitude, double longitude, double& x, double& y)>;

struct PoiDrawStyle {
    int textSize = 30;  // the screens' BaseTextHeight: labels are (2 × it) / 3 + 1 high
    screens::Colour text = screens::kBlack;
};

// `icons` is the 496 × 16 icon strip, or null when it could not be loaded
// (the labels are still drawn).
void DrawPois(screens::Canvas& canvas, const PoiStore& store, const PoiProjection& project,
              const screens::Bitmap* icons, const PoiDrawStyle& style = {});

}  // namespace satwalk::poi
