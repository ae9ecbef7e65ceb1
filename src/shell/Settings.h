// The program's settings between start-up and exit. Each one lives here,
// changed by the menus and dialogs; the options record is only the staging
// area for the file, filled back at a confirmed exit.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "BaudRates.h"
#include "OptionsRecord.h"

namespace satwalk::shell {

struct ProgramSettings {
    // Built-in values: the record defaults, except that the alarm is off
    // until a threshold is chosen.
    std::uint32_t showMap = 1;
    std::uint32_t showTrack = 1;
    std::uint32_t showReferencePoints = 1;
    std::uint32_t showPoi = 1;
    std::uint32_t bluetoothReceiver = 1;
    std::uint32_t baudIndex = 0;
    std::uint32_t comPort = 0;
    std::uint32_t trackLogOn = 0;
    std::uint32_t trackIntervalMs = 10000;
    std::uint32_t speedAlarmLimit = 50;
    std::uint32_t speedAlarmOn = 0;
    std::uint32_t units = 0;
    std::uint32_t autoBluetooth = 0;
    std::uint32_t backlightAlwaysOn = 1;
    std::uint32_t recordNmea = 0;
    std::uint32_t allTalkers = 0;  // accept all satellite systems
    // Not in the options record: "同时保存 GPX 轨迹" lives in a file of its own
    // (TrackGpxOption.h), named here once it is known.
    std::uint32_t saveGpxTrack = 0;
    std::string saveGpxTrackFile;
    // Not in the record either: "界面缩放" (UiScale.h), 0 automatic or a
    // percentage, and its file.
    std::uint32_t uiScale = 0;
    std::string uiScaleFile;
    // Not in the record either: the interface's language ("zh_CN", "en" or
    // "auto", LanguageOption.h) and its file, read at start-up.
    std::string language = "zh_CN";
    std::string languageFile;
    std::string bluetoothName;           // receiver-name global
    std::uint64_t bluetoothAddress = 0;  // receiver-address global
    bool receiverConfigured = false;     // both of the above are set
    std::string storageRoot;             // UTF-8 path; empty: documents folder
    std::array<std::string, kRecentMapSlots> recentMaps;
};

inline constexpr std::uint32_t kTrackIntervals[] = {10000, 20000, 30000, 60000};
inline constexpr std::uint32_t kAlarmLimits[] = {50, 60, 70, 80, 90, 100, 110, 120};

// The options file: the record loaded at start-up is kept, so that bytes the
// program does not interpret (reserved, unused) go back to the file as read.
class OptionsStore {
  public:
    explicit OptionsStore(std::string path) : path_(std::move(path)) {}

    // Defaults, then the file (5 attempts); when something was read, every
    // field goes into `settings`. Returns true when the file was read.
    bool LoadOptions(ProgramSettings& settings);

    // Copies `settings` back into the record and overwrites the file, making
    // its folder first when it is missing. False when it could not be
    // written, with the errno in saveError().
    bool SaveOptions(const ProgramSettings& settings);
    int saveError() const { return saveError_; }

    const std::string& path() const { return path_; }
    const OptionsRecord& record() const { return record_; }

  private:
    std::string path_;
    OptionsRecord record_{};
    int saveError_ = 0;
};

// Field by field between the record and the settings. Values a program
// could not work with (a unit, baud index or track period outside its
// list) are replaced by their built-in values on the way in.
void SettingsFromRecord(const OptionsRecord& record, ProgramSettings& settings);
void RecordFromSettings(const ProgramSettings& settings, OptionsRecord& record);

// The folders under the storage root.
struct StorageFolders {
    std::string root;
    std::string base;             // root/My GPS
    std::string referencePoints;  // root/My GPS/Reference Points
    std::string trackLog;         // root/My GPS/Track Log
    std::string nmea;             // root/My GPS/NMEA0183
};

StorageFolders MakeStorageFolders(const std::string& root);

// The storage root to use: the configured one when it exists or can be
// made, else the documents folder (made when missing). A trailing slash is
// dropped.
std::string ResolveStorageRoot(const std::string& configured, const std::string& documents);

// Creates the folder tree: all four when the base is missing, the missing
// sub-folders when it is a folder, nothing when it is a file. Failures are
// ignored.
void PrepareStorageFolders(const StorageFolders& folders);

}  // namespace satwalk::shell
