#include "PoiPainter.h"

#include <cstring>

namespace satwalk::poi {

using screens::Point;
using screens::Rect;

namespace {

constexpr double kFar = 1e8;

int ToPixel(double v) {
    if (!(v > -kFar))
        return static_cast<int>(-kFar);
    return v > kFar ? static_cast<int>(kFar) : static_cast<int>(v);
}

}  // namespace

void DrawPois(screens::Canvas& canvas, const PoiStore& store, const PoiProjection& project,
              const screens::Bitmap* icons, const PoiDrawStyle& style) {
    if (store.Empty())
        return;
    const screens::Font previous = canvas.SelectedFont();
    const int fontHeight = (2 * style.textSize) / 3 + 1;
    canvas.SelectFont(screens::Font{fontHeight, 400});
    const Rect bounds = canvas.Bounds();
    // No label is wider than 19 wide characters nor taller than two lines:
    // a point farther out than that cannot show anything.
    const int widest = 2 * 19 * fontHeight;
    const int tallest = 2 * fontHeight;
    const int half = kPoiIconSize / 2;

    for (std::uint32_t g = 0; g < store.Count(); ++g) {
        const PoiGroup& group = store.At(g);
        const auto source = [&group](std::uint32_t own) {
            // The file's name decides first, each point's own symbol after.
            const std::uint32_t category = group.category != 0 ? group.category : own;
            const int cell = category < static_cast<std::uint32_t>(kPoiIconCells)
                                 ? static_cast<int>(category)
                                 : 0;
            return Rect{cell * kPoiIconSize, 0, (cell + 1) * kPoiIconSize, kPoiIconSize};
        };
        group.points.ForEachSpan([&](std::span<const PoiRecord> span) {
            for (const PoiRecord& r : span) {
                double px = 0, py = 0;
                if (!project(r.latitude, r.longitude, px, py))
                    continue;
                const int x = ToPixel(px), y = ToPixel(py);
                if (x + widest + half + 1 <= bounds.left || x - half >= bounds.right ||
                    y + half <= bounds.top || y + half - tallest >= bounds.bottom)
                    continue;
                if (icons != nullptr)
                    canvas.Blit(*icons, source(r.category), Point{x - half, y - half});
                if (r.name[0] == '\0')
                    continue;
                const std::string_view name(r.name, std::strlen(r.name));
                const screens::Size size = canvas.MeasureText(name);
                const Rect box{x + half + 1, y - size.height + half, x + size.width + half + 1,
                               y + half};
                canvas.DrawText(name, box, screens::kTextCenter | screens::kTextVCenter,
                                style.text);
            }
        });
    }
    canvas.SelectFont(previous);
}

}  // namespace satwalk::poi
