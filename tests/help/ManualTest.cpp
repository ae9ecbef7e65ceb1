// The manual's file by language, its headings' anchors and the table of
// contents built from them.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "Manual.h"

namespace satwalk::help {
namespace {

TEST(ManualTest, FileByLanguage) {
    const struct {
        const char* language;
        const char* file;
    } cases[] = {
        {"zh_CN", "satwalk.zh_CN.md"},   {"", "satwalk.zh_CN.md"},      {"en", "satwalk.en.md"},
        {"en_GB", "satwalk.en.md"},      {"EN-us", "satwalk.en.md"},    {"eo", "satwalk.zh_CN.md"},
        {"english", "satwalk.zh_CN.md"}, {"de_DE", "satwalk.zh_CN.md"},
    };
    for (const auto& c : cases) EXPECT_EQ(ManualFileName(c.language), c.file) << c.language;
}

TEST(ManualTest, FindsTheLanguageElseChinese) {
    namespace fs = std::filesystem;
    const fs::path dir = fs::temp_directory_path() / ("satwalk-manual-" + std::to_string(getpid()));
    fs::create_directories(dir / "manual");
    std::ofstream(dir / "manual" / "satwalk.zh_CN.md") << "# 手册\n";
    EXPECT_EQ(FindManual(dir.string(), "en"), (dir / "manual" / "satwalk.zh_CN.md").string());
    fs::remove_all(dir);
}

TEST(ManualTest, Anchors) {
    const struct {
        const char* text;
        const char* anchor;
    } cases[] = {
        {"The NMEA relay", "the-nmea-relay"},
        {"gpsd and TCP sources", "gpsd-and-tcp-sources"},
        {"「选项」对话框", "选项对话框"},
        {"Tracks -- and (POIs)!", "tracks-and-pois"},
        {"  「」  ", "section"},
        {"\xE4\xB8", "section"},  // a sequence cut short
        {"a\xC0\xAF"
         "b",
         "ab"},  // an overlong '/'
    };
    for (const auto& c : cases) EXPECT_EQ(HeadingAnchor(c.text), c.anchor) << c.text;
}

TEST(ManualTest, HeadingsOutsideCodeWithUniqueAnchors) {
    const std::vector<ManualHeading> h = ManualHeadings(
        "# Title\n## Maps\n```\n# not a heading\n```\n### **Maps** ##\n#no heading\n"
        "~~~~\n## inside\n~~~\n## still inside\n~~~~\n####### seven\n  ## `Files`\r\n## Maps 1\n");
    std::string anchors;
    for (const ManualHeading& x : h) anchors += x.anchor + " ";
    ASSERT_EQ(anchors, "title maps maps-1 files maps-1-1 ");
    EXPECT_EQ(std::tuple(h[2].text, h[2].level, h[3].text), std::tuple("Maps", 3, "Files"));
}

TEST(ManualTest, ContentsAfterTheTitle) {
    EXPECT_EQ(WithContents("# T\nintro\n## A [b]\n### C\n#### D\n## E", "目录"),
              "# T\n\n**目录**\n\n- [A \\[b\\]](#a-b)\n    - [C](#c)\n- [E](#e)\n\nintro\n"
              "## A [b]\n### C\n#### D\n## E");
    EXPECT_EQ(WithContents("## A", "C"), "\n**C**\n\n- [A](#a)\n\n## A");
}

}  // namespace
}  // namespace satwalk::help
