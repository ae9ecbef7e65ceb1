#include "TrackFeature.h"

#include <cmath>
#include <mutex>

#include "CommandIds.h"
#include "FileListing.h"
#include "Shell.h"
#include "Strings.h"
#include "TrailLayer.h"

namespace satwalk::track {

namespace cmd = shell::cmd;

TrackFeature::TrackFeature(shell::Shell& shell, browser::FileChooser& chooser,
                           std::unique_ptr<TrackPlatform> platform)
    : shell_(shell),
      chooser_(chooser),
      platformOwned_(std::move(platform)),
      platform_(*platformOwned_),
      state_(shell.settings().trackLogOn, shell.settings().trackIntervalMs) {}

void TrackFeature::Register(shell::FeatureRegistry& registry) {
    registry.AddCommand(cmd::kSaveTrack, shell::Command{[this](int) { SaveTrackLog(); },
                                                        [this](int) {
                                                            shell::EntryState e;
                                                            e.checked = state_.trackLogOn != 0;
                                                            return e;
                                                        }});
    registry.AddCommand(cmd::kViewTrack, shell::Command{[this](int) { ViewTrackLog(); },
                                                        [this](int) {
                                                            shell::EntryState e;
                                                            e.enabled = !reading_;
                                                            return e;
                                                        }});
    registry.AddCommand(cmd::kCloseTrack, shell::Command{[this](int) { CloseView(); },
                                                         [this](int) {
                                                             shell::EntryState e;
                                                             e.present = state_.trackViewOn;
                                                             return e;
                                                         }});
    registry.AddStateSection([this](common::JsonMembers& members) { WriteState(members); });
}

TrackProjections TrackFeature::Projections() const {
    TrackProjections p;
    if (projections)
        p = projections();
    if (!p.world)
        p.world = WorldTrailPoint;
    return p;
}

TrackSample TrackFeature::CurrentSample(const gps::GpsState& fix) const {
    const bool fixValid = shell_.link().Running() && shell_.link().FixValid();
    TrackSample s = SampleFromFix(fix, fixValid, LocalTrackTime());
    if (!fixValid)
        return s;
    const TrackProjections p = Projections();
    const MapXY w = p.world(s.latitude, s.longitude);
    s.worldValid = std::isfinite(w.x) && std::isfinite(w.y);
    s.worldX = static_cast<float>(w.x);
    s.worldY = static_cast<float>(w.y);
    if (p.map) {
        const MapXY m = p.map(s.latitude, s.longitude);
        s.mapValid = std::isfinite(m.x) && std::isfinite(m.y);
        s.mapX = static_cast<float>(m.x);
        s.mapY = static_cast<float>(m.y);
    }
    return s;
}

void TrackFeature::Message(const std::string& text, bool exclamation) {
    shell_.ui().ShowMessage(
        text, exclamation ? shell::MessageIcon::Exclamation : shell::MessageIcon::Error,
        shell::MessageButtons::Ok);
}

void TrackFeature::ReportWrite() {
    const bool recording = state_.trackLogOn != 0 && !state_.trackFilePath.empty();
    shell_.ReportRecordingWrite(shell::Recording::Track, recording ? state_.lastWriteError : 0);
}

void TrackFeature::OnTrackTick() {
    if (!track::OnTrackTick(state_, shell_.link().Running(), CurrentSample(shell_.fix())))
        shell_.ui().StopTrackTimer();
    ReportWrite();
    if (shell_.currentScreen == shell::kScreenMap)
        shell_.Repaint();
}

void TrackFeature::OnLinkStarted() {
    state_.trackFolder = shell::MakeStorageFolders(shell_.settings().storageRoot).trackLog;
    track::OnLinkStarted(state_, CurrentSample(shell_.fix()));
    ReportWrite();
}

void TrackFeature::OnLinkStopped() {
    // As the tick does once the link has gone: the live trails go, and so
    // does recording, until the user switches it on again.
    track::OnTrackTick(state_, false, TrackSample{});
    ReportWrite();
    EndFollowPause();
}

void TrackFeature::OnTrackFolderChanged(const std::string& trackFolder) {
    // The storage moved (a card chosen in the options) while the link runs:
    // the recording goes on in a new file under the new track folder.
    state_.trackFolder = trackFolder;
    if (state_.trackLogOn != 0 && shell_.link().Running())
        StartTrackLog(state_, CurrentSample(shell_.fix()));
    ReportWrite();
}

void TrackFeature::SaveTrackLog() {
    state_.trackFolder = shell::MakeStorageFolders(shell_.settings().storageRoot).trackLog;
    if (OnSaveTrackLogCommand(state_, shell_.link().Running(), CurrentSample(shell_.fix()))) {
        shell_.ui().StopTrackTimer();
        if (!shell_.ui().StartTrackTimer(state_.trackIntervalMs)) {
            Message(kTrackTimerFailedOnSave);
        }
    }
    ReportWrite();
    shell_.Repaint();
}

void TrackFeature::ViewTrackLog() {
    if (reading_)
        return;
    chooser_.ChooseFile(browser::kBrowseTrackLogs, common::LoadString(common::kStrOpenFile),
                        [this](const browser::ChosenFile& file) {
                            if (IsBeingWritten(state_, file.path)) {
                                Message(
                                    common::FormatString(
                                        common::LoadString(common::kStrLogBeingWritten), file.name),
                                    true);
                                return;
                            }
                            ReadForView(file.path, file.name, false);
                        });
}

void TrackFeature::ReadForView(const std::string& path, const std::string& name, bool rebuild) {
    reading_ = true;
    const std::uint64_t generation = ++readGeneration_;
    auto read = std::make_shared<TrackRead>();
    // The projections are values: the reader's thread uses its own copy.
    platform_.RunReader(
        [read, path, projections = Projections()](const TrackProgress& progress) {
            *read = ReadTrackTrails(path, projections, progress);
        },
        [this, read, path, name, generation, rebuild] {
            if (generation != readGeneration_)
                return;  // closed or replaced meanwhile
            reading_ = false;
            const bool truncated = read->truncated;
            if (ShowViewedTrack(state_, std::move(*read), path, name) != ViewResult::Shown) {
                Message(kOpenTrackLogFailed);
                return;
            }
            if (!rebuild) {
                shell_.settings().showTrack = 1;
                if (shell_.currentScreen != shell::kScreenMap)
                    shell_.OnCommand(Projections().map ? cmd::kLoadedMap : cmd::kWorldMap);
            }
            shell_.Repaint();
            // Said once, over the part that is shown; a rebuild says nothing.
            if (truncated && !rebuild) {
                shell_.ui().ShowMessage(
                    common::FormatStrings(common::LoadString(common::kStrTrackLogTooLarge),
                                          {name, std::to_string(kMaxTrackPoints)}),
                    shell::MessageIcon::Information, shell::MessageButtons::Ok);
            }
        });
}

void TrackFeature::CloseView() {
    ++readGeneration_;  // a read under way is not shown
    reading_ = false;
    CloseViewedTrack(state_);
    shell_.Repaint();
}

void TrackFeature::OnMapMovedByHand() {
    if (!shell_.link().Running())
        return;
    StartFollowPause(state_);
    if (onFollowPause)
        onFollowPause(true);
    platform_.StopFollowTimer();
    if (!platform_.StartFollowTimer(kFollowPauseMs, [this] { EndFollowPause(); }))
        Message(kFollowTimerFailed);
}

void TrackFeature::EndFollowPause() {
    platform_.StopFollowTimer();
    if (!state_.followPaused)
        return;
    track::EndFollowPause(state_);
    if (onFollowPause)
        onFollowPause(false);
    if (shell_.currentScreen == shell::kScreenMap)
        shell_.Repaint();
}

void TrackFeature::OnMapGeometryChanged(bool modeChanged) {
    if (modeChanged)
        EndFollowPause();
    {
        const std::lock_guard lock(state_.trackLock);
        state_.liveMapTrail.Clear();
    }
    if (shell_.link().Running() && state_.trackLogOn != 0)
        RebuildLiveMapTrail(state_, Projections());
    if (state_.trackViewOn)
        ReadForView(state_.viewedTrackPath, state_.viewedTrackName, true);
}

void TrackFeature::WriteState(common::JsonMembers& members) const {
    std::string& out = members.Name("tracks");
    out += '{';
    common::JsonMembers m(out);
    m.Bool("recording", !state_.trackFilePath.empty());
    m.Text("trackFile", state_.trackFilePath);
    {
        const std::lock_guard lock(state_.trackLock);
        m.Int("liveWorldPoints", state_.liveWorldTrail.Count());
        m.Int("liveMapPoints", state_.liveMapTrail.Count());
        m.Int("viewedWorldPoints", state_.viewedWorldTrail.Count());
        m.Int("viewedMapPoints", state_.viewedMapTrail.Count());
    }
    m.Bool("viewing", state_.trackViewOn);
    m.Text("viewedPath", state_.viewedTrackPath);
    m.Bool("reading", reading_);
    m.Bool("followPaused", state_.followPaused);
    out += '}';
}

}  // namespace satwalk::track
