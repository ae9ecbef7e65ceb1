#include "TrackStatistics.h"

#include <GeographicLib/Ellipsoid.hpp>
#include <GeographicLib/Geodesic.hpp>

#include <cmath>
#include <cstdio>

#include "Json.h"
#include "ScreenIds.h"
#include "Strings.h"

namespace satwalk::track {

namespace {

constexpr double kRadian = 3.14159265358979323846 / 180.0;
// Steps shorter than this (in degrees of latitude and of longitude) are
// measured with the local radii of curvature.
constexpr double kShortStep = 0.01;

// The radii of curvature at a latitude, kept for the last thousandth of a
// degree asked for: along a track they hardly ever change.
struct Radii {
    std::int64_t band = INT64_MIN;
    double meridional = 0;
    double transverse = 0;
};
thread_local Radii tRadii;

}  // namespace

double GeodesicDistance(double latitude1, double longitude1, double latitude2, double longitude2) {
    const double dLatitude = latitude2 - latitude1;
    double dLongitude = longitude2 - longitude1;
    if (dLongitude > 180)
        dLongitude -= 360;
    else if (dLongitude < -180)
        dLongitude += 360;
    if (std::fabs(dLatitude) < kShortStep && std::fabs(dLongitude) < kShortStep) {
        const double middle = latitude1 + dLatitude / 2;
        const auto band = static_cast<std::int64_t>(std::floor(middle * 1000));
        if (band != tRadii.band) {
            const GeographicLib::Ellipsoid& wgs84 = GeographicLib::Ellipsoid::WGS84();
            tRadii.band = band;
            tRadii.meridional = wgs84.MeridionalCurvatureRadius(middle);
            tRadii.transverse = wgs84.TransverseCurvatureRadius(middle);
        }
        return std::hypot(tRadii.meridional * dLatitude * kRadian,
                          tRadii.transverse * std::cos(middle * kRadian) * dLongitude * kRadian);
    }
    double s12 = 0;
    GeographicLib::Geodesic::WGS84().Inverse(latitude1, longitude1, latitude2, longitude2, s12);
    return s12;
}

void TrackStatistics::Add(const TrackFilePoint& p) {
    const double time = p.hasTime ? TrackSeconds(p.time) : kNoValue;
    double step = 0;
    double speed = std::isfinite(p.speed) ? p.speed : kNoValue;
    if (points_ > 0) {
        step = GeodesicDistance(lastLatitude_, lastLongitude_, p.latitude, p.longitude);
        distance_ += step;
        const double dt = time - lastTime_;  // NaN unless both have times
        if (dt > 0) {
            if (step / dt > kMovingSpeed)
                movingTime_ += dt;
            // Speeds from positions only over a second or more: closer
            // fixes make a jitter of metres look like a flight.
            if (!std::isfinite(speed) && dt >= 1)
                speed = step / dt;
        }
    }
    if (std::isfinite(speed) && !(speed <= maxSpeed_))
        maxSpeed_ = speed;
    if (std::isfinite(time)) {
        if (!std::isfinite(firstTime_))
            firstTime_ = time;
        if (time - firstTime_ > duration_)
            duration_ = time - firstTime_;
        lastTime_ = time;
    }
    const double e = p.elevation;
    if (std::isfinite(e)) {
        if (!(e >= minElevation_))
            minElevation_ = e;
        if (!(e <= maxElevation_))
            maxElevation_ = e;
        if (!std::isfinite(stepElevation_)) {
            stepElevation_ = e;
        } else if (e - stepElevation_ >= kElevationStep) {
            gain_ += e - stepElevation_;
            stepElevation_ = e;
        } else if (stepElevation_ - e >= kElevationStep) {
            loss_ += stepElevation_ - e;
            stepElevation_ = e;
        }
    }
    lastLatitude_ = p.latitude;
    lastLongitude_ = p.longitude;
    last_ = ProfileSample{distance_, e, speed};
    lastInProfile_ = points_ % stride_ == 0 && Sample(last_);
    ++points_;
}

bool TrackStatistics::Sample(const ProfileSample& sample) {
    if (profile_.size() == kProfileSamples) {
        // Full: every second sample goes, and from now on every second
        // point is left out as well.
        for (std::size_t i = 0; i < kProfileSamples / 2; ++i) profile_[i] = profile_[2 * i];
        profile_.resize(kProfileSamples / 2);
        stride_ *= 2;
        if ((points_ % stride_) != 0)
            return false;
    }
    if (profile_.capacity() == 0)
        profile_.reserve(kProfileSamples);
    profile_.push_back(sample);
    return true;
}

bool TrackStatistics::hasTime() const {
    return std::isfinite(firstTime_);
}

double TrackStatistics::averageSpeed() const {
    return movingTime_ > 0 ? distance_ / movingTime_ : kNoValue;
}

std::vector<ProfileSample> TrackStatistics::Profile() const {
    std::vector<ProfileSample> out = profile_;
    if (points_ > 0 && !lastInProfile_)
        out.push_back(last_);
    return out;
}

namespace {

std::string Format(const char* format, double value, const char* unit) {
    if (!std::isfinite(value))
        return "--";
    char text[64];
    std::snprintf(text, sizeof text, format, value, unit);
    return text;
}

}  // namespace

std::string DistanceText(double metres, int units) {
    if (units == common::kImperial)
        return Format("%.2f %s", metres / 1609.344, "mi");
    if (units == common::kNautical)
        return Format("%.2f %s", metres / 1852.0, "nmi");
    return metres < 1000 ? Format("%.0f %s", metres, "m") : Format("%.2f %s", metres / 1000, "km");
}

std::string DurationText(double seconds) {
    if (!std::isfinite(seconds) || seconds < 0)
        return "--";
    const auto s = static_cast<long long>(std::llround(seconds));
    char text[48];
    std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", s / 3600, s / 60 % 60, s % 60);
    return text;
}

std::string SpeedText(double metresPerSecond, int units) {
    const double kmh = metresPerSecond * 3.6;
    if (units == common::kImperial)
        return Format("%.1f %s", kmh / 1.609344, "mph");
    if (units == common::kNautical)
        return Format("%.1f %s", kmh / 1.852, "kn");
    return Format("%.1f %s", kmh, "km/h");
}

std::string ElevationText(double metres, int units) {
    if (units == common::kImperial || units == common::kNautical)
        return Format("%.0f %s", metres / 0.3048, "ft");
    return Format("%.0f %s", metres, "m");
}

std::vector<StatisticsRow> StatisticsRows(const TrackStatistics& s, int units) {
    const bool timed = s.hasTime();
    const bool elevated = std::isfinite(s.minElevation());
    return {
        {common::kStrStatDistance, DistanceText(s.distance(), units)},
        {common::kStrStatDuration, timed ? DurationText(s.duration()) : "--"},
        {common::kStrStatMovingTime, timed ? DurationText(s.movingTime()) : "--"},
        {common::kStrStatAverageSpeed, SpeedText(s.averageSpeed(), units)},
        {common::kStrStatMaxSpeed, SpeedText(s.maxSpeed(), units)},
        {common::kStrStatGain, elevated ? ElevationText(s.gain(), units) : "--"},
        {common::kStrStatLoss, elevated ? ElevationText(s.loss(), units) : "--"},
        {common::kStrStatMinElevation, ElevationText(s.minElevation(), units)},
        {common::kStrStatMaxElevation, ElevationText(s.maxElevation(), units)},
        {common::kStrStatPoints, std::to_string(s.points())},
    };
}

std::string StatisticsJson(const TrackStatistics& s) {
    const bool timed = s.hasTime();
    const bool elevated = std::isfinite(s.minElevation());
    std::string out = "{";
    common::JsonMembers m(out);
    m.Int("points", static_cast<long long>(s.points()));
    common::AppendJsonNumber(m.Name("distance"), s.distance());
    common::AppendJsonNumber(m.Name("duration"), timed ? s.duration() : kNoValue);
    common::AppendJsonNumber(m.Name("movingTime"), timed ? s.movingTime() : kNoValue);
    common::AppendJsonNumber(m.Name("averageSpeed"), s.averageSpeed());
    common::AppendJsonNumber(m.Name("maxSpeed"), s.maxSpeed());
    common::AppendJsonNumber(m.Name("elevationGain"), elevated ? s.gain() : kNoValue);
    common::AppendJsonNumber(m.Name("elevationLoss"), elevated ? s.loss() : kNoValue);
    common::AppendJsonNumber(m.Name("minElevation"), s.minElevation());
    common::AppendJsonNumber(m.Name("maxElevation"), s.maxElevation());
    out += "}";
    return out;
}

}  // namespace satwalk::track
