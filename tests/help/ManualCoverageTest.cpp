// The manual covers the program: every menu entry (as the running program
// lists its commands), every dialog caption and every message, the string
// table's and the features' own, appears in the Chinese manual; the English
// one has the same chapters; no link or picture of either points nowhere.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "BluetoothSearch.h"
#include "Manual.h"
#include "MapLoading.h"
#include "PoiCsv.h"
#include "PoiFeature.h"
#include "ReferencePoints.h"
#include "Strings.h"
#include "TrackState.h"

namespace satwalk::help {
namespace {

std::string ReadManual(const char* name) {
    std::ifstream in(std::string(SATWALK_RESOURCES) + "/manual/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Whitespace and the marks of Markdown (bold, code, escapes) do not count.
std::string Normalised(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c != ' ' && c != '\t' && c != '\n' && c != '\r' && c != '*' && c != '`' && c != '\\')
            out += c;
    }
    return out;
}

std::vector<std::string> Split(const std::string& text, const std::string& separator) {
    std::vector<std::string> parts;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(separator, from)) != std::string::npos;
         from = at + separator.size())
        parts.push_back(text.substr(from, at - from));
    parts.push_back(text.substr(from));
    return parts;
}

// Each element of the menu path of every command the program lists
// ("视图 › 卫星 › 卫星图 [2]").
std::vector<std::string> MenuTexts() {
    std::vector<std::string> texts;
    FILE* pipe = popen("env -u DISPLAY QT_QPA_PLATFORM=offscreen '" SATWALK_BINARY
                       "' --list-commands 2>/dev/null",
                       "r");
    std::string table;
    char buffer[4096];
    for (std::size_t n; pipe != nullptr && (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        table.append(buffer, n);
    if (pipe != nullptr)
        pclose(pipe);
    const std::vector<std::string> rows = Split(table, "\n| 4");  // the first is the heading
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const std::vector<std::string> cells = Split(rows[i], " | ");
        if (cells.size() > 1 && cells[1].front() != '(')  // "(no menu entry of its own)"
            for (const std::string& text : Split(cells[1], " \xE2\x80\xBA "))  // " › "
                texts.push_back(text);
    }
    return texts;
}

TEST(ManualCoverageTest, ChineseManualNamesEveryTextOfTheProgram) {
    const std::string manual = Normalised(ReadManual("satwalk.zh_CN.md"));
    ASSERT_FALSE(manual.empty());

    std::vector<std::string> table;
    for (int id = 40000; id < 43000; ++id) {
        if (*common::LoadString(id) != '\0')
            table.push_back(common::LoadString(id));
    }
    const std::vector<std::string> menus = MenuTexts();
    const struct {
        const char* what;
        std::vector<std::string> texts;
    } groups[] = {
        {"the string table", table},
        {"the menus", menus},
        {"dialog captions",
         {"GPS 设置", "选项", "卫星数据", "用户手册", common::LoadString(common::kStrTrackInfo),
          common::LoadString(common::kStrOpenFile), common::LoadString(40111)}},
        {"the features' messages",
         {common::OtherTalkersHint(), common::LoadString(common::kStrSearchFailed),
          common::LoadString(common::kStrRadioOff), common::LoadString(common::kStrNoReceiver),
          common::LoadString(common::kStrRadioSwitchFailed),
          common::LoadString(common::kStrOpenPoiFileFailed),
          common::LoadString(common::kStrLoadPoiIconsFailed),
          common::LoadString(common::kStrReadImageFailed),
          common::LoadString(common::kStrSaveReferenceFailed),
          common::FormatString(common::LoadString(common::kStrTrackTimerFailed),
                               track::kTrackTimerCodeOnInterval),
          common::LoadString(common::kStrFollowTimerFailed),
          common::LoadString(common::kStrOpenTrackLogFailed),
          common::LoadString(common::kStrManualMissing),
          common::LoadString(common::kStrManualUnreadable),
          common::LoadString(common::kStrManualTooLarge)}},
    };
    EXPECT_GT(menus.size(), 40u) << "the program's command list was not read";
    for (const auto& group : groups) {
        for (const std::string& text : group.texts) {
            // A placeholder stands for any text: its fixed parts are found.
            for (const std::string& part : Split(text, "%s"))
                EXPECT_NE(manual.find(Normalised(part)), std::string::npos)
                    << group.what << ": \"" << text << "\" is not in the manual";
        }
    }
}

TEST(ManualCoverageTest, EnglishHasTheSameChaptersAndLinksLeadSomewhere) {
    const std::string zh = ReadManual("satwalk.zh_CN.md");
    const std::string en = ReadManual("satwalk.en.md");
    std::vector<int> zhLevels, enLevels;
    for (const ManualHeading& h : ManualHeadings(zh)) zhLevels.push_back(h.level);
    for (const ManualHeading& h : ManualHeadings(en)) enLevels.push_back(h.level);
    EXPECT_GT(zhLevels.size(), 20u);
    EXPECT_EQ(zhLevels, enLevels);

    for (const std::string* text : {&zh, &en}) {
        const std::string withContents =
            WithContents(*text, common::LoadString(common::kStrManualContents));
        std::set<std::string> anchors;
        for (const ManualHeading& h : ManualHeadings(withContents)) anchors.insert(h.anchor);
        for (std::size_t at = 0; (at = withContents.find("](#", at)) != std::string::npos; ++at) {
            const std::size_t from = at + 3;
            const std::string anchor =
                withContents.substr(from, withContents.find(')', from) - from);
            EXPECT_TRUE(anchors.count(anchor)) << "a link to #" << anchor << " leads nowhere";
        }
        for (std::size_t at = 0; (at = text->find("](images/", at)) != std::string::npos; ++at) {
            const std::size_t from = at + 2;
            const std::string image = text->substr(from, text->find(')', from) - from);
            EXPECT_TRUE(std::ifstream(std::string(SATWALK_RESOURCES) + "/manual/" + image))
                << image << " is missing";
        }
    }
}

}  // namespace
}  // namespace satwalk::help
