// What the screens show besides the fix's texts: one value the shell builds
// once per change of the fix or the settings, and the screens only read.
#pragma once

#include "GpsState.h"
#include "ScreenIds.h"

namespace satwalk::screens {

struct DisplayState {
    int currentScreen = common::kScreenGpsInfo;
    int unitSystem = common::kMetric;
    bool speedAlarmOn = false;
    int speedAlarmLimit = 50;  // 50, 60, ... 120 in the display unit
    // The speed is at or above the limit (with or without sound); the
    // phase flips every second and the alarm's places are red while set.
    bool speedAlarmSounding = false;
    bool alarmFlashPhase = false;
    bool linkRunning = false;
    bool fixValid = false;
    bool blinkPhase = false;       // flipped by the blink timer while no fix
    bool recording = false;        // NMEA recording on
    bool recordingFailed = false;  // a recording's last write failed: the icon is crossed out
    bool fixTimeKnown = false;     // a time sync has set the fix clock
    bool mapLoaded = false;
    int compassOrientation = 0;  // 1 north-up, anything else course-up
    double latitude = 0.0;       // signed degrees, north positive; the last fix's
    double longitude = 0.0;      // signed degrees, east positive; the last fix's
    gps::FixValues fix;          // the numbers of the record the screens are given
};

}  // namespace satwalk::screens
