#include "PoiStore.h"

#include "PoiCategories.h"
#include "PoiGpx.h"

namespace satwalk::poi {

PoiImport ImportPoiFile(PoiStore& store, const std::string& path) {
    PoiImport result;
    PoiGroup group;
    // The content decides: GPX waypoints, else the CSV format.
    const std::uint64_t stored = PoiPointCount(store);
    const std::uint64_t room = stored < kMaxPois ? kMaxPois - stored : 0;
    if (track::SniffTrackFilePath(path) == track::TrackFileKind::Gpx) {
        result.read = ReadPoiGpx(
            path, group.points, room < kMaxPoisPerFile ? room : kMaxPoisPerFile, &result.truncated);
    } else {
        const PoiRead read = ReadPoiCsv(
            path,
            [&group](const PoiRecord& r) {
                group.points.Append(r);
                group.positions.push_back({r.latitude, r.longitude});
            },
            room < kMaxPoisPerFile ? room : kMaxPoisPerFile);
        result.read = read != PoiRead::OpenFailed;
        result.truncated = read == PoiRead::Truncated;
    }
    if (!result.read)
        return result;
    group.name = PoiBaseName(path);
    group.category = LookUpPoiCategory(group.name);
    result.category = group.category;
    result.name = group.name;
    result.points = group.points.Count();
    store.Append(std::move(group));
    return result;
}

void DeleteAllPois(PoiStore& store) {
    for (std::uint32_t i = 0; i < store.Count(); ++i) {
        store.At(i).points.Clear();
        store.At(i).positions = {};
    }
    store.Clear();
}

std::uint32_t PoiPointCount(const PoiStore& store) {
    std::uint32_t n = 0;
    for (std::uint32_t i = 0; i < store.Count(); ++i) n += store.At(i).points.Count();
    return n;
}

}  // namespace satwalk::poi
