// POI files as the import reads them: the byte rules, comments, long and
// Chinese texts.
#include <gtest/gtest.h>

#include <unistd.h>

#include <fstream>
#include <string>

#include "PoiCsv.h"

namespace satwalk::poi {
namespace {

using namespace std::string_literals;

// Each record as "lat,lon,name,note;" in UTF-8.
std::string Describe(const PoiList& list) {
    std::string out;
    for (std::uint32_t i = 0; i < list.Count(); ++i) {
        const PoiRecord& r = list.At(i);
        char numbers[64];
        std::snprintf(numbers, sizeof numbers, "%g,%g,", r.latitude, r.longitude);
        out += numbers + std::string(r.name) + "," + r.note + ";";
    }
    return out;
}

std::string Records(const std::string& bytes, PoiEncoding encoding, std::size_t piece = 0) {
    PoiList list;
    PoiCsvParser parser(encoding, list);
    if (piece == 0)
        piece = bytes.size() + 1;
    for (std::size_t at = 0; at < bytes.size(); at += piece)
        parser.Feed(bytes.data() + at, std::min(piece, bytes.size() - at));
    parser.Finish();
    return Describe(list);
}

TEST(PoiCsv, ByteRules) {
    const struct {
        const char* name;
        std::string bytes, records;
    } cases[] = {
        {"a line with a note", "120.15,30.25,Harbour office,open 8-17\r\n",
         "30.25,120.15,Harbour office,open 8-17;"},
        {"blank line: a point at 0, 0", "\r\n", "0,0,,;"},
        {"header behind ';' is skipped", ";lon,lat,name\r\n1,2,A\r\n", "2,1,A,;"},
        {"a comment's line feed does not end the record", "1,2,Na;comment\r\nme,note\r\n3,4,B\r\n",
         "2,1,Name,note;4,3,B,;"},
        {"a comment ends at a zero byte", "1,2,A;skip\0,x\r\n"s, "2,1,A,x;"},
        {"a comment running to the end of the file", "1,2,A\r\n3,4,B;no end", "2,1,A,;4,3,B,;"},
        {"a bare line feed loses the last field", "1,2,A\n", "2,1,,;"},
        {"... or to note once a fourth column was seen", "1,2,A,n\r\n3,4,B,m", "2,1,A,n;4,3,B,m;"},
        {"quotes are dropped", "\"1\",\"2\",\"A, B\"\r\n", "2,1,A, B;"},
        {"'@' ends a field", "1@2@A@n\r\n", "2,1,A,n;"},
        {"missing columns", "1\r\n1,2\r\n", "0,1,,;2,1,,;"},
        {"columns past the fourth are ignored", "1,2,A,n,x,y\r\n", "2,1,A,n;"},
        {"names keep their first 19 bytes", "1,2,abcdefghijklmnopqrstuvwxyz\r\n",
         "2,1,abcdefghijklmnopqrs,;"},
        {"a field reaching 99 bytes starts again", "1,2," + std::string(99, 'x') + "tail\r\n",
         "2,1,tail,;"},
        {"a NUL ends a text", "1,2,AB\0CD\r\n"s, "2,1,AB,;"},
        {"coordinates read as atof reads", " 1.5x,-2e1,A\r\n", "-20,1.5,A,;"},
        {"nan, inf and overflow read 0", "nan,inf,A\r\n1e999,-infinity,B\r\n", "0,0,A,;0,0,B,;"}};
    for (const auto& c : cases) {
        EXPECT_EQ(Records(c.bytes, PoiEncoding::Utf8), c.records) << c.name;
        for (const std::size_t piece : {1u, 3u})
            ASSERT_EQ(Records(c.bytes, PoiEncoding::Utf8, piece), c.records)
                << c.name << " in pieces of " << piece;
    }
}

TEST(PoiCsv, EightBitTexts) {
    // 西湖 (West Lake) in GB18030 and UTF-8; a GB18030 four-byte character.
    const std::string gbWestLake = "\xCE\xF7\xBA\xFE";
    const struct {
        const char* name;
        std::string bytes;
        PoiEncoding encoding;
        std::string records;
    } cases[] = {{"GB18030 name", "1,2," + gbWestLake + "\r\n", PoiEncoding::Gb18030, "2,1,西湖,;"},
                 {"GB18030 four-byte character", "1,2,\x81\x30\x81\x30\r\n"s, PoiEncoding::Gb18030,
                  "2,1,\xC2\x80,;"},
                 // 19 bytes of GB18030 cut a two-byte character in half: the half goes.
                 {"GB18030 cut at 19 bytes",
                  "1,2,A" + gbWestLake + gbWestLake + gbWestLake + gbWestLake + gbWestLake + "\r\n",
                  PoiEncoding::Gb18030, "2,1,A西湖西湖西湖西湖西,;"},
                 {"UTF-8 cut at 19 bytes", "1,2,西湖西湖西湖西湖\r\n", PoiEncoding::Utf8,
                  "2,1,西湖西湖西湖,;"},
                 {"bytes that are no character", "1,2,a\xFF\x62\r\n"s, PoiEncoding::Gb18030,
                  "2,1,a\xEF\xBF\xBD\x62,;"}};
    for (const auto& c : cases) EXPECT_EQ(Records(c.bytes, c.encoding), c.records) << c.name;
}

TEST(PoiCsv, FilesChooseTheirEncoding) {
    const std::string dir = ::testing::TempDir();
    const struct {
        const char* name;
        std::string bytes, records;
    } cases[] = {{"utf8.csv", "1,2,西湖\r\n", "2,1,西湖,;"},
                 {"gb.csv", "1,2,\xCE\xF7\xBA\xFE\r\n", "2,1,西湖,;"},
                 // Valid UTF-8 except for one byte further on: the whole file is GB18030.
                 {"mixed.csv", "1,2,\xC3\xA9\r\n3,4,\xCE\xF7\r\n", "2,1,茅,;4,3,西,;"}};
    for (const auto& c : cases) {
        const std::string path = dir + c.name;
        std::ofstream(path, std::ios::binary) << c.bytes;
        PoiList list;
        ASSERT_TRUE(ReadPoiCsv(path, list)) << c.name;
        EXPECT_EQ(Describe(list), c.records) << c.name;
    }
    // Every bare newline is a record: a file of them reads up to the budget.
    const std::string newlines = dir + "newlines.csv";
    std::ofstream(newlines, std::ios::binary) << std::string(8, '\n');
    for (const std::uint64_t budget : {5u, 8u}) {
        std::uint64_t records = 0;
        EXPECT_EQ(ReadPoiCsv(
                      newlines, [&](const PoiRecord&) { ++records; }, budget),
                  budget < 8 ? PoiRead::Truncated : PoiRead::Read);
        EXPECT_EQ(records, budget);
    }
    PoiList list;
    EXPECT_FALSE(ReadPoiCsv(dir + "no-such-file.csv", list));
    EXPECT_FALSE(ReadPoiCsv(dir, list));
    EXPECT_TRUE(list.Empty());
}

}  // namespace
}  // namespace satwalk::poi
