// The track feature: the track timer's samples into the live trails and
// the log file, the commands of the track menu (save, view and close a log),
// the follow pause after the map is moved by hand, the trails' rebuild when
// the map's geometry changes, and the "tracks" member of the state dump.
//
// The recording flag and the interval are the program's settings
// (trackLogOn, trackIntervalMs): the TrackState refers to them. The track
// timer (1027) is the window's (ShellUi); its ticks come to OnTrackTick.
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

namespace satwalk::track {

// What the feature asks of the platform besides the shell's window.
class TrackPlatform {
  public:
    // Timer 1026: `expired` runs once, `periodMs` from now. False when the
    // timer cannot be armed.
    virtual bool StartFollowTimer(std::uint32_t periodMs, std::function<void()> expired) = 0;
    virtual void StopFollowTimer() = 0;
    // Runs `work` away from the user-interface thread, showing its progress
    // once it has taken half a second, then `done` on the user-interface
    // thread. The window stays responsive meanwhile.
    virtual void RunReader(std::function<void(const TrackProgress& progress)> work,
                           std::function<void()> done) = 0;

    virtual ~TrackPlatform() = default;
};

class TrackFeature final : public shell::Feature {
  public:
    TrackFeature(shell::Shell& shell, browser::FileChooser& chooser,
                 std::unique_ptr<TrackPlatform> platform);

    void Register(shell::FeatureRegistry& registry) override;
    void OnLinkStarted() override;
    void OnLinkStopped() override;
    void OnTrackFolderChanged(const std::string& trackFolder) override;

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

    TrackState& state() { return state_; }
    const TrackState& state() const { return state_; }
    bool followPaused() const { return state_.followPaused; }
    // A log is being read for viewing.
    bool reading() const { return reading_; }

  private:
    TrackSample CurrentSample(const gps::GpsState& fix) const;
    TrackProjections Projections() const;
    void SaveTrackLog();
    void ViewTrackLog();
    void ReadForView(const std::string& path, const std::string& name, bool quiet);
    void CloseView();
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

}  // namespace satwalk::track
