// The georeferenced kind of a map's calibration: an affine transform from
// image pixels to the map's own coordinates (metres of a projection, or
// degrees) and the projection that ties those coordinates to latitude and
// longitude. The projection itself is an interface: the GIS library behind
// it lives in the map's georeference target, so this core keeps to the
// standard library and stays testable without it.
//
// A GeoTransform is immutable once built and shared between copies of the
// calibration (the map model, every view value, the trail reader's thread);
// its projection must therefore be callable from any thread.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace satwalk::map {

// Between longitude/latitude in degrees (WGS 84, longitude first) and the
// map's own x/y. Conversions work in place on n points; a point that cannot
// be converted comes back as NaN.
class MapProjection {
  public:
    virtual ~MapProjection() = default;
    virtual void ToLonLat(double* x, double* y, std::size_t n) const = 0;
    virtual void FromLonLat(double* x, double* y, std::size_t n) const = 0;
    // A short human name ("WGS 84 / UTM zone 51N") and the full definition
    // (WKT), for the command-line tool and the state dump.
    virtual std::string Name() const = 0;
    virtual std::string Definition() const = 0;
};

// x' = c[0] + c[1] * px + c[2] * py, y' = c[3] + c[4] * px + c[5] * py:
// pixel (0, 0) is the image's top-left corner.
using Affine = std::array<double, 6>;

// The inverse of an affine transform; false when it has none (zero or
// non-finite determinant).
bool InvertAffine(const Affine& a, Affine& inverse);

// One point that ties a pixel to a place: the pixel, the place in degrees
// and the place in the map's own coordinates.
struct ControlPoint {
    double imageX = 0.0;
    double imageY = 0.0;
    double latitude = 0.0;
    double longitude = 0.0;
    double mapX = 0.0;
    double mapY = 0.0;
};

// The affine transform pixel -> map coordinates that fits the points best
// in least squares (exactly for three). False for fewer than three points,
// points on one line, or numbers that are not finite.
bool FitAffine(std::span<const ControlPoint> points, Affine& out);
// The same fit the other way: map coordinates -> pixel.
bool FitInverseAffine(std::span<const ControlPoint> points, Affine& out);

class GeoTransform {
  public:
    // `projection` null: the map's coordinates are degrees on WGS 84 (x the
    // longitude). Null when the affine transform cannot be inverted.
    static std::shared_ptr<const GeoTransform> Make(
        const Affine& pixelToMap, std::shared_ptr<const MapProjection> projection);
    // With its own way back: for transforms fitted to more points than they
    // need, the map-to-pixel fit of the same points.
    static std::shared_ptr<const GeoTransform> Make(
        const Affine& pixelToMap, const Affine& mapToPixel,
        std::shared_ptr<const MapProjection> projection);

    // In place: image pixel x/y to longitude/latitude, and back.
    void ImageToLonLat(double* x, double* y, std::size_t n) const;
    void LonLatToImage(double* x, double* y, std::size_t n) const;

    const MapProjection* Projection() const { return projection_.get(); }
    std::string ProjectionName() const;

  private:
    GeoTransform() = default;
    Affine forward_{};
    Affine inverse_{};
    std::shared_ptr<const MapProjection> projection_;
};

}  // namespace satwalk::map
