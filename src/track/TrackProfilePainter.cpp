#include "TrackProfilePainter.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "Strings.h"

namespace satwalk::track {

using screens::Point;
using screens::Rect;

namespace {

constexpr screens::Colour kFrame = screens::Rgb(160, 160, 160);
constexpr screens::Colour kCaption = screens::Rgb(34, 89, 172);
constexpr screens::Colour kLabel = screens::Rgb(60, 60, 60);
constexpr screens::Colour kElevationLine = screens::Rgb(40, 120, 40);
constexpr screens::Colour kElevationFill = screens::Rgb(200, 230, 190);
constexpr screens::Colour kSpeedLine = screens::Rgb(30, 80, 200);

double Value(const ProfileSample& s, ProfileKind kind) {
    return kind == ProfileKind::Elevation ? s.elevation : s.speed;
}

std::string ValueText(double value, ProfileKind kind, int units) {
    return kind == ProfileKind::Elevation ? ElevationText(value, units) : SpeedText(value, units);
}

}  // namespace

Rect ProfilePlotArea(Rect box, int textHeight) {
    Rect plot{box.left + 1, box.top + textHeight + 1, box.right - 1, box.bottom - textHeight - 1};
    if (plot.bottom < plot.top)
        plot.bottom = plot.top;
    if (plot.right < plot.left)
        plot.right = plot.left;
    return plot;
}

Rect ProfileCurveArea(Rect box, int textHeight) {
    Rect curve = ProfilePlotArea(box, textHeight);
    if (curve.Height() >= 4 * textHeight) {
        curve.top += textHeight;
        curve.bottom -= textHeight;
    }
    return curve;
}

void DrawTrackProfile(screens::Canvas& canvas, Rect box, std::span<const ProfileSample> samples,
                      ProfileKind kind, int units, int textHeight) {
    const screens::Font previous = canvas.SelectedFont();
    canvas.SelectFont(screens::Font{textHeight, 400});
    canvas.FillRect(box, screens::kWhite);
    const char* caption = common::LoadString(
        kind == ProfileKind::Elevation ? common::kStrElevationProfile : common::kStrSpeedProfile);
    canvas.DrawText(caption, Rect{box.left + 2, box.top, box.right, box.top + textHeight},
                    screens::kTextLeft | screens::kTextVCenter, kCaption);
    const Rect plot = ProfilePlotArea(box, textHeight);
    canvas.Rectangle(Rect{plot.left - 1, plot.top - 1, plot.right + 1, plot.bottom + 1},
                     screens::Pen{kFrame, 1}, screens::kNullBrush);

    double low = INFINITY, high = -INFINITY;
    for (const ProfileSample& s : samples) {
        const double v = Value(s, kind);
        if (std::isfinite(v)) {
            low = std::min(low, v);
            high = std::max(high, v);
        }
    }
    if (!(low <= high) || plot.Width() < 2 || plot.Height() < 2) {
        canvas.DrawText(common::LoadString(common::kStrNoTrackData), plot,
                        screens::kTextCenter | screens::kTextVCenter, kLabel);
        canvas.SelectFont(previous);
        return;
    }
    if (kind == ProfileKind::Speed)
        low = std::min(low, 0.0);  // speeds stand on zero
    if (high - low < 1e-9) {
        low -= 1;
        high += 1;
    }
    const double total = samples.back().distance;
    const Rect curve = ProfileCurveArea(box, textHeight);
    const double width = plot.Width() - 1;
    const double height = curve.Height() - 1;
    const auto x = [&](double distance) {
        return plot.left +
               static_cast<int>(std::lround(total > 0 ? distance / total * width : width / 2));
    };
    const auto y = [&](double v) {
        return curve.bottom - 1 - static_cast<int>(std::lround((v - low) / (high - low) * height));
    };

    // Runs of samples with values, each its own line (and, for elevations,
    // its own filled area down to the bottom).
    std::vector<Point> run;
    run.reserve(samples.size() + 2);
    const auto flush = [&] {
        if (run.empty())
            return;
        if (kind == ProfileKind::Elevation) {
            std::vector<Point> area = run;
            area.push_back(Point{run.back().x, plot.bottom - 1});
            area.push_back(Point{run.front().x, plot.bottom - 1});
            canvas.Polygon(area, screens::kNullPen, screens::Brush{kElevationFill});
        }
        if (run.size() == 1)
            run.push_back(run.front());
        canvas.Polyline(
            run, screens::Pen{kind == ProfileKind::Elevation ? kElevationLine : kSpeedLine, 2});
        run.clear();
    };
    for (const ProfileSample& s : samples) {
        const double v = Value(s, kind);
        if (!std::isfinite(v)) {
            flush();
            continue;
        }
        const Point p{x(s.distance), y(v)};
        if (run.empty() || !(run.back() == p))
            run.push_back(p);
    }
    flush();

    canvas.DrawText(ValueText(high, kind, units),
                    Rect{plot.left + 2, plot.top, plot.right - 2, curve.top},
                    screens::kTextLeft | screens::kTextVCenter, kLabel);
    canvas.DrawText(ValueText(low, kind, units),
                    Rect{plot.left + 2, curve.bottom, plot.right - 2, plot.bottom},
                    screens::kTextLeft | screens::kTextVCenter, kLabel);
    canvas.DrawText(DistanceText(total, units),
                    Rect{box.left, plot.bottom + 1, box.right - 2, box.bottom},
                    screens::kTextRight | screens::kTextVCenter, kLabel);
    canvas.SelectFont(previous);
}

}  // namespace satwalk::track
