// Map geometry: the point record every map layer shares, the calibration
// that ties an image to the earth through up to five reference points, the
// conversions between image pixels and degrees, the rescale between the
// displayed picture and the image, and the table-driven world projection.
//
// All angles are signed decimal degrees, north and east positive. Image
// pixels start at the image's top-left corner, x to the right, y downward,
// and may be fractional. Everything here is plain arithmetic on values: no
// state, no locks, callable from any thread.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "GeoTransform.h"

namespace satwalk::map {

// One point placed on the map: a reference point, a corner of the map, the
// current position, a track point or a POI.
struct GeoPoint {
    std::int32_t valid = 0;  // 1 = set (for a reference point: active)
    double latitude = 0.0;
    double longitude = 0.0;
    double screenX = 0.0;  // view pixels, written from ProjectToView
    double screenY = 0.0;
    double imageX = 0.0;  // image column
    double imageY = 0.0;  // image row
    friend constexpr bool operator==(const GeoPoint&, const GeoPoint&) = default;
};

inline constexpr int kReferenceSlotCount = 5;
// Slot 1 to slot 5 as the user sees them, indices 0..4.
using ReferencePoints = std::array<GeoPoint, kReferenceSlotCount>;

int CountActive(const ReferencePoints& referencePoints);

// Every pair of slots in their fixed order; entry k - 1 is pair index k. The
// lower-numbered slot (`anchor`) comes first.
struct SlotPair {
    int anchor;
    int other;
};
inline constexpr int kPairCount = 10;
inline constexpr std::array<SlotPair, kPairCount> kSlotPairs = {{
    {0, 1},
    {0, 2},
    {0, 3},
    {0, 4},
    {1, 2},
    {1, 3},
    {1, 4},
    {2, 3},
    {2, 4},
    {3, 4},
}};

// The calibration as one value, of one of two kinds. The reference-point
// kind: the scales of every pair, their means, and the reference points they
// were computed from (the conversions anchor each pair's estimate on its
// points). The georeferenced kind: `geo` set, an affine transform in the
// map's own projection read from the files beside the image; the tables are
// then unused. Every conversion below goes through whichever kind it holds.
// A default value converts everything to 0.
struct MapCalibration {
    // Entries 1..10: degrees per image row (column) of pair k, never
    // negative, 0 when the pair gave no scale; entry 0: the mean of the pairs
    // that gave one.
    std::array<double, kPairCount + 1> latPerPixel{};
    std::array<double, kPairCount + 1> lonPerPixel{};
    int calibrated = 0;   // 1 when both means could be formed
    int activeCount = 0;  // active slots when computed
    ReferencePoints anchors{};
    std::shared_ptr<const GeoTransform> geo;

    bool IsValid() const { return calibrated == 1 || geo != nullptr; }
    bool Georeferenced() const { return geo != nullptr; }
};

// The georeferenced kind for `transform` (null: an invalid calibration).
MapCalibration GeoreferencedCalibration(std::shared_ptr<const GeoTransform> transform);

// Scales from every pair of active slots. Fewer than two active slots, or
// active slots that share a rounded row (column) in every pair, leave
// `calibrated` 0.
MapCalibration ComputeCalibration(const ReferencePoints& referencePoints);

// point.imageX/imageY to point.latitude/longitude. Longitude comes back in
// -180..180; with no active pair both are 0.
void ImageToGeo(const MapCalibration& calibration, GeoPoint& point);

struct PointF {
    double x = 0.0;
    double y = 0.0;
    friend constexpr bool operator==(PointF, PointF) = default;
};

// Latitude and longitude to an image pixel, also stored into
// point.imageX/imageY. The longitude is taken as given (a map across the
// 180° meridian places the other side by the raw difference), and a pair
// without a scale in an axis makes that axis non-finite: callers treat a
// non-finite pixel as off the map.
PointF GeoToImage(const MapCalibration& calibration, GeoPoint& point, double latitude,
                  double longitude);

struct ImageSize {
    std::int32_t width = 0;
    std::int32_t height = 0;
};

// The geographic corners and centre of the image. The map screen keeps a
// copy of its own; by value that is a plain assignment.
struct MapExtent {
    GeoPoint topLeft;      // image pixel (0, 0)
    GeoPoint bottomRight;  // image pixel (width, height)
    GeoPoint centre;       // (width * 0.5, height * 0.5)
};

// Writes only latitude and longitude of the three records; their other
// fields (the centre's screen position, say) stay as the caller set them.
void ComputeMapExtent(const MapCalibration& calibration, ImageSize image, MapExtent& extent);

// The linear rescale between the displayed picture (`span` screen pixels
// showing the whole image, its corner at `displayOrigin`) and the image
// (`imageOrigin` added in image pixels). Exact inverses of each other.
PointF DisplayToImage(PointF span, PointF displayOrigin, PointF imageOrigin, PointF point,
                      ImageSize image);
PointF ImageToDisplay(PointF span, PointF displayOrigin, PointF imageOrigin, PointF point,
                      ImageSize image);

// Ratio of a degree of longitude at the equator to one at whole-degree
// latitude i, for i = 0..80, by this program's own lengths of a degree.
using LatitudeStretchTable = std::array<double, 81>;
LatitudeStretchTable BuildLatitudeStretchTable();
// The table, built once on first use.
const LatitudeStretchTable& StretchTable();

// Kilometres per degree of longitude at `latitude`, by the same lengths.
double KilometresPerDegreeLongitude(double latitude);

// Screen rows from the equator to `latitude` for a view whose scale bar of
// `scaleBarPixels` stands for `scale` kilometres. Latitudes past 80° count as
// 80°. Deliberately not the textbook Mercator: it counts the whole band the
// latitude lies in plus that band's fraction again, so 0° gives one band and
// the sign jumps at the equator; every view built on it agrees with it.
double MercatorNorthing(double latitude, double scale, int scaleBarPixels);

// Where `point` falls on a world view whose `origin` holds the longitude at
// origin.screenX and, in origin.screenY, the screen row of the equator.
PointF ProjectToView(const GeoPoint& origin, const GeoPoint& point, double scale,
                     int scaleBarPixels);

// ProjectToView for the many points of one paint at one origin and scale:
// the same numbers, the tables looked up once.
class ViewProjection {
  public:
    ViewProjection(const GeoPoint& origin, double scale, int scaleBarPixels);
    PointF Project(double latitude, double longitude) const;

  private:
    GeoPoint origin_;
    double scale_;
    int pixels_;
    const LatitudeStretchTable* table_;
    const LatitudeStretchTable* sums_;
};

// `value` (a distance along the equator) divided by the stretch of the
// whole-degree band of `latitude`. Latitudes past 80° use the 80° band.
double StretchAtLatitude(double latitude, double value);

// Kilometres the map screen's scale bar stands for on a calibrated image
// shown `displayedWidth` pixels wide: the longitude span of the image per
// displayed pixel, at the centre's latitude.
double ScaleBarDistance(const MapExtent& extent, double displayedWidth, int scaleBarPixels);

// Kilometres the scale bar of `scaleBarPixels` stands for on a georeferenced
// map at image pixel `centre`, with `imagePerScreen` image pixels to a screen
// pixel: the ground distance across the bar, centred there, so the bar
// shows the real scale at the view's centre whatever the projection.
double ScaleBarDistanceAt(const MapCalibration& calibration, PointF centre, double imagePerScreen,
                          int scaleBarPixels);

// Ground distance in metres between two positions on a sphere of the
// earth's mean radius.
double GroundDistanceMetres(double lat1, double lon1, double lat2, double lon2);

}  // namespace satwalk::map
