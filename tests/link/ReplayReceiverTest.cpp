// The replay receiver feeding a real link.
#include <gtest/gtest.h>

#include "LinkTestSupport.h"
#include "ReceiverLink.h"
#include "ReplayReceiver.h"

namespace satwalk::link::test {
namespace {

TEST(ReplayReceiverTest, SplitsTheLogAtEachRmc) {
    const std::string gga = Sentence("GPGGA,120000.00,,,,,0,00,,,M,,M,,");
    const std::string log = gga + Rmc("1") + gga + Rmc("2") + "$GNRMC,x\r\n" + "tail";
    const std::string first = gga + Rmc("1") + gga, second = Rmc("2");  // lines before join it
    EXPECT_EQ(ReplayReceiver::SplitEpochs(log),
              (std::vector<std::string_view>{first, second, "$GNRMC,x\r\ntail"}));
    EXPECT_TRUE(ReplayReceiver::SplitEpochs("").empty());
    EXPECT_EQ(ReplayReceiver::SplitEpochs("no sentences").size(), 1u);
}

TEST(ReplayReceiverTest, PlaysIntoALinkAndHangsUpAtTheEnd) {
    ReplayReceiver replay;
    ASSERT_TRUE(replay.Open()) << replay.error();
    ReceiverLink link;
    RecordingSink sink(link);
    link.sink = &sink;
    link.devicePath = replay.slavePath();
    ASSERT_TRUE(OpenPort(link)) << link.lastErrorCode;
    ASSERT_TRUE(StartLink(link));

    replay.SetLog(Rmc("3112.0001") + Rmc("3112.0002") + Rmc("3112.0003"));
    ASSERT_TRUE(replay.Start({50.0, false}));
    replay.WaitFinished();
    EXPECT_EQ(replay.epochsWritten(), 3u);
    ASSERT_TRUE(WaitFor([&] { return link.bufferLength == 3 * Rmc("3112.0001").size(); }));
    LinkTimerProc(link);
    ASSERT_TRUE(sink.WaitBatches(1));
    EXPECT_EQ(sink.latitude(0), "3112.0003");

    replay.Stop();
    ASSERT_TRUE(WaitFor([&] { return link.deviceGone.load(); }));
    LinkTimerProc(link);
    EXPECT_EQ(sink.stopResult, kLossDeviceGone);
}

}  // namespace
}  // namespace satwalk::link::test
