#include "PoiGpx.h"

#include <cstring>

#include "PoiCategories.h"

namespace satwalk::poi {

namespace {

void Store(char (&to)[kPoiTextBytes], const std::string& text) {
    std::size_t n = std::min(text.size(), kPoiTextBytes - 1);
    if (n < text.size()) {
        while (n > 0 && (static_cast<unsigned char>(text[n]) & 0xC0) == 0x80) --n;
    }
    std::memcpy(to, text.data(), n);
    to[n] = '\0';
}

}  // namespace

PoiRecord PoiFromWaypoint(const track::TrackWaypoint& w) {
    PoiRecord r;
    r.latitude = w.latitude;
    r.longitude = w.longitude;
    Store(r.name, w.name);
    for (const std::string* text : {&w.symbol, &w.type}) {
        std::string key = *text;
        if (!key.empty() && (r.category = LookUpPoiCategory(key)) != 0)
            break;
    }
    return r;
}

bool ReadPoiGpx(const std::string& path, PoiList& list, std::uint64_t maxPoints, bool* truncated) {
    PoiList read;
    bool cut = false;
    const track::TrackFileRead result =
        track::ReadTrackFile(path, {}, [&read, &cut, maxPoints](const track::TrackWaypoint& w) {
            if (read.Count() < maxPoints)
                read.Append(PoiFromWaypoint(w));
            else
                cut = true;  // counted, not kept: the budget holds
        });
    if (truncated != nullptr)
        *truncated = cut;
    if (result.kind != track::TrackFileKind::Gpx ||
        (result.result != track::TrackFileResult::Read &&
         result.result != track::TrackFileResult::Truncated))
        return false;
    for (std::uint32_t i = 0; i < read.Count(); ++i) list.Append(read.At(i));
    return true;
}

}  // namespace satwalk::poi
