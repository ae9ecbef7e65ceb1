// The stylus on the map screen: the six navigation buttons with their
// auto-repeat and acceleration, dragging, and the taps of reference-point
// placement. The buttons and the drag move nothing themselves: they set a
// direction and a step and hand over to the map's pan routine, or send the
// arrow keys that the map's key handling turns into the same moves. Plain
// state and a sink for what it asks of the window; user-interface thread.
#pragma once

#include <array>

#include "Canvas.h"

namespace satwalk::screens {
struct ScreenContext;
}

namespace satwalk::map {

// Pan directions and button numbers share their codes.
enum PanDirection { kPanNone = 0, kPanUp = 1, kPanDown = 2, kPanLeft = 3, kPanRight = 4 };
enum class Arrow { Up, Down, Left, Right };

inline constexpr int kNavigationButtonCount = 6;
// Buttons 1..6 (up, down, left, right, zoom in, zoom out) as rectangles in
// screen pixels; a point hits one strictly inside it.
using NavigationButtons = std::array<screens::Rect, kNavigationButtonCount>;

// The column along the view's right edge, where the frame draws the button
// strip: 15-pixel buttons 1 apart in the small set, else 29 pixels 5 apart.
NavigationButtons LayoutNavigationButtons(const screens::ScreenContext& ctx);
// 1..6, or 0 when the point is on no button.
int HitNavigationButton(const NavigationButtons& buttons, int x, int y);

struct MapInteraction {
    int stylusDown = 0;
    int pressedButton = 0;  // 0 none, 1..6
    int buttonHit = 0;
    int dragging = 0;
    int panDirection = kPanNone;
    int zoomRequest = 0;  // 1 button 5, 2 button 6
    int panMode = 1;      // 1: the arrow keys pan, 0: up and down zoom
    int savedPanMode = 1;
    int panStep = 1;
    int repeatTicks = 0;
    bool repeating = false;  // the auto-repeat timer runs
    screens::Point lastStylus;
};

// What the stylus asks of the window and the map.
class InteractionSink {
  public:
    virtual void SendArrow(Arrow arrow) = 0;  // an arrow key to the main window
    virtual void StartRepeat() = 0;           // 100 ms, then a tick every 200 ms
    virtual void StopRepeat() = 0;
    virtual void Pan(int direction, int step) = 0;
    virtual void PlacementTap(int x, int y) = 0;
    // A drag on the map while the link runs and nothing is being placed:
    // following the position pauses for a while.
    virtual void ManualMove() = 0;
    virtual void Redraw() = 0;

  protected:
    ~InteractionSink() = default;
};

// The map screen as the stylus finds it.
struct StylusScene {
    bool onMapScreen = false;
    bool insideMap = false;  // the point lies in the map picture
    bool mapMode = false;    // a loaded image is shown
    bool placing = false;    // a reference point is being placed
    bool linkRunning = false;
    int unit = 30;  // the frame's unit size (the base text height)
    int scaleBarPixels = 100;
};

enum class StylusDownResult {
    Ignored,       // not the map's: off the map screen or outside the picture
    Button,        // a navigation button, key sent and repeat started
    Map,           // on the map picture: a drag may follow
    PlacementTap,  // the placement cursor moved
    MayHold,       // on a loaded map: a hold here opens the reference menu
};

StylusDownResult OnStylusDown(MapInteraction& s, const NavigationButtons& buttons,
                              const StylusScene& scene, int x, int y, InteractionSink& sink);
// One auto-repeat tick.
void OnRepeatTick(MapInteraction& s, const StylusScene& scene, InteractionSink& sink);
// One acceleration step: from the fourth tick on the step grows by a fifth of
// the unit, up to the scale bar's length.
void AccelerateStep(MapInteraction& s, int unit, int scaleBarPixels);
void OnStylusMove(MapInteraction& s, const StylusScene& scene, int x, int y, InteractionSink& sink);
// Everything back to idle; the step starts slow again.
void OnStylusUp(MapInteraction& s, InteractionSink& sink);

}  // namespace satwalk::map
