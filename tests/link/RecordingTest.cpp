// NMEA recording: file names from local time, the bytes exactly as read
// (with no sink: recorded, not decoded), one file per start second.
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <thread>
#include <tuple>

#include <gtest/gtest.h>

#include "../common/FullDisk.h"
#include "LinkTestSupport.h"
#include "ReceiverLink.h"

namespace satwalk::link::test {
namespace {

using namespace std::chrono_literals;

class RecordingTest : public ::testing::Test {
  protected:
    void SetUp() override {
        dir = MakeTempDir();
        link.nmeaFolder = dir;
        link.recordNmea = true;
        link.clock = [] { return fixedNow; };
    }
    void TearDown() override { std::filesystem::remove_all(dir); }

    void Start(FakeReceiver& receiver) {
        link.devicePath = receiver.path();
        ASSERT_TRUE(OpenPort(link) && StartLink(link)) << link.lastErrorCode;
    }

    // Sends bytes, waits until the reader holds `held` characters, ticks and
    // waits until the file has grown by all the bytes.
    void SendAndRecord(FakeReceiver& receiver, const std::string& bytes, std::size_t held) {
        const std::size_t before = ReadFile(link.nmeaLogPath).size();
        receiver.Send(bytes);
        ASSERT_TRUE(WaitFor([&] { return link.bufferLength == held; }));
        LinkTimerProc(link);
        ASSERT_TRUE(
            WaitFor([&] { return ReadFile(link.nmeaLogPath).size() == before + bytes.size(); }));
    }

    static inline std::time_t fixedNow = 1173968730;  // 2007-03-15 14:25:30 UTC
    std::string dir;
    ReceiverLink link;
};

TEST(NmeaLogPathTest, NamesTheFileAfterTheLocalStartTime) {
    // Zone, start time, folder, and the file's path.
    const std::tuple<const char*, std::time_t, const char*, const char*> cases[] = {
        {"UTC0", 1173968730, "/rec", "/rec/20070315142530_NMEA0183.log"},
        {"CST-8", 1173968730, "/rec", "/rec/20070315222530_NMEA0183.log"},
        {"CST-8", 946684799, "d", "d/20000101075959_NMEA0183.log"}};  // next local day
    for (const auto& [tz, now, folder, expected] : cases) {
        setenv("TZ", tz, 1);
        tzset();
        ReceiverLink link;
        link.nmeaFolder = folder;
        MakeNmeaLogPath(link, now);
        EXPECT_STREQ(link.nmeaLogPath, expected) << tz << " " << now;
    }
}

TEST_F(RecordingTest, RecordsTheBytesExactlyAsRead) {
    FakeReceiver receiver;
    Start(receiver);
    const std::string a = Rmc("3112.0001") + "\xb9\xfe garbage \xff\r\n";
    const std::string b = "no line end";
    const std::string c = Sentence("GPGSA,A,3,01,02,,,,,,,,,,,2.0,1.0,1.7");
    for (const std::string& bytes : {a, b, c}) SendAndRecord(receiver, bytes, bytes.size());
    // Text after a NUL in a read is not decoded, but it is recorded.
    const std::string nul("ab\0cd", 5);
    SendAndRecord(receiver, nul, 2);
    StopLink(link);
    EXPECT_EQ(ReadFile(link.nmeaLogPath), a + b + c + nul);
    EXPECT_EQ(ListDir(dir).size(), 1u);
    EXPECT_STREQ(link.gps.latitude, "") << "decoded without a sink";
}

TEST_F(RecordingTest, TwoStartsInOneSecondAppendToOneFile) {
    FakeReceiver receiver;
    const std::string first = Rmc("3112.0001");
    const std::string second = Rmc("3112.0002");
    for (const std::string& bytes : {first, second}) {
        Start(receiver);
        SendAndRecord(receiver, bytes, bytes.size());
        StopLink(link);
    }
    ASSERT_EQ(ListDir(dir).size(), 1u);
    EXPECT_EQ(ReadFile(dir + "/" + ListDir(dir)[0]), first + second);

    // A start a second later opens a new file.
    ++fixedNow;
    Start(receiver);
    SendAndRecord(receiver, first, first.size());
    StopLink(link);
    EXPECT_EQ(ListDir(dir).size(), 2u);
    --fixedNow;
}

// The owner is told once of the failure and once when a write works again
// (the program's status line, the tool's standard error).
TEST_F(RecordingTest, AVanishedFolderLosesTheBatchesButNotTheLink) {
    FakeReceiver receiver;
    RecordingSink sink(link);
    link.sink = &sink;
    link.nmeaFolder = dir + "/gone";
    Start(receiver);
    for (std::size_t batch = 1; batch <= 4; ++batch) {
        if (batch == 4)
            std::filesystem::create_directory(dir + "/gone");
        receiver.Send(Rmc("3112.0001"));
        ASSERT_TRUE(sink.TickAndWait(batch));
    }
    EXPECT_EQ(sink.latitude(2), "3112.0001");
    EXPECT_EQ(ListDir(dir + "/gone").size(), 1u);
    EXPECT_TRUE(link.running);
    StopLink(link);
    EXPECT_EQ(
        std::tuple(sink.recordFailures.load(), sink.recordError.load(), sink.recordResumes.load()),
        std::tuple(1, ENOENT, 1));
}

TEST(AppendNmeaBatchTest, ABatchIsWrittenWholeOrNotAtAll) {
    const std::string line = Rmc("3112.0001");  // 77 bytes
    const std::tuple<const char*, std::string, std::string, rlim_t, bool> cases[] = {
        {"room enough", line, line + line, 1000, true},
        {"short write", line, line + line, 2 * line.size(), false},
        {"no room at all", line + line, line, 2 * line.size(), false}};
    const std::string dir = MakeTempDir();
    const std::string path = dir + "/rec.log";
    for (const auto& [name, before, batch, limit, written] : cases) {
        { std::ofstream(path, std::ios::binary | std::ios::trunc) << before; }
        const int error = OnAFullDisk(
            limit, [&] { return AppendNmeaBatch(path.c_str(), batch.data(), batch.size()); });
        EXPECT_EQ(error, written ? 0 : EFBIG) << name;
        EXPECT_EQ(ReadFile(path), written ? before + batch : before) << name;
    }
    std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace satwalk::link::test
