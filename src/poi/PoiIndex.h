// A k-d tree over the POI store's positions, so that a paint of a million
// points costs a walk of the tree rather than a projection per point: a
// branch whose points all fall in one screen cell is counted whole and
// shows its first point (in the store's order), one that lies off the
// screen is skipped, and only the points of branches that straddle a
// cell's edge are projected one by one.
//
// The index is a copy of the positions, built once after the store changes
// (about 24 bytes a point and a few per cent more for the branches).
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "PoiStore.h"

namespace satwalk::poi {

struct PoiBox {
    double minLatitude = 0, maxLatitude = 0;
    double minLongitude = 0, maxLongitude = 0;
};

struct ScreenBox {
    double left = 0, top = 0, right = 0, bottom = 0;
};

// The screen box that holds the projection of every position in a degree
// box; false when the projection cannot promise that (each point of the
// box is then projected on its own).
using PoiBoxProjection = std::function<bool(const PoiBox& box, ScreenBox& out)>;

class PoiIndex {
  public:
    // A position and its place in the store: group << 32 | point.
    struct Entry {
        double latitude = 0;
        double longitude = 0;
        std::uint64_t key = 0;
    };
    struct Node {
        PoiBox box;
        std::uint32_t begin = 0, end = 0;  // its entries
        std::uint32_t first = 0;           // the entry of the smallest key
        std::uint32_t child = 0;           // its two children, from here on; 0 for a leaf
    };
    static constexpr std::uint32_t kLeafSize = 16;

    // Indexes the store's finite positions (those a projection can place).
    void Build(const PoiStore& store);
    void Clear();
    bool Empty() const { return nodes_.empty(); }

    const std::vector<Entry>& entries() const { return entries_; }
    const std::vector<Node>& nodes() const { return nodes_; }  // [0] is the root
    std::size_t MemoryBytes() const;

  private:
    void BuildInto(std::uint32_t slot, std::uint32_t begin, std::uint32_t end);

    std::vector<Entry> entries_;
    std::vector<Node> nodes_;
};

}  // namespace satwalk::poi
