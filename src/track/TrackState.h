// The track recorder and viewer as plain state: the four trails, the track
// file being written, the log being viewed and the follow pause. The
// application owns one TrackState, drives it from its timers (the track
// timer calls OnTrackTick, the follow timer EndFollowPause) and its
// commands, and shows the messages these functions name.
//
// Threads: everything runs on the user-interface thread. `trackLock`
// guards the four trails; the functions here take it themselves, and the
// map drawing takes it around reading them. It is never held across a
// message box.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

#include "GpsState.h"
#include "GpxWriter.h"
#include "TrackFile.h"
#include "TrackLogFile.h"
#include "TrackLogReader.h"
#include "TrackPoint.h"
#include "TrackStatistics.h"

namespace satwalk::track {

inline constexpr std::uint32_t kTrackTimerId = 1027;
inline constexpr std::uint32_t kFollowTimerId = 1026;
inline constexpr std::uint32_t kFollowPauseMs = 10000;

// Messages, shown with the program's caption and the stop icon: the track
// timer failed at the save command (its code 0x08200a14) or at an interval
// command (0x08200a13); common::kStrTrackTimerFailedOnStart when the link
// starts, kStrFollowTimerFailed and kStrOpenTrackLogFailed.
inline constexpr const char* kTrackTimerCodeOnSave = "0x08200a14";
inline constexpr const char* kTrackTimerCodeOnInterval = "0x08200a13";

// What one sample knows: the fix as the receiver sent it and the position
// already projected onto the two maps (the map code's projections).
struct TrackSample {
    TrackTime time;
    bool fixValid = false;        // the link's fixValid
    double longitude = 0;         // signed degrees
    double latitude = 0;          // signed degrees
    std::string_view speedKnots;  // the receiver's texts, written as they are
    std::string_view course;
    std::string_view altitude;
    // The same read once as numbers (NaN when absent), for the GPX copy.
    double speedKnotsValue = kNoValue, courseValue = kNoValue, elevation = kNoValue;
    std::int8_t gpxFix = -1;  // GpxFix from the fix's quality and mode
    std::int16_t satellites = -1;
    bool worldValid = false;       // the current position converted
    float worldX = 0, worldY = 0;  // on the world map
    bool mapValid = false;         // a calibrated map is shown and the position is on it
    float mapX = 0, mapY = 0;      // image pixels of that map
};

// A sample's texts from the fix record (which must outlive the sample) and
// its degrees from the record's numbers; the caller adds the projections.
TrackSample SampleFromFix(const gps::GpsState& fix, const gps::FixValues& values, bool fixValid,
                          const TrackTime& time);

struct MapXY {
    double x = 0, y = 0;
};
// Signed degrees to the pixel space of a map.
using GeoProjection = std::function<MapXY(double latitude, double longitude)>;

struct TrackProjections {
    GeoProjection world;  // always set
    GeoProjection map;    // empty unless a calibrated map is loaded and shown
};

struct TrackState {
    // The two recording settings live in the program's settings (the
    // options record keeps them); a TrackState made without them keeps its
    // own.
    TrackState() : TrackState(ownLogOn_, ownIntervalMs_) {}
    TrackState(std::uint32_t& logOn, std::uint32_t& intervalMs)
        : trackLogOn(logOn), trackIntervalMs(intervalMs) {}
    TrackState(const TrackState&) = delete;
    TrackState& operator=(const TrackState&) = delete;

  private:
    std::uint32_t ownLogOn_ = 0;
    std::uint32_t ownIntervalMs_ = 10000;

  public:
    // Recording.
    std::uint32_t& trackLogOn;
    std::uint32_t& trackIntervalMs;
    std::string trackFolder;
    std::string trackFilePath;  // empty when no log is being written
    TrackWrite lastWrite = TrackWrite::Created;
    // A GPX file beside each new log ("同时保存 GPX 轨迹").
    bool saveGpx = false;
    std::string gpxFilePath;  // empty when none is being written
    TrackWrite lastGpxWrite = TrackWrite::Created;
    LocalToUtc gpxZone;
    // The live samples with a fix since the link started.
    TrackStatistics liveStats;
    int lastWriteError = 0;  // the errno of the last write that failed, 0 after one that worked

    // Viewing.
    bool trackViewOn = false;
    std::string viewedTrackPath;
    std::string viewedTrackName;
    TrackStatistics viewedStats;

    // Following the position on the map is paused after a manual move.
    bool followPaused = false;

    mutable std::mutex trackLock;  // guards the four trails
    TrackList liveWorldTrail;
    TrackList liveMapTrail;
    TrackList viewedWorldTrail;
    TrackList viewedMapTrail;
};

// Starts a new log named after the sample's time and writes the sample to
// it at once.
void StartTrackLog(TrackState& state, const TrackSample& sample);

// One sample: a line in the log when recording (the file is made even
// without a fix, the line needs one), a point on each trail whose position
// is known. A log that cannot be written loses the line (lastWrite and
// lastWriteError say why, for the caller to show); the trails go on.
void AppendTrackSample(TrackState& state, const TrackSample& sample);

// The track timer's tick. Returns false when the link has stopped: the live
// trails are cleared, recording is off, and the caller kills the timer.
// The caller repaints when the map screen is shown.
bool OnTrackTick(TrackState& state, bool linkRunning, const TrackSample& sample);

// The save-track-log command. Returns true when the caller must (re)arm the
// track timer with trackIntervalMs, showing the timer failure if that
// fails.
bool OnSaveTrackLogCommand(TrackState& state, bool linkRunning, const TrackSample& sample);

// The link has started: a log begins when recording is on. The caller then
// arms the track timer.
void OnLinkStarted(TrackState& state, const TrackSample& sample);

enum class ViewResult {
    Shown,
    BeingWritten,  // the log being recorded cannot be viewed (string 40105)
    OpenFailed,    // kStrOpenTrackLogFailed; the previous view stays
};

// Whether `path` is the log being written, which cannot be viewed.
bool IsBeingWritten(const TrackState& state, const std::string& path);

// The region a track covers, in signed degrees.
struct GeoBounds {
    bool valid = false;  // no point: nothing to show
    double south = 90, west = 180, north = -90, east = -180;
    void Add(double latitude, double longitude);
};

// A track file read into trails of its own, away from the state: a long
// file is read off the user-interface thread and shown once complete.
struct TrackRead {
    bool opened = false;  // false: result says why
    TrackFileResult result = TrackFileResult::OpenFailed;
    TrackList world;
    TrackList map;  // empty without a map projection
    TrackStatistics stats;
    GeoBounds bounds;
};
TrackRead ReadTrackTrails(const std::string& path, const TrackProjections& projections,
                          const TrackProgress& progress = {});

// Shows a read log: its trails replace the viewed ones (under the lock),
// the path and name are kept and the view is on. A read that failed leaves
// the previous view as it was.
ViewResult ShowViewedTrack(TrackState& state, TrackRead&& read, const std::string& path,
                           const std::string& name);

// Views the track file at `path` ("name" as the file browser showed it):
// refuses the log being written, reads it into the viewed trails, sets the
// view. A file that is no track (NotATrack) counts as OpenFailed here.
ViewResult ViewTrackLog(TrackState& state, const std::string& path, const std::string& name,
                        const TrackProjections& projections, const TrackProgress& progress = {});

// Reads the viewed log again into both viewed trails (after the map's
// geometry changed). False when it could not be opened.
bool ReadViewedTrack(TrackState& state, const TrackProjections& projections,
                     const TrackProgress& progress = {});

// Rebuilds the live map trail from the log being written; silently false
// when it cannot be read. The live world trail is not rebuilt.
bool RebuildLiveMapTrail(TrackState& state, const TrackProjections& projections);

// Closes the view: both viewed trails emptied, the path and name cleared.
void CloseViewedTrack(TrackState& state);

// Called when the user moves the map by hand while the link runs; the
// caller (re)arms the follow timer and shows kStrFollowTimerFailed if that
// fails (the pause stays on).
void StartFollowPause(TrackState& state);
// The follow timer's expiry (the caller kills the timer: it runs once), and
// a change of map mode.
void EndFollowPause(TrackState& state);

}  // namespace satwalk::track
