// The program end to end: scripts run offscreen against the real window.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

namespace {

namespace fs = std::filesystem;

class ScriptRunTest : public ::testing::Test {
  protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() /
               ("satwalk-e2e-" + std::to_string(::getpid()) + "-" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir_);
        fs::create_directories(dir_ / "home");
    }
    void TearDown() override { fs::remove_all(dir_); }

    std::string Path(const std::string& name) const { return (dir_ / name).string(); }

    void WriteScript(const std::string& text) const { std::ofstream(Path("script.txt")) << text; }

    std::string Command(const std::string& extra = {}) const {
        return "env QT_QPA_PLATFORM=offscreen HOME='" + Path("home") + "' XDG_CONFIG_HOME='" +
               Path("home/.config") + "' SATWALK_INSTANCE_NAME='satwalk-test-" +
               std::to_string(::getpid()) + "' '" SATWALK_BINARY "' --options '" + Path("options") +
               "' --script '" + Path("script.txt") + "' " + extra + " 2>'" + Path("stderr.txt") +
               "'";
    }

    int Run(const std::string& extra = {}) const {
        const int status = std::system(Command(extra).c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string Read(const std::string& name) const {
        std::ifstream in(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    fs::path dir_;
};

TEST_F(ScriptRunTest, CommandsKeysSnapshotsAndState) {
    WriteScript(
        "# screens, units and the alarm\n"
        "key 7\n"
        "key right\n"
        "key right\n"
        "command 40019\n"
        "command 40058\n"
        "snapshot " +
        Path("speedometer.png") +
        "\n"
        "command 40011\n"
        "answer no\n"
        "command 40003\n"
        "state " +
        Path("state.json") +
        "\n"
        "quit\n");
    ASSERT_EQ(Run(), 0) << Read("stderr.txt");
    const std::string state = Read("state.json");
    for (const char* member :
         {"\"currentScreen\":3", "\"speedAlarmOn\":true", "\"speedAlarmLimit\":60", "\"units\":2",
          "\"trackIntervalMs\":60000", "\"linkRunning\":false", "\"alarmPlaying\":false",
          "\"icon\":\"information\"", "\"icon\":\"question\"", "\"gps\":{",
          "请首先在GPS设置中配置GPS接收机。", "您确定要退出程序？", "/home/Documents\""}) {
        EXPECT_NE(state.find(member), std::string::npos) << member << "\n" << state;
    }
    EXPECT_GT(fs::file_size(Path("speedometer.png")), 1000u);
    EXPECT_TRUE(fs::is_directory(Path("home/Documents/My GPS/Track Log")));
    EXPECT_FALSE(fs::exists(Path("options"))) << "neither a refused exit nor quit saves";
}

bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// A receiver replayed through a pseudo-terminal: the fix arrives, the speed
// climbs 1 knot a second past the 50 km/h alarm, and stopping ends it all.
TEST_F(ScriptRunTest, ReplayedReceiverDrivesFixAndAlarm) {
    WriteScript(
        "command 40045\n"
        "wait 2200\n"
        "state " +
        Path("early.json") +
        "\n"
        "wait 5000\n"
        "state " +
        Path("fast.json") +
        "\n"
        "snapshot " +
        Path("fast.png") +
        "\n"
        "key 0\n"
        "state " +
        Path("stopped.json") +
        "\n"
        "quit\n");
    ASSERT_EQ(Run("--replay '" SATWALK_TEST_DATA "/speed-run.nmea' --replay-rate 5"), 0)
        << Read("stderr.txt");
    const std::string early = Read("early.json");
    EXPECT_TRUE(Has(early, "\"linkRunning\":true")) << early;
    EXPECT_TRUE(Has(early, "\"fixValid\":true")) << early;
    EXPECT_TRUE(Has(early, "\"fixTimeKnown\":true")) << early;
    EXPECT_TRUE(Has(early, "\"alarmPlaying\":false")) << early;
    EXPECT_TRUE(Has(early, "\"latitude\":\"2232.1000\"")) << early;
    EXPECT_TRUE(Has(early, "\"bluetoothReceiver\":true")) << "the replay leaves the settings alone";

    const std::string fast = Read("fast.json");
    EXPECT_TRUE(Has(fast, "\"alarmPlaying\":true")) << fast;
    EXPECT_TRUE(Has(fast, "\"messages\":[]")) << fast;

    const std::string stopped = Read("stopped.json");
    EXPECT_TRUE(Has(stopped, "\"linkRunning\":false")) << stopped;
    EXPECT_TRUE(Has(stopped, "\"alarmPlaying\":false")) << stopped;
    EXPECT_TRUE(Has(stopped, "\"latitude\":\"\"")) << stopped;
    EXPECT_TRUE(Has(stopped, "\"fixTimeLocal\":null")) << stopped;
}

TEST_F(ScriptRunTest, ConfirmedExitSavesTheOptions) {
    WriteScript("command 40049\ncommand 40003\n");
    ASSERT_EQ(Run(), 0) << Read("stderr.txt");
    const std::string options = Read("options");
    ASSERT_EQ(options.size(), 3720u);
    EXPECT_EQ(options[36], 90);
    EXPECT_EQ(options[40], 1);
}

TEST_F(ScriptRunTest, BadLineFails) {
    WriteScript("key 7\nfly away\n");
    EXPECT_EQ(Run(), 2);
    EXPECT_NE(Read("stderr.txt").find("unknown line"), std::string::npos);
}

TEST_F(ScriptRunTest, SecondStartRaisesTheFirstAndEnds) {
    WriteScript("wait 1500\nstate " + Path("state.json") + "\nquit\n");
    std::thread first([this] { EXPECT_EQ(Run("--single-instance"), 0); });
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    const auto started = std::chrono::steady_clock::now();
    const std::string second =
        "env QT_QPA_PLATFORM=offscreen SATWALK_INSTANCE_NAME='satwalk-test-" +
        std::to_string(::getpid()) + "' '" SATWALK_BINARY "' 2>/dev/null";
    EXPECT_EQ(std::system(second.c_str()), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(1));
    first.join();
    EXPECT_NE(Read("state.json").find("\"raiseRequests\":1"), std::string::npos)
        << Read("state.json");
}

}  // namespace
