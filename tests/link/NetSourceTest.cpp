// Receivers at network addresses (gpsd, NMEA over TCP) and the NMEA relay,
// against loopback peers of the test's own and, where installed, a real
// gpsd started by the test on a free port.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <random>
#include <tuple>

#include "FixText.h"
#include "NetSource.h"
#include "NetTestSupport.h"
#include "NmeaRelay.h"
#include "ReceiverSettingsModel.h"
#include "RelaySetting.h"
#include "SourceAddress.h"
#include "ThreadTimer.h"

namespace satwalk::link {
namespace {

using namespace std::chrono_literals;
using test::Fix;

TEST(SourceAddress, ParsesEveryKind) {
    // The label shows the path, or the host and port the parse found.
    const std::tuple<const char*, SourceKind, const char*> cases[] = {
        {"/dev/ttyUSB0", SourceKind::Tty, "/dev/ttyUSB0"},
        {"gpsd://localhost", SourceKind::Gpsd, "gpsd localhost:2947"},
        {"gpsd://10.0.0.2:3000/", SourceKind::Gpsd, "gpsd 10.0.0.2:3000"},
        {"gpsd://[::1]", SourceKind::Gpsd, "gpsd [::1]:2947"},
        {"tcp://boat.local:10110", SourceKind::Tcp, "tcp boat.local:10110"},
        {"tcp://host", SourceKind::Invalid, "?"},  // a TCP source names its port
        {"tcp://host:65536", SourceKind::Invalid, "?"},
        {"gpsd://", SourceKind::Invalid, "?"},
        {"gpsd://[::1", SourceKind::Invalid, "?"},
        {"gpsd://host:2947x", SourceKind::Invalid, "?"}};
    for (const auto& [text, kind, label] : cases) {
        const SourceAddress a = ParseSourceAddress(text);
        EXPECT_EQ(a.kind, kind) << text;
        EXPECT_EQ(SourceLabel(a), label) << text;
    }
}

TEST(RelaySetting, ReadsItsFileAndFallsBackToTheDefault) {
    const std::pair<const char*, RelaySetting> cases[] = {
        {"on 127.0.0.1:10110\n", {true, "127.0.0.1:10110"}},
        {"off 0.0.0.0:4000\r\n", {false, "0.0.0.0:4000"}},
        {"on 4000", {true, "4000"}},
        {"on [::1]:4000", {true, "[::1]:4000"}},
        {"on boat.local:4000", {true, kRelayDefaultAddress}},  // listening takes no names
        {"yes 4000", {}},
        {"", {}}};
    for (const auto& [text, want] : cases) {
        EXPECT_EQ(ParseRelaySetting(text), want) << text;
        EXPECT_EQ(ParseRelaySetting(FormatRelaySetting(want)), want) << text;
    }
}

// The port list names network sources, lists the map's numbers from 10 on,
// and offers a gpsd that answers on this machine under the next free one.
TEST(ReceiverSettings, PortListShowsSourcesAndAGpsdFoundHere) {
    std::atomic<bool> done{false};
    test::OneShotServer gpsd([&](int fd) {
        test::SendAll(fd, "{\"class\":\"VERSION\",\"release\":\"3.22\"}\r\n");
        test::WaitFor([&] { return done.load(); });
    });
    const PortMap map = {{3, "gpsd://localhost"}, {10, "tcp://10.0.0.5:10110"}};
    const std::vector<PortSlot> found = ProbePortSlots(nullptr, map, gpsd.port());
    done = true;
    ASSERT_EQ(found.size(), 12u);
    EXPECT_EQ(PortEntryText(3, found[3]), "COM3  gpsd localhost:2947");
    EXPECT_EQ(PortEntryText(10, found[10]), "COM10  tcp 10.0.0.5:10110");
    EXPECT_EQ(found[11].source, "gpsd://localhost:" + std::to_string(gpsd.port()));

    ReceiverSettings settings;
    settings.bluetoothReceiver = false;
    ReceiverSettingsDialog dialog = OpenReceiverSettings(settings, found);
    SelectPort(dialog, 11);
    AcceptReceiverSettings(dialog, settings);
    EXPECT_EQ(std::tuple(settings.comPort, settings.linkPortName), std::tuple(11u, "COM11:"));
    // Nothing answers: no entry, and no wait beyond the probe's bound.
    EXPECT_EQ(ProbePortSlots(nullptr, {}, test::FreePort()).size(), 10u);
}

TEST(GpsdFilter, DropsJsonLinesWhereverTheReadsSplit) {
    const std::string rmc = test::Rmc("3112.0001");
    const std::pair<std::string, std::string> cases[] = {
        {"{\"class\":\"VERSION\"}\r\n" + rmc, rmc},
        {rmc + "{\"class\":\"WATCH\",\"nmea\":true}\r\n" + rmc, rmc + rmc},
        {"{" + std::string(5000, 'x') + "\n" + rmc, rmc},  // a long JSON line
        {"\n{}\n\n", "\n\n"},
        {"x{y\n", "x{y\n"},  // a brace inside a line is the receiver's
        {"{\"class\":\"TPV\"", ""}};
    for (const auto& [in, want] : cases) {
        for (std::size_t cut = 0; cut <= in.size();
             cut += std::max<std::size_t>(1, in.size() / 37)) {
            GpsdFilter filter;
            std::string a = in.substr(0, cut), b = in.substr(cut);
            a.resize(filter.Feed(a.data(), a.size()));
            b.resize(filter.Feed(b.data(), b.size()));
            EXPECT_EQ(a + b, want) << "cut at " << cut << " of " << in.substr(0, 40);
        }
    }
}

// A link on a network address, its watchdog ticking ten times a second
// (so that 30 silent ticks take three seconds).
class NetLink : public ::testing::Test {
  protected:
    // The link stops while its timer is still there (members go in reverse).
    ~NetLink() override {
        StopLink(link);
        link.timer = nullptr;
    }
    void Open(const std::string& address) {
        link.devicePath = address;
        link.sink = &sink;
        link.timer = &timer;
        ASSERT_TRUE(OpenPort(link) && StartLink(link)) << address;
    }
    static std::string Url(const char* scheme, std::uint16_t port) {
        return std::string(scheme) + "://127.0.0.1:" + std::to_string(port);
    }
    bool SawFix(const Fix& fix, std::chrono::milliseconds within = 10s) {
        return test::WaitFor(
            [&] {
                const auto f = sink.fixes();
                return std::find(f.begin(), f.end(), fix) != f.end();
            },
            within);
    }
    bool Lost(std::uint32_t reason, std::chrono::milliseconds within = 5s) {
        return test::WaitFor([&] { return sink.lost == reason; }, within);
    }

    void Restart() {
        StopLink(link);
        sink.Reset();
    }

    ReceiverLink link;
    test::FixSink sink{link};
    ThreadTimer timer{[this] { LinkTimerProc(link); }, 100ms};
};

TEST_F(NetLink, TcpSourceGivesTheFixesOfItsLogAndItsCloseIsReason1) {
    const std::string log = test::DemoExcerpt(6);
    const std::vector<Fix> expected = test::FixesOfLog(log);
    test::OneShotServer server([&](int fd) {
        // In odd pieces, a few ticks apart, as a network delivers them.
        for (std::size_t at = 0; at < log.size(); at += 333)
            test::SendAll(fd, log.substr(at, 333)), std::this_thread::sleep_for(40ms);
        std::this_thread::sleep_for(300ms);
    });
    Open(Url("tcp", server.port()));
    ASSERT_TRUE(SawFix(expected.back()));
    EXPECT_TRUE(Lost(kLossDeviceGone));
    for (const Fix& f : sink.fixes())
        EXPECT_NE(std::find(expected.begin(), expected.end(), f), expected.end()) << f.time;
}

TEST_F(NetLink, RefusedConnectionIsReason1) {
    for (const std::string host : {"127.0.0.1", "localhost"}) {  // a name goes via the resolver
        Open("gpsd://" + host + ":" + std::to_string(test::FreePort()));
        EXPECT_TRUE(Lost(kLossDeviceGone)) << host;
        Restart();
    }
}

// Peers that send what no receiver should: the link goes on decoding the
// sentences that follow, or, hearing no sentence at all, gives reason 2.
// Garbage and endless lines from a receiver are the serial link tests'.
TEST_F(NetLink, HostilePeersLeaveTheDecoderRunning) {
    // Name, scheme, what the peer sends first, and whether sentences follow.
    const std::tuple<const char*, const char*, std::string, bool> cases[] = {
        {"gpsd megabyte JSON", "gpsd", "{" + std::string(1 << 20, 'j') + "}\r\n", true},
        {"gpsd JSON without NMEA", "gpsd", "{\"class\":\"VERSION\"}\r\n", false},
        {"nothing", "tcp", "", false}};
    const std::string rmc = test::Rmc("3112.0001", "120001.00");
    for (const auto& [name, scheme, junk, thenSentences] : cases) {
        const bool gpsd = std::string_view(scheme) == "gpsd";
        std::atomic<bool> done{false};
        std::string watch;
        auto server = std::make_unique<test::OneShotServer>([&](int fd) {
            if (gpsd)
                watch = test::ReceiveFor(fd, sizeof kGpsdWatch - 1, 2000ms);
            test::SendAll(fd, junk);
            while (!done) {
                if (thenSentences)
                    test::SendAll(fd, rmc);
                std::this_thread::sleep_for(50ms);
            }
        });
        Open(Url(scheme, server->port()));
        EXPECT_TRUE(thenSentences ? SawFix({"120001.00", "3112.0001", "12128.0000"})
                                  : Lost(kLossTimeout, 6s))
            << name;
        done = true;
        Restart();
        server.reset();  // its thread has ended: `watch` is ours to read
        EXPECT_EQ(watch, gpsd ? kGpsdWatch : "") << name;
    }
}

// --- against a real gpsd, started here on a free loopback port ---

class Gpsd : public NetLink {
  protected:
    void SetUp() override {
        if (::access("/usr/bin/gpsfake", X_OK) != 0 || ::access("/usr/sbin/gpsd", X_OK) != 0)
            GTEST_SKIP() << "gpsd and gpsfake are not installed (scripts/setup installs them)";
    }

    std::string log = test::DemoExcerpt(8);
    std::uint16_t port = test::FreePort();
};

// What gpsd passes on decodes to the fixes of the log; gpsd killed while
// we follow it is the receiver gone.
TEST_F(Gpsd, FixesEqualThoseOfTheLogAndItsDeathIsReason1) {
    const std::vector<Fix> expected = test::FixesOfLog(log);
    // gpsfake feeds the log over and over, a sentence each 50 ms, to a gpsd
    // of its own. It starts feeding before gpsd opens the device for our
    // client, and gpsd drops what it finds waiting there; on a busy machine
    // that can be the whole first pass, so the wait spans several passes.
    const std::string path = test::MakeTempDir() + "/excerpt.nmea";
    std::ofstream(path, std::ios::binary) << log;
    test::Child fake({"gpsfake", "-q", "-c", "0.05", "-P", std::to_string(port), path});
    ASSERT_TRUE(test::WaitListening(port));
    Open(Url("gpsd", port));
    ASSERT_TRUE(SawFix(expected.back(), 30s)) << sink.fixes().size() << " fixes heard";
    std::size_t distinct = 0;
    for (const Fix& f : sink.fixes()) {
        const auto at = std::find(expected.begin(), expected.end(), f);
        EXPECT_NE(at, expected.end()) << f.time << " " << f.latitude;
        distinct += at != expected.end() && !f.time.empty();
    }
    EXPECT_GE(distinct, 2u);
    fake.Kill();
    EXPECT_TRUE(Lost(kLossDeviceGone, 3s));
}

// --- the relay ---

// Sixteen clients, one too many, one that talks and one that stops reading:
// the readers get every byte as it came, the stuck one is dropped.
TEST(NmeaRelay, ServesEveryByteAndDropsAClientThatStopsReading) {
    NmeaRelay relay;
    NmeaRelay second;
    std::string error;
    ASSERT_TRUE(relay.Start("127.0.0.1", 0, error)) << error;
    EXPECT_FALSE(second.Start("127.0.0.1", relay.Port(), error));  // the port is taken
    EXPECT_FALSE(second.Start("example.org", 1, error));           // listening takes no names
    std::vector<int> clients;
    for (std::size_t i = 0; i < kRelayMaxClients + 1; ++i)
        clients.push_back(test::ConnectLoopback(relay.Port(), i == 0 ? 4096 : 0));
    ASSERT_TRUE(test::WaitFor([&] { return relay.Clients() == kRelayMaxClients; }));
    EXPECT_EQ(test::ReceiveFor(clients.back(), 1, 2000ms), "");  // closed at once
    ::close(clients.back());
    clients.pop_back();
    test::SendAll(clients[1], std::string(100000, 'g'));

    std::string sent;
    std::vector<std::string> got(clients.size());
    std::mt19937 random(3);
    for (int i = 0; i < 400 && relay.Dropped() == 0; ++i) {  // at most 20 s
        std::string chunk(1 + random() % 1400, '\0');
        for (char& c : chunk) c = static_cast<char>(random());
        relay.Publish(chunk.data(), chunk.size());
        sent += chunk;
        for (std::size_t k = 1; k < clients.size(); ++k)
            got[k] += test::ReceiveFor(clients[k], sent.size() - got[k].size(), 3ms);
    }
    EXPECT_EQ(relay.Dropped(), 1u);
    for (std::size_t k = 1; k < clients.size(); ++k) {
        got[k] += test::ReceiveFor(clients[k], sent.size() - got[k].size(), 3000ms);
        EXPECT_EQ(got[k], sent) << "client " << k;
    }
    for (const int fd : clients) ::close(fd);
    EXPECT_TRUE(test::WaitFor([&] { return relay.Clients() == 0; }));
}

// gpsd takes the relay as its device; its TPV reports carry our positions.
TEST_F(Gpsd, GpsdOnTheRelayReportsOurPositions) {
    if (::access("/usr/bin/gpspipe", X_OK) != 0)
        GTEST_SKIP() << "gpspipe is not installed";
    NmeaRelay relay;
    std::string error;
    ASSERT_TRUE(relay.Start("127.0.0.1", 0, error)) << error;
    link.tap = &relay;
    test::FakeReceiver receiver;
    Open(receiver.path());

    test::Child gpsd(
        {"gpsd", "-N", "-n", "-b", "-S", std::to_string(port), Url("tcp", relay.Port())});
    ASSERT_TRUE(test::WaitListening(port));
    const std::string out = test::MakeTempDir() + "/tpv.json";
    test::Child pipe(
        {"sh", "-c",
         "exec timeout 20 gpspipe -w -n 40 127.0.0.1:" + std::to_string(port) + " >" + out});
    // The receiver talks an epoch at a time, each decoded before the next
    // goes, until gpsd has reported a few positions.
    const std::vector<std::string> epochs = test::Epochs(log);
    std::vector<double> tpv;
    for (std::size_t i = 0; i < 100 && tpv.size() < 3; ++i) {
        const std::size_t before = sink.fixes().size();
        receiver.Send(epochs[i % epochs.size()]);
        test::WaitFor([&] { return sink.fixes().size() > before; }, 1000ms);
        std::this_thread::sleep_for(100ms);
        tpv.clear();
        const std::string json = test::ReadFile(out);
        for (std::size_t at = 0; (at = json.find("\"lat\":", at + 1)) != std::string::npos;)
            tpv.push_back(std::atof(json.c_str() + at + 6));
    }
    ASSERT_GE(tpv.size(), 3u);
    const std::vector<Fix> ours = sink.fixes();
    for (const double lat : tpv) {
        EXPECT_TRUE(std::any_of(ours.begin(), ours.end(), [&](const Fix& f) {
            double la = 0, lo = 0;
            gps::NmeaToDegrees(f.latitude.c_str(), 'N', f.longitude.c_str(), 'E', &la, &lo);
            return std::abs(la - lat) < 1e-7;
        })) << lat;
    }
}

}  // namespace
}  // namespace satwalk::link
