#include "TrackFeature.h"

#include <cmath>
#include <iterator>
#include <mutex>

#include "ErrorCodes.h"
#include "FileListing.h"
#include "MapCommands.h"
#include "MapFeature.h"
#include "Shell.h"
#include "Strings.h"
#include "TrackCommands.h"
#include "TrailLayer.h"

namespace satwalk::track {

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
    registry.AddCommand(cmd::kShowTrack, shell::Command{[this](int) {
                                                            shell_.settings().showTrack ^= 1u;
                                                            shell_.Repaint();
                                                        },
                                                        {}});
    for (int i = 0; i < static_cast<int>(std::size(shell::kTrackIntervals)); ++i)
        registry.AddCommand(cmd::kTrack10s + i,
                            shell::Command{[this, i](int) { SetInterval(i); }, {}});
    registry.AddCommand(cmd::kTrackInfo, shell::Command{[this](int) { ShowStatistics(); },
                                                        [this](int) {
                                                            shell::EntryState e;
                                                            e.enabled = state_.trackViewOn ||
                                                                        shell_.link().Running();
                                                            return e;
                                                        }});
    RegisterMenus(registry);
    registry.AddStateSection([this](common::JsonMembers& members) { WriteState(members); });
}

void TrackFeature::RegisterMenus(shell::FeatureRegistry& registry) {
    using common::LoadString;
    registry.AddMenuEntries(shell::MenuPlace::ViewMap, 10, [this] {
        return std::vector<shell::MenuEntry>{shell::MenuCheck(cmd::kShowTrack,
                                                              LoadString(common::kStrMenuShowTrack),
                                                              shell_.settings().showTrack != 0)};
    });
    registry.AddMenuEntries(shell::MenuPlace::MainTrack, 0, [this] {
        std::vector<shell::MenuEntry> entries;
        for (int i = 0; i < static_cast<int>(std::size(shell::kTrackIntervals)); ++i) {
            const std::uint32_t ms = shell::kTrackIntervals[i];
            entries.push_back(
                shell::MenuRadio(cmd::kTrack10s + i,
                                 common::FormatString(LoadString(common::kStrMenuTrackInterval),
                                                      std::to_string(ms / 1000)),
                                 shell_.settings().trackIntervalMs == ms));
        }
        entries.push_back(
            shell::MenuCheck(cmd::kSaveTrack, LoadString(common::kStrMenuSaveTrack), false));
        entries.push_back(shell::MenuItem(cmd::kViewTrack, LoadString(common::kStrMenuViewTrack)));
        // Present only while a log is viewed (its entry state says when).
        entries.push_back(
            shell::MenuItem(cmd::kCloseTrack, LoadString(common::kStrMenuCloseTrack)));
        entries.push_back(shell::MenuItem(cmd::kTrackInfo, LoadString(common::kStrTrackInfo)));
        return entries;
    });
}

bool TrackFeature::RestartTrackTimer(const std::string& failure) {
    platform_.StopTrackTimer();
    if (platform_.StartTrackTimer(state_.trackIntervalMs, [this] { OnTrackTick(); }))
        return true;
    Message(failure);
    return false;
}

void TrackFeature::SetInterval(int index) {
    shell_.settings().trackIntervalMs = shell::kTrackIntervals[index];
    if (platform_.TrackTimerRunning()) {
        RestartTrackTimer(common::FormatString(common::LoadString(common::kStrTrackTimerFailed),
                                               kTrackTimerCodeOnInterval));
    }
}

void TrackFeature::ShowStatistics() {
    const int units = static_cast<int>(shell_.settings().units);
    if (state_.trackViewOn)
        platform_.ShowStatistics(state_.viewedTrackName, state_.viewedStats, units);
    else if (shell_.link().Running())
        platform_.ShowStatistics(common::LoadString(common::kStrLiveTrack), state_.liveStats,
                                 units);
}

TrackProjections TrackFeature::Projections() const {
    TrackProjections p;
    if (projections)
        p = projections();
    if (!p.world)
        p.world = WorldTrailPoint;
    return p;
}

TrackSample TrackFeature::CurrentSample() const {
    const bool fixValid = shell_.link().Running() && shell_.link().FixValid();
    TrackSample s = SampleFromFix(shell_.fix(), shell_.fixValues(), fixValid, LocalTrackTime());
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
    if (!track::OnTrackTick(state_, shell_.link().Running(), CurrentSample()))
        platform_.StopTrackTimer();
    ReportWrite();
    if (shell_.currentScreen == shell::kScreenMap)
        shell_.Repaint();
}

void TrackFeature::OnLinkStarted() {
    // A running receiver draws its trail.
    shell_.settings().showTrack = 1;
    state_.saveGpx = shell_.settings().saveGpxTrack != 0;
    state_.trackFolder = shell::MakeStorageFolders(shell_.settings().storageRoot).trackLog;
    track::OnLinkStarted(state_, CurrentSample());
    ReportWrite();
    RestartTrackTimer(common::FormatString(common::LoadString(common::kStrTrackTimerFailedOnStart),
                                           std::string(" ") + common::err::kTrackTimer));
}

void TrackFeature::OnExit() {
    platform_.StopTrackTimer();
}

void TrackFeature::OnLinkStopped() {
    platform_.StopTrackTimer();
    // As the tick does once the link has gone: the live trails go, and so
    // does recording, until the user switches it on again.
    track::OnTrackTick(state_, false, TrackSample{});
    ReportWrite();
    EndFollowPause();
}

void TrackFeature::OnSettingsChanged() {
    // The storage moved (a card chosen in the options) while the link runs:
    // the recording goes on in a new file under the new track folder.
    // A GPX copy is kept from the next new track log on.
    state_.saveGpx = shell_.settings().saveGpxTrack != 0;
    const std::string folder = shell::MakeStorageFolders(shell_.settings().storageRoot).trackLog;
    if (folder == state_.trackFolder)
        return;
    state_.trackFolder = folder;
    if (state_.trackLogOn != 0 && shell_.link().Running())
        StartTrackLog(state_, CurrentSample());
    ReportWrite();
}

void TrackFeature::SaveTrackLog() {
    state_.saveGpx = shell_.settings().saveGpxTrack != 0;
    state_.trackFolder = shell::MakeStorageFolders(shell_.settings().storageRoot).trackLog;
    if (OnSaveTrackLogCommand(state_, shell_.link().Running(), CurrentSample()))
        RestartTrackTimer(common::FormatString(common::LoadString(common::kStrTrackTimerFailed),
                                               kTrackTimerCodeOnSave));
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
            const TrackFileResult result = read->result;
            const GeoBounds bounds = read->bounds;
            if (ShowViewedTrack(state_, std::move(*read), path, name) != ViewResult::Shown) {
                if (result == TrackFileResult::NotATrack)
                    Message(
                        common::FormatString(common::LoadString(common::kStrNotATrackFile), name),
                        true);
                else
                    Message(common::LoadString(common::kStrOpenTrackLogFailed));
                return;
            }
            if (!rebuild) {
                shell_.settings().showTrack = 1;
                if (shell_.currentScreen != shell::kScreenMap)
                    shell_.OnCommand(Projections().map ? map::cmd::kLoadedMap
                                                       : map::cmd::kWorldMap);
                if (bounds.valid && bringIntoView)
                    bringIntoView(bounds);
            }
            shell_.Repaint();
            if (result == TrackFileResult::Truncated && !rebuild)
                Message(common::FormatString(common::LoadString(common::kStrTrackFileCut), name),
                        true);
            // Said once, over the part that is shown; a rebuild says nothing.
            if (result == TrackFileResult::TooLarge && !rebuild) {
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
        Message(common::LoadString(common::kStrFollowTimerFailed));
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
    m.Text("gpxFile", state_.gpxFilePath);
    out += '}';
}

void TieTrackToMap(TrackFeature& track, map::MapFeature& map, map::MapScreen& mapScreen,
                   const std::uint32_t& showTrack) {
    TrackFeature* t = &track;
    map::MapFeature* m = &map;
    track.projections = [m] { return ProjectionsFor(m->model().View()); };
    track.onFollowPause = [m](bool paused) {
        if (paused)
            m->PauseFollowing();
        else
            m->ResumeFollowing();
    };
    map.onManualMove = [t] { t->OnMapMovedByHand(); };
    map.onCalibrationChanged = [t, m, mode = map.model().View().mapMode]() mutable {
        const int now = m->model().View().mapMode;
        t->OnMapGeometryChanged(now != mode);
        mode = now;
    };
    mapScreen.layers().Add(map::LayerOrder::Trails,
                           std::make_unique<TrailLayer>(track.state(), showTrack));
}

}  // namespace satwalk::track
