// A Bluetooth receiver's port: the COM index it is given, and the link on a
// socket pair standing in for the RFCOMM connection.
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

#include "LinkTestSupport.h"
#include "ReceiverSettingsModel.h"
#include "RfcommPort.h"

namespace satwalk::link::test {
namespace {

constexpr std::uint64_t kReceiver = 0x0011223344AA;

RfcommPortDriver Driver(std::set<int> devices) {
    RfcommPortDriver driver;
    driver.tryBindTty = false;
    driver.deviceBehind = [devices](int index) { return devices.count(index) != 0; };
    return driver;
}

TEST(BluetoothPortTest, IndexesAreTakenFromNineDown) {
    // Indexes with a device behind them, links registering one after the
    // other, the last link's port or its error.
    const std::tuple<std::set<int>, int, std::string> cases[] = {
        {{}, 1, "COM9:"},
        {{9, 8}, 1, "COM7:"},
        {{9}, 3, "COM6:"},
        {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 1, "0x08200a10"},
        {{1, 3, 5, 7, 9}, 6, "0x08200a10"}};
    for (const auto& [devices, count, lastPort] : cases) {
        RfcommPortDriver driver = Driver(devices);
        std::vector<std::unique_ptr<ReceiverLink>> links;
        std::string last;
        for (int i = 0; i < count; ++i) {
            links.push_back(std::make_unique<ReceiverLink>());
            ReceiverLink& link = *links.back();
            link.portDriver = &driver;
            last = RegisterBluetoothPort(link, kReceiver) == 1 ? link.portName : link.lastErrorCode;
        }
        EXPECT_EQ(last, lastPort) << count << " links";
        for (auto& link : links) DeregisterVirtualPort(*link);
        EXPECT_TRUE(RegisterBluetoothPort(*links.front(), kReceiver) == 1 || devices.size() == 10)
            << "indexes come back at deregistration";
        DeregisterVirtualPort(*links.front());
    }
}

TEST(BluetoothPortTest, TheComboShowsFreeIndexesAndTheDeviceBehindEach) {
    const std::string dir = MakeTempDir();
    const std::string device = dir + "/ttyACM0";
    std::ofstream(device) << "";
    std::filesystem::create_directory(dir + "/by-id");
    std::filesystem::create_symlink(device, dir + "/by-id/usb-GPS_Receiver-if00");

    RfcommPortDriver driver;
    driver.portMap = {{3, device}, {4, dir + "/ttyUSB9"}};
    const std::vector<PortSlot> slots = ProbePortSlots(&driver, driver.portMap);
    ASSERT_EQ(slots.size(), 10u);
    EXPECT_EQ(std::tuple(slots[3].free, slots[4].free, slots[4].device),
              std::tuple(false, true, dir + "/ttyUSB9"));
    EXPECT_EQ(DescribePortDevice(device, dir + "/by-id"), device + " usb-GPS_Receiver-if00");
    for (int n = 0; n < 10; ++n) EXPECT_FALSE(driver.Registered(n)) << "probing registers nothing";
    std::filesystem::remove_all(dir);
}

// The link to a Bluetooth receiver whose RFCOMM connection is one end of a
// socket pair; the test holds the receiver's end.
class BluetoothLinkTest : public ::testing::Test {
  protected:
    void SetUp() override {
        driver.connect = [this](std::uint64_t address, int channel) {
            connectedTo = address;
            connectedChannel = channel;
            int pair[2];
            if (refuse || ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) != 0)
                return -1;
            receiverEnd = pair[1];
            return pair[0];
        };
        link.portDriver = &driver;
        link.sink = &sink;
    }
    void TearDown() override {
        StopLink(link);
        DropConnection();
    }
    void Send(const std::string& bytes) {
        ASSERT_EQ(::write(receiverEnd, bytes.data(), bytes.size()),
                  static_cast<ssize_t>(bytes.size()));
    }
    void DropConnection() { ::close(std::exchange(receiverEnd, -1)); }

    RfcommPortDriver driver = Driver({});
    ReceiverLink link;
    RecordingSink sink{link};
    int receiverEnd = -1;
    bool refuse = false;
    std::uint64_t connectedTo = 0;
    int connectedChannel = 0;
};

TEST_F(BluetoothLinkTest, ReadsTheReceiverAndEndsWithReasonOneWhenItGoes) {
    ASSERT_EQ(RegisterBluetoothPort(link, kReceiver), 1);
    ASSERT_EQ(OpenPort(link), 1) << link.lastErrorCode;
    EXPECT_EQ(std::tuple(connectedTo, connectedChannel), std::tuple(kReceiver, 1));
    ASSERT_EQ(StartLink(link), 1) << link.lastErrorCode;

    Send(Rmc("3112.0001"));
    ASSERT_TRUE(sink.TickAndWait(1));
    EXPECT_EQ(sink.latitude(0), "3112.0001");

    // Out of range: the connection drops, the next tick gives the link up.
    DropConnection();
    ASSERT_TRUE(WaitFor([&] { return link.deviceGone.load(); }));
    LinkTimerProc(link);
    EXPECT_EQ(std::tuple(sink.stopCommands, sink.stopResult, link.running.load(),
                         link.virtualPortRegistered),
              std::tuple(1, kLossDeviceGone, false, false));
    EXPECT_FALSE(driver.Registered(9)) << "the index is free again";
}

TEST_F(BluetoothLinkTest, EveryEndGivesTheIndexBack) {
    for (const bool refused : {true, false}) {  // else stopped by the user
        refuse = refused;
        ASSERT_EQ(RegisterBluetoothPort(link, kReceiver), 1) << refused;
        EXPECT_TRUE(driver.Registered(9)) << refused;
        EXPECT_EQ(OpenPort(link), refused ? 0 : 1) << refused;
        if (refused) {
            EXPECT_EQ(link.lastErrorCode, "0x08200a06");
        } else {
            ASSERT_EQ(StartLink(link), 1);
            EXPECT_EQ(StopLink(link), kLossNone);
        }
        EXPECT_FALSE(driver.Registered(9)) << refused;
        DropConnection();
    }
}

TEST(RfcommSocketTest, NoBluetoothInTheKernelFailsAtOnce) {
    // Where the machine has Bluetooth this asks a receiver that is not there,
    // which fails within the bound as well.
    EXPECT_EQ(ConnectRfcommSocket(kReceiver, 1, 200), -1);
}

}  // namespace
}  // namespace satwalk::link::test
