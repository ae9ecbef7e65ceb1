#include "TrackState.h"

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

// A position too far out for a float pixel (1e308 degrees in a log) has no
// place on a trail.
bool Drawable(const MapXY& p) {
    return std::isfinite(static_cast<float>(p.x)) && std::isfinite(static_cast<float>(p.y));
}

}  // namespace

TrackSample SampleFromFix(const gps::GpsState& fix, bool fixValid, const TrackTime& time) {
    TrackSample s;
    s.time = time;
    s.fixValid = fixValid;
    gps::GpsState copy = fix;  // NmeaToDegrees wants terminated texts
    copy.TerminateTexts();
    common::NmeaToDegrees(copy.latitude, copy.northSouth, copy.longitude, copy.eastWest,
                          &s.latitude, &s.longitude);
    s.speedKnots = Text(fix.speedKnots, sizeof fix.speedKnots);
    s.course = Text(fix.course, sizeof fix.course);
    s.altitude = Text(fix.altitude, sizeof fix.altitude);
    return s;
}

void StartTrackLog(TrackState& state, const TrackSample& sample) {
    state.trackFilePath = TrackFilePath(state.trackFolder, sample.time);
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
    }
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
        state.trackFilePath.clear();
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
        return false;
    }
    state.trackLogOn = 1;
    if (!linkRunning)
        return false;  // the log begins when the link starts
    StartTrackLog(state, sample);
    return true;
}

void OnLinkStarted(TrackState& state, const TrackSample& sample) {
    if (state.trackLogOn != 0)
        StartTrackLog(state, sample);
}

namespace {

// Reads `path` into the trails the projections ask for; `clear` runs once
// the file is open, so a file that cannot be opened leaves them alone.
TrackLogResult ReadInto(const std::string& path, TrackList* world, TrackList* map,
                        const TrackProjections& projections, const TrackProgress& progress) {
    bool cleared = false;
    auto clear = [&] {
        if (world)
            world->Clear();
        if (map)
            map->Clear();
        cleared = true;
    };
    // The reader opens before it produces anything: clearing at the first
    // progress or point (whichever comes first) is clearing after the open.
    const auto onPoint = [&](const TrackLogPoint& p) {
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
    };
    const auto onProgress = [&](std::uint64_t done, std::uint64_t total) {
        if (!cleared)
            clear();
        if (progress)
            progress(done, total);
    };
    const TrackLogResult result = ReadTrackLog(path, onPoint, onProgress);
    if (result != TrackLogResult::OpenFailed && !cleared)
        clear();  // an empty file
    return result;
}

}  // namespace

bool IsBeingWritten(const TrackState& state, const std::string& path) {
    return !state.trackFilePath.empty() && path == state.trackFilePath;
}

TrackRead ReadTrackTrails(const std::string& path, const TrackProjections& projections,
                          const TrackProgress& progress) {
    TrackRead read;
    const TrackLogResult result = ReadInto(path, &read.world, &read.map, projections, progress);
    read.opened = result != TrackLogResult::OpenFailed;
    read.truncated = result == TrackLogResult::Truncated;
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
        if (ReadInto(path, &state.viewedWorldTrail, &state.viewedMapTrail, projections, progress) ==
            TrackLogResult::OpenFailed)
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
    return ReadInto(state.viewedTrackPath, &state.viewedWorldTrail, &state.viewedMapTrail,
                    projections, progress) != TrackLogResult::OpenFailed;
}

bool RebuildLiveMapTrail(TrackState& state, const TrackProjections& projections) {
    const std::lock_guard lock(state.trackLock);
    return ReadInto(state.trackFilePath, nullptr, &state.liveMapTrail, projections, {}) !=
           TrackLogResult::OpenFailed;
}

void CloseViewedTrack(TrackState& state) {
    {
        const std::lock_guard lock(state.trackLock);
        state.viewedWorldTrail.Clear();
        state.viewedMapTrail.Clear();
    }
    state.trackViewOn = false;
    state.viewedTrackPath.clear();
    state.viewedTrackName.clear();
}

void StartFollowPause(TrackState& state) {
    state.followPaused = true;
}

void EndFollowPause(TrackState& state) {
    state.followPaused = false;
}

}  // namespace satwalk::track
