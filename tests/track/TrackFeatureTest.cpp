// The track feature's rules through the shell's commands, with the window,
// the link, the file browser and the platform faked.
#include <gtest/gtest.h>

#include <filesystem>

#include "CommandIds.h"
#include "FeatureFixture.h"
#include "StateJson.h"
#include "Strings.h"
#include "TrackCommands.h"

namespace satwalk::track {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test::ReadFile;
using test::WriteFile;

class TrackFeatureTest : public test::FeatureFixture {
  protected:
    TrackFeatureTest() {
        auto fake = std::make_unique<test::FakeTrackPlatform>();
        platform = fake.get();
        feature = std::make_unique<TrackFeature>(shell, chooser, std::move(fake));
        shell.features().Add(*feature);
    }
    const TrackState& state() const { return feature->state(); }
    std::uint32_t Count(const TrackList TrackState::*list) const { return (state().*list).Count(); }
    bool SaveChecked() const {
        return shell::FindMenuEntry(shell.BuildMainMenu(), cmd::kSaveTrack)->checked;
    }
    void View(const std::string& path) {
        shell.OnCommand(cmd::kViewTrack);
        chooser.Pick(path);
    }

    test::FakeTrackPlatform* platform = nullptr;
    std::unique_ptr<TrackFeature> feature;
};

TEST_F(TrackFeatureTest, SaveCommandStartsAndEndsLogs) {
    const struct {
        const char* name;
        bool running, fix, recordingBefore, recordingAfter;
        int lines;  // -1: no file
        bool timerArmed;
    } cases[] = {
        {"on with a fix", true, true, false, true, 1, true},
        {"on without a fix: the file is made empty", true, false, false, true, 0, true},
        {"on while stopped: the log waits for the link", false, false, false, true, -1, false},
        {"off: the file stays", true, true, true, false, 1, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        shell.OnCommand(shell::cmd::kStopGps);
        fs::remove_all(TrackFolder());
        fs::create_directories(TrackFolder());
        settings.trackLogOn = 0;
        if (c.running) {
            StartLink();
            SetFix(c.fix);
        }
        if (c.recordingBefore)
            shell.OnCommand(cmd::kSaveTrack);
        const std::string path = state().trackFilePath;
        platform->trackRunning = false;
        shell.OnCommand(cmd::kSaveTrack);

        EXPECT_EQ(settings.trackLogOn != 0, c.recordingAfter);
        EXPECT_EQ(SaveChecked(), c.recordingAfter);
        EXPECT_EQ(platform->trackRunning, c.timerArmed);
        const std::string file = c.recordingBefore ? path : state().trackFilePath;
        if (c.lines < 0) {
            EXPECT_TRUE(fs::is_empty(TrackFolder()));
            continue;
        }
        ASSERT_FALSE(file.empty());
        const std::string text = ReadFile(file);
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), c.lines);
        EXPECT_TRUE(!c.recordingBefore || state().trackFilePath.empty()) << state().trackFilePath;
    }
}

TEST_F(TrackFeatureTest, LogFollowsTheLinkAndTicks) {
    settings.trackLogOn = 1;
    settings.trackIntervalMs = 30000;
    StartLink();
    EXPECT_EQ(platform->trackPeriod, 30000u);
    EXPECT_EQ(settings.showTrack, 1u) << "a running receiver draws its trail";
    const std::string path = state().trackFilePath;
    EXPECT_EQ(path.rfind(TrackFolder() + "/", 0), 0u) << path;
    SetFix(true);
    feature->OnTrackTick();
    feature->OnTrackTick();
    const std::string text = ReadFile(path);
    EXPECT_EQ(text.rfind("120.166667,30.250000,,", 0), 0u) << text << " in " << path;
    EXPECT_NE(text.find(",1.50,90.0,\r\n"), std::string::npos) << "empty altitude";
    EXPECT_EQ(Count(&TrackState::liveWorldTrail), 2u);
    EXPECT_NE(shell::BuildStateJson(shell, {}).find("\"tracks\":{\"recording\":true"),
              std::string::npos);

    // The storage moves to a card that then goes: the check mark stays, the
    // status says the log is lost; the card back, the next line clears it.
    const std::string card = settings.storageRoot + "/card/My GPS/Track Log";
    fs::create_directories(card);
    settings.storageRoot += "/card";
    shell.features().NotifySettingsChanged();
    EXPECT_EQ(state().trackFilePath.rfind(card + "/", 0), 0u) << state().trackFilePath;
    EXPECT_EQ(ReadFile(path), text);
    fs::remove_all(settings.storageRoot);  // the card
    feature->OnTrackTick();
    EXPECT_TRUE(SaveChecked());
    EXPECT_EQ(shell.status, "轨迹记录失败：文件夹不存在");
    fs::create_directories(card);
    feature->OnTrackTick();
    EXPECT_EQ(shell.status, "");

    // The link dies under the timer: the next tick ends everything but the file.
    link.running = false;
    feature->OnTrackTick();
    EXPECT_EQ(std::tuple(platform->trackRunning, settings.trackLogOn, state().trackFilePath,
                         Count(&TrackState::liveWorldTrail)),
              std::tuple(false, 0u, "", 0u));
    EXPECT_EQ(ReadFile(path), text);

    // Stopping by command ends recording too; a new start does not resume it.
    settings.trackLogOn = 1;
    StartLink();
    shell.OnCommand(shell::cmd::kStopGps);
    EXPECT_FALSE(SaveChecked());
    StartLink();
    EXPECT_EQ(state().trackFilePath, "");
}

TEST_F(TrackFeatureTest, TimerFailuresAreSaid) {
    const std::string tail = "\n\nPress OK to continue...";
    const struct {
        const char* name;
        int command;
        std::string message;
    } cases[] = {{"save", cmd::kSaveTrack,
                  "Create Track Timer failed: 0x08200a14\n\nPress OK to continue..."},
                 {"interval", cmd::kTrack10s + 1,
                  "Create Track Timer failed: 0x08200a13\n\nPress OK to continue..."},
                 {"start", shell::cmd::kStartGps, "Create Track Timer failed: 0x08200a13" + tail}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        shell.OnCommand(shell::cmd::kStopGps);
        settings.trackLogOn = 0;
        if (c.command != shell::cmd::kStartGps)
            StartLink();
        ui.messages.clear();
        platform->failTrackTimer = true;
        shell.OnCommand(c.command);
        platform->failTrackTimer = false;
        ASSERT_EQ(MessageTexts(), std::vector<std::string>{c.message});
        EXPECT_EQ(ui.messages[0].second, shell::MessageIcon::Error);
    }
    EXPECT_EQ(settings.trackIntervalMs, 20000u) << "the new interval stays";
}

TEST_F(TrackFeatureTest, ViewingChoosesReadsAndCloses) {
    const std::string good = settings.storageRoot + "/good.log";
    WriteFile(good,
              "120.1,30.2,,20260516 09:58:50,0,0,1\r\n"
              "120.2,30.3,,20260516 09:59:00,0,0,1\r\n"
              "bad line\r\n");
    const std::string junk = settings.storageRoot + "/junk.gpx";
    WriteFile(junk, "PK\3\4 a zip file");
    const std::string cut = settings.storageRoot + "/cut.gpx";
    WriteFile(cut, "<gpx><trk><trkseg><trkpt lat='30' lon='120'/><trkpt lat=");
    std::vector<GeoBounds> shown;
    feature->bringIntoView = [&shown](const GeoBounds& b) { shown.push_back(b); };
    settings.trackLogOn = 1;
    StartLink();
    const std::string beingWritten = state().trackFilePath;
    settings.showTrack = 0;

    const auto say = [](int id, const std::string& name) {
        return std::vector{common::FormatString(common::LoadString(id), name)};
    };
    const std::string writing = beingWritten.substr(beingWritten.rfind('/') + 1);
    const struct {
        const char* name;
        std::string pick;
        std::vector<std::string> messages;
        bool viewing;
        std::uint32_t points;
    } cases[] = {
        {"a log", good, {}, true, 2},
        {"cancelled", "", {}, true, 2},
        {"missing: the view stays", good + ".gone", {"Open Track Log failed!"}, true, 2},
        {"the log being written", beingWritten, say(common::kStrLogBeingWritten, writing), true, 2},
        {"no track file", junk, say(common::kStrNotATrackFile, "junk.gpx"), true, 2},
        {"a cut GPX: what was whole", cut, say(common::kStrTrackFileCut, "cut.gpx"), true, 1},
        {"a log again", good, {}, true, 2}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ui.messages.clear();
        View(c.pick);
        EXPECT_EQ(std::tuple(chooser.modes.back(), chooser.title), std::tuple(2, "打开文件"s));
        EXPECT_EQ(MessageTexts(), c.messages);
        EXPECT_EQ(std::tuple(state().trackViewOn, Count(&TrackState::viewedWorldTrail)),
                  std::tuple(c.viewing, c.points));
    }
    EXPECT_EQ(std::tuple(state().viewedTrackPath, shell.currentScreen, settings.showTrack),
              std::tuple(good, shell::kScreenMap, 1u));
    EXPECT_TRUE(MenuHas(cmd::kCloseTrack));
    // Each track shown is brought into view: the log's two points.
    ASSERT_EQ(shown.size(), 3u);
    EXPECT_EQ(std::tuple(shown.back().south, shown.back().east), std::tuple(30.2, 120.2));
    shell.OnCommand(cmd::kTrackInfo);
    EXPECT_EQ(std::tuple(platform->statisticsName, platform->statisticsPoints),
              std::tuple("good.log"s, 2u));

    shell.OnCommand(cmd::kCloseTrack);
    EXPECT_EQ(std::tuple(state().trackViewOn, state().viewedTrackPath,
                         Count(&TrackState::viewedWorldTrail), MenuHas(cmd::kCloseTrack)),
              std::tuple(false, "", 0u, false));
}

TEST_F(TrackFeatureTest, ReadClosedBeforeItEndsIsNotShown) {
    const std::string log = settings.storageRoot + "/a.log";
    WriteFile(log, "1,2,,20260516 09:58:50,\r\n");
    platform->deferDone = true;
    View(log);
    EXPECT_TRUE(feature->reading());
    EXPECT_FALSE(shell::FindMenuEntry(shell.BuildMainMenu(), cmd::kViewTrack)->enabled);
    shell.OnCommand(cmd::kCloseTrack);
    platform->deferred();
    EXPECT_EQ(std::tuple(state().trackViewOn, Count(&TrackState::viewedWorldTrail)),
              std::tuple(false, 0u));
}

TEST_F(TrackFeatureTest, FollowPause) {
    enum class Then { Nothing, Expire, ModeChange, MapChange, StopLink };
    const struct {
        const char* name;
        bool running, timerFails;
        Then then;
        bool paused, message;
    } cases[] = {{"moved by hand", true, false, Then::Nothing, true, false},
                 {"link stopped: no pause", false, false, Then::Nothing, false, false},
                 {"timer refused: paused anyway", true, true, Then::Nothing, true, true},
                 {"ten seconds on", true, false, Then::Expire, false, false},
                 {"map mode switched", true, false, Then::ModeChange, false, false},
                 {"same mode, new map", true, false, Then::MapChange, true, false},
                 {"link stopped", true, false, Then::StopLink, false, false}};
    // Outlives every case: the next case's stop still tells the pause's end.
    bool told = false;
    feature->onFollowPause = [&told](bool paused) { told = paused; };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        shell.OnCommand(shell::cmd::kStopGps);
        if (c.running)
            StartLink();
        ui.messages.clear();
        platform->failFollowTimer = c.timerFails;
        told = false;
        feature->OnMapMovedByHand();
        EXPECT_TRUE(!c.running || c.timerFails || platform->followPeriod == 10000u)
            << platform->followPeriod;
        switch (c.then) {
            case Then::Nothing:
                break;
            case Then::Expire:
                platform->followExpired();
                break;
            case Then::ModeChange:
            case Then::MapChange:
                feature->OnMapGeometryChanged(c.then == Then::ModeChange);
                break;
            case Then::StopLink:
                shell.OnCommand(shell::cmd::kStopGps);
                break;
        }
        EXPECT_EQ(std::tuple(feature->followPaused(), told), std::tuple(c.paused, c.paused))
            << "paused, and the map is told";
        EXPECT_EQ(MessageTexts(), c.message
                                      ? std::vector<std::string>{"Create Track Move Timer failed!"}
                                      : std::vector<std::string>{});
    }
    feature->onFollowPause = nullptr;
}

TEST_F(TrackFeatureTest, MapChangeRebuildsTheMapTrails) {
    const std::string log = settings.storageRoot + "/a.log";
    WriteFile(log, "1,2,,20260516 09:58:50,\r\n3,4,,20260516 09:59:00,\r\n");
    View(log);
    settings.trackLogOn = 1;
    StartLink();
    SetFix(true);
    feature->OnTrackTick();
    EXPECT_EQ(Count(&TrackState::viewedMapTrail), 0u) << "no calibrated map yet";

    // A calibrated map is loaded: both map trails follow it.
    feature->projections = [] {
        TrackProjections p;
        p.map = [](double lat, double lon) { return MapXY{lon * 10, lat * 10}; };
        return p;
    };
    feature->OnMapGeometryChanged(true);
    ASSERT_EQ(Count(&TrackState::viewedMapTrail), 2u);
    EXPECT_EQ(state().viewedMapTrail.At(1).x, 30.0f);
    ASSERT_EQ(Count(&TrackState::liveMapTrail), 1u) << "the one line written";
    EXPECT_FLOAT_EQ(state().liveMapTrail.At(0).y, 302.5f);
    EXPECT_EQ(Count(&TrackState::liveWorldTrail), 1u) << "the world trail is not rebuilt";
}

}  // namespace
}  // namespace satwalk::track
