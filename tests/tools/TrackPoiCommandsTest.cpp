// satwalk-tool track and poi as whole processes: the exact objects printed.
#include <cstdlib>
#include <string>

#include "ToolRun.h"

namespace {

using satwalk::tools::test::Tool;
using satwalk::tools::test::ToolRun;

std::string Write(const std::string& name, const std::string& bytes) {
    return "'" + satwalk::tools::test::WriteTemp(name, bytes) + "'";
}

TEST(TrackCommand, PrintsThePointsTheReaderMakes) {
    const std::string log = Write("20240501080000.log",
                                  "120.150000,30.250000,,20240501 08:00:01,12.5,90.0,10.2\r\n"
                                  "bad,line\r\n"
                                  "abc,-30.5,,2024 5 1  8  0  9,,,\r\n");
    const ToolRun r = Tool("track " + log);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out,
              "{\"points\":[{\"latitude\":30.25,\"longitude\":120.15,\"time\":\"2024-05-01 "
              "08:00:01\",\"elevation\":10.2},"
              "{\"latitude\":-30.5,\"longitude\":0,\"time\":\"2024-05-01 "
              "08:00:09\",\"elevation\":null}]}\n");
    EXPECT_EQ(Tool("track /no/such.log").status, 1);
    EXPECT_EQ(Tool("track").status, 2);
}

TEST(PoiCommand, PrintsWhatTheImportStores) {
    const std::string gas = Write("gas station.csv",
                                  ";lon,lat,name,note\r\n"
                                  "120.1551,30.2599,\"Shell\" Beishan,24h\r\n"
                                  "120.16,30.25,\xCE\xF7\xBA\xFE\r\n");  // GB18030
    const ToolRun r = Tool("poi " + gas);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out,
              "{\"category\":19,\"categoryName\":\"Gas Station\",\"points\":["
              "{\"latitude\":30.2599,\"longitude\":120.1551,\"name\":\"Shell Beishan\","
              "\"note\":\"24h\"},"
              "{\"latitude\":30.25,\"longitude\":120.16,\"name\":\"西湖\",\"note\":\"\"}]}\n");
    EXPECT_EQ(Tool("poi /no/such.csv").status, 1);
}

// What the tool answers about itself and about a command line or file it
// cannot use: status, and the start of what it says.
TEST(ToolCommandLine, AnswersAndRefusals) {
    const std::string comments = Write("Restaurant.csv", ";only a comment\r\n");
    const std::string noWaypoints = Write("walk.gpx", "<gpx version=\"1.1\"><trk/></gpx>");
    struct Case {
        std::string args;
        int status;
        const char* out;
        const char* err;
    };
    const Case cases[] = {
        {"--version", 0, "satwalk-tool 0.", ""},
        {"--help", 0, "usage: satwalk-tool COMMAND", ""},
        {"bogus", 2, "", "satwalk-tool: unknown command bogus\n"},
        {"poi " + comments, 1, "", "satwalk-tool poi: "},
        {"poi " + noWaypoints, 1, "", "satwalk-tool poi: "},
        {"poi --bogus", 2, "", "satwalk-tool poi: unknown option --bogus\n"},
        {"poi", 2, "", "satwalk-tool poi: no FILE given\n"},
    };
    for (const Case& c : cases) {
        const ToolRun r = Tool(c.args);
        EXPECT_EQ(r.status, c.status) << c.args;
        EXPECT_EQ(r.out.rfind(c.out, 0), 0u) << c.args << "\n" << r.out;
        EXPECT_EQ(r.err.rfind(c.err, 0), 0u) << c.args << "\n" << r.err;
        if (c.args.rfind("poi ", 0) == 0 && c.status == 1) {
            EXPECT_NE(r.err.find(": holds no POI\n"), std::string::npos) << r.err;
        }
    }
    // --help lists every command with its options.
    const std::string help = Tool("--help").out;
    for (const char* option :
         {"decode [--batch N]", "--sync-every K", "replay FILE", "--loop", "log --port SOURCE",
          "--record DIR", "map --rpt FILE", "--to-geo", "track FILE", "--stats", "poi FILE"})
        EXPECT_NE(help.find(option), std::string::npos) << option;
}

}  // namespace
