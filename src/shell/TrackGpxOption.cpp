#include "TrackGpxOption.h"

#include "SmallFile.h"

namespace satwalk::shell {

std::string TrackGpxOptionPath(const std::string& optionsPath) {
    return common::PathBeside(optionsPath, "track-gpx");
}

bool LoadTrackGpxOption(const std::string& path) {
    const std::optional<std::string> text = common::ReadFileStart(path, 3);
    return text && !text->empty() && (*text)[0] == '1' &&
           (text->size() == 1 || (*text)[1] == '\n' || (*text)[1] == '\r');
}

bool SaveTrackGpxOption(const std::string& path, bool on) {
    return common::ReplaceFile(path, on ? "1\n" : "0\n");
}

}  // namespace satwalk::shell
