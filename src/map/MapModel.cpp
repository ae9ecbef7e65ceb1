#include "MapModel.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace satwalk::map {

namespace {

constexpr double kEquatorDegreeKm = 114.319;  // as ProjectToView converts longitudes

bool InsideImage(PointF p, ImageSize image) {
    return std::isfinite(p.x) && std::isfinite(p.y) && p.x >= 0.0 && p.y >= 0.0 &&
           p.x <= image.width && p.y <= image.height;
}

}  // namespace

void MapModel::Layout(screens::Rect view, int unit, int scaleBarPixels, int bottomBarHeight) {
    view_ = view;
    unit_ = unit;
    bottomBarHeight_ = bottomBarHeight;
    if (scaleBarPixels != scaleBarPixels_) {
        scaleBarPixels_ = scaleBarPixels;
        worldPlaced_ = false;
        UpdateScaleBar();
    }
    if (!worldPlaced_)
        ResetWorld();
}

MapView MapModel::View() const {
    MapView v;
    v.viewRect = view_;
    v.mapMode = map.mapMode;
    v.scaleBarPixels = scaleBarPixels_;
    v.viewScale = kWorldScales[worldScaleIndex];
    const PointF centre = v.ViewCentre();
    v.worldOrigin = worldOrigin;
    v.worldOrigin.screenX = centre.x + worldOrigin.screenX;
    v.worldOrigin.screenY = centre.y + worldOrigin.screenY;
    v.imageSize = map.image;
    v.calibration = calibration;
    v.extent = extent;
    v.displayedWidth = map.fit.displayedWidth;
    v.displayedHeight = map.fit.displayedHeight;
    v.currentWidth = map.currentWidth;
    v.currentHeight = map.currentHeight;
    v.zoomStepX = map.fit.zoomStepX;
    v.zoomStepY = map.fit.zoomStepY;
    v.zoom = zoom;
    v.scrollCentre = map.scrollCentre;
    v.scaleBarDistance = scaleBarDistance;
    return v;
}

// ----- pan and zoom -----

void MapModel::Pan(int direction, int step) {
    if (map.mapMode != 0) {
        if (!(map.currentWidth > 0.0) || !(map.currentHeight > 0.0))
            return;
        const double dx = step * map.image.width / map.currentWidth;
        const double dy = step * map.image.height / map.currentHeight;
        PointF& c = map.scrollCentre;
        switch (direction) {
            case kPanUp:
                c.y -= dy;
                break;
            case kPanDown:
                c.y += dy;
                break;
            case kPanLeft:
                c.x -= dx;
                break;
            case kPanRight:
                c.x += dx;
                break;
            default:
                return;
        }
        // Some of the image always stays in the middle of the view.
        c.x = std::clamp(c.x, 0.0, 1.0 * map.image.width);
        c.y = std::clamp(c.y, 0.0, 1.0 * map.image.height);
        if (calibration.Georeferenced())
            UpdateScaleBar();
        UpdateOutsideMap();
        return;
    }
    switch (direction) {
        case kPanUp:
            worldOrigin.screenY += step;
            break;
        case kPanDown:
            worldOrigin.screenY -= step;
            break;
        case kPanLeft:
            worldOrigin.screenX += step;
            break;
        case kPanRight:
            worldOrigin.screenX -= step;
            break;
        default:
            return;
    }
    // The view's centre stays within the world's latitudes; its longitude
    // comes round after 360°.
    const double scale = kWorldScales[worldScaleIndex];
    const double north = MercatorNorthing(80.0, scale, scaleBarPixels_);
    worldOrigin.screenY = std::clamp(worldOrigin.screenY, -north, north);
    const double pxPerDegree = scaleBarPixels_ * kEquatorDegreeKm / scale;
    const double centreLon = worldOrigin.longitude - worldOrigin.screenX / pxPerDegree;
    if (centreLon > 180.0)
        worldOrigin.longitude -= 360.0;
    else if (centreLon < -180.0)
        worldOrigin.longitude += 360.0;
}

void MapModel::Zoom(bool in) {
    if (map.mapMode != 0) {
        SetImageZoom(zoom + (in ? 1 : -1));
        return;
    }
    const int next = std::clamp(worldScaleIndex + (in ? 1 : -1), 0, kWorldScaleCount - 1);
    // Screen offsets grow with the inverse of the scale: zooming about the
    // view's centre scales them.
    const double ratio = kWorldScales[worldScaleIndex] / kWorldScales[next];
    worldOrigin.screenX *= ratio;
    worldOrigin.screenY *= ratio;
    worldScaleIndex = next;
}

void MapModel::SetImageZoom(int z) {
    const MapFit& fit = map.fit;
    if (map.mapMode == 0 || !(fit.displayedWidth > 0.0))
        return;
    auto sizeAt = [](int k, double displayed, int step) {
        if (k <= 2)
            return displayed + k * step;
        return (displayed + 2.0 * step) * std::ldexp(1.0, k - 2);
    };
    z = std::max(z, kMinImageZoom);
    const double widest = std::max(kMaxScreenPerImage * map.image.width,
                                   sizeAt(2, fit.displayedWidth, fit.zoomStepX));
    while (z > 0 && sizeAt(z, fit.displayedWidth, fit.zoomStepX) > widest) --z;
    const double w = sizeAt(z, fit.displayedWidth, fit.zoomStepX);
    const double h = sizeAt(z, fit.displayedHeight, fit.zoomStepY);
    if (!(w >= 1.0) || !(h >= 1.0))
        return;
    zoom = z;
    map.currentWidth = w;
    map.currentHeight = h;
    UpdateScaleBar();
    UpdateOutsideMap();
}

void MapModel::ArrowKey(Arrow arrow) {
    if (stylus.panMode == 0 && (arrow == Arrow::Up || arrow == Arrow::Down)) {
        Zoom(arrow == Arrow::Up);
        return;
    }
    // A key from a held button moves by the button's step; a key of the
    // keyboard by a good part of the scale bar.
    const int step = stylus.stylusDown != 0 ? stylus.panStep : std::max(1, scaleBarPixels_ / 2);
    static constexpr int kDirection[] = {kPanUp, kPanDown, kPanLeft, kPanRight};
    Pan(kDirection[static_cast<int>(arrow)], step);
}

void MapModel::TogglePanMode() {
    stylus.panMode = stylus.panMode != 0 ? 0 : 1;
    stylus.savedPanMode = stylus.panMode;
}

void MapModel::ResetView() {
    zoom = 0;
    map.currentWidth = map.fit.displayedWidth;
    map.currentHeight = map.fit.displayedHeight;
    map.scrollCentre = map.imageCentre;
    UpdateScaleBar();
    UpdateOutsideMap();
}

void MapModel::ResetWorld() {
    worldPlaced_ = view_.Width() > 0;
    const double fit = 360.0 * kEquatorDegreeKm * scaleBarPixels_ / std::max(1, view_.Width());
    // The closest of the scales that still shows the whole width.
    worldScaleIndex = 0;
    for (int i = 0; i < kWorldScaleCount; ++i)
        if (kWorldScales[i] >= fit)
            worldScaleIndex = i;
    worldOrigin = GeoPoint{};
    // The position, when there is one, rather than the Gulf of Guinea.
    if (linkRunning && fixValid && Following())
        CentreOn(latitude, longitude);
}

void MapModel::ShowRegion(double south, double west, double north, double east) {
    if (map.mapMode != 0) {
        CentreOn((south + north) / 2, (west + east) / 2);
        return;
    }
    // Nine tenths of the view, so that the ends do not touch the frame.
    const double width = 0.9 * view_.Width();
    const double height = 0.9 * (view_.Height() - bottomBarHeight_);
    int best = 0;
    for (int i = 0; i < kWorldScaleCount; ++i) {
        const double scale = kWorldScales[i];
        const double w = (east - west) * kEquatorDegreeKm * scaleBarPixels_ / scale;
        const double h = std::fabs(MercatorNorthing(north, scale, scaleBarPixels_) -
                                   MercatorNorthing(south, scale, scaleBarPixels_));
        if (!(w <= width && h <= height))
            break;
        best = i;
    }
    worldPlaced_ = view_.Width() > 0;
    worldScaleIndex = best;
    const double scale = kWorldScales[best];
    worldOrigin.longitude = (west + east) / 2;
    worldOrigin.screenX = 0.0;
    worldOrigin.screenY = (MercatorNorthing(north, scale, scaleBarPixels_) +
                           MercatorNorthing(south, scale, scaleBarPixels_)) /
                          2;
}

void MapModel::UpdateScaleBar() {
    if (map.mapMode != 0 && calibration.Georeferenced() && map.currentWidth > 0.0) {
        // The real scale at the view's centre, whatever the projection.
        scaleBarDistance = ScaleBarDistanceAt(calibration, map.scrollCentre,
                                              map.image.width / map.currentWidth, scaleBarPixels_);
        return;
    }
    scaleBarDistance = map.mapMode != 0 && calibration.IsValid() && map.currentWidth > 0.0
                           ? ScaleBarDistance(extent, map.currentWidth, scaleBarPixels_)
                           : 0.0;
}

// ----- loading -----

void MapModel::ApplyLoadedMap(const std::string& path, ImageSize image,
                              const std::string& referenceFile,
                              const MapCalibration& georeferenced) {
    // One zoom step is half the fitted picture along the axis it fills.
    const MapFit first = FitImageToView(image, view_, bottomBarHeight_, 0);
    const int zoomStep =
        static_cast<int>(first.fitByHeight != 0 ? first.displayedHeight : first.displayedWidth) / 2;
    ApplyLoadedImage(map, path, image, view_, bottomBarHeight_, zoomStep);
    mapPath = path;
    zoom = 0;
    calibration = MapCalibration{};
    extent = MapExtent{};
    scaleBarDistance = 0.0;
    // The cursor starts valid at the view's centre, over the image's centre.
    refs.placementCursor = GeoPoint{};
    refs.placementCursor.valid = 1;
    const PointF centre = View().ViewCentre();
    refs.placementCursor.screenX = centre.x;
    refs.placementCursor.screenY = centre.y;
    refs.placementCursor.imageX = map.imageCentre.x;
    refs.placementCursor.imageY = map.imageCentre.y;
    extent.centre = refs.placementCursor;
    refs.placingReferencePoint = 0;

    refs.activeReferenceCount = 0;
    const ReferenceRead read =
        ReadReferenceFile(referenceFile, refs.referencePoints, refs.activeReferenceCount);
    referencesRead = read == ReferenceRead::Read || read == ReferenceRead::ReadFailed;
    referencesUnreadable = read == ReferenceRead::Unreadable;
    if (referencesRead)
        calibration = ComputeCalibration(refs.referencePoints);
    calibrationSource = calibration.IsValid() ? "rpt" : "";
    if (!calibration.IsValid() && georeferenced.IsValid())
        calibration = georeferenced;
    ResetView();
    if (calibration.IsValid()) {
        ComputeMapExtent(calibration, image, extent);
        ImageToGeo(calibration, refs.placementCursor);
        refs.placementCursor = extent.centre;
        UpdateScaleBar();
    }
    UpdateOutsideMap();
}

void MapModel::CloseMap() {
    map = LoadedMap{};
    mapPath.clear();
    zoom = 0;
    calibration = MapCalibration{};
    extent = MapExtent{};
    refs = ReferenceEditing{};
    scaleBarDistance = 0.0;
    referencesRead = false;
    referencesUnreadable = false;
    calibrationSource.clear();
}

void MapModel::ApplyConfirmation(const ReferenceConfirmation& confirmation) {
    if (confirmation.calibrated)
        ResetView();
    UpdateScaleBar();
    UpdateOutsideMap();
}

// ----- position -----

void MapModel::UpdatePosition(bool running, bool valid, double lat, double lon) {
    linkRunning = running;
    fixValid = valid;
    if (running && valid) {
        latitude = lat;
        longitude = lon;
        if (Following())
            CentreOn(lat, lon);
    }
    UpdateOutsideMap();
}

void MapModel::ResumeFollowing() {
    followPaused = false;
    if (linkRunning && fixValid && following)
        CentreOn(latitude, longitude);
}

void MapModel::CentreOn(double lat, double lon) {
    if (map.mapMode != 0) {
        if (!calibration.IsValid())
            return;
        GeoPoint p;
        const PointF image = GeoToImage(calibration, p, lat, lon);
        // Off the image there is nothing to centre on: the view stays.
        if (InsideImage(image, map.image))
            map.scrollCentre = image;
        if (calibration.Georeferenced())
            UpdateScaleBar();
        return;
    }
    worldOrigin.longitude = lon;
    worldOrigin.screenX = 0.0;
    worldOrigin.screenY = MercatorNorthing(lat, kWorldScales[worldScaleIndex], scaleBarPixels_);
}

void MapModel::UpdateOutsideMap() {
    map.outsideMap = 0;
    if (map.mapMode == 0 || !linkRunning || !fixValid || !calibration.IsValid())
        return;
    GeoPoint p;
    map.outsideMap =
        InsideImage(GeoToImage(calibration, p, latitude, longitude), map.image) ? 0 : 1;
}

// ----- placement -----

void MapModel::StartPlacement(int slot) {
    EnterPlacementMode(refs, slot);
}

void MapModel::CancelPlacement() {
    refs.placingReferencePoint = 0;
    refs.placementCursor = refs.savedPlacementCursor;
}

void MapModel::PlacementTap(int x, int y) {
    const PointF screen{1.0 * x, 1.0 * y};
    PlaceCursor(refs, screen, ScreenToImage(View(), screen));
}

// ----- texts -----

std::string ScaleBarLabel(double kilometres, int unitSystem, bool calibrated) {
    struct Units {
        double perKilometre;  // large units per kilometre
        const char* large;
        double smallPerLarge;
        const char* small;
    };
    // Miles and feet with the program's own factors; nautical miles by the
    // same knot factor the speeds use.
    static constexpr Units kUnits[] = {
        {1.0, "km", 1000.0, "m"},
        {0.621, "mile", 5280.8, "ft"},
        {1.0 / 1.85, "nmi", 6076.1, "ft"},
    };
    const Units& u = kUnits[unitSystem >= 0 && unitSystem <= 2 ? unitSystem : 0];
    char text[64];
    if (!calibrated) {
        std::snprintf(text, sizeof text, "%0.2f %s", 0.0, u.large);
        return text;
    }
    const double large = kilometres * u.perKilometre;
    if (large >= 1.0)
        std::snprintf(text, sizeof text, "%0.2f %s", large, u.large);
    else
        std::snprintf(text, sizeof text, "%0.2f %s", std::max(large, 0.001) * u.smallPerLarge,
                      u.small);
    return text;
}

namespace {

std::string FormatDegreesMinutes(double value, const char* format, char positive, char negative) {
    const double a = std::fabs(value);
    const int degrees = static_cast<int>(a);
    const double minutes = (a - degrees) * 60.0;
    char text[48];
    std::snprintf(text, sizeof text, format, degrees, minutes, value < 0.0 ? negative : positive);
    return text;
}

}  // namespace

std::string FormatMapLatitude(double latitude) {
    return FormatDegreesMinutes(latitude, "%02d\u00b0%07.4f' %c", 'N', 'S');
}

std::string FormatMapLongitude(double longitude) {
    return FormatDegreesMinutes(longitude, "%03d\u00b0%07.4f' %c", 'E', 'W');
}

}  // namespace satwalk::map
