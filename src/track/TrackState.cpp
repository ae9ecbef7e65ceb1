#include "TrackState.h"

#include <algorithm>
#include <cmath>

#include "FixText.h"

namespace satwalk::track {

namespace {

std::string_view Text(const char* field, std::size_t width) {
    std::size_t n = 0;
    while (n < width && field[n] != '\0') ++n;
    return {field, n};
}

TrackPoint Point(double x, double y, const TrackTime& time) {
    return TrackPoint{static_cast<float>(x), static_cast<float>(y), time};
}

TrackFilePoint FilePoint(const TrackSample& s) {
    TrackFilePoint p;
    p.latitude = s.latitude;
    p.longitude = s.longitude;
    p.time = s.time;
    p.hasTime = true;
    p.elevation = s.elevation;
    p.speed = s.speedKnotsValue >= 0 ? s.speedKnotsValue * 1852.0 / 3600.0 : kNoValue;
    p.course = s.courseValue;
    p.fix = s.gpxFix;
    p.satellites = s.satellites;
    return p;
}

// A position too far out for a float pixel (1e308 degrees in a log) has no
// place on a trail.
bool Drawable(const MapXY& p) {
    return std::isfinite(static_cast<float>(p.x)) && std::isfinite(static_cast<float>(p.y));
}

}  // namespace

TrackSample SampleFromFix(const gps::GpsState& fix, const gps::FixValues& values, bool fixValid,
                          const TrackTime& time) {
    TrackSample s;
    s.time = time;
    s.fixValid = fixValid;
    s.latitude = values.latitude.value_or(gps::kAbsentDegrees);
    s.longitude = values.longitude.value_or(gps::kAbsentDegrees);
    s.speedKnots = Text(fix.speedKnots, sizeof fix.speedKnots);
    s.course = Text(fix.course, sizeof fix.course);
    s.altitude = Text(fix.altitude, sizeof fix.altitude);
    s.speedKnotsValue = values.speedKnots.value_or(kNoValue);
    s.courseValue = values.course.value_or(kNoValue);
    s.elevation = values.altitude.value_or(kNoValue);
    s.gpxFix = GpxFixOf(fix.fixQuality, fix.fixMode);
    if (values.satellitesUsed)
        s.satellites = static_cast<std::int16_t>(*values.satellitesUsed);
    return s;
}

void StartTrackLog(TrackState& state, const TrackSample& sample) {
    state.trackFilePath = TrackFilePath(state.trackFolder, sample.time);
    state.gpxFilePath = state.saveGpx ? GpxPathForLog(state.trackFilePath) : std::string();
    AppendTrackSample(state, sample);
}

void AppendTrackSample(TrackState& state, const TrackSample& sample) {
    const std::lock_guard lock(state.trackLock);
    if (state.trackLogOn != 0 && !state.trackFilePath.empty()) {
        const std::string line =
            sample.fixValid ? FormatTrackLine(sample.longitude, sample.latitude, sample.time,
                                              sample.speedKnots, sample.course, sample.altitude)
                            : std::string();
        state.lastWrite = AppendTrackLine(state.trackFilePath, line, &state.lastWriteError);
        if (!state.gpxFilePath.empty()) {
            std::string point;
            if (sample.fixValid)
                AppendGpxPoint(point, FilePoint(sample), state.gpxZone);
            state.lastGpxWrite = AppendGpxTrackPoint(state.gpxFilePath, point);
        }
    }
    if (sample.fixValid)
        state.liveStats.Add(FilePoint(sample));
    if (sample.mapValid)
        state.liveMapTrail.Append(Point(sample.mapX, sample.mapY, sample.time));
    if (sample.worldValid)
        state.liveWorldTrail.Append(Point(sample.worldX, sample.worldY, sample.time));
}

bool OnTrackTick(TrackState& state, bool linkRunning, const TrackSample& sample) {
    if (!linkRunning) {
        {
            const std::lock_guard lock(state.trackLock);
            state.liveWorldTrail.Clear();
            state.liveMapTrail.Clear();
        }
        state.liveStats.Clear();
        state.trackFilePath.clear();
        state.gpxFilePath.clear();
        state.trackLogOn = 0;
        return false;
    }
    if (sample.fixValid)
        AppendTrackSample(state, sample);
    return true;
}

bool OnSaveTrackLogCommand(TrackState& state, bool linkRunning, const TrackSample& sample) {
    if (state.trackLogOn != 0) {
        state.trackLogOn = 0;
        state.trackFilePath.clear();  // the file stays on disk
        state.gpxFilePath.clear();
        return false;
    }
    state.trackLogOn = 1;
    if (!linkRunning)
        return false;  // the log begins when the link starts
    StartTrackLog(state, sample);
    return true;
}

void OnLinkStarted(TrackState& state, const TrackSample& sample) {
    state.liveStats.Clear();
    if (state.trackLogOn != 0)
        StartTrackLog(state, sample);
}

namespace {

// Reads `path` into the trails the projections ask for (and the statistics
// and bounds when asked); `clear` runs once the file is open, so a file that
// cannot be opened leaves them alone.
TrackFileResult ReadInto(const std::string& path, TrackList* world, TrackList* map,
                         const TrackProjections& projections, const TrackProgress& progress,
                         TrackStatistics* stats = nullptr, GeoBounds* bounds = nullptr) {
    bool cleared = false;
    auto clear = [&] {
        if (world)
            world->Clear();
        if (map)
            map->Clear();
        if (stats)
            stats->Clear();
        cleared = true;
    };
    // The reader says it has opened a track (progress 0) before it produces
    // anything, on this thread: the trails are cleared then; points may come
    // on the reader's own thread afterwards.
    const auto onPoint = [&](const TrackFilePoint& p) {
        if (!cleared)
            clear();
        if (world) {
            const MapXY w = projections.world(p.latitude, p.longitude);
            if (Drawable(w))
                world->Append(Point(w.x, w.y, p.time));
        }
        if (map && projections.map) {
            const MapXY m = projections.map(p.latitude, p.longitude);
            if (Drawable(m))
                map->Append(Point(m.x, m.y, p.time));
        }
        if (stats)
            stats->Add(p);
        if (bounds)
            bounds->Add(p.latitude, p.longitude);
    };
    const auto onProgress = [&](std::uint64_t done, std::uint64_t total) {
        if (!cleared)
            clear();
        if (progress)
            progress(done, total);
    };
    const TrackFileRead read = ReadTrackFile(path, onPoint, {}, onProgress);
    if (read.result == TrackFileResult::OpenFailed || read.result == TrackFileResult::NotATrack)
        return read.result;
    if (!cleared)
        clear();  // an empty file
    return read.result;
}

bool Opened(TrackFileResult result) {
    return result == TrackFileResult::Read || result == TrackFileResult::Truncated ||
           result == TrackFileResult::TooLarge;
}

}  // namespace

bool IsBeingWritten(const TrackState& state, const std::string& path) {
    return !state.trackFilePath.empty() && path == state.trackFilePath;
}

TrackRead ReadTrackTrails(const std::string& path, const TrackProjections& projections,
                          const TrackProgress& progress) {
    TrackRead read;
    read.result =
        ReadInto(path, &read.world, &read.map, projections, progress, &read.stats, &read.bounds);
    read.opened = Opened(read.result);
    return read;
}

ViewResult ShowViewedTrack(TrackState& state, TrackRead&& read, const std::string& path,
                           const std::string& name) {
    if (!read.opened)
        return ViewResult::OpenFailed;
    {
        const std::lock_guard lock(state.trackLock);
        state.viewedWorldTrail = std::move(read.world);
        state.viewedMapTrail = std::move(read.map);
    }
    state.viewedStats = std::move(read.stats);
    state.viewedTrackPath = path;
    state.viewedTrackName = name;
    state.trackViewOn = true;
    return ViewResult::Shown;
}

ViewResult ViewTrackLog(TrackState& state, const std::string& path, const std::string& name,
                        const TrackProjections& projections, const TrackProgress& progress) {
    if (IsBeingWritten(state, path))
        return ViewResult::BeingWritten;
    {
        const std::lock_guard lock(state.trackLock);
        if (!Opened(ReadInto(path, &state.viewedWorldTrail, &state.viewedMapTrail, projections,
                             progress, &state.viewedStats)))
            return ViewResult::OpenFailed;
    }
    state.viewedTrackPath = path;
    state.viewedTrackName = name;
    state.trackViewOn = true;
    return ViewResult::Shown;
}

bool ReadViewedTrack(TrackState& state, const TrackProjections& projections,
                     const TrackProgress& progress) {
    const std::lock_guard lock(state.trackLock);
    return Opened(ReadInto(state.viewedTrackPath, &state.viewedWorldTrail, &state.viewedMapTrail,
                           projections, progress));
}

bool RebuildLiveMapTrail(TrackState& state, const TrackProjections& projections) {
    const std::lock_guard lock(state.trackLock);
    return Opened(ReadInto(state.trackFilePath, nullptr, &state.liveMapTrail, projections, {}));
}

void CloseViewedTrack(TrackState& state) {
    {
        const std::lock_guard lock(state.trackLock);
        state.viewedWorldTrail.Clear();
        state.viewedMapTrail.Clear();
    }
    state.viewedStats.Clear();
    state.trackViewOn = false;
    state.viewedTrackPath.clear();
    state.viewedTrackName.clear();
}

void GeoBounds::Add(double latitude, double longitude) {
    valid = true;
    south = std::min(south, latitude);
    north = std::max(north, latitude);
    west = std::min(west, longitude);
    east = std::max(east, longitude);
}

void StartFollowPause(TrackState& state) {
    state.followPaused = true;
}

void EndFollowPause(TrackState& state) {
    state.followPaused = false;
}

}  // namespace satwalk::track
