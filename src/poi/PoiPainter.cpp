#include "PoiPainter.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace satwalk::poi {

using screens::Point;
using screens::Rect;

namespace {

// The first point of a cell: where its icon goes and what it is.
struct CellEntry {
    const PoiRecord* record = nullptr;
    int x = 0, y = 0;
    int iconCell = 0;
};

bool Overlaps(const Rect& a, const Rect& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

}  // namespace

PoiDrawCount DrawPois(screens::Canvas& canvas, const PoiStore& store, const PoiProjection& project,
                      const screens::Bitmap* icons, const PoiDrawStyle& style) {
    PoiDrawCount count;
    const Rect bounds = canvas.Bounds();
    const int width = bounds.right - bounds.left;
    const int height = bounds.bottom - bounds.top;
    if (store.Empty() || width <= 0 || height <= 0)
        return count;
    const int half = kPoiIconSize / 2;
    const int columns = (width + kPoiIconSize - 1) / kPoiIconSize;
    const int rows = (height + kPoiIconSize - 1) / kPoiIconSize;
    std::vector<CellEntry> cells(static_cast<std::size_t>(columns) *
                                 static_cast<std::size_t>(rows));
    std::vector<std::uint32_t> occupied;  // cell indexes in the order they were first taken

    for (std::uint32_t g = 0; g < store.Count(); ++g) {
        const PoiGroup& group = store.At(g);
        // The file's name decides the icon first, each point's own symbol after.
        const auto iconCell = [&group](const PoiRecord& r) {
            const std::uint32_t category = group.category != 0 ? group.category : r.category;
            return category < static_cast<std::uint32_t>(kPoiIconCells) ? static_cast<int>(category)
                                                                        : 0;
        };
        const auto place = [&](double latitude, double longitude, std::uint32_t i) {
            double px = 0, py = 0;
            if (!project(latitude, longitude, px, py))
                return;
            // A point whose icon misses the canvas shows nothing; one on
            // the edge counts in the edge's cell.
            const double cx = px - bounds.left;
            const double cy = py - bounds.top;
            if (!(cx > -half && cx < width + half && cy > -half && cy < height + half))
                return;
            ++count.inView;
            // Whole pixels towards zero, as the icons were always placed.
            const int x = static_cast<int>(px) - bounds.left;
            const int y = static_cast<int>(py) - bounds.top;
            const int column = std::clamp(x, 0, width - 1) / kPoiIconSize;
            const int row = std::clamp(y, 0, height - 1) / kPoiIconSize;
            const auto index = static_cast<std::uint32_t>(row * columns + column);
            CellEntry& cell = cells[index];
            if (cell.record != nullptr)
                return;
            const PoiRecord& record = group.points.At(i);
            cell = CellEntry{&record, x + bounds.left, y + bounds.top, iconCell(record)};
            occupied.push_back(index);
        };
        if (group.positions.size() == group.points.Count()) {
            std::uint32_t i = 0;
            for (const PoiPosition& p : group.positions) place(p.latitude, p.longitude, i++);
        } else {
            std::uint32_t i = 0;
            group.points.ForEachSpan([&](std::span<const PoiRecord> span) {
                for (const PoiRecord& r : span) place(r.latitude, r.longitude, i++);
            });
        }
    }

    if (icons != nullptr) {
        for (const std::uint32_t index : occupied) {
            const CellEntry& c = cells[index];
            const Rect src{c.iconCell * kPoiIconSize, 0, (c.iconCell + 1) * kPoiIconSize,
                           kPoiIconSize};
            canvas.Blit(*icons, src, Point{c.x - half, c.y - half});
        }
    }
    count.icons = static_cast<std::uint32_t>(occupied.size());
    if (count.inView > kPoiLabelLimit)
        return count;

    const screens::Font previous = canvas.SelectedFont();
    const int fontHeight = (2 * style.textSize) / 3 + 1;
    canvas.SelectFont(screens::Font{fontHeight, 400});
    std::vector<Rect> placed;
    for (const std::uint32_t index : occupied) {
        const CellEntry& c = cells[index];
        if (c.record->name[0] == '\0')
            continue;
        const std::string_view name(c.record->name, std::strlen(c.record->name));
        const screens::Size size = canvas.MeasureText(name);
        const Rect box{c.x + half + 1, c.y - size.height + half, c.x + size.width + half + 1,
                       c.y + half};
        bool free = true;
        for (const Rect& other : placed) free = free && !Overlaps(box, other);
        if (!free)
            continue;
        placed.push_back(box);
        canvas.DrawText(name, box, screens::kTextCenter | screens::kTextVCenter, style.text);
    }
    count.labels = static_cast<std::uint32_t>(placed.size());
    canvas.SelectFont(previous);
    return count;
}

}  // namespace satwalk::poi
