#include "MapView.h"

#include <cmath>

namespace satwalk::map {

namespace {

constexpr double kEquatorDegreeKm = 114.319;  // as ProjectToView converts longitudes
constexpr double kMaxLatitude = 80.0;

double PixelsPerDegree(const MapView& view) {
    return view.scaleBarPixels * kEquatorDegreeKm / view.viewScale;
}

// A longitude within 180° of `near`, so that the world repeats around it.
double NearestTurn(double longitude, double near) {
    // remainder() leaves a difference within half a turn as it is; skipping
    // it there spares the world map's many points its cost.
    const double difference = longitude - near;
    if (difference >= -180.0 && difference <= 180.0)
        return near + difference;
    return near + std::remainder(difference, 360.0);
}

// The latitude whose northing is `northing`. The northing only grows with
// the latitude's size (band by band, each band a little more), so halving
// the interval finds it; inside the band around the equator, where the
// northing jumps from minus one band to plus one, it is 0.
double LatitudeOfNorthing(double northing, const MapView& view) {
    const double sign = northing < 0.0 ? -1.0 : 1.0;
    const double n = std::fabs(northing);
    auto at = [&view](double a) {
        return MercatorNorthing(a, view.viewScale, view.scaleBarPixels);
    };
    if (!(n >= at(0.0)))
        return 0.0;
    if (n >= at(kMaxLatitude))
        return sign * kMaxLatitude;
    double lo = 0.0, hi = kMaxLatitude;
    for (int i = 0; i < 60; ++i) {
        const double mid = 0.5 * (lo + hi);
        (at(mid) <= n ? lo : hi) = mid;
    }
    return sign * lo;
}

}  // namespace

PointF MapView::ViewCentre() const {
    return {viewRect.left + viewRect.Width() * 0.5, viewRect.top + viewRect.Height() * 0.5};
}

PointF MapView::DisplayOrigin() const {
    const PointF c = ViewCentre();
    if (imageSize.width <= 0 || imageSize.height <= 0)
        return c;
    return {c.x - scrollCentre.x / imageSize.width * currentWidth,
            c.y - scrollCentre.y / imageSize.height * currentHeight};
}

PointF ScreenToImage(const MapView& view, PointF screen) {
    return DisplayToImage({view.currentWidth, view.currentHeight}, view.DisplayOrigin(), {}, screen,
                          view.imageSize);
}

PointF ImageToScreen(const MapView& view, PointF image) {
    return ImageToDisplay({view.currentWidth, view.currentHeight}, view.DisplayOrigin(), {}, image,
                          view.imageSize);
}

bool ProjectToScreen(const MapView& view, double latitude, double longitude, PointF& out) {
    if (!std::isfinite(latitude) || !std::isfinite(longitude))
        return false;
    PointF p;
    if (view.mapMode == 0) {
        const double pxPerDegree = PixelsPerDegree(view);
        if (!std::isfinite(pxPerDegree) || pxPerDegree <= 0.0)
            return false;
        const double centreLon = view.worldOrigin.longitude +
                                 (view.ViewCentre().x - view.worldOrigin.screenX) / pxPerDegree;
        GeoPoint point;
        point.latitude = latitude;
        point.longitude = NearestTurn(longitude, centreLon);
        p = ProjectToView(view.worldOrigin, point, view.viewScale, view.scaleBarPixels);
    } else {
        if (!view.calibration.IsValid() || view.imageSize.width <= 0 || view.imageSize.height <= 0)
            return false;
        GeoPoint point;
        p = ImageToScreen(view, GeoToImage(view.calibration, point, latitude, longitude));
    }
    if (!std::isfinite(p.x) || !std::isfinite(p.y))
        return false;
    out = p;
    return true;
}

ScreenProjector::ScreenProjector(const MapView& view)
    : view_(view),
      world_(view.mapMode == 0),
      worldProjection_(view.worldOrigin, view.viewScale, view.scaleBarPixels) {
    if (!world_)
        return;
    const double pxPerDegree = PixelsPerDegree(view);
    usable_ = std::isfinite(pxPerDegree) && pxPerDegree > 0.0;
    if (usable_) {
        centreLongitude_ = view.worldOrigin.longitude +
                           (view.ViewCentre().x - view.worldOrigin.screenX) / pxPerDegree;
    }
}

bool ScreenProjector::Project(double latitude, double longitude, PointF& out) const {
    if (!world_)
        return ProjectToScreen(view_, latitude, longitude, out);
    if (!usable_ || !std::isfinite(latitude) || !std::isfinite(longitude))
        return false;
    const PointF p = worldProjection_.Project(latitude, NearestTurn(longitude, centreLongitude_));
    if (!std::isfinite(p.x) || !std::isfinite(p.y))
        return false;
    out = p;
    return true;
}

bool ScreenToGeo(const MapView& view, PointF screen, double& latitude, double& longitude) {
    if (view.mapMode == 0) {
        const double pxPerDegree = PixelsPerDegree(view);
        if (!std::isfinite(pxPerDegree) || pxPerDegree <= 0.0)
            return false;
        const double lon =
            view.worldOrigin.longitude + (screen.x - view.worldOrigin.screenX) / pxPerDegree;
        latitude = LatitudeOfNorthing(view.worldOrigin.screenY - screen.y, view);
        longitude = std::remainder(lon, 360.0);
        return true;
    }
    if (!view.calibration.IsValid())
        return false;
    GeoPoint point;
    const PointF image = ScreenToImage(view, screen);
    point.imageX = image.x;
    point.imageY = image.y;
    ImageToGeo(view.calibration, point);
    latitude = point.latitude;
    longitude = point.longitude;
    return true;
}

}  // namespace satwalk::map
