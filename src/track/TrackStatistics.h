// Statistics of a track, gathered point by point as it is read or
// recorded: distance (geodesic on WGS84, through GeographicLib), duration,
// moving time, speeds, elevation gain and loss, and a profile of elevation
// and speed over distance that never holds more than kProfileSamples
// samples (every second one is dropped when it fills), so memory stays flat
// whatever the track's length.
//
// A value type without locks: the owner says which thread adds to it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "TrackFile.h"

namespace satwalk::track {

// Moving means faster than 1 km/h between two points.
inline constexpr double kMovingSpeed = 1000.0 / 3600.0;
// Elevation changes smaller than this are taken as noise: gain and loss
// count a change only once it reaches it from the last counted elevation.
inline constexpr double kElevationStep = 3.0;
inline constexpr std::size_t kProfileSamples = 1024;

struct ProfileSample {
    double distance = 0;          // metres from the start
    double elevation = kNoValue;  // metres
    double speed = kNoValue;      // metres a second
};

// The length in metres of the geodesic between two points on WGS84. Short
// steps (under about a kilometre) use the ellipsoid's radii of curvature at
// their middle, which agree with the full solution to well under a
// millimetre and cost a fraction of it.
double GeodesicDistance(double latitude1, double longitude1, double latitude2, double longitude2);

class TrackStatistics {
  public:
    void Add(const TrackFilePoint& point);
    void Clear() { *this = TrackStatistics{}; }

    std::uint64_t points() const { return points_; }
    double distance() const { return distance_; }      // metres
    double duration() const { return duration_; }      // seconds; 0 without times
    double movingTime() const { return movingTime_; }  // seconds
    // Distance over moving time; NaN without a moving time.
    double averageSpeed() const;
    double maxSpeed() const { return maxSpeed_; }  // m/s, NaN without speeds
    double gain() const { return gain_; }
    double loss() const { return loss_; }
    double minElevation() const { return minElevation_; }  // NaN without elevations
    double maxElevation() const { return maxElevation_; }
    bool hasTime() const;
    // The profile in order of distance, its last sample the last point.
    std::vector<ProfileSample> Profile() const;

  private:
    bool Sample(const ProfileSample& sample);

    std::uint64_t points_ = 0;
    double distance_ = 0;
    double duration_ = 0;
    double movingTime_ = 0;
    double maxSpeed_ = kNoValue;
    double gain_ = 0;
    double loss_ = 0;
    double minElevation_ = kNoValue;
    double maxElevation_ = kNoValue;
    double stepElevation_ = kNoValue;  // the last counted elevation
    double firstTime_ = kNoValue;
    double lastTime_ = kNoValue;
    double lastLatitude_ = 0;
    double lastLongitude_ = 0;
    ProfileSample last_;
    bool lastInProfile_ = false;
    std::vector<ProfileSample> profile_;
    std::uint64_t stride_ = 1;  // every stride-th point goes into the profile
};

// "12.3 km", "1:02:03", "45.6 km/h", "1234 m": the dialog's texts in the unit
// system (common::kMetric, kImperial, kNautical); "--" for a missing value.
std::string DistanceText(double metres, int units);
std::string DurationText(double seconds);
std::string SpeedText(double metresPerSecond, int units);
std::string ElevationText(double metres, int units);

struct StatisticsRow {
    int labelId;  // string table id
    std::string value;
};
// The rows of the statistics dialog, in order.
std::vector<StatisticsRow> StatisticsRows(const TrackStatistics& stats, int units);

// The numbers as one JSON object, in metres, seconds and metres a second.
std::string StatisticsJson(const TrackStatistics& stats);

}  // namespace satwalk::track
