// The map feature over a faked shell and platform, in a storage folder of
// its own for each test.
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>

#include "CommandIds.h"
#include "FakeMapPlatform.h"
#include "FakeShellParts.h"
#include "MapCommands.h"
#include "Screens.h"
#include "StateJson.h"

namespace satwalk::map::test {

class MapFeatureFixture : public ::testing::Test, protected shell::testing::FakeShell {
  protected:
    MapFeatureFixture() {
        root = std::filesystem::temp_directory_path() /
               ("satwalk-map-feature-" + std::to_string(::getpid()) + "-" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(root);
        std::filesystem::create_directories(root);
        settings.storageRoot = root.string();
        shell::PrepareStorageFolders(shell::MakeStorageFolders(settings.storageRoot));
        auto fake = std::make_unique<FakeMapPlatform>();
        platform = fake.get();
        ctx.screen = {0, 0, 480, 560};
        ctx.frame = {0, 0, 480, 640};
        ctx.mapView.view = ctx.screen;
        feature = std::make_unique<MapFeature>(shell, ctx, mapScreen, std::move(fake));
        shell.features().Add(*feature);
    }
    ~MapFeatureFixture() override { std::filesystem::remove_all(root); }

    void Load(const std::string& path) {
        platform->chosenFile = path;
        shell.OnCommand(cmd::kLoadMap);
    }
    // Lays the map out as a paint would.
    void Layout() { mapScreen.viewSource(ctx); }
    // Places reference point `slot` with the cursor moved to (at, at), the
    // dialog answered with whole degrees and the soft keys' OK.
    void Place(int slot, const char* latitude, const char* longitude, int at) {
        shell.OnCommand(cmd::kSetReferencePoint1 + slot);
        platform->answerFields = [=](ReferenceDialogFields& f) {
            f.active = true;
            f.latitude = {latitude, "0", "0"};
            f.longitude = {longitude, "0", "0"};
        };
        shell.features().NotifyStylusDown(at, at);
        shell.features().NotifyStylusUp(at, at);
        shell.OnCommand(shell::cmd::kLeftSoftKey);
    }
    std::string State() const { return shell::BuildStateJson(shell, {}); }

    std::filesystem::path root;
    screens::ScreenContext ctx;
    MapScreen mapScreen;
    FakeMapPlatform* platform = nullptr;
    std::unique_ptr<MapFeature> feature;
};

}  // namespace satwalk::map::test
