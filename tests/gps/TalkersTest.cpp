// Receivers that speak more than GPS: mixed-talker streams with the "accept
// all satellite systems" setting off and on.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "GpsJson.h"
#include "NmeaTestUtil.h"

namespace satwalk::gps {
namespace {

using testing::Sentence;

std::string Fix(const char* rmc, const char* gga, const char* gsa) {
    return Sentence(std::string(rmc) +
                    "RMC,081500.00,A,3015.1234,N,12009.5000,E,1.5,90.0,160526,,") +
           Sentence(std::string(gga) +
                    "GGA,081500.00,3015.1234,N,12009.5000,E,1,14,0.9,12.5,M,7,M,,") +
           Sentence(std::string(gsa) + "GSA,A,3,01,02,03,,,,,,,,,,1.6,0.9,1.3");
}

// One GSV message of satellites "prn:snr"; `signal`, when given, is the
// last field, as newer receivers send it.
std::string Gsv(const std::string& talker, int number, int inView,
                const std::vector<std::string>& sats, const std::string& signal = "") {
    std::string body = talker + "GSV,2," + std::to_string(number) + "," + std::to_string(inView);
    for (const std::string& s : sats)
        body += "," + s.substr(0, s.find(':')) + ",45,180," + s.substr(s.find(':') + 1);
    return Sentence(body + (signal.empty() ? "" : "," + signal));
}

struct Decoded {
    testing::Decoder d;
    Talkers talkers;
    Decoded(bool all, const std::vector<std::string>& batches) {
        talkers.acceptAll = all;
        for (const std::string& b : batches)
            ParseNmeaBuffer(d.state, d.assembly, b, &d.sink, &talkers);
    }
    // status, fix quality and HDOP: what RMC, GGA and GSA left.
    std::string FixText() const {
        return std::string(1, d.state.status ? d.state.status : '-') +
               (d.state.fixQuality ? d.state.fixQuality : '-') + d.state.hdop;
    }
    std::string Table() const {
        std::string out = std::string(d.state.satellitesInView) + ":";
        for (const SatelliteRecord& r : d.state.satellites)
            if (r.prn[0] != '\0')
                out += std::string(" ") + r.prn + "/" + r.snr;
        return out;
    }
};

TEST(Talkers, FixSentences) {
    const std::tuple<std::string, bool, const char*, TalkerCounts> cases[] = {
        {Fix("GN", "GN", "GN"), false, "--", {0, 3}},
        {Fix("GN", "GN", "GN"), true, "A10.9", {0, 3}},
        {Fix("BD", "GB", "GL"), true, "A10.9", {0, 3}},
        {Fix("GP", "GA", "GQ"), false, "A-", {1, 2}},
        {Fix("GP", "GP", "GI"), true, "A10.9", {1, 1}},
        {"$GNRMC,1,K*2f\r\n$GNRMC,1,K*2F\r\n", false, "--", {0, 1}},  // lowercase: not well-formed
    };
    for (const auto& [stream, all, fix, counts] : cases) {
        const Decoded r(all, {stream});
        EXPECT_EQ(r.FixText(), fix) << stream;
        EXPECT_EQ(r.talkers.counts.gpRmc, counts.gpRmc) << stream;
        EXPECT_EQ(r.talkers.counts.otherTalkers, counts.otherTalkers) << stream;
    }
}

TEST(Talkers, SatelliteTable) {
    const std::string gp1 = Gsv("GP", 1, 6, {"5:40", "12:33", "20:", "25:41"});
    const std::string gp = gp1 + Gsv("GP", 2, 6, {"29:38", "31:22"});
    const std::string gl = Gsv("GL", 1, 3, {"65:35", "72:28", "80:"});
    const std::string ga = Gsv("GA", 1, 2, {"5:44", "11:30"});
    const std::string bd = Gsv("BD", 1, 1, {"7:36"});
    const std::string again = Gsv("GP", 1, 2, {"9:31", "2:30"}) + bd;
    const char* nine = "09: 5/40 12/33 20/ 25/41 29/38 31/22 65/35 72/28 80/";
    // Name, batches, the setting, and the table as "in view: rows".
    const std::tuple<const char*, std::vector<std::string>, bool, const char*> cases[] = {
        {"off: GL skipped", {gp + gl}, false, "6: 5/40 12/33 20/ 25/41 29/38 31/22"},
        {"on: one table", {gp + gl}, true, nine},
        {"epoch over two batches", {gp1, gp.substr(gp1.size()) + gl}, true, nine},
        {"equal numbers: GPS first",
         {ga + gp},
         true,
         "08: 5/40 5/44 11/30 12/33 20/ 25/41 29/38 31/22"},
        {"GPS beginning again: a new epoch", {gp + gl, again}, true, "03: 2/30 7/36 9/31"},
        {"more than 12: the strongest",
         {gp + gl + ga + bd + Gsv("GQ", 1, 2, {"3:50", "4:21"})},
         true,
         "14: 3/50 4/21 5/40 5/44 7/36 11/30 12/33 25/41 29/38 31/22 65/35 72/28"},
        {"a second signal: no doubles, the stronger kept",
         {Gsv("GP", 1, 2, {"5:40", "12:"}, "1") + Gsv("GP", 1, 2, {"5:30", "12:25"}, "8")},
         true,
         "02: 5/40 12/25"}};
    for (const auto& [name, batches, all, table] : cases)
        EXPECT_EQ(Decoded(all, batches).Table(), table) << name;
}

// With the setting off the decoder leaves exactly what it leaves without
// the setting, header scratch included, however other talkers are cut.
TEST(Talkers, SettingOffChangesNothing) {
    const std::string gn = Fix("GN", "GL", "BD");
    const std::string stream = Fix("GP", "GP", "GP") + gn + gn.substr(0, 20) +
                               "$GNRMC,1,A*3$GPGSA" + "$GLGSV,1,1,01,65,1,2,3*" +
                               gn.substr(0, gn.size() - 3) + Gsv("GP", 1, 1, {"4:20"}) +
                               "$BDRMC,1,A";
    for (std::size_t cut = 1; cut <= stream.size(); cut += 7) {
        testing::Decoder plain;
        testing::Decoder counted;
        Talkers talkers;
        for (std::size_t at = 0; at < stream.size(); at += cut) {
            plain.Feed(stream.substr(at, cut));
            ParseNmeaBuffer(counted.state, counted.assembly, stream.substr(at, cut), &counted.sink,
                            &talkers);
        }
        std::string a, b;
        AppendGpsJsonMembers(a, plain.state, ReadFix(plain.state), true);
        AppendGpsJsonMembers(b, counted.state, ReadFix(counted.state), true);
        EXPECT_EQ(a, b) << "batches of " << cut;
    }
}

}  // namespace
}  // namespace satwalk::gps
