// The current speed in the chosen unit and the looping speed alarm.
#pragma once

#include <cstdint>

#include "GpsState.h"

namespace satwalk::shell {

// The sound behind the alarm. Each call says whether it succeeded.
class AlarmSound {
  public:
    virtual bool PlayLoop() = 0;  // start the alarm sound, looping
    virtual bool Stop() = 0;      // silence whatever plays
  protected:
    ~AlarmSound() = default;
};

// The receiver's speed over ground in the unit `units`: 0 km/h (x 1.85),
// 1 MPH (x 1.152), 2 knots. An absent speed is 0.
double CurrentSpeed(const gps::FixValues& fix, std::uint32_t units);

class SpeedAlarm {
  public:
    // `attempts` bounds how often a failing sound call is repeated at once.
    explicit SpeedAlarm(AlarmSound& sound, int attempts = 3) : sound_(sound), attempts_(attempts) {}

    // Runs on every batch of receiver data. `limit` is a number in the
    // current unit. The playing flag changes only on a crossing of the
    // limit while the alarm is on and the link runs.
    void CheckSpeedAlarm(double speed, bool alarmOn, std::uint32_t limit, bool linkRunning);

    // The stop-GPS path: a playing alarm is marked stopped and silenced.
    void Silence();

    bool playing() const { return playing_; }
    // The sound failed to start on some crossing (no audio output, no
    // sound file); the alarm then shows only on the screen.
    bool soundFailed() const { return soundFailed_; }

  private:
    bool Retry(bool (AlarmSound::*call)());

    AlarmSound& sound_;
    int attempts_;
    bool playing_ = false;
    bool soundFailed_ = false;
};

}  // namespace satwalk::shell
