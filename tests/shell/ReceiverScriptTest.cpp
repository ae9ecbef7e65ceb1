// The receiver settings and the options end to end: `satwalk` runs offscreen
// against a fake BlueZ on a private bus, which it takes for the system's.
#include <QCoreApplication>

#include <gtest/gtest.h>

#include "FakeBluez.h"
#include "ScriptRun.h"

namespace {

using satwalk::link::FakeBluez;

class ReceiverScriptTest : public ScriptRunTest {
  protected:
    void SetUp() override {
        ScriptRunTest::SetUp();
        const std::string why = bluez_.Start();
        if (!why.empty())
            GTEST_SKIP() << "no fake BlueZ: " << why;
        ::setenv("DBUS_SYSTEM_BUS_ADDRESS", bluez_.address.toUtf8().constData(), 1);
        bluez_.AddAdapter();
    }

    FakeBluez bluez_;
};

// The left soft key of a 480 x 640 window at 192 dpi (the bar is 52 high).
constexpr const char* kTapSearch = "tap 120 666\n";

TEST_F(ReceiverScriptTest, SearchChooseAndRecord) {
    bluez_.AddDevice("00:11:22:33:44:01", "GPS One");
    bluez_.AddDevice("00:11:22:33:44:02", "蓝牙 GPS 二号");
    WriteScript(std::string("command 40012\n"
                            "key star\n"
                            "state @/opened.json\n"
                            "set 1106 0\n"
                            "state @/manual.json\n"
                            "set 1106 1\n") +
                // The menu bar's command goes to the open dialog, as a tap would.
                "command 40060\n"
                "wait 300\n"
                "state @/searching.json\n"
                "wait 14000\n"
                "state @/searched.json\n"
                "set 1001 1\n"
                "set 1107 1\n"
                "answer ok\n"
                "state @/chosen.json\n"
                "command 40011\n"
                "command 40197\n"
                "state @/options.json\n"
                "set 1147 1\n"
                "set 1152 1\n"
                "answer ok\n"
                "wait 2500\n"
                "state @/recording.json\nquit\n");
    ASSERT_EQ(Run("--replay --replay-rate 4"), 0) << Read("stderr.txt");

    ExpectHas("opened.json", {R"("dialog":{"resourceId":115,"caption":"GPS 设置")", "(可用)",
                              R"("bluetoothDevices":[])", R"("text":"自动")"});
    ExpectHas("manual.json", {R"("items":["系统设置"])", R"("softKeys":["搜索","取消"])"});
    ExpectHas("searching.json", {R"("bluetoothSearching":true)", R"("softKeys":["重试","取消"])"});
    ExpectHas("searched.json", {R"("bluetoothSearching":false)",
                                R"({"name":"GPS One","address":"00:11:22:33:44:01"})",
                                R"("items":["GPS One","蓝牙 GPS 二号"])"});
    ExpectHas("chosen.json",
              {R"("dialog":null)",
               R"("bluetoothDevice":{"name":"蓝牙 GPS 二号","address":"00:11:22:33:44:02"})",
               R"("bluetoothReceiver":true)"});
    ExpectHas("options.json", {R"("resourceId":182)", R"("caption":"选项")", R"("id":1148)"});
    ExpectHas("recording.json", {R"("dialog":null)", R"("recordNmea":true)", R"("allTalkers":true)",
                                 R"("linkRunning":true)"});

    // The recording began when it was switched on, in the storage folder.
    int files = 0;
    for (const auto& f : fs::directory_iterator(Path("home/Documents/My GPS/NMEA0183"))) {
        EXPECT_TRUE(f.path().filename().string().ends_with("_NMEA0183.log"));
        EXPECT_GT(fs::file_size(f.path()), 0u);
        ++files;
    }
    EXPECT_EQ(files, 1);
}

TEST_F(ReceiverScriptTest, SearchMessagesKeepTheDialogUsable) {
    struct Case {
        const char* what;
        bool powered;
        const char* waitMs;  // for the search to end
        const char* message;
    };
    const Case cases[] = {
        {"radio off", false, "1000", "请先开启蓝牙！"},
        {"a nameless answer", true, "14000", "没有找到蓝牙GPS接收机"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        bluez_.SetPowered(c.powered);
        if (c.powered)
            bluez_.AddDevice("00:11:22:33:44:09", "");
        WriteScript(std::string("key star\n") + kTapSearch + "wait " + c.waitMs +
                    "\nstate @/state.json\nset 1106 0\nstate @/manual.json\nquit\n");
        ASSERT_EQ(Run(), 0) << Read("stderr.txt");
        ExpectHas("state.json",
                  {c.message, R"("resourceId":115)", R"("softKeys":["重试","取消"])"});
        ExpectHas("manual.json", {R"("items":["系统设置"])"});
    }
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
