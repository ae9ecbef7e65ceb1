// Any reference-point file: at most five slots come out active, the count
// matches the flags, and the slots written back read back with the same
// flags; no number read is non-finite, and a calibration from them has a
// finite scale and extent. The same bytes as a dialog edit read as some
// finite number.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "ReferencePoints.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace satwalk::map;
    const std::span<const char> text(reinterpret_cast<const char*>(data), size);
    ReferencePoints slots{};
    const int active = ParseReferenceText(text.first(std::min(size, kReferenceTextLimit)), slots);
    if (active < 0 || active > kReferenceSlotCount || active != CountActive(slots))
        __builtin_trap();

    for (const GeoPoint& p : slots) {
        if (!std::isfinite(p.latitude) || !std::isfinite(p.longitude) || !std::isfinite(p.imageX) ||
            !std::isfinite(p.imageY))
            __builtin_trap();
    }
    const MapCalibration calibration = ComputeCalibration(slots);
    if (calibration.IsValid()) {
        MapExtent extent;
        ComputeMapExtent(calibration, ImageSize{4000, 3000}, extent);
        if (!std::isfinite(calibration.latPerPixel[0]) ||
            !std::isfinite(calibration.lonPerPixel[0]) ||
            !std::isfinite(ScaleBarDistance(extent, 480, 100)))
            __builtin_trap();
    }

    const std::string written = FormatReferenceText(slots);
    if (written.size() < kReferenceTextLimit - 1) {
        ReferencePoints again{};
        const int back = ParseReferenceText(std::span<const char>(written), again);
        if (back != active)
            __builtin_trap();
        for (int i = 0; i < kReferenceSlotCount; ++i)
            if (again[i].valid != slots[i].valid)
                __builtin_trap();
    }

    const std::string_view edit(text.data(), text.size());
    if (!std::isfinite(ParseDialogNumber(edit, kLongitudeSecondsChars)))
        __builtin_trap();
    ReferenceDialogFields fields;
    fields.latitude = {std::string(edit), std::string(edit), std::string(edit)};
    GeoPoint slot;
    FieldsToSlot(fields, slot);
    (void)OpenReferenceDialog(slot);
    return 0;
}
