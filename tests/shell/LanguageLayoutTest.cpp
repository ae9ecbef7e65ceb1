// Every dialog in each language at both pixel sets: no text is cut and no
// control reaches past its dialog (the state's `clipped`), and the texts are
// those of the language chosen for the run.
#include <gtest/gtest.h>

#include <string>

#include "ScriptRun.h"

namespace {

TEST_F(ScriptRunTest, DialogsFitInEachLanguageAtBothPixelSets) {
    const std::string map = SATWALK_RESOURCES "/demo/map/west-lake-demo.png";
    // The options, the receiver settings, the file browser, the reference
    // point dialog on the demo map and the track statistics.
    WriteScript(
        "command 40197\nwait 200\nstate @/options.json\nanswer cancel\n"
        "command 40043\nwait 200\nstate @/gps.json\nanswer cancel\n"
        "command 40020\nwait 200\nstate @/browser.json\nchoose " +
        map +
        "\nwait 300\ncommand 40034\ntap 60 90\ncommand 40007\nwait 200\n"
        "state @/reference.json\nanswer cancel\n"
        "command 40040\nchoose " SATWALK_RESOURCES
        "/demo/track/demo-drive.gpx\nwait 1000\n"
        "command 40301\nwait 300\nstate @/track.json\nanswer ok\nquit\n");
    const struct {
        const char* arguments;
        const char* caption;  // of the options dialog
    } cases[] = {{"--language zh_CN", "\"caption\":\"选项\""},
                 {"--language zh_CN --size 240x320 --dpi 96", "\"caption\":\"选项\""},
                 {"--language en", "\"caption\":\"Options\""},
                 {"--language en --size 240x320 --dpi 96", "\"caption\":\"Options\""}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        ASSERT_EQ(Run(c.arguments), 0) << Read("stderr.txt");
        ExpectHas("options.json", {c.caption});
        for (const char* file :
             {"options.json", "gps.json", "browser.json", "reference.json", "track.json"}) {
            const std::string state = Read(file);
            EXPECT_NE(state.find("\"dialog\":{"), std::string::npos) << file;
            EXPECT_EQ(state.find("\"clipped\""), std::string::npos) << file << "\n" << state;
        }
    }
}

// "语言" in "选项" is written beside the options at OK and said to come with
// the next start; Cancel writes nothing.
TEST_F(ScriptRunTest, LanguageChosenInTheOptionsComesWithTheNextStart) {
    WriteScript(
        "command 40197\nset 1164 1\nanswer cancel\nstate @/cancelled.json\n"
        "command 40197\nset 1164 2\nanswer ok\nstate @/chosen.json\nquit\n");
    ASSERT_EQ(Run(), 0) << Read("stderr.txt");
    EXPECT_EQ(Read("cancelled.json").find("新的语言"), std::string::npos);
    ExpectHas("chosen.json", {"\"text\":\"新的语言在程序下次启动时生效。\"", "\"dialog\":null"});
    EXPECT_EQ(Read("language"), "auto\n");
}

}  // namespace
