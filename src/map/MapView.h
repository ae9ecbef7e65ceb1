// What the map screen looks at: one value built for each paint and handed
// to every layer. The layers keep no state of the view.
#pragma once

#include "Canvas.h"

namespace satwalk::map {

struct MapView {
    screens::Rect viewRect;   // the part of the screen the map covers
    int zoom = 0;             // steps in or out from the image's own size
    screens::Point scroll;    // image pixel at the view's top-left corner
    screens::Size imageSize;  // the loaded map image; empty for the world map
    // The world map: the screen pixel of its top-left corner (180 W, 80 N)
    // and the pixels the whole world spans.
    screens::Point worldOrigin;
    screens::Size worldSize;
};

}  // namespace satwalk::map
