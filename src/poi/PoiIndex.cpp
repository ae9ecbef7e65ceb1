#include "PoiIndex.h"

#include <algorithm>
#include <cmath>

namespace satwalk::poi {

void PoiIndex::Clear() {
    entries_ = {};
    nodes_ = {};
}

void PoiIndex::Build(const PoiStore& store) {
    Clear();
    std::size_t total = 0;
    for (std::uint32_t g = 0; g < store.Count(); ++g) total += store.At(g).points.Count();
    entries_.reserve(total);
    for (std::uint32_t g = 0; g < store.Count(); ++g) {
        const PoiGroup& group = store.At(g);
        const auto add = [this, g](double latitude, double longitude, std::uint32_t i) {
            if (std::isfinite(latitude) && std::isfinite(longitude))
                entries_.push_back({latitude, longitude, std::uint64_t{g} << 32 | i});
        };
        ForEachPosition(group, add);
    }
    if (entries_.empty())
        return;
    nodes_.reserve(2 * (entries_.size() / (kLeafSize / 2) + 1));
    nodes_.emplace_back();
    BuildInto(0, 0, static_cast<std::uint32_t>(entries_.size()));
}

// Fills nodes_[slot] for entries [begin, end), its branches appended after
// the nodes there are (indexes only: the vector may grow meanwhile).
void PoiIndex::BuildInto(std::uint32_t slot, std::uint32_t begin, std::uint32_t end) {
    Node node;
    node.begin = begin;
    node.end = end;
    node.first = begin;
    PoiBox& box = node.box;
    box = {entries_[begin].latitude, entries_[begin].latitude, entries_[begin].longitude,
           entries_[begin].longitude};
    for (std::uint32_t i = begin; i < end; ++i) {
        const Entry& e = entries_[i];
        box.minLatitude = std::min(box.minLatitude, e.latitude);
        box.maxLatitude = std::max(box.maxLatitude, e.latitude);
        box.minLongitude = std::min(box.minLongitude, e.longitude);
        box.maxLongitude = std::max(box.maxLongitude, e.longitude);
        if (e.key < entries_[node.first].key)
            node.first = i;
    }
    const bool onePlace =
        box.minLatitude == box.maxLatitude && box.minLongitude == box.maxLongitude;
    if (end - begin > kLeafSize && !onePlace) {
        // Split the wider side at its median.
        const bool byLatitude =
            box.maxLatitude - box.minLatitude > box.maxLongitude - box.minLongitude;
        const std::uint32_t middle = begin + (end - begin) / 2;
        std::nth_element(entries_.begin() + begin, entries_.begin() + middle,
                         entries_.begin() + end, [byLatitude](const Entry& a, const Entry& b) {
                             return byLatitude ? a.latitude < b.latitude
                                               : a.longitude < b.longitude;
                         });
        node.child = static_cast<std::uint32_t>(nodes_.size());
        nodes_.resize(nodes_.size() + 2);
        BuildInto(node.child, begin, middle);
        BuildInto(node.child + 1, middle, end);
        // The split moved the entries: the smallest key is one of the two halves'.
        const std::uint32_t a = nodes_[node.child].first;
        const std::uint32_t b = nodes_[node.child + 1].first;
        node.first = entries_[a].key < entries_[b].key ? a : b;
    }
    nodes_[slot] = node;
}

std::size_t PoiIndex::MemoryBytes() const {
    return entries_.capacity() * sizeof(Entry) + nodes_.capacity() * sizeof(Node);
}

}  // namespace satwalk::poi
