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
    std::uint64_t key = 0;  // the point's place in the store, when drawn through the index
};

bool Overlaps(const Rect& a, const Rect& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

// The screen cells, and which point's icon each shows: the first in the
// store's order of those that fall in it.
class CellGrid {
  public:
    CellGrid(const Rect& bounds)
        : bounds_(bounds),
          width_(bounds.right - bounds.left),
          height_(bounds.bottom - bounds.top),
          columns_((width_ + kPoiIconSize - 1) / kPoiIconSize),
          rows_((height_ + kPoiIconSize - 1) / kPoiIconSize),
          cells_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_)) {}

    // Whether an icon at (px, py) falls on the canvas; a point on the edge
    // counts in the edge's cell.
    bool InView(double px, double py) const {
        const double cx = px - bounds_.left;
        const double cy = py - bounds_.top;
        return cx > -kHalf && cx < width_ + kHalf && cy > -kHalf && cy < height_ + kHalf;
    }
    bool AllOutside(const ScreenBox& b) const {
        return b.right - bounds_.left <= -kHalf || b.left - bounds_.left >= width_ + kHalf ||
               b.bottom - bounds_.top <= -kHalf || b.top - bounds_.top >= height_ + kHalf;
    }
    // Whole pixels towards zero, as the icons were always placed.
    int Column(double px) const {
        return std::clamp(static_cast<int>(px) - bounds_.left, 0, width_ - 1) / kPoiIconSize;
    }
    int Row(double py) const {
        return std::clamp(static_cast<int>(py) - bounds_.top, 0, height_ - 1) / kPoiIconSize;
    }
    // The cell every point of the box falls in, or -1.
    int CellOfBox(const ScreenBox& b) const {
        if (!InView(b.left, b.top) || !InView(b.right, b.bottom))
            return -1;
        const int column = Column(b.left);
        const int row = Row(b.top);
        if (column != Column(b.right) || row != Row(b.bottom))
            return -1;
        return row * columns_ + column;
    }
    int CellOf(double px, double py) const { return Row(py) * columns_ + Column(px); }
    std::size_t CellCount() const { return cells_.size(); }

    CellEntry& operator[](int index) { return cells_[static_cast<std::size_t>(index)]; }
    std::vector<std::uint32_t> occupied;  // cell indexes

  private:
    static constexpr double kHalf = kPoiIconSize / 2;
    Rect bounds_;
    int width_, height_, columns_, rows_;
    std::vector<CellEntry> cells_;
};

// The icon cell of a group's point: the file's name decides first, each
// point's own symbol after.
int IconCellOf(const PoiGroup& group, const PoiRecord& r) {
    const std::uint32_t category = group.category != 0 ? group.category : r.category;
    return category < static_cast<std::uint32_t>(kPoiIconCells) ? static_cast<int>(category) : 0;
}

// Every point projected, in the store's order: the first to reach a cell
// takes it.
void PlaceEach(CellGrid& grid, PoiDrawCount& count, const PoiStore& store,
               const PoiProjection& project) {
    for (std::uint32_t g = 0; g < store.Count(); ++g) {
        const PoiGroup& group = store.At(g);
        const auto place = [&](double latitude, double longitude, std::uint32_t i) {
            double px = 0, py = 0;
            if (!project(latitude, longitude, px, py) || !grid.InView(px, py))
                return;
            ++count.inView;
            const int index = grid.CellOf(px, py);
            CellEntry& cell = grid[index];
            if (cell.record != nullptr)
                return;
            const PoiRecord& record = group.points.At(i);
            cell = CellEntry{&record, static_cast<int>(px), static_cast<int>(py),
                             IconCellOf(group, record)};
            grid.occupied.push_back(static_cast<std::uint32_t>(index));
        };
        ForEachPosition(group, place);
    }
}

// The same cells through the index: a branch in one cell is counted whole
// and offers its smallest key; the cells are then put in the order of their
// keys, which is the order PlaceEach takes them in.
void PlaceByIndex(CellGrid& grid, PoiDrawCount& count, const PoiStore& store,
                  const PoiProjection& project, const PoiIndex& index,
                  const PoiBoxProjection& projectBox) {
    const auto& entries = index.entries();
    const auto& nodes = index.nodes();
    constexpr std::uint32_t kNone = UINT32_MAX;
    std::vector<std::uint32_t> best(grid.CellCount(), kNone);  // per cell: its entry so far
    const auto offer = [&](int cell, std::uint32_t entry) {
        std::uint32_t& b = best[static_cast<std::size_t>(cell)];
        if (b == kNone)
            grid.occupied.push_back(static_cast<std::uint32_t>(cell));
        if (b == kNone || entries[entry].key < entries[b].key)
            b = entry;
    };
    std::vector<std::uint32_t> stack{0};
    while (!stack.empty()) {
        const PoiIndex::Node& node = nodes[stack.back()];
        stack.pop_back();
        ScreenBox box;
        if (projectBox(node.box, box)) {
            if (grid.AllOutside(box))
                continue;
            const int cell = grid.CellOfBox(box);
            if (cell >= 0) {
                count.inView += node.end - node.begin;
                offer(cell, node.first);
                continue;
            }
        }
        if (node.child != 0) {
            stack.push_back(node.child + 1);
            stack.push_back(node.child);
            continue;
        }
        for (std::uint32_t i = node.begin; i < node.end; ++i) {
            double px = 0, py = 0;
            if (!project(entries[i].latitude, entries[i].longitude, px, py) || !grid.InView(px, py))
                continue;
            ++count.inView;
            offer(grid.CellOf(px, py), i);
        }
    }
    // Each cell's own point, placed as PlaceEach places it.
    for (const std::uint32_t cell : grid.occupied) {
        const PoiIndex::Entry& e = entries[best[cell]];
        const PoiGroup& group = store.At(static_cast<std::uint32_t>(e.key >> 32));
        const PoiRecord& record = group.points.At(static_cast<std::uint32_t>(e.key));
        double px = 0, py = 0;
        project(e.latitude, e.longitude, px, py);
        grid[static_cast<int>(cell)] = CellEntry{
            &record, static_cast<int>(px), static_cast<int>(py), IconCellOf(group, record), e.key};
    }
    std::sort(grid.occupied.begin(), grid.occupied.end(),
              [&grid](std::uint32_t a, std::uint32_t b) {
                  return grid[static_cast<int>(a)].key < grid[static_cast<int>(b)].key;
              });
}

}  // namespace

PoiDrawCount DrawPois(screens::Canvas& canvas, const PoiStore& store, const PoiProjection& project,
                      const screens::Bitmap* icons, const PoiDrawStyle& style,
                      const PoiIndex* index, const PoiBoxProjection& projectBox) {
    PoiDrawCount count;
    const Rect bounds = canvas.Bounds();
    if (store.Empty() || bounds.right <= bounds.left || bounds.bottom <= bounds.top)
        return count;
    CellGrid grid(bounds);
    if (index != nullptr && !index->Empty() && projectBox)
        PlaceByIndex(grid, count, store, project, *index, projectBox);
    else
        PlaceEach(grid, count, store, project);
    const std::vector<std::uint32_t>& occupied = grid.occupied;
    const int half = kPoiIconSize / 2;

    if (icons != nullptr) {
        for (const std::uint32_t cell : occupied) {
            const CellEntry& c = grid[static_cast<int>(cell)];
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
    for (const std::uint32_t cell : occupied) {
        const CellEntry& c = grid[static_cast<int>(cell)];
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
