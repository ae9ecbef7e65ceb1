// The elevation and speed profiles of the statistics dialog, drawn through
// the screens' Canvas: a caption, a frame, the curve over distance scaled to
// the box, the highest and lowest value at the left in bands of their own
// (the curve keeps out of them) and the distance at the right, in the unit
// system. A stretch without values breaks the curve.
#pragma once

#include <span>

#include "Canvas.h"
#include "TrackStatistics.h"

namespace satwalk::track {

enum class ProfileKind { Elevation, Speed };

// Where the curve goes inside `box` with text of `textHeight` pixels: below
// the caption's line and above the distance's.
screens::Rect ProfilePlotArea(screens::Rect box, int textHeight);
// The rows the curve spans inside the plot: below the highest value's label
// and above the lowest's, when the plot is tall enough to spare them.
screens::Rect ProfileCurveArea(screens::Rect box, int textHeight);

void DrawTrackProfile(screens::Canvas& canvas, screens::Rect box,
                      std::span<const ProfileSample> samples, ProfileKind kind, int units,
                      int textHeight);

}  // namespace satwalk::track
