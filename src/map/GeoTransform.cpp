#include "GeoTransform.h"

#include <cmath>
#include <utility>
#include <vector>

namespace satwalk::map {

namespace {

void Apply(const Affine& a, double* x, double* y, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const double px = x[i];
        const double py = y[i];
        x[i] = a[0] + a[1] * px + a[2] * py;
        y[i] = a[3] + a[4] * px + a[5] * py;
    }
}

// Solves the 3x3 system m * v = r by Cramer's rule; false when singular.
bool Solve3(const double m[3][3], const double r[3], double v[3]) {
    auto det = [](const double a[3][3]) {
        return a[0][0] * (a[1][1] * a[2][2] - a[1][2] * a[2][1]) -
               a[0][1] * (a[1][0] * a[2][2] - a[1][2] * a[2][0]) +
               a[0][2] * (a[1][0] * a[2][1] - a[1][1] * a[2][0]);
    };
    const double d = det(m);
    // Relative to the matrix's own size, so that metres and degrees alike
    // tell points on one line from a real spread.
    double scale = 0.0;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) scale = std::fmax(scale, std::fabs(m[i][j]));
    if (!std::isfinite(d) || !(std::fabs(d) > 1e-12 * scale * scale * scale))
        return false;
    for (int k = 0; k < 3; ++k) {
        double c[3][3];
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) c[i][j] = j == k ? r[i] : m[i][j];
        v[k] = det(c) / d;
    }
    return true;
}

}  // namespace

bool InvertAffine(const Affine& a, Affine& inverse) {
    const double det = a[1] * a[5] - a[2] * a[4];
    if (!std::isfinite(det) || det == 0.0)
        return false;
    inverse[1] = a[5] / det;
    inverse[2] = -a[2] / det;
    inverse[4] = -a[4] / det;
    inverse[5] = a[1] / det;
    inverse[0] = -(inverse[1] * a[0] + inverse[2] * a[3]);
    inverse[3] = -(inverse[4] * a[0] + inverse[5] * a[3]);
    for (double v : inverse)
        if (!std::isfinite(v))
            return false;
    return true;
}

bool FitAffine(std::span<const ControlPoint> points, Affine& out) {
    if (points.size() < 3)
        return false;
    // Centred on the means, so that metres in the millions lose no digits
    // in the normal equations.
    double mx = 0, my = 0, mX = 0, mY = 0;
    for (const ControlPoint& p : points) {
        mx += p.imageX;
        my += p.imageY;
        mX += p.mapX;
        mY += p.mapY;
    }
    const double n = static_cast<double>(points.size());
    mx /= n, my /= n, mX /= n, mY /= n;
    double m[3][3] = {};
    double rx[3] = {}, ry[3] = {};
    for (const ControlPoint& p : points) {
        const double v[3] = {1.0, p.imageX - mx, p.imageY - my};
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) m[i][j] += v[i] * v[j];
            rx[i] += v[i] * (p.mapX - mX);
            ry[i] += v[i] * (p.mapY - mY);
        }
    }
    double cx[3], cy[3];
    if (!Solve3(m, rx, cx) || !Solve3(m, ry, cy))
        return false;
    out = {mX + cx[0] - cx[1] * mx - cx[2] * my, cx[1], cx[2],
           mY + cy[0] - cy[1] * mx - cy[2] * my, cy[1], cy[2]};
    for (double v : out)
        if (!std::isfinite(v))
            return false;
    Affine inverse;
    return InvertAffine(out, inverse);
}

bool FitInverseAffine(std::span<const ControlPoint> points, Affine& out) {
    std::vector<ControlPoint> swapped(points.begin(), points.end());
    for (ControlPoint& p : swapped) {
        std::swap(p.imageX, p.mapX);
        std::swap(p.imageY, p.mapY);
    }
    return FitAffine(swapped, out);
}

std::shared_ptr<const GeoTransform> GeoTransform::Make(
    const Affine& pixelToMap, std::shared_ptr<const MapProjection> projection) {
    Affine inverse;
    if (!InvertAffine(pixelToMap, inverse))
        return nullptr;
    return Make(pixelToMap, inverse, std::move(projection));
}

std::shared_ptr<const GeoTransform> GeoTransform::Make(
    const Affine& pixelToMap, const Affine& inverse,
    std::shared_ptr<const MapProjection> projection) {
    Affine check;
    if (!InvertAffine(pixelToMap, check) || !InvertAffine(inverse, check))
        return nullptr;
    std::shared_ptr<GeoTransform> t(new GeoTransform());
    t->forward_ = pixelToMap;
    t->inverse_ = inverse;
    t->projection_ = std::move(projection);
    return t;
}

void GeoTransform::ImageToLonLat(double* x, double* y, std::size_t n) const {
    Apply(forward_, x, y, n);
    if (projection_)
        projection_->ToLonLat(x, y, n);
}

void GeoTransform::LonLatToImage(double* x, double* y, std::size_t n) const {
    if (projection_)
        projection_->FromLonLat(x, y, n);
    Apply(inverse_, x, y, n);
}

std::string GeoTransform::ProjectionName() const {
    return projection_ ? projection_->Name() : std::string("WGS 84");
}

}  // namespace satwalk::map
