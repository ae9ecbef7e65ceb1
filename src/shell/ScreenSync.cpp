#include "NmeaDecoder.h"
#include "ScreenView.h"
#include "Screens.h"

namespace satwalk::shell {

void SyncScreenContext(const ScreenView& view, screens::ScreenContext& ctx) {
    ctx.currentScreen = view.currentScreen;
    ctx.linkRunning = view.linkRunning;
    ctx.fixValid = view.fixValid;
    ctx.blinkPhase = view.blinkPhase;
    ctx.fixTimeKnown = view.fixTimeKnown;
    ctx.mapLoaded = view.mapLoaded;
    ctx.speedAlarmSounding = view.speedAlarmShowing;
    ctx.alarmFlashPhase = view.alarmFlashPhase;
    if (view.settings != nullptr) {
        const ProgramSettings& s = *view.settings;
        ctx.unitSystem = s.units <= 2 ? static_cast<int>(s.units) : screens::kMetric;
        ctx.speedAlarmOn = s.speedAlarmOn != 0;
        ctx.speedAlarmLimit = static_cast<int>(s.speedAlarmLimit);
        ctx.recording = s.recordNmea != 0;
    }
    if (view.gps != nullptr && view.linkRunning && view.fixValid) {
        const gps::GpsState& g = *view.gps;
        gps::NmeaToDegrees(g.latitude, g.northSouth, g.longitude, g.eastWest, &ctx.latitude,
                           &ctx.longitude);
    }
}

}  // namespace satwalk::shell
