// satwalk-tool decode as a whole process: batches, time syncs, errors.
#include <fstream>
#include <string>
#include <vector>

#include "../gps/NmeaTestUtil.h"
#include "ToolRun.h"

namespace {

using satwalk::gps::testing::Sentence;
using satwalk::tools::test::Field;

struct Result {
    int status;
    std::vector<std::string> lines;
};

Result RunTool(const std::string& args) {
    const satwalk::tools::test::ToolRun r = satwalk::tools::test::Tool("decode " + args);
    return {r.status, r.Lines()};
}

class DecodeCommand : public ::testing::Test {
  protected:
    void SetUp() override {
        path_ = ::testing::TempDir() + "decode_command.nmea";
        std::ofstream f(path_, std::ios::binary);
        // Four epochs of two lines, 70 to 75 bytes a line.
        for (int i = 0; i < 4; ++i)
            f << Sentence("GPRMC,01020" + std::to_string(i) +
                          ".000,A,3015.1234,N,12009.5000,E,10.0,90.0,160526,,")
              << "$GPVTG,090.0,T,,M,010.0,N,018.5,K,A*0D\r\n";
    }
    std::string path_;
};

TEST_F(DecodeCommand, OneObjectPerBatch) {
    const Result whole = RunTool(path_);
    ASSERT_EQ(whole.status, 0);
    ASSERT_EQ(whole.lines.size(), 1u);
    std::string fields;
    for (const char* name : {"utcTime", "timeSync", "fixValid", "latitudeDegrees"})
        fields += Field(whole.lines[0], name) + " ";
    EXPECT_EQ(fields, "\"010203.000\" true true 30.252056666666668 ");

    // Each batch holds one RMC and one VTG line.
    const Result small = RunTool("--batch 130 --sync-every 2 " + path_);
    ASSERT_EQ(small.lines.size(), 4u);
    const char* syncs[] = {"true", "true", "false", "true"};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(Field(small.lines[i], "batch"), std::to_string(i + 1));
        EXPECT_EQ(Field(small.lines[i], "utcTime"), "\"01020" + std::to_string(i) + ".000\"");
        EXPECT_EQ(Field(small.lines[i], "timeSync"), syncs[i]) << "batch " << i + 1;
    }
}

TEST_F(DecodeCommand, CutModeLosesSentencesAcrossCuts) {
    // Every RMC line is longer than a 60-byte slice, so none survives whole.
    const Result cut = RunTool("--batch 60 --cut " + path_);
    ASSERT_EQ(cut.status, 0);
    EXPECT_EQ(cut.lines.size(), 8u);  // 2 x 4 lines of 108 bytes in 60-byte slices
    for (const auto& l : cut.lines) EXPECT_EQ(Field(l, "utcTime"), "\"\"");
    // Line packing at the same size cuts only the lines longer than a batch.
    const Result lines = RunTool("--batch 60 " + path_);
    // The RMC line is cut after 60 bytes; its last 8 bytes and the VTG line
    // share the next batch.
    EXPECT_EQ(lines.lines.size(), 8u);
}

TEST(DecodeCommandErrors, ExitStatusTwo) {
    EXPECT_EQ(RunTool("/nonexistent/log.nmea").status, 2);
    EXPECT_EQ(RunTool("/").status, 2);  // a folder cannot be read
    EXPECT_EQ(RunTool("--batch 0 /dev/null").status, 2);
    EXPECT_EQ(RunTool("--bogus").status, 2);
    EXPECT_EQ(RunTool("/dev/null").status, 0);
    EXPECT_EQ(RunTool("< /dev/null").status, 0);  // standard input
}

}  // namespace
