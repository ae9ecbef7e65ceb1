#include "OptionsDialogModel.h"

#include <filesystem>
#include <system_error>

namespace satwalk::shell {

std::string VolumeStorageRoot(const std::string& mountPoint) {
    std::string root = mountPoint;
    while (root.size() > 1 && root.back() == '/') root.pop_back();
    if (root == "/")
        root.clear();
    return root + "/My Documents";
}

OptionsDialog OpenOptionsDialog(const ProgramSettings& s, const std::string& defaultRoot,
                                const std::vector<std::string>& mountPoints) {
    OptionsDialog d;
    d.autoBluetooth = s.autoBluetooth != 0;
    d.keepAwake = s.backlightAlwaysOn != 0;
    d.recordNmea = s.recordNmea != 0;
    d.allTalkers = s.allTalkers != 0;
    const auto add = [&](const std::string& root) {
        for (const std::string& e : d.storage) {
            if (e == root)
                return;
        }
        d.storage.push_back(root);
        if (root == s.storageRoot)
            d.storageSelection = static_cast<int>(d.storage.size()) - 1;
    };
    add(defaultRoot);
    for (const std::string& mount : mountPoints) add(VolumeStorageRoot(mount));
    return d;
}

OptionsLayout LayOutOptionsDialog(int clientWidth, int b) {
    const int w = clientWidth - b;
    const int h = (6 * b) / 5;
    const int left = b / 2;
    const auto at = [&](int top) { return screens::Rect{left, top, left + w, top + h}; };
    OptionsLayout l;
    l.heading = at(b / 2);
    l.languageLabel = l.heading;
    l.language = l.heading;
    l.heading.right = left + w / 3;
    l.languageLabel.left = l.heading.right;
    l.languageLabel.right = left + (5 * w) / 8 - b / 4;
    l.language.left = left + (5 * w) / 8;
    l.autoBluetooth = at(b / 3 + h + b / 2);
    l.keepAwake = at((2 * b) / 3 + 2 * h + b / 2);
    l.recordNmea = at((3 * b) / 3 + 3 * h + b / 2);
    l.storageLabel = at((5 * b) / 3 + 4 * h + b / 2);
    l.storage = at((6 * b) / 3 + 5 * h - b / 4 + b / 2);
    l.allTalkers = at(l.storage.bottom + (2 * b) / 3);
    // The relay's check box and its address share a row, so that the dialog
    // still fits a landscape screen.
    l.relay = at(l.allTalkers.bottom + b / 3);
    l.relayAddress = l.relay;
    l.relay.right = left + (2 * w) / 5;
    l.relayAddress.left = l.relay.right;
    return l;
}

void CreateStorageTree(const StorageFolders& f) {
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::file_status root = fs::status(f.root, ec);
    if (fs::exists(root) && !fs::is_directory(root))
        return;
    if (!fs::exists(root))
        fs::create_directories(f.root, ec);
    for (const std::string* p : {&f.base, &f.referencePoints, &f.trackLog, &f.nmea}) {
        if (!fs::exists(*p, ec))
            fs::create_directory(*p, ec);
    }
}

OptionsApplied AcceptOptionsDialog(const OptionsDialog& d, ProgramSettings& s,
                                   StorageFolders& folders, OptionsEffects& effects) {
    OptionsApplied applied;
    s.backlightAlwaysOn = d.keepAwake ? 1 : 0;
    s.autoBluetooth = d.autoBluetooth ? 1 : 0;
    const std::uint32_t nmea = d.recordNmea ? 1 : 0;
    applied.nmeaSwitched = nmea != s.recordNmea;
    s.recordNmea = nmea;
    if (applied.nmeaSwitched)
        effects.SetRecordNmea(d.recordNmea);
    const std::uint32_t talkers = d.allTalkers ? 1 : 0;
    if (talkers != s.allTalkers) {
        s.allTalkers = talkers;
        effects.SetAllTalkers(d.allTalkers);
    }

    if (d.storageSelection >= 0 && d.storageSelection < static_cast<int>(d.storage.size())) {
        const std::string& chosen = d.storage[static_cast<std::size_t>(d.storageSelection)];
        if (chosen != s.storageRoot) {
            applied.rootChanged = true;
            s.storageRoot = chosen;
            folders = MakeStorageFolders(chosen);
            CreateStorageTree(folders);
        }
    }

    if (effects.LinkRunning()) {
        if (s.recordNmea != 0 && (applied.nmeaSwitched || applied.rootChanged)) {
            effects.StartNewNmeaLog(folders.nmea);
            applied.newNmeaLog = true;
        }
        // The track feature starts it when it hears of the change.
        if (s.trackLogOn != 0 && applied.rootChanged)
            applied.newTrackLog = true;
    }
    effects.SetScreenAwake(s.backlightAlwaysOn != 0);
    return applied;
}

}  // namespace satwalk::shell
