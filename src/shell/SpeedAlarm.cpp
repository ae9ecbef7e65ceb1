#include "SpeedAlarm.h"

namespace satwalk::shell {

double CurrentSpeed(const gps::FixValues& fix, std::uint32_t units) {
    return gps::SpeedInUnit(fix.speedKnots.value_or(0.0), static_cast<int>(units));
}

bool SpeedAlarm::Retry(bool (AlarmSound::*call)()) {
    for (int i = 0; i < attempts_; ++i) {
        if ((sound_.*call)())
            return true;
    }
    return false;
}

void SpeedAlarm::CheckSpeedAlarm(double speed, bool alarmOn, std::uint32_t limit,
                                 bool linkRunning) {
    if (!alarmOn || !linkRunning) {
        // Silence, but keep the flag: the next crossing decides again.
        sound_.Stop();
        return;
    }
    if (speed < static_cast<double>(limit)) {
        if (playing_) {
            Retry(&AlarmSound::Stop);
            playing_ = false;
        }
        return;
    }
    if (!playing_) {
        // Without a working sound the alarm still counts as sounding, so
        // that the state follows the speed and a drop below stops it.
        if (!Retry(&AlarmSound::PlayLoop))
            soundFailed_ = true;
        playing_ = true;
    }
}

void SpeedAlarm::Silence() {
    if (!playing_)
        return;
    playing_ = false;
    Retry(&AlarmSound::Stop);
}

}  // namespace satwalk::shell
