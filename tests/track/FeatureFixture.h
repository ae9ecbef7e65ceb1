// A shell with the window, the link, the file browser and the platform
// faked, for the track and POI features' rules, and a map view to draw on.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "CommandIds.h"
#include "FakeMapPlatform.h"
#include "FakeShellParts.h"
#include "FileChooser.h"
#include "Screens.h"
#include "Shell.h"
#include "TrackFeature.h"
#include "TrackTestSupport.h"

namespace satwalk::track::test {

class FakeChooser : public browser::FileChooser {
  public:
    void ChooseFile(int mode, const std::string& caption, browser::FileChosen chosen) override {
        modes.push_back(mode);
        title = caption;
        pending = std::move(chosen);
    }
    // The user picks `path` (or cancels with an empty one).
    void Pick(const std::string& path) {
        auto chosen = std::move(pending);
        pending = nullptr;
        if (chosen && !path.empty())
            chosen({path, path.substr(path.find_last_of('/') + 1)});
    }
    std::vector<int> modes;
    std::string title;
    browser::FileChosen pending;
};

// Runs reads at once; the timers are only remembered.
class FakeTrackPlatform : public TrackPlatform {
  public:
    bool StartTrackTimer(std::uint32_t periodMs, std::function<void()>) override {
        trackPeriod = periodMs;
        return failTrackTimer ? false : (trackRunning = true);
    }
    void StopTrackTimer() override { trackRunning = false; }
    bool TrackTimerRunning() const override { return trackRunning; }
    bool StartFollowTimer(std::uint32_t periodMs, std::function<void()> expired) override {
        if (failFollowTimer)
            return false;
        followPeriod = periodMs;
        followExpired = std::move(expired);
        return true;
    }
    void StopFollowTimer() override { followExpired = nullptr; }
    void RunReader(std::function<void(const TrackProgress&)> work,
                   std::function<void()> done) override {
        work([](std::uint64_t, std::uint64_t) {});
        if (deferDone)
            deferred = std::move(done);
        else
            done();
    }
    void ShowStatistics(const std::string& name, const TrackStatistics& stats, int) override {
        statisticsName = name;
        statisticsPoints = stats.points();
    }
    bool failTrackTimer = false, trackRunning = false, failFollowTimer = false;
    bool deferDone = false;  // the read ends only when the test says
    std::uint32_t trackPeriod = 0, followPeriod = 0;
    std::string statisticsName;
    std::uint64_t statisticsPoints = 0;
    std::function<void()> deferred, followExpired;
};

// A map of West Lake: image pixel (0, 0) at 31° N 120° E, (1000, 1000) at
// 30° N 121° E, shown `width` pixels wide with the image centre in the view's.
inline map::MapView LakeMap(double width, bool calibrated = true) {
    map::MapView v;
    v.viewRect = {0, 0, 480, 560};
    v.mapMode = 1;
    v.imageSize = {1000, 1000};
    v.currentWidth = v.currentHeight = width;
    v.scrollCentre = {500, 500};
    if (calibrated) {
        map::ReferencePoints refs{};
        refs[0] = map::GeoPoint{1, 31, 120, 0, 0, 0, 0};
        refs[1] = map::GeoPoint{1, 30, 121, 0, 0, 1000, 1000};
        v.calibration = map::ComputeCalibration(refs);
    }
    return v;
}

class FeatureFixture : public ::testing::Test, protected shell::testing::FakeShell {
  protected:
    FeatureFixture() {
        settings.bluetoothReceiver = 0;
        settings.storageRoot =
            ScratchFolder(::testing::UnitTest::GetInstance()->current_test_info()->name());
        shell::PrepareStorageFolders(shell::MakeStorageFolders(settings.storageRoot));
        // The map feature owns the world-map command that views go to.
        shell.features().Add(map);
    }

    std::string TrackFolder() const { return settings.storageRoot + "/My GPS/Track Log"; }

    // A fix at 30°15'N 120°10'E, or none.
    void SetFix(bool valid) {
        gps::GpsState& g = link.gps;
        std::strcpy(g.latitude, valid ? "3015.0000" : "");
        g.northSouth = valid ? 'N' : 0;
        std::strcpy(g.longitude, valid ? "12010.0000" : "");
        g.eastWest = valid ? 'E' : 0;
        std::strcpy(g.speedKnots, "1.50");
        std::strcpy(g.course, "90.0");
        std::strcpy(g.altitude, "");
        link.fixValid = valid;
        if (link.running)
            shell.OnGpsData();
    }
    void StartLink() {
        shell.OnCommand(shell::cmd::kStartGps);
        ASSERT_TRUE(link.running);
    }
    bool MenuHas(int id) const {
        return shell::FindMenuEntry(shell.BuildMainMenu(), id) != nullptr;
    }
    std::vector<std::string> MessageTexts() const {
        std::vector<std::string> texts;
        for (const auto& m : ui.messages) texts.push_back(m.first);
        return texts;
    }

    screens::ScreenContext screens;
    map::MapScreen mapScreen;
    map::MapFeature map{shell, screens, mapScreen, std::make_unique<map::test::FakeMapPlatform>()};
    FakeChooser chooser;
};

}  // namespace satwalk::track::test
