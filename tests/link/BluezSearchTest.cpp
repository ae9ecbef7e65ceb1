// The Bluetooth search against a fake BlueZ (python3-dbusmock's bluez5
// template) on a private bus: adapters powered on and off, none at all, one
// that goes away, devices cached, answering, nameless and vanishing.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <optional>
#include <tuple>

#include <gtest/gtest.h>

#include "BluezSearch.h"
#include "ErrorCodes.h"
#include "FakeBluez.h"

namespace satwalk::link {
namespace {

bool WaitUntil(const std::function<bool()>& done, int limitMs = 10000) {
    QElapsedTimer t;
    t.start();
    while (!done()) {
        if (t.elapsed() > limitMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(5);
    }
    return true;
}

QString Address(int i) {
    return QString("00:11:22:33:44:%1").arg(i, 2, 16, QChar('0')).toUpper();
}

struct Device {
    QString address, name;
};

std::vector<Device> Numbered(int count) {
    std::vector<Device> d;
    for (int i = 0; i < count; ++i) d.push_back({Address(i), QString("GPS %1").arg(i)});
    return d;
}

class BluezSearchTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const std::string why = bluez.Start();
        if (!why.empty())
            GTEST_SKIP() << "no fake BlueZ: " << why;
        search.busAddress = bluez.address;
        search.inquiryMs = 700;
        search.onFinished = [this](const SearchOutcome& o) { outcome = o; };
        search.onRadioSwitchedOn = [this] { radioReported = true; };
    }

    FakeBluez bluez;
    BluetoothSearch search;
    std::optional<SearchOutcome> outcome;
    bool radioReported = false;
};

TEST_F(BluezSearchTest, SearchResultsFollowTheInquiryRules) {
    struct Case {
        const char* what;
        bool adapter = true;
        bool powered = true;
        bool autoBluetooth = false;
        std::vector<Device> cached = {};     // known to BlueZ before the search
        std::vector<Device> answering = {};  // appearing while it runs
        std::vector<QString> vanishing = {};
        bool adapterGoes = false;
        int result = kInquiryOk;
        const char* code = "";
        std::vector<std::string> names = {};
        bool radioSwitchedOn = false;
    };
    const Case cases[] = {
        {.what = "no adapter", .adapter = false, .result = kInquiryFailed, .code = "0x08200a01"},
        {.what = "radio switched on",
         .powered = false,
         .autoBluetooth = true,
         .answering = Numbered(1),
         .names = {"GPS 0"},
         .radioSwitchedOn = true},
        {.what = "cached first",
         .cached = {{Address(0x20), "Old GPS"}},
         .answering = Numbered(1),
         .names = {"Old GPS", "GPS 0"}},
        {.what = "a nameless device", .answering = {{Address(1), "GPS"}, {Address(2), ""}}},
        {.what = "a device that vanishes",
         .answering = Numbered(3),
         .vanishing = {Address(1)},
         .names = {"GPS 0", "GPS 2"}},
        {.what = "the adapter goes",
         .answering = Numbered(2),
         .adapterGoes = true,
         .result = kInquiryFailed,
         .code = "0x08200a03"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        bluez.RemoveAdapter();
        if (c.adapter) {
            bluez.AddAdapter();
            bluez.SetPowered(c.powered);
        }
        for (const Device& d : c.cached) bluez.AddDevice(d.address, d.name);
        outcome.reset();
        radioReported = false;
        ASSERT_TRUE(search.Start(c.autoBluetooth));
        if (!c.answering.empty() && (c.powered || c.autoBluetooth)) {
            ASSERT_TRUE(WaitUntil([&] { return bluez.Property("Discovering") == true; }));
        }
        for (const Device& d : c.answering) bluez.AddDevice(d.address, d.name);
        for (const QString& a : c.vanishing) bluez.RemoveDevice(a);
        if (c.adapterGoes)
            bluez.RemoveAdapter();
        ASSERT_TRUE(WaitUntil([&] { return outcome.has_value(); }));

        std::vector<std::string> names;
        for (const BluetoothDevice& d : outcome->inquiry.devices) names.push_back(d.name);
        EXPECT_EQ(std::tuple(outcome->inquiry.result, outcome->inquiry.errorCode, names,
                             outcome->radioSwitchedOn, radioReported),
                  std::tuple(c.result, std::string(c.code), c.names, c.radioSwitchedOn,
                             c.radioSwitchedOn));
        if (c.adapter && !c.adapterGoes) {
            EXPECT_EQ(bluez.Property("Discovering"), false) << "discovery is stopped";
        }
    }
}

TEST_F(BluezSearchTest, CancelledSearchReportsNothingButItsRadio) {
    bluez.AddAdapter();
    bluez.SetPowered(false);
    search.inquiryMs = 60000;
    ASSERT_TRUE(search.Start(true));
    ASSERT_TRUE(WaitUntil([&] { return bluez.Property("Discovering") == true; }));
    EXPECT_FALSE(search.Start(true)) << "one search at a time";
    search.Cancel();
    ASSERT_TRUE(WaitUntil([&] { return !search.Running(); }, 3000)) << "the worker ends soon";
    QCoreApplication::processEvents();
    EXPECT_EQ(std::tuple(outcome.has_value(), radioReported), std::tuple(false, true));

    // At exit the radio goes off again, once.
    BluezRadio radio(bluez.bus());
    bool switchedOn = true;
    SwitchRadioBackOff(radio, switchedOn);
    EXPECT_EQ(bluez.Property("Powered"), false);
    EXPECT_EQ(radio.ReadRadioMode(), 0);
}

TEST_F(BluezSearchTest, WithoutBluezTheRadioIsUnknown) {
    QDBusConnection none = QDBusConnection::connectToBus(QString("unix:path=/nonexistent"), "none");
    BluezRadio radio(none, 200);
    EXPECT_EQ(std::tuple(radio.ReadRadioMode(), radio.SetRadioMode(1)), std::tuple(-1, false));
    EXPECT_EQ(BluezInquiry(none, 16, 100).errorCode, common::err::kInquiryBegin);
    QDBusConnection::disconnectFromBus("none");
}

}  // namespace
}  // namespace satwalk::link

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
