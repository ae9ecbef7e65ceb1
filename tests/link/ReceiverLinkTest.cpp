// The link end to end through a pseudo-terminal, with the watchdog ticked by
// hand so that every decode moment is chosen by the test.
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <thread>
#include <tuple>

#include <gtest/gtest.h>

#include "LinkTestSupport.h"
#include "ReceiverLink.h"

namespace satwalk::link::test {
namespace {

using namespace std::chrono_literals;

class LinkTest : public ::testing::Test {
  protected:
    void SetUp() override {
        link.devicePath = receiver.path();
        link.baudRate = 9600;
        link.sink = &sink;
        ASSERT_TRUE(OpenPort(link) && StartLink(link)) << link.lastErrorCode;
    }

    // Sends bytes and waits until the reader holds them (no tick involved).
    void Feed(const std::string& bytes) {
        const std::uint32_t before = link.bufferLength;
        receiver.Send(bytes);
        ASSERT_TRUE(WaitFor([&] { return link.bufferLength == before + bytes.size(); }))
            << "buffered " << link.bufferLength << " of " << before + bytes.size();
    }

    // One watchdog tick, then waits for the batch it releases.
    // (The reader records and empties its buffer after the handler.)
    void TickAndDecode() { ASSERT_TRUE(sink.TickAndWait(sink.batches() + 1)); }

    FakeReceiver receiver;
    ReceiverLink link;
    RecordingSink sink{link};
};

TEST_F(LinkTest, DecodesOnlyOnTheReadAfterATick) {
    Feed(Rmc("3112.0001"));
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(sink.batches(), 0u) << "decoded before any tick";

    TickAndDecode();
    EXPECT_EQ(sink.latitude(0), "3112.0001");
    EXPECT_TRUE(link.fixValid);

    // Two epochs between ticks make one batch; the later one wins.
    Feed(Rmc("3112.0002") + Rmc("3112.0003"));
    TickAndDecode();
    EXPECT_EQ(std::tuple(sink.batches(), sink.latitude(1)), std::tuple(2u, "3112.0003"));

    // A tick with nothing collected decodes nothing, but its request stays:
    // the next text is decoded as soon as it is read.
    LinkTimerProc(link);
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(sink.batches(), 2u);
    receiver.Send(Rmc("3112.0004"));
    ASSERT_TRUE(sink.WaitBatches(3));
    EXPECT_EQ(sink.latitude(2), "3112.0004");
}

TEST_F(LinkTest, RequestsATimeSyncEveryTenthTick) {
    for (int tick = 1; tick <= 11; ++tick) {
        Feed(Rmc("3112.0001", "1200" + std::to_string(10 + tick) + ".00"));
        TickAndDecode();
    }
    // A new fix starts with its sync requested; then the tenth tick.
    const std::vector<bool> expected = {1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0};
    EXPECT_EQ(sink.syncs(), expected);
}

// Neither the link nor the decoder (which keeps a cut sentence's header)
// pieces the two halves together.
TEST_F(LinkTest, SentenceStraddlingTwoDecodesIsLost) {
    const std::string cut = Rmc("3112.0002");
    Feed(Rmc("3112.0001") + cut.substr(0, 20));
    TickAndDecode();
    Feed(cut.substr(20) +
         Sentence("GPGGA,120001.00,3112.0009,N,12128.0000,E,1,08,1.0,12.0,M,8.0,M,,"));
    TickAndDecode();
    EXPECT_EQ(sink.latitude(1), "3112.0001") << "the cut RMC was pieced together";
    EXPECT_STREQ(link.gps.satellitesUsed, "08") << "the sentence after the cut was lost too";
}

// The decoder loses the read that does not fit; the recording keeps the
// bytes as they were read, so it holds no spliced line.
TEST_F(LinkTest, BurstOverflowDecodesAtOnceAndDropsWhatDoesNotFit) {
    std::string burst;
    for (int i = 1000; burst.size() <= 2100; ++i) burst += Rmc("3112." + std::to_string(i));
    // Set up with the reader stopped: nothing but the port orders the burst
    // before the reader's handler.
    StopLink(link);
    const std::string dir = MakeTempDir();
    link.nmeaFolder = dir;
    link.recordNmea = true;
    std::vector<std::string> batches;
    sink.onData = [&] { batches.emplace_back(link.buffer, link.bufferLength); };
    ASSERT_TRUE(OpenPort(link) && StartLink(link)) << link.lastErrorCode;
    receiver.Send(burst);
    ASSERT_TRUE(sink.WaitBatches(1)) << "an overflow must decode without a tick";
    // Whatever arrives after the overflow waits for the tick.
    std::this_thread::sleep_for(50ms);
    if (link.bufferLength > 0)
        TickAndDecode();

    ASSERT_GE(batches.size(), 1u);
    EXPECT_LT(batches[0].size(), 2048u);
    EXPECT_EQ(burst.compare(0, batches[0].size(), batches[0]), 0)
        << "the first batch is not the start";
    std::string all;
    for (const std::string& b : batches) all += b;
    EXPECT_LT(all.size(), burst.size()) << "nothing was dropped";
    ASSERT_TRUE(WaitFor([&] { return ReadFile(link.nmeaLogPath).size() >= burst.size(); }));
    EXPECT_EQ(ReadFile(link.nmeaLogPath), burst) << "the recording is not what was sent";
    std::filesystem::remove_all(dir);
}

TEST(OtherTalkersWatchTest, TenTicksOfOtherTalkersWithoutAGpFix) {
    // Per batch, from tick 1: 'o' other talkers only, 'g' a GP RMC beside
    // them, '.' neither; then the tick the owner is told at (0: never).
    const std::tuple<const char*, int> cases[] = {
        {"oooooooooo", 0},      {"ooooooooooo", 11},       {"oooooooooooooooo", 11},  // once
        {"..ooooooooooo", 13},  {"ooooo.....o", 11},  // the wait counts ticks, not batches
        {"oooogoooooooooo", 0}, {"oooogoooooooooooo", 16}, {"ggggggggggggggg", 0}};
    for (const auto& [batches, toldAtTick] : cases) {
        OtherTalkersWatch watch;
        int told = 0;
        for (std::uint32_t tick = 1; batches[tick - 1] != '\0'; ++tick) {
            const char b = batches[tick - 1];
            const gps::TalkerCounts counts{b == 'g' ? 1u : 0u, b == '.' ? 0u : 2u};
            if (watch.AfterBatch(counts, tick)) {
                EXPECT_EQ(told, 0) << batches << ": told twice";
                told = static_cast<int>(tick);
            }
        }
        EXPECT_EQ(told, toldAtTick) << batches;
    }
}

TEST_F(LinkTest, CombinedTalkerGivesAFixWithTheSettingAndTheHintWithout) {
    for (const bool all : {false, true}) {
        StopLink(link);
        link.allTalkers = all;
        ASSERT_TRUE(OpenPort(link) && StartLink(link)) << link.lastErrorCode;
        const std::size_t first = sink.batches();
        const int hints = sink.otherTalkerHints;
        for (std::size_t tick = 1; tick <= 12; ++tick) {
            receiver.Send(
                Sentence("GNRMC,120000.00,A,3112.0001,N,12128.0000,E,0.5,0.0,150307,,,A"));
            ASSERT_TRUE(sink.TickAndWait(first + tick));
        }
        EXPECT_EQ(sink.latitude(first + 11), all ? "3112.0001" : "") << "all talkers " << all;
        EXPECT_EQ(sink.otherTalkerHints - hints, all ? 0 : 1) << "all talkers " << all;
    }
}

TEST_F(LinkTest, ThirtySilentTicksEndTheLinkWithReasonTwo) {
    for (int i = 0; i < 20; ++i) LinkTimerProc(link);
    receiver.Send(Rmc("3112.0001"));  // data resets the count
    ASSERT_TRUE(WaitFor([&] { return link.noDataTicks == 0; }));
    for (int i = 0; i < 29; ++i) LinkTimerProc(link);
    EXPECT_EQ(sink.stopCommands, 0);
    EXPECT_TRUE(link.running);

    const auto start = std::chrono::steady_clock::now();
    LinkTimerProc(link);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 500ms) << "stop inside the tick hung";
    EXPECT_EQ(std::tuple(sink.stopCommands, sink.stopResult, link.portFd),
              std::tuple(1, kLossTimeout, -1));
    LinkTimerProc(link);  // a late tick of a stopped link does nothing
    EXPECT_EQ(sink.stopCommands, 1);
}

TEST_F(LinkTest, GiveUpWithoutAnOwnerStopStillClosesTheLink) {
    sink.stopInsideTick = false;
    receiver.HangUp();
    LinkTimerProc(link);
    EXPECT_EQ(std::tuple(sink.stopCommands, link.portOpen.load()), std::tuple(1, false));
    LinkTimerProc(link);  // not given up twice
    EXPECT_EQ(sink.stopCommands, 1);
    EXPECT_EQ(StopLink(link), kLossDeviceGone);
}

TEST_F(LinkTest, SurvivesGarbageNulBytesAndEndlessLines) {
    std::string garbage;
    for (int i = 0; i < 3000; ++i) {
        const char c = static_cast<char>((i * 37 + 11) & 0xff);
        if (c != 0x11 && c != 0x13)
            garbage += c;  // XON/XOFF belong to the line
    }
    receiver.Send(garbage + std::string(5000, 'x') + std::string("\0\0\0$GPRMC,\0", 11));
    for (int i = 0; i < 5; ++i) LinkTimerProc(link), std::this_thread::sleep_for(20ms);
    receiver.Send(Rmc("3112.0042"));
    LinkTimerProc(link);
    ASSERT_TRUE(WaitFor([&] { return sink.latitude(sink.batches() - 1) == "3112.0042"; }));
    EXPECT_TRUE(link.running);
}

TEST_F(LinkTest, StopNeverWaitsMoreThanItsBoundForABusyHandler) {
    std::mutex gate;
    std::unique_lock<std::mutex> held(gate);
    std::atomic<bool> inHandler{false};
    sink.onData = [&] {
        inHandler = true;
        std::lock_guard<std::mutex> g(gate);  // blocked until the test lets go
    };
    Feed(Rmc("3112.0001"));
    LinkTimerProc(link);
    ASSERT_TRUE(WaitFor([&] { return inHandler.load(); }));

    const auto start = std::chrono::steady_clock::now();
    StopLink(link);
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_LT(waited, 1500ms);
    EXPECT_GE(waited, 900ms);
    EXPECT_EQ(link.lastErrorCode, common::err::kReaderClose);
    held.unlock();
    ASSERT_TRUE(sink.WaitBatches(1));

    // The late reader ends by itself, and the link starts again.
    FakeReceiver second;
    link.devicePath = second.path();
    sink.onData = nullptr;
    ASSERT_TRUE(OpenPort(link) && StartLink(link)) << link.lastErrorCode;
    second.Send(Rmc("3112.0005"));
    ASSERT_TRUE(sink.TickAndWait(2));
    EXPECT_EQ(sink.latitude(1), "3112.0005");
}

TEST(OpenPortTest, EachProvokableStepFailsWithItsCode) {
    FakeReceiver pty;
    const std::string dir = MakeTempDir();
    const std::string file = dir + "/plain";
    std::ofstream(file) << "not a tty";
    const std::tuple<const char*, std::string, std::uint32_t, const char*> cases[] = {
        {"missing device", dir + "/ttyUSB9", 9600, common::err::kPortOpen},
        {"a plain file", file, 9600, common::err::kPortGetState},
        {"a character device that is not a tty", "/dev/null", 9600, common::err::kPortGetState},
        {"a baud rate not offered", pty.path(), 12345, common::err::kPortSetState}};
    for (const auto& [name, path, baud, code] : cases) {
        ReceiverLink link;
        link.devicePath = path;
        link.baudRate = baud;
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(std::tuple(OpenPort(link), link.lastErrorCode, link.portFd),
                  std::tuple(false, std::string(code), -1))
            << name;
        EXPECT_LT(std::chrono::steady_clock::now() - start, 500ms) << name << " was retried";
    }
    std::filesystem::remove_all(dir);
}

TEST(OpenPortTest, SetsTheLineUpForEveryOfferedRate) {
    for (const std::uint32_t baud : common::kBaudRates) {
        FakeReceiver pty;
        ReceiverLink link;
        link.devicePath = pty.path();
        link.baudRate = baud;
        ASSERT_TRUE(OpenPort(link)) << baud << " " << link.lastErrorCode;
        termios tio{};
        ASSERT_EQ(tcgetattr(link.portFd, &tio), 0);
        // 8N1, no hardware flow, XON/XOFF, raw, reads that never wait.
        EXPECT_EQ(tio.c_cflag & (CSIZE | PARENB | CSTOPB | CRTSCTS), tcflag_t{CS8}) << baud;
        EXPECT_EQ(tio.c_iflag & (IXON | IXOFF), tcflag_t{IXON | IXOFF}) << baud;
        EXPECT_EQ(tio.c_lflag & (ICANON | ECHO), 0u) << baud;
        EXPECT_EQ(tio.c_cc[VMIN] + tio.c_cc[VTIME], 0) << baud;
        EXPECT_NE(fcntl(link.portFd, F_GETFL) & O_NONBLOCK, 0) << baud;
        const std::map<std::uint32_t, speed_t> speeds = {
            {4800, B4800}, {9600, B9600}, {19200, B19200}, {38400, B38400}, {57600, B57600}};
        if (speeds.count(baud) != 0) {  // 14400 has no speed constant
            EXPECT_EQ(cfgetospeed(&tio), speeds.at(baud)) << baud;
        }
    }
}

}  // namespace
}  // namespace satwalk::link::test
