// Sentence framing and checksums: which sentences reach their parser.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "NmeaTestUtil.h"

namespace satwalk::gps {
namespace {

using testing::Decoder;
using testing::Sentence;

TEST(VerifyChecksum, MatchesOnlyTwoUppercaseDigits) {
    const std::tuple<unsigned, const char*, bool> cases[] = {
        {0x4A, "4A", true},  {0x4A, "4a", false}, {0x07, "07", true}, {0x07, "7\r", false},
        {0x07, "70", false}, {0x00, "00", true},  {0xFF, "FF", true}, {0x10, "01", false}};
    for (const auto& [computed, received, match] : cases)
        EXPECT_EQ(VerifyChecksum(computed, received), match) << computed << " vs " << received;
}

// An RMC body whose only variable is the time, so each case can tell which of
// several sentences got through.
std::string Rmc(const char* time) {
    return std::string("GPRMC,") + time + ",A,4807.0380,N,01131.0000,E,022.4,084.4,230394,003.1,W";
}

std::string Gga(const char* sats) {
    return std::string("GPGGA,123519,4807.038,N,01131.000,E,1,") + sats + ",0.9,545.4,M,46.9,M,,";
}

// Replaces the two checksum characters of a framed sentence.
std::string WithChecksum(std::string sentence, const char* sum) {
    const auto star = sentence.find('*');
    sentence.replace(star + 1, 2, sum);
    return sentence;
}

TEST(ParseNmeaBuffer, Framing) {
    const std::string rmc = Sentence(Rmc("111111.000"));
    const std::string gga = Sentence(Gga("07"));
    // Name, batch, and what the RMC and GGA blocks hold afterwards.
    const std::tuple<const char*, std::string, const char*, const char*> cases[] = {
        {"clean sentences", rmc + gga, "111111.000", "07"},
        {"noise between sentences", "\x01\xff garbage " + rmc + "\xb5\x62\x01\x07" + gga,
         "111111.000", "07"},
        {"wrong checksum", WithChecksum(rmc, "00") + gga, "", "07"},
        // This RMC's checksum is 7A: only the uppercase letter is accepted.
        {"checksum with a letter", WithChecksum(Sentence(Rmc("111112.000")), "7A") + gga,
         "111112.000", "07"},
        {"lowercase checksum letter", WithChecksum(Sentence(Rmc("111112.000")), "7a") + gga, "",
         "07"},
        {"'$' inside a sentence drops it", rmc.substr(0, 20) + gga, "", "07"},
        {"'$' inside the header", "$GP" + gga, "", "07"},
        {"cut before '*'", gga + rmc.substr(0, 40), "", "07"},
        {"cut inside the checksum", gga + rmc.substr(0, rmc.find('*') + 2), "", "07"},
        {"'$' as second checksum char", rmc.substr(0, rmc.find('*') + 2) + gga, "", "07"},
        {"'$' as first checksum char", rmc.substr(0, rmc.find('*') + 1) + gga, "", "07"},
        {"other talker skipped", Sentence("GNRMC,222222.000,A,,,,,,,,,") + gga, "", "07"},
        {"NUL ends the batch", rmc + std::string(1, '\0') + gga, "111111.000", ""},
        {"header cut at the end", rmc + "$GPG", "111111.000", ""},
        {"later sentence wins", rmc + Sentence(Rmc("222222.000")), "222222.000", ""},
        {"unknown sentence then a good one", Sentence("GPVTG,084.4,T,,M,022.4,N,041.5,K") + rmc,
         "111111.000", ""},
        {"empty batch", "", "", ""}};
    for (const auto& [name, batch, utcTime, satellitesUsed] : cases) {
        Decoder d;
        d.Feed(batch);
        EXPECT_STREQ(d.state.utcTime, utcTime) << name;
        EXPECT_STREQ(d.state.satellitesUsed, satellitesUsed) << name;
        // A sentence cut by the end of the batch leaves its header as scratch;
        // every sentence that reached its checksum clears it.
        const std::string label = name;
        const char* header = label == "cut before '*'"          ? "GPRMC,"
                             : label == "header cut at the end" ? "GPG"
                                                                : "";
        EXPECT_STREQ(d.state.header, header) << name;
    }
}

TEST(ParseNmeaBuffer, NeverReadsPastTheGivenLength) {
    // The view stops one byte into the checksum; the bytes after it in memory
    // would complete the sentence if the decoder looked at them.
    const std::string rmc = Sentence(Rmc("111111.000"));
    Decoder d;
    d.Feed(std::string_view(rmc.data(), rmc.find('*') + 2));
    EXPECT_STREQ(d.state.utcTime, "");
    d.Feed(std::string_view(rmc.data(), 1));
    EXPECT_STREQ(d.state.utcTime, "");
}

}  // namespace
}  // namespace satwalk::gps
