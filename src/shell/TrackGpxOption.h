// "同时保存 GPX 轨迹" (record a GPX file beside each new track log) lives in a
// small file of its own beside the options file, `track-gpx`, as the `ports`
// file does: the options record has no byte for it and stays as it is. The
// file holds "1" or "0"; missing or anything else reads as off.
#pragma once

#include <string>

namespace satwalk::shell {

inline constexpr int kIdSaveGpxTrack = 1160;  // its check box in "选项"

std::string TrackGpxOptionPath(const std::string& optionsPath);
bool LoadTrackGpxOption(const std::string& path);
// Writes a new file that replaces the old one once complete; false when it
// could not.
bool SaveTrackGpxOption(const std::string& path, bool on);

}  // namespace satwalk::shell
