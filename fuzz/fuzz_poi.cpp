// Any bytes as a POI file, in both encodings and fed in two pieces: every
// name and note comes out as terminated, valid UTF-8 of at most 19 source
// bytes' worth, no coordinate is non-finite, a budget of records is never
// passed, and a store of the group copies and clears cleanly.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "PoiCategories.h"
#include "PoiStore.h"

using namespace satwalk::poi;

namespace {

void CheckText(const char (&text)[kPoiTextBytes]) {
    const void* end = std::memchr(text, '\0', kPoiTextBytes);
    if (end == nullptr ||
        !IsValidUtf8(std::string_view(text, static_cast<const char*>(end) - text)))
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::size_t split = data[0] % size;
    const char* text = reinterpret_cast<const char*>(data);
    for (const PoiEncoding encoding : {PoiEncoding::Utf8, PoiEncoding::Gb18030}) {
        PoiGroup group;
        {
            PoiCsvParser parser(encoding, group.points);
            parser.Feed(text, split);
            parser.Feed(text + split, size - split);
            parser.Finish();
        }
        for (std::uint32_t i = 0; i < group.points.Count(); ++i) {
            CheckText(group.points.At(i).name);
            CheckText(group.points.At(i).note);
            if (!std::isfinite(group.points.At(i).latitude) ||
                !std::isfinite(group.points.At(i).longitude))
                std::abort();
        }
        // A budget of records: never more, and the parser says it is full
        // exactly when the whole read gave more.
        constexpr std::uint64_t kBudget = 4;
        std::uint64_t given = 0;
        PoiCsvParser budgeted(
            encoding, [&given](const PoiRecord&) { ++given; }, kBudget);
        budgeted.Feed(text, size);
        if (!budgeted.Full())
            budgeted.Finish();
        if (given > kBudget || budgeted.Full() != (group.points.Count() > kBudget))
            std::abort();
        PoiStore store;
        store.Append(group);
        if (store.At(0).points.Count() != group.points.Count())
            std::abort();
        DeleteAllPois(store);
    }
    // The bytes as a file's base name.
    std::string name = PoiBaseName(std::string_view(text, size));
    if (LookUpPoiCategory(name) > kPoiCategoryCount || !IsValidUtf8(name))
        std::abort();
    return 0;
}
