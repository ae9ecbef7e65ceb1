#include "MapGeometry.h"

#include <cmath>

namespace satwalk::map {

namespace {

constexpr double kPi = 3.141592653589793;
// This program's own lengths of a degree, in kilometres: of longitude at the
// equator, and the two terms of its fall with latitude.
constexpr double kEquatorDegreeKm = 114.319;
constexpr double kDegreeKmCos = 114.413;
constexpr double kDegreeKmCos3 = 0.094;
constexpr double kNorthingDegreeKm = 111.0;
constexpr double kMaxLatitude = 80.0;

// A pixel position to its pixel: add a half and cut toward zero.
double RoundPixel(double v) {
    return std::trunc(v + 0.5);
}

// Longitudes past the meridian come back to the other side, once each way.
double NormaliseLongitude(double lon) {
    if (lon > 180.0)
        lon -= 360.0;
    if (lon < -180.0)
        lon += 360.0;
    return lon;
}

// Pair estimates are blended by running halving: the first stands alone,
// every later one is averaged half-and-half with what came before, so later
// pairs weigh more. Not a mean, and meant that way.
template <int N>
struct RunningHalf {
    std::array<double, N> acc{};
    int n = 0;
    void Add(const std::array<double, N>& estimate) {
        for (int i = 0; i < N; ++i) acc[i] += estimate[i];
        if (++n == 2) {
            n = 1;
            for (double& a : acc) a *= 0.5;
        }
    }
};

// Calls f(anchor, k) for every pair of active slots, k the pair's index.
template <typename F>
void ForActivePairs(const ReferencePoints& slots, F&& f) {
    for (int k = 1; k <= kPairCount; ++k) {
        const SlotPair pair = kSlotPairs[k - 1];
        if (slots[pair.anchor].valid == 1 && slots[pair.other].valid == 1)
            f(slots[pair.anchor], slots[pair.other], k);
    }
}

}  // namespace

namespace {

constexpr double kSaneCoordinate = 1e9;

bool Sane(double v) {
    return std::isfinite(v) && std::fabs(v) <= kSaneCoordinate;
}

}  // namespace

int CountActive(const ReferencePoints& referencePoints) {
    int n = 0;
    for (const GeoPoint& p : referencePoints) n += p.valid == 1;
    return n;
}

MapCalibration ComputeCalibration(const ReferencePoints& referencePoints) {
    MapCalibration c;
    c.anchors = referencePoints;
    c.activeCount = CountActive(referencePoints);
    int latPairs = 0;
    int lonPairs = 0;
    ForActivePairs(referencePoints, [&](const GeoPoint& i, const GeoPoint& j, int k) {
        if (RoundPixel(i.imageY) != RoundPixel(j.imageY)) {
            c.latPerPixel[k] = std::fabs((i.latitude - j.latitude) / (i.imageY - j.imageY));
            ++latPairs;
        }
        if (RoundPixel(i.imageX) != RoundPixel(j.imageX)) {
            const bool sameOrder = (i.imageX > j.imageX && i.longitude > j.longitude) ||
                                   (i.imageX < j.imageX && i.longitude < j.longitude);
            // Columns and longitudes running opposite ways mean the map
            // spans the 180° meridian: the gap goes round the other way.
            const double span = sameOrder ? i.longitude - j.longitude
                                          : 360.0 - std::fabs(i.longitude - j.longitude);
            c.lonPerPixel[k] = std::fabs(span / (i.imageX - j.imageX));
            ++lonPairs;
        }
    });
    // Numbers from a file or a dialog may be anything: a calibration built on
    // a coordinate that is not finite, or so large that the map's extent and
    // scale bar would overflow, is none.
    bool sane = true;
    for (const GeoPoint& p : referencePoints) {
        if (p.valid == 1)
            sane =
                sane && Sane(p.latitude) && Sane(p.longitude) && Sane(p.imageX) && Sane(p.imageY);
    }
    if (!sane || latPairs < 1 || lonPairs < 1) {
        c.latPerPixel[0] = 0.0;
        c.lonPerPixel[0] = 0.0;
        c.calibrated = 0;
        return c;
    }
    double latSum = 0.0;
    double lonSum = 0.0;
    for (int k = 1; k <= kPairCount; ++k) {
        latSum += c.latPerPixel[k];
        lonSum += c.lonPerPixel[k];
    }
    c.latPerPixel[0] = latSum / latPairs;
    c.lonPerPixel[0] = lonSum / lonPairs;
    c.calibrated = 1;
    return c;
}

MapCalibration GeoreferencedCalibration(std::shared_ptr<const GeoTransform> transform) {
    MapCalibration c;
    c.geo = std::move(transform);
    return c;
}

void ImageToGeo(const MapCalibration& calibration, GeoPoint& point) {
    if (calibration.geo) {
        double x = point.imageX, y = point.imageY;
        calibration.geo->ImageToLonLat(&x, &y, 1);
        point.latitude = y;
        point.longitude = NormaliseLongitude(x);
        return;
    }
    RunningHalf<2> r;
    ForActivePairs(calibration.anchors, [&](const GeoPoint& a, const GeoPoint&, int k) {
        r.Add({a.latitude - (point.imageY - a.imageY) * calibration.latPerPixel[k],
               a.longitude + (point.imageX - a.imageX) * calibration.lonPerPixel[k]});
    });
    point.latitude = r.acc[0];
    point.longitude = NormaliseLongitude(r.acc[1]);
}

PointF GeoToImage(const MapCalibration& calibration, GeoPoint& point, double latitude,
                  double longitude) {
    if (calibration.geo) {
        double x = longitude, y = latitude;
        calibration.geo->LonLatToImage(&x, &y, 1);
        point.imageX = x;
        point.imageY = y;
        return {x, y};
    }
    RunningHalf<2> r;
    ForActivePairs(calibration.anchors, [&](const GeoPoint& a, const GeoPoint&, int k) {
        r.Add({(longitude - a.longitude) / calibration.lonPerPixel[k] + a.imageX,
               a.imageY - (latitude - a.latitude) / calibration.latPerPixel[k]});
    });
    point.imageX = r.acc[0];
    point.imageY = r.acc[1];
    return {r.acc[0], r.acc[1]};
}

void ComputeMapExtent(const MapCalibration& calibration, ImageSize image, MapExtent& extent) {
    const double w = image.width;
    const double h = image.height;
    const double cx = w * 0.5;
    const double cy = h * 0.5;
    if (calibration.geo) {
        double x[3] = {0.0, w, cx}, y[3] = {0.0, h, cy};
        calibration.geo->ImageToLonLat(x, y, 3);
        GeoPoint* out[3] = {&extent.topLeft, &extent.bottomRight, &extent.centre};
        for (int i = 0; i < 3; ++i) {
            out[i]->latitude = y[i];
            out[i]->longitude = NormaliseLongitude(x[i]);
        }
        return;
    }
    RunningHalf<6> r;
    ForActivePairs(calibration.anchors, [&](const GeoPoint& a, const GeoPoint&, int k) {
        const double lat = calibration.latPerPixel[k];
        const double lon = calibration.lonPerPixel[k];
        r.Add({a.latitude + a.imageY * lat, a.longitude - a.imageX * lon,
               a.latitude - (h - a.imageY) * lat, a.longitude + (w - a.imageX) * lon,
               a.latitude - (cy - a.imageY) * lat, a.longitude + (cx - a.imageX) * lon});
    });
    extent.topLeft.latitude = r.acc[0];
    extent.topLeft.longitude = NormaliseLongitude(r.acc[1]);
    extent.bottomRight.latitude = r.acc[2];
    extent.bottomRight.longitude = NormaliseLongitude(r.acc[3]);
    extent.centre.latitude = r.acc[4];
    extent.centre.longitude = NormaliseLongitude(r.acc[5]);
}

PointF DisplayToImage(PointF span, PointF displayOrigin, PointF imageOrigin, PointF point,
                      ImageSize image) {
    const double w = image.width;
    const double h = image.height;
    return {(point.x - displayOrigin.x) / span.x * w + imageOrigin.x,
            (point.y - displayOrigin.y) / span.y * h + imageOrigin.y};
}

PointF ImageToDisplay(PointF span, PointF displayOrigin, PointF imageOrigin, PointF point,
                      ImageSize image) {
    const double w = image.width;
    const double h = image.height;
    return {(point.x - imageOrigin.x) / w * span.x + displayOrigin.x,
            (point.y - imageOrigin.y) / h * span.y + displayOrigin.y};
}

LatitudeStretchTable BuildLatitudeStretchTable() {
    LatitudeStretchTable t{};
    for (int i = 0; i <= 80; ++i) {
        const double phi = i * kPi / 180.0;
        const double phi3 = i * kPi / 60.0;
        t[i] = kEquatorDegreeKm / (kDegreeKmCos * std::cos(phi) - kDegreeKmCos3 * std::cos(phi3));
    }
    return t;
}

const LatitudeStretchTable& StretchTable() {
    static const LatitudeStretchTable table = BuildLatitudeStretchTable();
    return table;
}

double KilometresPerDegreeLongitude(double latitude) {
    return kDegreeKmCos * std::cos(latitude * kPi / 180.0) -
           kDegreeKmCos3 * std::cos(latitude * kPi / 60.0);
}

namespace {

// Running sums of the stretch table, added in the same order as a loop over
// the bands would, so a northing is the same to the last bit; the world map
// projects tens of thousands of points per paint.
const LatitudeStretchTable& NorthingSums() {
    static const LatitudeStretchTable sums = [] {
        const LatitudeStretchTable& t = StretchTable();
        LatitudeStretchTable s{};
        double run = 0.0;
        for (std::size_t i = 0; i < t.size(); ++i) s[i] = run += t[i];
        return s;
    }();
    return sums;
}

double NorthingFromTables(double latitude, double pixelsPerScale, const LatitudeStretchTable& t,
                          const LatitudeStretchTable& sums) {
    double a = std::fabs(latitude);
    if (a > kMaxLatitude)
        a = kMaxLatitude;
    const int n = static_cast<int>(a);
    const double f = a - n;
    const double s = sums[n] + f * t[n];
    const double result = s * pixelsPerScale * kNorthingDegreeKm;
    return latitude < 0.0 ? -result : result;
}

}  // namespace

double MercatorNorthing(double latitude, double scale, int scaleBarPixels) {
    if (std::isnan(latitude))
        return latitude;
    return NorthingFromTables(latitude, scaleBarPixels / scale, StretchTable(), NorthingSums());
}

PointF ProjectToView(const GeoPoint& origin, const GeoPoint& point, double scale,
                     int scaleBarPixels) {
    return {((point.longitude - origin.longitude) / scale) * scaleBarPixels * kEquatorDegreeKm +
                origin.screenX,
            origin.screenY - MercatorNorthing(point.latitude, scale, scaleBarPixels)};
}

ViewProjection::ViewProjection(const GeoPoint& origin, double scale, int scaleBarPixels)
    : origin_(origin),
      scale_(scale),
      pixels_(scaleBarPixels),
      table_(&StretchTable()),
      sums_(&NorthingSums()) {}

PointF ViewProjection::Project(double latitude, double longitude) const {
    const double northing = std::isnan(latitude)
                                ? latitude
                                : NorthingFromTables(latitude, pixels_ / scale_, *table_, *sums_);
    return {
        ((longitude - origin_.longitude) / scale_) * pixels_ * kEquatorDegreeKm + origin_.screenX,
        origin_.screenY - northing};
}

double StretchAtLatitude(double latitude, double value) {
    double a = std::fabs(latitude);
    // Callers keep latitudes within the table; a stray one reads the last band
    // rather than past the end.
    if (!(a <= kMaxLatitude))
        a = kMaxLatitude;
    return value / StretchTable()[static_cast<int>(a)];
}

double ScaleBarDistance(const MapExtent& extent, double displayedWidth, int scaleBarPixels) {
    return KilometresPerDegreeLongitude(extent.centre.latitude) *
           ((extent.bottomRight.longitude - extent.topLeft.longitude) / displayedWidth) *
           scaleBarPixels;
}

double ScaleBarDistanceAt(const MapCalibration& calibration, PointF centre, double imagePerScreen,
                          int scaleBarPixels) {
    if (!calibration.geo)
        return 0.0;
    const double half = 0.5 * imagePerScreen * scaleBarPixels;
    double x[2] = {centre.x - half, centre.x + half}, y[2] = {centre.y, centre.y};
    calibration.geo->ImageToLonLat(x, y, 2);
    const double km = GroundDistanceMetres(y[0], x[0], y[1], x[1]) / 1000.0;
    return std::isfinite(km) ? km : 0.0;
}

double GroundDistanceMetres(double lat1, double lon1, double lat2, double lon2) {
    constexpr double kEarthRadiusMetres = 6371008.8;
    constexpr double kRad = kPi / 180.0;
    const double dLat = (lat2 - lat1) * kRad;
    const double dLon = (lon2 - lon1) * kRad;
    const double h =
        std::sin(dLat / 2) * std::sin(dLat / 2) +
        std::cos(lat1 * kRad) * std::cos(lat2 * kRad) * std::sin(dLon / 2) * std::sin(dLon / 2);
    return 2.0 * kEarthRadiusMetres * std::asin(std::sqrt(std::fmin(1.0, h)));
}

}  // namespace satwalk::map
