// What the map screen looks at: one value built for each paint and handed
// to every layer. The layers keep no state of the view; whatever they place
// on the map goes through ProjectToScreen, so a layer never needs to know
// which of the two modes is showing.
//
// World mode (no image loaded): the table-driven world projection, with
// `worldOrigin` holding the longitude at worldOrigin.screenX and, in
// worldOrigin.screenY, the screen row of the equator; the scale bar of
// `scaleBarPixels` stands for `viewScale` kilometres.
//
// Map mode (an image loaded): the image is shown `currentWidth` ×
// `currentHeight` screen pixels large with the image pixel `scrollCentre` at
// the view's centre; degrees reach the image through `calibration`.
#pragma once

#include "Canvas.h"
#include "MapGeometry.h"

namespace satwalk::map {

struct MapView {
    screens::Rect viewRect;  // the part of the screen the map covers
    int mapMode = 0;         // 1: the loaded image, 0: the world map
    int scaleBarPixels = 100;
    // The View menu's display flags.
    bool showMap = true;
    bool showReferencePoints = true;
    bool showTrack = true;
    bool showPoi = true;

    // ----- world mode -----
    GeoPoint worldOrigin;
    double viewScale = 1000.0;  // kilometres of the scale bar

    // ----- map mode -----
    ImageSize imageSize;
    MapCalibration calibration;
    MapExtent extent;
    double displayedWidth = 0.0;  // the whole image at the fitted zoom
    double displayedHeight = 0.0;
    double currentWidth = 0.0;  // at the current zoom
    double currentHeight = 0.0;
    int zoomStepX = 0;
    int zoomStepY = 0;
    int zoom = 0;         // zoom steps from the fit, in positive
    PointF scrollCentre;  // image pixel at the view's centre
    // Kilometres the scale bar stands for on the image at the current zoom;
    // 0 while the image is not calibrated.
    double scaleBarDistance = 0.0;

    // Degrees can be placed on the view: always on the world map, on an
    // image only once it is calibrated.
    bool Calibrated() const { return mapMode == 0 || calibration.IsValid(); }
    // The screen position of image pixel (0, 0) at the current zoom and
    // scroll (the display origin of DisplayToImage and ImageToDisplay).
    PointF DisplayOrigin() const;
    PointF ViewCentre() const;
    // What the scale bar's label shows, in kilometres.
    double ScaleBarKilometres() const { return mapMode != 0 ? scaleBarDistance : viewScale; }
};

// Where latitude and longitude fall on the screen. World mode projects with
// ProjectToView, taking the copy of the longitude nearest the view's centre
// (the world repeats every 360°); map mode converts through GeoToImage and
// ImageToDisplay. False, with `out` untouched, when the image is not
// calibrated or the point has no finite place; a point off the view is
// still placed (true) wherever it falls.
bool ProjectToScreen(const MapView& view, double latitude, double longitude, PointF& out);

// ProjectToScreen for the many points of one paint: what depends only on
// the view is worked out once. Places every point as ProjectToScreen does.
class ScreenProjector {
  public:
    explicit ScreenProjector(const MapView& view);
    bool Project(double latitude, double longitude, PointF& out) const;

  private:
    const MapView& view_;
    bool world_ = false;
    bool usable_ = false;
    double centreLongitude_ = 0.0;
    ViewProjection worldProjection_;
};

// The inverse, for taps: the degrees under a screen point. World-mode
// latitudes come back within ±80°. False when the image is not calibrated.
bool ScreenToGeo(const MapView& view, PointF screen, double& latitude, double& longitude);

// Map mode: the image pixel under a screen point, and back.
PointF ScreenToImage(const MapView& view, PointF screen);
PointF ImageToScreen(const MapView& view, PointF image);

}  // namespace satwalk::map
