// The POI store: one group per imported file, kept until "delete all" or
// the end of the program (it is saved nowhere).
//
// Threads: the user-interface thread only; the commands that change it run
// there too, so drawing reads it without a lock.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "CursorList.h"
#include "PoiCsv.h"

namespace satwalk::poi {

// A point's degrees alone: what a repaint reads of every point, packed
// eight to the cache line's worth of records it would otherwise walk.
struct PoiPosition {
    double latitude = 0;
    double longitude = 0;
};

struct PoiGroup {
    PoiList points;
    // The points' positions in the same order, kept by ImportPoiFile; a
    // group built by hand may leave it empty (drawing then reads the points).
    std::vector<PoiPosition> positions;
    std::uint32_t category = 0;  // row of PoiCategoryTable, 0 for none; the icon cell
    std::string name;            // the category's name, or the file's base name
};

using PoiStore = track::CursorList<PoiGroup>;

// Calls visit(latitude, longitude, index) for each of the group's points in
// order: from its positions where it keeps them, else from its records.
template <typename Visit>
void ForEachPosition(const PoiGroup& group, Visit&& visit) {
    std::uint32_t i = 0;
    if (group.positions.size() == group.points.Count()) {
        for (const PoiPosition& p : group.positions) visit(p.latitude, p.longitude, i++);
    } else {
        group.points.ForEachSpan([&](std::span<const PoiRecord> span) {
            for (const PoiRecord& r : span) visit(r.latitude, r.longitude, i++);
        });
    }
}

struct PoiImport {
    bool read = false;  // false: kStrOpenPoiFileFailed, nothing added
    std::uint32_t category = 0;
    std::string name;
    std::uint32_t points = 0;
    bool truncated = false;  // the file had more records than the budget left room for
};

// Reads one file into a group of its own, its category looked up from the
// file's base name, and appends the group to the store (an empty file adds
// an empty group). A file reads up to kMaxPoisPerFile records, and up to
// kMaxPois in the whole store.
PoiImport ImportPoiFile(PoiStore& store, const std::string& path);

// Every group's points, then the groups.
void DeleteAllPois(PoiStore& store);

std::uint32_t PoiPointCount(const PoiStore& store);

}  // namespace satwalk::poi
