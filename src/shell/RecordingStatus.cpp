#include "RecordingStatus.h"

#include "Strings.h"

namespace satwalk::shell {

bool RecordingFaults::Report(Recording recording, int error) {
    int& kept = recording == Recording::Track ? trackError_ : nmeaError_;
    // Only the reason's text is shown: errors with one text are one fault.
    const bool changed =
        (kept != 0) != (error != 0) ||
        (error != 0 && common::WriteFailureReason(kept) != common::WriteFailureReason(error));
    kept = error;
    return changed;
}

std::string RecordingFaults::Text() const {
    std::string text;
    const auto add = [&text](int textId, int error) {
        if (error == 0)
            return;
        if (!text.empty())
            text += "；";
        text += common::FormatString(common::LoadString(textId), common::WriteFailureReason(error));
    };
    add(common::kStrTrackRecordingFailed, trackError_);
    add(common::kStrNmeaRecordingFailed, nmeaError_);
    return text;
}

}  // namespace satwalk::shell
