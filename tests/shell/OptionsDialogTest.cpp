// The options dialog's list, layout and OK, with the running program faked
// and the folders made in a temporary directory.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "OptionsDialogModel.h"

namespace satwalk::shell {
namespace {

namespace fs = std::filesystem;

class FakeEffects final : public OptionsEffects {
  public:
    bool LinkRunning() const override { return running; }
    void SetRecordNmea(bool on) override { calls.push_back(on ? "record on" : "record off"); }
    void StartNewNmeaLog(const std::string& folder) override { calls.push_back("nmea " + folder); }
    void SetScreenAwake(bool hold) override { calls.push_back(hold ? "awake" : "sleep"); }
    void SetAllTalkers(bool on) override { calls.push_back(on ? "all talkers" : "gps only"); }
    bool running = false;
    std::vector<std::string> calls;
};

TEST(OptionsDialogTest, StorageListOffersEachRootOnceAndSelectsTheCurrent) {
    ProgramSettings s;
    s.storageRoot = "/media/u/CARD/My Documents";
    const OptionsDialog d =
        OpenOptionsDialog(s, "/home/u/Documents", {"/media/u/CARD/", "/media/u/STICK", "/"});
    EXPECT_EQ(d.storage,
              (std::vector<std::string>{"/home/u/Documents", "/media/u/CARD/My Documents",
                                        "/media/u/STICK/My Documents", "/My Documents"}));
    // keepAwake on and recordNmea off are the built-in values.
    EXPECT_EQ(std::tuple(d.storageSelection, d.keepAwake, d.recordNmea),
              std::tuple(1, true, false));

    s.storageRoot = "/somewhere/else";
    EXPECT_EQ(OpenOptionsDialog(s, "/home/u/Documents", {}).storageSelection, -1);
}

class OptionsOkTest : public ::testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/satwalk-options-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern), nullptr);
        temp = pattern;
        home = temp + "/Documents";
        settings.storageRoot = home;
        folders = MakeStorageFolders(home);
        CreateStorageTree(folders);
    }
    void TearDown() override { fs::remove_all(temp); }

    OptionsDialog Dialog(const std::string& root) {
        OptionsDialog d = OpenOptionsDialog(settings, home, {});
        d.storage.push_back(root);
        d.storageSelection = static_cast<int>(d.storage.size()) - 1;
        return d;
    }

    std::string temp, home;
    ProgramSettings settings;
    StorageFolders folders;
    FakeEffects effects;
};

TEST_F(OptionsOkTest, NewFilesOnlyWhileRunningAndOnlyWhenSomethingChanged) {
    const std::string kNmea = "nmea ROOT/My GPS/NMEA0183";
    const struct {
        const char* what;
        bool running, nmeaBefore, nmeaAfter, trackLog, newRoot;
        std::vector<std::string> calls;  // with ROOT for the chosen root's folder
        bool allTalkersBefore = false, allTalkersAfter = false;
    } cases[] = {
        {"nothing new", true, true, true, true, false, {"awake"}},
        {"record on, running", true, false, true, false, false, {"record on", kNmea, "awake"}},
        {"record on, stopped", false, false, true, true, true, {"record on", "awake"}},
        {"new root, recording", true, true, true, true, true, {kNmea, "awake"}},
        {"talkers on", false, false, false, false, false, {"all talkers", "awake"}, false, true},
        {"all talkers off", true, true, true, false, false, {"gps only", "awake"}, true, false}};
    for (const auto& c : cases) {
        TearDown();  // each case in a fresh folder; the fixture removes the last
        SetUp();
        settings.recordNmea = c.nmeaBefore;
        settings.trackLogOn = c.trackLog;
        settings.allTalkers = c.allTalkersBefore;
        effects = FakeEffects{};
        effects.running = c.running;
        const std::string root = c.newRoot ? temp + "/card/My Documents" : home;
        OptionsDialog d = Dialog(root);
        d.recordNmea = c.nmeaAfter;
        d.allTalkers = c.allTalkersAfter;
        const OptionsApplied a = AcceptOptionsDialog(d, settings, folders, effects);
        std::vector<std::string> expected;
        for (std::string e : c.calls) {
            if (const std::size_t at = e.find("ROOT"); at != std::string::npos)
                e.replace(at, 4, root);
            expected.push_back(e);
        }
        EXPECT_EQ(effects.calls, expected) << c.what;
        // The track feature starts the new track file when it hears of it (newTrackLog).
        EXPECT_EQ(std::tuple(a.rootChanged, a.newTrackLog, settings.storageRoot, folders.nmea,
                             settings.recordNmea, settings.allTalkers),
                  std::tuple(c.newRoot, c.running && c.trackLog && c.newRoot, root,
                             root + "/My GPS/NMEA0183", c.nmeaAfter ? 1u : 0u,
                             c.allTalkersAfter ? 1u : 0u))
            << c.what;
    }
}

TEST_F(OptionsOkTest, ANewRootGetsItsFoldersUnlessItIsAFile) {
    const struct {
        const char* what;
        std::function<void(const std::string&)> prepare;
        bool tree;
    } cases[] = {
        {"missing root", [](const std::string&) {}, true},
        {"half a tree",
         [](const std::string& r) { fs::create_directories(r + "/My GPS/Track Log"); }, true},
        {"a file", [](const std::string& r) { std::ofstream(r) << "x"; }, false}};
    for (const auto& c : cases) {
        const std::string root = temp + "/" + c.what;
        c.prepare(root);
        OptionsDialog d = Dialog(root);
        d.keepAwake = false;
        AcceptOptionsDialog(d, settings, folders, effects);
        for (const char* sub :
             {"/My GPS/Reference Points", "/My GPS/Track Log", "/My GPS/NMEA0183"})
            EXPECT_EQ(fs::is_directory(root + sub), c.tree) << c.what << sub;
        EXPECT_EQ(std::tuple(settings.storageRoot, effects.calls.back()), std::tuple(root, "sleep"))
            << c.what;
    }
}

}  // namespace
}  // namespace satwalk::shell
