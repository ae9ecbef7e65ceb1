// The recordings' faults as the window shows them. A track log or an NMEA
// recording that cannot be written is not worth a message box in the middle
// of a drive, but it must not be lost in silence: the window's title and
// the state's status name it ("轨迹记录失败：磁盘已满") and the tool strip's
// recording icon is crossed out, until a write of that recording succeeds
// again. The shell owns one; the track feature and the link's recorder
// report to it on the user-interface thread.
#pragma once

#include <string>

namespace satwalk::shell {

enum class Recording { Track, Nmea };

class RecordingFaults {
  public:
    // `error` is the errno of a failed write, 0 for one that worked. True
    // when what is shown changes.
    bool Report(Recording recording, int error);
    bool Any() const { return trackError_ != 0 || nmeaError_ != 0; }
    // The faults in one line, track first; empty when there are none.
    std::string Text() const;

  private:
    int trackError_ = 0;
    int nmeaError_ = 0;
};

}  // namespace satwalk::shell
