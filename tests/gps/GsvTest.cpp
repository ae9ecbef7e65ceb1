// Assembly of the satellite table from GSV cycles.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "NmeaTestUtil.h"

namespace satwalk::gps {
namespace {

using testing::Decoder;
using testing::Sentence;

// One GSV message: total, number, in-view count and up to four PRNs (each
// satellite gets elevation PRN+10, azimuth PRN*3 and SNR PRN+20).
std::string Gsv(int total, int number, int inView, std::vector<int> prns) {
    std::string body = "GPGSV," + std::to_string(total) + "," + std::to_string(number) + "," +
                       (inView < 10 ? "0" : "") + std::to_string(inView);
    for (int prn : prns)
        body += "," + std::to_string(prn) + "," + std::to_string(prn + 10) + "," +
                std::to_string(prn * 3) + "," + std::to_string(prn + 20);
    return Sentence(body);
}

// The table's PRN column, rows separated by spaces (empty rows stay empty).
std::string Prns(const GpsState& s) {
    std::string out;
    for (const auto& r : s.satellites) out += (&r == s.satellites ? "" : " ") + std::string(r.prn);
    return out;
}

TEST(ParseGsv, Assembly) {
    const std::string m1 = Gsv(3, 1, 12, {31, 2, 17, 9});
    const std::string m2 = Gsv(3, 2, 12, {25, 14, 1, 30});
    const std::string m3 = Gsv(3, 3, 12, {5, 12, 22, 10});
    const std::string kEmpty(11, ' ');
    const std::string all = "1 2 5 9 10 12 14 17 22 25 30 31";
    const std::string sixteen = Gsv(4, 1, 16, {16, 15, 14, 13}) + Gsv(4, 2, 16, {12, 11, 10, 9}) +
                                Gsv(4, 3, 16, {8, 7, 6, 5}) + Gsv(4, 4, 16, {4, 3, 2, 1});
    const std::tuple<const char*, std::vector<std::string>, std::string, const char*, bool>
        cases[] = {
            {"complete cycle sorted by number", {m1 + m2 + m3}, all, "12", false},
            {"cycle over two batches", {m1, m2 + m3}, all, "12", false},
            {"only message 1 so far: arrival order", {m1}, "31 2 17 9        ", "12", true},
            // Message 3 fills rows 8..11; the count then reaches the number in
            // view, so the cycle closes and sorts with the hole of message 2.
            {"lost message 2", {m1, m3}, "    2 5 9 10 12 17 22 31", "12", false},
            {"count changed: abandoned", {m1 + Gsv(2, 2, 8, {50, 51, 52, 53})}, kEmpty, "", false},
            {"over 12: extras dropped", {sixteen}, "5 6 7 8 9 10 11 12 13 14 15 16", "16", false},
            {"message number above the table", {Gsv(9, 9, 40, {1, 2, 3, 4})}, kEmpty, "40", true},
            {"three-digit count keeps two", {Gsv(1, 1, 123, {3})}, "3           ", "12", true},
            {"count is the last field", {Sentence("GPGSV,1,1,00")}, kEmpty, "00", true},
            {"fields stop early", {Sentence("GPGSV,1")}, kEmpty, "", true},
            {"no fields", {Sentence("GPGSV,")}, kEmpty, "", false},
            // Message "0" starts four rows before the table; with a count of -1
            // the index wraps onto it after three satellites.
            {"count -1 reached by a wrapped index",
             {Sentence("GPGSV,1,0,-1,1,2,3,4,5,6,7,8,9,10,11,12")},
             kEmpty,
             "-1",
             false}};
    for (const auto& [name, batches, prns, inView, cycleOpen] : cases) {
        Decoder d;
        for (const auto& b : batches) d.Feed(b);
        SCOPED_TRACE(name);
        EXPECT_EQ(Prns(d.state), prns);
        EXPECT_STREQ(d.state.satellitesInView, inView);
        EXPECT_EQ(d.assembly.totalMessages != 0, cycleOpen);
    }
}

TEST(ParseGsv, UntrackedSatelliteAndWideFields) {
    Decoder d;
    d.Feed(Sentence("GPGSV,1,1,02,123,123456,1234567,123456,07,45,270,"));
    const SatelliteRecord* r = d.state.satellites;
    // The cycle completed and sorted: "07" (7) before "12" (12), each row
    // moved with all four of its fields.
    EXPECT_EQ(std::string(r[0].prn) + "|" + r[0].snr, "07|") << "empty SNR ending at '*'";
    EXPECT_EQ(std::string(r[1].prn) + "|" + r[1].elevation + "|" + r[1].azimuth + "|" + r[1].snr,
              "12|12345|123456|1234");
}

}  // namespace
}  // namespace satwalk::gps
