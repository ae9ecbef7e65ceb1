// The track feature: the track timer's samples into the live trails and
// the log file (and a GPX file beside it when the option asks), the commands
// of the track menu (save, view and close a track file, its statistics),
// the follow pause after the map is moved by hand, the trails' rebuild when
// the map's geometry changes, and the "tracks" member of the state dump.
//
// The recording flag and the interval are the track's slice of the
// program's settings (trackLogOn, trackIntervalMs, showTrack): the
// TrackState refers to them. The feature registers the track menu and the
// "显示轨迹" entry, and runs the track timer (1027) through its platform
// from the link's start to its stop.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Features.h"
#include "FileChooser.h"
#include "TrackState.h"

namespace satwalk::shell {
class Shell;
}
namespace satwalk::map {
class MapFeature;
class MapScreen;
}  // namespace satwalk::map

namespace satwalk::track {

// What the feature asks of the platform besides the shell's window.
class TrackPlatform {
  public:
    // Timer 1027: `tick` runs every `periodMs` until stopped. False when
    // the timer cannot be armed.
    virtual bool StartTrackTimer(std::uint32_t periodMs, std::function<void()> tick) = 0;
    virtual void StopTrackTimer() = 0;
    virtual bool TrackTimerRunning() const = 0;
    // Timer 1026: `expired` runs once, `periodMs` from now. False when the
    // timer cannot be armed.
    virtual bool StartFollowTimer(std::uint32_t periodMs, std::function<void()> expired) = 0;
    virtual void StopFollowTimer() = 0;
    // Runs `work` away from the user-interface thread, showing its progress
    // once it has taken half a second, then `done` on the user-interface
    // thread. The window stays responsive meanwhile.
    virtual void RunReader(std::function<void(const TrackProgress& progress)> work,
                           std::function<void()> done) = 0;
    // Opens the statistics dialog ("轨迹信息") on `stats` (copied), titled by
    // the track's name, in the unit system.
    virtual void ShowStatistics(const std::string& name, const TrackStatistics& stats,
                                int units) = 0;

    virtual ~TrackPlatform() = default;
};

class TrackFeature final : public shell::Feature {
  public:
    TrackFeature(shell::Shell& shell, browser::FileChooser& chooser,
                 std::unique_ptr<TrackPlatform> platform);

    void Register(shell::FeatureRegistry& registry) override;
    void OnLinkStarted() override;
    void OnLinkStopped() override;
    void OnSettingsChanged() override;
    void OnExit() override;

    // Timer 1027.
    void OnTrackTick();
    // The user moved the map by hand (a direction key, a drag): following
    // the position pauses for ten seconds while the link runs.
    void OnMapMovedByHand();
    // What the map screen projects positions with has changed: a map
    // loaded or calibrated anew, or the screen switched between the world
    // and a map (`modeChanged`, which also ends a pause). The map trails
    // are read again; moving or zooming a view is no change.
    void OnMapGeometryChanged(bool modeChanged);

    // Told when following pauses (true) and resumes (false).
    std::function<void(bool paused)> onFollowPause;

    // The projections of the map screen as it is now; by default the world
    // map only. The map screen supplies the calibrated map's.
    std::function<TrackProjections()> projections;

    // Brings a track just viewed into the map's view (the map decides
    // whether it follows the position instead).
    std::function<void(const GeoBounds& bounds)> bringIntoView;

    TrackState& state() { return state_; }
    const TrackState& state() const { return state_; }
    bool followPaused() const { return state_.followPaused; }
    // A log is being read for viewing.
    bool reading() const { return reading_; }

  private:
    void RegisterMenus(shell::FeatureRegistry& registry);
    void SetInterval(int index);
    // (Re)arms the track timer; false, with `failure` shown, when it cannot.
    bool RestartTrackTimer(const std::string& failure);
    // A sample of the shell's copy of the fix.
    TrackSample CurrentSample() const;
    TrackProjections Projections() const;
    void SaveTrackLog();
    void ViewTrackLog();
    void ReadForView(const std::string& path, const std::string& name, bool quiet);
    void CloseView();
    void ShowStatistics();
    void EndFollowPause();
    // The shell's status shows a log that cannot be written until one can.
    void ReportWrite();
    void Message(const std::string& text, bool exclamation = false);
    void WriteState(common::JsonMembers& members) const;

    shell::Shell& shell_;
    browser::FileChooser& chooser_;
    std::unique_ptr<TrackPlatform> platformOwned_;
    TrackPlatform& platform_;
    TrackState state_;
    bool reading_ = false;
    std::uint64_t readGeneration_ = 0;  // a newer read or a close voids older ones
};

// Ties `track` to the map feature both ways (the map's projections, its
// manual moves and new calibrations in; the follow pause out) and adds its
// trail layer, drawn while `showTrack` is set, to `mapScreen`.
void TieTrackToMap(TrackFeature& track, map::MapFeature& map, map::MapScreen& mapScreen,
                   const std::uint32_t& showTrack);

}  // namespace satwalk::track
