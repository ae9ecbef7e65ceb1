// The map screen's state between paints: the loaded map and its reference
// points, the world view, the pan and zoom engine, the position and whether
// the view follows it, and the stylus. The map feature owns one; the layers
// see it only as the MapView it builds. Plain values, no Qt; user-interface
// thread.
#pragma once

#include <iterator>
#include <string>

#include "MapInteraction.h"
#include "MapLoading.h"
#include "MapView.h"
#include "ReferencePoints.h"

namespace satwalk::map {

// The world view's scale bar steps through 1-2-5 values, in kilometres.
inline constexpr double kWorldScales[] = {20000, 10000, 5000, 2000, 1000, 500, 200, 100, 50,
                                          20,    10,    5,    2,    1,    0.5, 0.2, 0.1};
inline constexpr int kWorldScaleCount = static_cast<int>(std::size(kWorldScales));

// Map-mode zoom: steps of the fitted size up to twice it, doubling after;
// one step below the fit; never past kMaxScreenPerImage screen pixels per
// image pixel.
inline constexpr int kMinImageZoom = -1;
inline constexpr double kMaxScreenPerImage = 4.0;

class MapModel {
  public:
    // The map's place on the screen and the frame's sizes; called whenever
    // the screen is laid out. The world view keeps its centre.
    void Layout(screens::Rect view, int unit, int scaleBarPixels, int bottomBarHeight);

    // The view the layers paint with.
    MapView View() const;

    // ----- pan and zoom -----
    // Moves the view `step` screen pixels (direction 1 up, 2 down, 3 left,
    // 4 right); the map moves the other way.
    void Pan(int direction, int step);
    void Zoom(bool in);
    // Arrow keys on the map screen: pan by the stylus's step, or with the
    // pan mode off, up and down zoom in and out.
    void ArrowKey(Arrow arrow);
    // Return outside placement: arrows switch between panning and zooming.
    void TogglePanMode();
    // The fitted zoom with the image's centre in the middle, and the scale
    // bar for it.
    void ResetView();
    // The whole world across the view.
    void ResetWorld();
    // A region (a track just read) into view: the world view centred on it
    // at the closest scale that shows all of it; a calibrated map scrolls to
    // the region's centre when that lies on the image.
    void ShowRegion(double south, double west, double north, double east);

    // ----- loading -----
    // The state of a map whose image just loaded from `path` with `image`
    // pixels and whose reference file `referenceFile` is read now: fit,
    // cleared calibration, extent and cursor, reference points, calibration.
    // `georeferenced`, when valid, calibrates the map unless the reference
    // points do.
    void ApplyLoadedMap(const std::string& path, ImageSize image, const std::string& referenceFile,
                        const MapCalibration& georeferenced = {});
    // Back to the world map: the image's state, calibration and reference
    // points cleared.
    void CloseMap();
    // After the reference dialog's OK (or anything else that changed the
    // calibration): the view reset for the new calibration.
    void ApplyConfirmation(const ReferenceConfirmation& confirmation);

    // ----- position -----
    // Each batch of receiver data, and when the link stops. Updates the
    // outside-map flag and, while following, recentres the view.
    void UpdatePosition(bool linkRunning, bool fixValid, double latitude, double longitude);
    // The view stops following the position until ResumeFollowing (the
    // track's pause after the user moved the map by hand).
    void PauseFollowing() { followPaused = true; }
    void ResumeFollowing();
    bool Following() const { return following && !followPaused; }

    // ----- placement -----
    void StartPlacement(int slot);
    void CancelPlacement();
    // A tap during placement at screen (x, y).
    void PlacementTap(int x, int y);

    // The state itself, read by the feature, its layers and the state dump.
    LoadedMap map;
    std::string mapPath;
    MapCalibration calibration;
    MapExtent extent;
    ReferenceEditing refs;
    double scaleBarDistance = 0.0;
    int zoom = 0;
    int worldScaleIndex = 1;
    // The world view's origin as an offset from the view's centre.
    GeoPoint worldOrigin;
    MapInteraction stylus;
    bool following = true;
    bool followPaused = false;
    bool linkRunning = false;
    bool fixValid = false;
    double latitude = 0.0;
    double longitude = 0.0;
    bool holdMenuOpen = false;
    bool referencesRead = false;        // the last load found its reference file
    bool referencesUnreadable = false;  // ... or found it there but could not open it
    std::string calibrationSource;      // "rpt", "worldfile", ... or "" (none)

    screens::Rect viewRect() const { return view_; }
    int unit() const { return unit_; }
    int scaleBarPixels() const { return scaleBarPixels_; }
    int bottomBarHeight() const { return bottomBarHeight_; }

  private:
    void SetImageZoom(int z);
    void UpdateScaleBar();
    void CentreOn(double lat, double lon);
    void UpdateOutsideMap();

    screens::Rect view_{0, 0, 480, 400};
    int unit_ = 30;
    int scaleBarPixels_ = 100;
    int bottomBarHeight_ = 0;
    bool worldPlaced_ = false;
};

// What the scale bar's label says for `kilometres` in a unit system:
// kilometres or metres, miles or feet, nautical miles or feet; "0" in the
// larger unit when `calibrated` is false.
std::string ScaleBarLabel(double kilometres, int unitSystem, bool calibrated);

// "30°15.1234' N" and "120°09.8765' E": whole degrees, minutes to four
// decimals and the hemisphere.
std::string FormatMapLatitude(double latitude);
std::string FormatMapLongitude(double longitude);

}  // namespace satwalk::map
