#include "Settings.h"

#include <cerrno>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace satwalk::shell {

namespace {

template <std::size_t N>
bool InList(std::uint32_t value, const std::uint32_t (&list)[N]) {
    return std::find(std::begin(list), std::end(list), value) != std::end(list);
}

std::uint32_t Flag(std::uint32_t v) {
    return v != 0 ? 1u : 0u;
}

std::string DropTrailingSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

}  // namespace

void SettingsFromRecord(const OptionsRecord& r, ProgramSettings& s) {
    const ProgramSettings builtIn;
    s.showMap = Flag(r.showMap);
    s.showTrack = Flag(r.showTrack);
    s.showReferencePoints = Flag(r.showReferencePoints);
    s.showPoi = Flag(r.showPoi);
    s.bluetoothReceiver = Flag(r.bluetoothReceiver);
    s.baudIndex = r.baudIndex < std::size(common::kBaudRates) ? r.baudIndex : builtIn.baudIndex;
    s.comPort = r.comPort <= 255 ? r.comPort : builtIn.comPort;
    s.autoBluetooth = Flag(r.autoBluetooth);
    s.trackLogOn = Flag(r.trackLogOn);
    s.trackIntervalMs =
        InList(r.trackIntervalMs, kTrackIntervals) ? r.trackIntervalMs : builtIn.trackIntervalMs;
    // Any limit is kept; the screens light the first cell for an odd one.
    s.speedAlarmLimit = r.speedAlarmLimit;
    s.speedAlarmOn = Flag(r.speedAlarmOn);
    s.units = r.units <= 2 ? r.units : builtIn.units;
    s.backlightAlwaysOn = Flag(r.backlightAlwaysOn);
    s.recordNmea = Flag(r.recordNmea);
    s.allTalkers = r.allTalkers == 1 ? 1 : 0;
    s.bluetoothName = WideSlotToUtf8(r.bluetoothName, kNameChars);
    s.bluetoothAddress = r.bluetoothAddress;
    s.receiverConfigured = !s.bluetoothName.empty() && s.bluetoothAddress != 0;
    s.storageRoot = WideSlotToUtf8(r.storageLocation, kPathChars);
    for (int i = 0; i < kRecentMapSlots; ++i) {
        s.recentMaps[static_cast<std::size_t>(i)] = WideSlotToUtf8(r.recentMaps[i], kPathChars);
    }
}

void RecordFromSettings(const ProgramSettings& s, OptionsRecord& r) {
    r.showMap = s.showMap;
    r.showTrack = s.showTrack;
    r.showReferencePoints = s.showReferencePoints;
    r.showPoi = s.showPoi;
    r.bluetoothReceiver = s.bluetoothReceiver;
    r.baudIndex = s.baudIndex;
    r.comPort = s.comPort;
    r.autoBluetooth = s.autoBluetooth;
    r.trackLogOn = s.trackLogOn;
    r.trackIntervalMs = s.trackIntervalMs;
    r.speedAlarmLimit = s.speedAlarmLimit;
    r.speedAlarmOn = s.speedAlarmOn;
    r.units = s.units;
    r.backlightAlwaysOn = s.backlightAlwaysOn;
    r.recordNmea = s.recordNmea;
    // A byte that older files may hold anything in: changed only by the
    // setting itself.
    if (s.allTalkers != 0)
        r.allTalkers = 1;
    else if (r.allTalkers == 1)
        r.allTalkers = 0;
    Utf8ToWideSlot(s.bluetoothName, r.bluetoothName, kNameChars);
    r.bluetoothAddress = s.bluetoothAddress;
    Utf8ToWideSlot(s.storageRoot, r.storageLocation, kPathChars);
    for (int i = 0; i < kRecentMapSlots; ++i) {
        Utf8ToWideSlot(s.recentMaps[static_cast<std::size_t>(i)], r.recentMaps[i], kPathChars);
    }
}

bool OptionsStore::LoadOptions(ProgramSettings& settings) {
    SetOptionDefaults(record_);
    if (ReadOptionsFile(path_, record_, 5) == 0)
        return false;
    SettingsFromRecord(record_, settings);
    return true;
}

bool OptionsStore::SaveOptions(const ProgramSettings& settings) {
    RecordFromSettings(settings, record_);
    std::error_code ec;
    const std::filesystem::path folder = std::filesystem::path(path_).parent_path();
    if (!folder.empty())
        std::filesystem::create_directories(folder, ec);
    errno = 0;
    if (WriteOptionsFile(path_, record_) == 1) {
        saveError_ = 0;
        return true;
    }
    saveError_ = errno != 0 ? errno : (ec ? ec.value() : EIO);
    return false;
}

StorageFolders MakeStorageFolders(const std::string& root) {
    StorageFolders f;
    f.root = root;
    f.base = root + "/My GPS";
    f.referencePoints = f.base + "/Reference Points";
    f.trackLog = f.base + "/Track Log";
    f.nmea = f.base + "/NMEA0183";
    return f;
}

std::string ResolveStorageRoot(const std::string& configured, const std::string& documents) {
    namespace fs = std::filesystem;
    std::error_code ec;
    const std::string docs = DropTrailingSlash(documents);
    fs::create_directories(docs, ec);
    // Only an absolute path names a place; anything else would land wherever
    // the program happened to be started.
    if (configured.empty() || configured[0] != '/')
        return docs;
    const std::string root = DropTrailingSlash(configured);
    if (fs::exists(root, ec))
        return root;
    if (fs::create_directory(root, ec) && !ec)
        return root;
    return docs;
}

void PrepareStorageFolders(const StorageFolders& f) {
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::file_status st = fs::status(f.base, ec);
    if (!fs::exists(st)) {
        fs::create_directory(f.base, ec);
    } else if (!fs::is_directory(st)) {
        return;
    }
    for (const std::string* p : {&f.referencePoints, &f.trackLog, &f.nmea}) {
        if (!fs::exists(*p, ec))
            fs::create_directory(*p, ec);
    }
}

}  // namespace satwalk::shell
