#include "MapInteraction.h"

#include <cstdlib>

#include "Screens.h"

namespace satwalk::map {

NavigationButtons LayoutNavigationButtons(const screens::ScreenContext& ctx) {
    const int b = ctx.baseTextHeight;
    const screens::Bitmap& strip = ctx.bitmaps[screens::BitmapId::MapOverlay.value];
    const screens::Rect& v = ctx.mapView.view;
    // Where the frame draws the strip.
    const int left = v.right - b / 3 - ctx.mapView.overlayInset + 1;
    const int top =
        v.top + (4 * b) / 3 + b / 6 + b / 5 + ctx.mapView.overlayInset + ctx.mapView.overlayDrop;
    const bool small = b == 15;
    const int height = small ? 15 : 29;
    const int gap = small ? 1 : 5;
    NavigationButtons buttons{};
    for (int k = 0; k < kNavigationButtonCount; ++k) {
        const int t = top + k * (height + gap);
        buttons[static_cast<std::size_t>(k)] = {left, t, left + strip.width, t + height};
    }
    return buttons;
}

int HitNavigationButton(const NavigationButtons& buttons, int x, int y) {
    for (int k = 0; k < kNavigationButtonCount; ++k) {
        const screens::Rect& r = buttons[static_cast<std::size_t>(k)];
        if (x > r.left && x < r.right && y > r.top && y < r.bottom)
            return k + 1;
    }
    return 0;
}

namespace {

// The key each button sends: 1 and 5 up, 2 and 6 down, 3 left, 4 right.
Arrow ButtonArrow(int button) {
    switch (button) {
        case 1:
        case 5:
            return Arrow::Up;
        case 2:
        case 6:
            return Arrow::Down;
        case 3:
            return Arrow::Left;
        default:
            return Arrow::Right;
    }
}

}  // namespace

StylusDownResult OnStylusDown(MapInteraction& s, const NavigationButtons& buttons,
                              const StylusScene& scene, int x, int y, InteractionSink& sink) {
    if (!scene.onMapScreen)
        return StylusDownResult::Ignored;
    const int button = HitNavigationButton(buttons, x, y);
    if (button == 0 && !scene.insideMap)
        return StylusDownResult::Ignored;
    s.stylusDown = 1;
    s.buttonHit = button != 0 ? 1 : 0;
    if (button != 0) {
        s.savedPanMode = s.panMode;
        s.pressedButton = button;
        if (button <= 4) {
            s.panMode = 1;
            s.panDirection = button;
        } else {
            s.panMode = 0;
            s.zoomRequest = button - 4;
        }
        sink.SendArrow(ButtonArrow(button));
        sink.StartRepeat();
        s.repeating = true;
        return StylusDownResult::Button;
    }
    s.savedPanMode = s.panMode;
    if (s.panMode == 0)
        s.panMode = 1;
    s.lastStylus = {x, y};
    StylusDownResult result = StylusDownResult::Map;
    if (scene.mapMode) {
        if (scene.placing) {
            sink.PlacementTap(x, y);
            result = StylusDownResult::PlacementTap;
        } else {
            result = StylusDownResult::MayHold;
        }
    }
    sink.Redraw();
    return result;
}

void AccelerateStep(MapInteraction& s, int unit, int scaleBarPixels) {
    ++s.repeatTicks;
    if (s.repeatTicks > 3 && s.panStep < scaleBarPixels) {
        s.panStep += unit / 5;
        if (s.panStep > scaleBarPixels)
            s.panStep = scaleBarPixels;
    }
}

void OnRepeatTick(MapInteraction& s, const StylusScene& scene, InteractionSink& sink) {
    if (s.stylusDown == 0 || s.buttonHit == 0) {
        sink.StopRepeat();
        s.repeating = false;
        return;
    }
    if (s.pressedButton <= 4)
        AccelerateStep(s, scene.unit, scene.scaleBarPixels);
    sink.SendArrow(ButtonArrow(s.pressedButton));
}

void OnStylusMove(MapInteraction& s, const StylusScene& scene, int x, int y,
                  InteractionSink& sink) {
    if (s.stylusDown == 0 || s.buttonHit != 0)
        return;
    s.dragging = 1;
    if (scene.onMapScreen && scene.insideMap && scene.linkRunning && !scene.placing)
        sink.ManualMove();
    // The view moves against the stylus, so the map follows it; during
    // placement the codes are the stylus's own (the map moves the other way).
    const int dx = x - s.lastStylus.x;
    s.panStep = std::abs(dx);
    if (dx < 1)
        s.panDirection = scene.placing ? kPanLeft : kPanRight;
    else
        s.panDirection = scene.placing ? kPanRight : kPanLeft;
    sink.Pan(s.panDirection, s.panStep);
    const int dy = y - s.lastStylus.y;
    s.panStep = std::abs(dy);
    if (dy < 1)
        s.panDirection = scene.placing ? kPanUp : kPanDown;
    else
        s.panDirection = scene.placing ? kPanDown : kPanUp;
    sink.Pan(s.panDirection, s.panStep);
    s.panDirection = kPanNone;
    s.lastStylus = {x, y};
    sink.Redraw();
}

void OnStylusUp(MapInteraction& s, InteractionSink& sink) {
    s.stylusDown = 0;
    s.panMode = s.savedPanMode;
    s.repeatTicks = 0;
    s.panStep = 1;
    s.zoomRequest = 0;
    s.panDirection = kPanNone;
    s.pressedButton = 0;
    s.buttonHit = 0;
    s.dragging = 0;
    if (s.repeating) {
        sink.StopRepeat();
        s.repeating = false;
    }
    sink.Redraw();
}

}  // namespace satwalk::map
