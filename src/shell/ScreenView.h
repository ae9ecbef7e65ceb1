// What a screen needs to paint itself: the screen rectangle (the client
// area less the soft-key bar), the text scale and the current state.
#pragma once

#include <cstdint>

#include "GpsState.h"
#include "Settings.h"

namespace satwalk::screens {
struct ScreenContext;
}

namespace satwalk::shell {

struct ScreenView {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    int dpi = 192;
    int baseTextHeight = 30;
    int currentScreen = 0;
    const gps::GpsState* gps = nullptr;
    const ProgramSettings* settings = nullptr;
    bool linkRunning = false;
    bool fixValid = false;
    bool fixTimeKnown = false;
    bool blinkPhase = false;
    bool mapLoaded = false;
    bool speedAlarmShowing = false;
    bool alarmFlashPhase = false;
};

// (15 x pixels per inch + 48) / 96: 15 at 96 dpi, 30 at 192 dpi.
inline int BaseTextHeightForDpi(int dpi) {
    return (15 * dpi + 48) / 96;
}

// Copies what the window knows into the screens' context before a paint:
// units, speed alarm, link and fix state, blink phase, recording, clock,
// map, current screen, and the position in degrees while there is a fix
// (the last one is kept otherwise). Layout and bitmaps are left alone.
void SyncScreenContext(const ScreenView& view, screens::ScreenContext& ctx);

}  // namespace satwalk::shell
