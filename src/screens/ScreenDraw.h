// Small drawing shortcuts shared by the screen sources (not part of the API).
#pragma once

#include <string>

#include "Screens.h"

namespace satwalk::screens {

// Draws a single line with its top-left corner at (x, y); returns its size.
inline Size TextAt(Canvas& canvas, const std::string& s, int x, int y, Colour colour) {
    const Size size = canvas.MeasureText(s);
    canvas.DrawText(s, Rect{x, y, x + size.width, y + size.height}, kTextLeft | kTextTop, colour);
    return size;
}

// Draws a single line centred on (cx, cy).
inline void TextCentredOn(Canvas& canvas, const std::string& s, int cx, int cy, Colour colour,
                          int widen = 0) {
    const Size size = canvas.MeasureText(s);
    const Rect box{cx - size.width / 2 - widen, cy - size.height / 2,
                   cx - size.width / 2 + size.width + widen, cy - size.height / 2 + size.height};
    canvas.DrawText(s, box, kTextCenter | kTextVCenter, colour);
}

inline Rect CircleBox(int cx, int cy, int r) {
    return Rect{cx - r, cy - r, cx + r, cy + r};
}

// The compass centre arrow: the course arrow's shape at any angle.
void DrawArrowAt(Canvas& canvas, double courseDegrees, int size, int cx, int cy, int tail);

}  // namespace satwalk::screens
