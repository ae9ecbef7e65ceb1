// Receivers that speak more than GPS: mixed-talker streams with the "accept
// all satellite systems" setting off and on.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "GpsJson.h"
#include "NmeaTestUtil.h"

namespace satwalk::gps {
namespace {

using testing::Sentence;

std::string Rmc(const std::string& talker) {
    return Sentence(talker + "RMC,081500.00,A,3015.1234,N,12009.5000,E,1.5,90.0,160526,,,A");
}
std::string Gga(const std::string& talker) {
    return Sentence(talker + "GGA,081500.00,3015.1234,N,12009.5000,E,1,14,0.9,12.5,M,7.1,M,,");
}
std::string Gsa(const std::string& talker) {
    return Sentence(talker + "GSA,A,3,01,02,03,,,,,,,,,,1.6,0.9,1.3");
}

// One GSV message; each satellite is "prn:snr" (snr may be empty). A
// non-empty `signal` is appended as the last field, as newer receivers do.
std::string Gsv(const std::string& talker, int total, int number, int inView,
                const std::vector<std::string>& sats, const std::string& signal = "") {
    std::string body = talker + "GSV," + std::to_string(total) + "," + std::to_string(number) +
                       "," + std::to_string(inView);
    for (const std::string& s : sats) {
        const auto colon = s.find(':');
        body += "," + s.substr(0, colon) + ",45,180," + s.substr(colon + 1);
    }
    if (!signal.empty())
        body += "," + signal;
    return Sentence(body);
}

std::string Table(const GpsState& s) {
    std::string out;
    for (const SatelliteRecord& r : s.satellites) {
        if (r.prn[0] == '\0')
            continue;
        out += std::string(out.empty() ? "" : " ") + r.prn + ":" + r.snr;
    }
    return out;
}

struct Case {
    const char* name;
    std::vector<std::string> batches;
    bool acceptAll;
    char status;        // RMC status after the last batch (0: no fix taken)
    char fixQuality;    // from GGA
    const char* hdop;   // from GSA
    const char* table;  // filled rows, "prn:snr" in order
    const char* inView;
    TalkerCounts counts;  // over all batches
};

TEST(Talkers, MixedStreams) {
    const std::string gp1 = Gsv("GP", 2, 1, 6, {"5:40", "12:33", "20:", "25:41"});
    const std::string gp2 = Gsv("GP", 2, 2, 6, {"29:38", "31:22"});
    const std::string gl = Gsv("GL", 1, 1, 3, {"65:35", "72:28", "80:"});
    const std::string ga = Gsv("GA", 1, 1, 2, {"5:44", "11:30"});
    const std::string bd = Gsv("BD", 1, 1, 1, {"7:36"});
    const std::string fixGn = Rmc("GN") + Gga("GN") + Gsa("GN");
    const Case cases[] = {
        {"GN fix, setting off: nothing taken", {fixGn}, false, 0, 0, "", "", "", {0, 3}},
        {"GN fix, setting on", {fixGn}, true, 'A', '1', "0.9", "", "", {0, 3}},
        {"BD and GB fixes, setting on",
         {Rmc("BD") + Gga("GB") + Gsa("BD")},
         true,
         'A',
         '1',
         "0.9",
         "",
         "",
         {0, 3}},
        {"GP fix beside GN: GP alone counts as GP",
         {Rmc("GP") + Gsa("GN")},
         false,
         'A',
         0,
         "",
         "",
         "",
         {1, 1}},
        {"GP and GL cycles, setting off: GL skipped",
         {gp1 + gp2 + gl},
         false,
         0,
         0,
         "",
         "5:40 12:33 20: 25:41 29:38 31:22",
         "6",
         {0, 1}},
        {"GP and GL cycles, setting on: one table",
         {gp1 + gp2 + gl},
         true,
         0,
         0,
         "",
         "5:40 12:33 20: 25:41 29:38 31:22 65:35 72:28 80:",
         "09",
         {0, 1}},
        {"equal numbers of two systems: GP first",
         {gl + ga + gp1 + gp2},
         true,
         0,
         0,
         "",
         "5:40 5:44 11:30 12:33 20: 25:41 29:38 31:22 65:35 72:28 80:",
         "11",
         {0, 2}},
        {"the epoch spans two batches",
         {gp1, gp2 + gl},
         true,
         0,
         0,
         "",
         "5:40 12:33 20: 25:41 29:38 31:22 65:35 72:28 80:",
         "09",
         {0, 1}},
        {"GP beginning again starts a new epoch",
         {gp1 + gp2 + gl + ga, Gsv("GP", 1, 1, 2, {"2:30", "9:31"}) + bd},
         true,
         0,
         0,
         "",
         "2:30 7:36 9:31",
         "03",
         {0, 3}},
        {"more than 12 in view: the 12 strongest",
         {gp1 + gp2 + gl + ga + bd + Gsv("GQ", 1, 1, 2, {"3:50", "4:21"})},
         true,
         0,
         0,
         "",
         "3:50 4:21 5:40 5:44 7:36 11:30 12:33 25:41 29:38 31:22 65:35 72:28",
         "14",
         {0, 4}},
        {"a second signal of the same satellites: no doubles, stronger kept",
         {Gsv("GP", 1, 1, 2, {"5:40", "12:"}, "1") + Gsv("GP", 1, 1, 2, {"5:30", "12:25"}, "8")},
         true,
         0,
         0,
         "",
         "5:40 12:25",
         "02",
         {0, 0}},
        {"lowercase checksum of another talker: not well-formed",
         {"$GNRMC,1,K*2f\r\n$GNRMC,1,K*2F\r\n"},
         false,
         0,
         0,
         "",
         "",
         "",
         {0, 1}},
    };
    for (const Case& c : cases) {
        testing::Decoder d;
        Talkers talkers;
        talkers.acceptAll = c.acceptAll;
        for (const std::string& batch : c.batches)
            ParseNmeaBuffer(d.state, d.assembly, batch, &d.sink, &talkers);
        SCOPED_TRACE(c.name);
        EXPECT_EQ(d.state.status, c.status);
        EXPECT_EQ(d.state.fixQuality, c.fixQuality);
        EXPECT_STREQ(d.state.hdop, c.hdop);
        EXPECT_EQ(Table(d.state), c.table);
        EXPECT_STREQ(d.state.satellitesInView, c.inView);
        EXPECT_EQ(talkers.counts.gpRmc, c.counts.gpRmc);
        EXPECT_EQ(talkers.counts.otherTalkers, c.counts.otherTalkers);
    }
}

// With the setting off the decoder leaves exactly what it leaves without
// the setting at all, header scratch included, however the other talkers'
// sentences are cut or broken.
TEST(Talkers, SettingOffChangesNothing) {
    const std::string gn = Rmc("GN");
    const std::string stream = Rmc("GP") + gn + gn.substr(0, 20) + Gsv("GL", 1, 1, 1, {"65:30"}) +
                               "$GNRMC,1,A*3$GPGSA" + "$GNGGA,1*4" + Gga("GP") +
                               "$GLGSV,1,1,01,65,1,2,3*" + gn.substr(0, gn.size() - 3) +
                               Gsv("GP", 1, 1, 1, {"4:20"}) + "$BDRMC,1,A";
    for (std::size_t cut = 1; cut <= stream.size(); cut += 7) {
        testing::Decoder plain;
        testing::Decoder counted;
        Talkers talkers;
        for (std::size_t at = 0; at < stream.size(); at += cut) {
            const std::string batch = stream.substr(at, cut);
            plain.Feed(batch);
            ParseNmeaBuffer(counted.state, counted.assembly, batch, &counted.sink, &talkers);
        }
        std::string a;
        std::string b;
        AppendGpsJsonMembers(a, plain.state, true);
        AppendGpsJsonMembers(b, counted.state, true);
        EXPECT_EQ(a, b) << "batches of " << cut;
        EXPECT_EQ(plain.sink.calls, counted.sink.calls) << "batches of " << cut;
    }
}

}  // namespace
}  // namespace satwalk::gps
