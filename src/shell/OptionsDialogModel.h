// The options dialog ("选项") as data: its check boxes and storage list, the
// layout of its controls, and what OK does, in order. A Qt dialog shows an
// OptionsDialog and calls these on the UI thread; the effects on the running
// program go through OptionsEffects.
#pragma once

#include <string>
#include <vector>

#include "Canvas.h"
#include "Settings.h"

namespace satwalk::shell {

inline constexpr int kIdGeneralHeading = 1151;
inline constexpr int kIdAutoBluetooth = 1144;
inline constexpr int kIdKeepAwake = 1146;
inline constexpr int kIdRecordNmea = 1147;
inline constexpr int kIdStorageLabel = 1150;
inline constexpr int kIdStorageCombo = 1148;
inline constexpr int kIdAllTalkers = 1152;
inline constexpr int kIdRelay = 1153;         // "NMEA 转发" (kStrRelayOption)
inline constexpr int kIdRelayAddress = 1154;  // its listening address

struct OptionsDialog {
    bool autoBluetooth = false;        // 1144
    bool keepAwake = false;            // 1146
    bool recordNmea = false;           // 1147
    bool allTalkers = false;           // 1152: accept all satellite systems
    bool relay = false;                // 1153: the NMEA relay
    std::string relayAddress;          // 1154: "[HOST:]PORT" it listens on
    std::vector<std::string> storage;  // 1148: storage roots
    int storageSelection = -1;
};

// The storage root offered for a mounted removable volume.
std::string VolumeStorageRoot(const std::string& mountPoint);

// The dialog as it opens: the flags, then the default root followed by the
// roots of the mounted removable volumes (`mountPoints`), each once; the
// current root selected.
OptionsDialog OpenOptionsDialog(const ProgramSettings& settings, const std::string& defaultRoot,
                                const std::vector<std::string>& mountPoints);

// The rectangles of the controls for a client width and BaseTextHeight, in
// the order 1151, 1144, 1146, 1147, 1150, 1148, then the all-talkers check
// box, a row below the storage list, and the relay's check box under it
// with its address beside it. The language's label and list share the
// heading's row, on its right, so that the dialog still fits a landscape
// screen.
struct OptionsLayout {
    screens::Rect heading, autoBluetooth, keepAwake, recordNmea, storageLabel, storage, allTalkers;
    screens::Rect relay, relayAddress;
    screens::Rect languageLabel, language;
};
OptionsLayout LayOutOptionsDialog(int clientWidth, int baseTextHeight);

// Font heights of the dialog: the regular one and the bold one of the two
// labels.
inline int OptionsRegularFontHeight(int b) {
    return b;
}
inline int OptionsBoldFontHeight(int b) {
    return (9 * b) / 8;
}

// What OK asks of the running program.
class OptionsEffects {
  public:
    virtual bool LinkRunning() const = 0;
    // The recording flag changed: the link records from its next batch on,
    // or stops recording.
    virtual void SetRecordNmea(bool on) = 0;
    // A new dated NMEA file in `nmeaFolder`, recording from now on.
    virtual void StartNewNmeaLog(const std::string& nmeaFolder) = 0;
    // Keep the screen awake (hold) or let it sleep again (release).
    virtual void SetScreenAwake(bool hold) = 0;
    // The decoder accepts all satellite systems' talkers, or GPS's only,
    // from the next batch on.
    virtual void SetAllTalkers(bool on) = 0;

  protected:
    ~OptionsEffects() = default;
};

// What OK did, for the caller's state dump and the tests.
struct OptionsApplied {
    bool rootChanged = false;
    bool nmeaSwitched = false;  // recording was switched on or off
    bool newNmeaLog = false;
    bool newTrackLog = false;
};

// OK: the flags, the storage root and its folders, new files while the link
// runs, and the screen-awake request or release. `folders` is the program's
// current folder set and is rebuilt when the root changes.
OptionsApplied AcceptOptionsDialog(const OptionsDialog& dialog, ProgramSettings& settings,
                                   StorageFolders& folders, OptionsEffects& effects);

// Creates the folder tree of a newly chosen root: everything when the root
// is missing, the missing folders when it is a folder, nothing when it is
// something else. Failures are silent.
void CreateStorageTree(const StorageFolders& folders);

// Keeps a second copy of the dialog from opening.
class DialogGuard {
  public:
    bool TryOpen() {
        if (open_)
            return false;
        open_ = true;
        return true;
    }
    void Close() { open_ = false; }
    bool IsOpen() const { return open_; }

  private:
    bool open_ = false;
};

}  // namespace satwalk::shell
