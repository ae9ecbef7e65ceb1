// Any options file: the record fills from its bytes, the settings come out
// sane, and a save of them fits the record again.
#include <cstddef>
#include <cstdint>
#include <span>

#include "OptionsRecord.h"
#include "Settings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace satwalk::shell;
    OptionsRecord record{};
    SetOptionDefaults(record);
    ReadOptionsBytes(std::span<const std::uint8_t>(data, size), record);
    ProgramSettings settings;
    SettingsFromRecord(record, settings);
    if (settings.units > 2 || settings.baudIndex > 5)
        __builtin_trap();
    RecordFromSettings(settings, record);
    ProgramSettings again;
    SettingsFromRecord(record, again);
    if (again.storageRoot != settings.storageRoot)
        __builtin_trap();
    return 0;
}
