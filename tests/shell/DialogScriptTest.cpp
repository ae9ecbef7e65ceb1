// Dialogs driven by scripts, end to end: the test hooks' small form (label
// 901, edit 902, check box 903 that enables 902, list 904 of 甲 乙 丙) opened
// by command 49900, which reports its outcome in an information box.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "ScriptRun.h"

namespace {

// While the form is open the script and the receiver go on, keys and `set`
// reach its controls, and `answer ok` hands the values to the feature.
TEST_F(ScriptRunTest, FormDrivenByScriptWhileTheReceiverRuns) {
    WriteScript(
        "command 49900\nstate @/open.json\n"
        "set 902 西湖  北岸\nkey 7\nset 904 2\nwait 2200\nstate @/edited.json\n"
        "set 903 0\nstate @/greyed.json\n"
        "answer ok\nstate @/done.json\nquit\n");
    ASSERT_EQ(Run("--replay '" SATWALK_TEST_DATA "/speed-run.nmea' --replay-rate 5"), 0)
        << Read("stderr.txt");
    ExpectHas("open.json",
              {"\"currentScreen\":0,",
               "\"dialog\":{\"resourceId\":900,\"caption\":\"测试表单\",\"softKeys\":[\"确定\","
               "\"取消\"],\"controls\":[{\"id\":902,\"kind\":\"edit\",\"text\":\"\",\"value\":"
               "\"\",\"enabled\":true},{\"id\":901,\"kind\":\"label\",\"text\":\"名称:\","
               "\"value\":null,\"enabled\":true},{\"id\":903,\"kind\":\"checkBox\",\"text\":"
               "\"启用名称\",\"value\":1,\"enabled\":true},{\"id\":904,\"kind\":\"list\","
               "\"text\":\"甲\",\"value\":0,\"enabled\":true,\"items\":[\"甲\",\"乙\",\"丙\"]}]}"});
    // Words after the id are joined by one blank; key 7 is typed into the
    // edit, not taken as the speedometer's key.
    ExpectHas("edited.json", {"\"value\":\"西湖 北岸7\"", "\"text\":\"丙\",\"value\":2",
                              "\"currentScreen\":0,", "\"fixValid\":true"});
    ExpectHas("greyed.json", {"\"value\":\"西湖 北岸7\",\"enabled\":false", "\"value\":0,"});
    ExpectHas("done.json",
              {"\"dialog\":null", "\"text\":\"form ok name=西湖 北岸7 enabled=0 list=2\""});
}

// Every way to end the form: the soft keys at the bar's halves (a
// 52-pixel bar under 640 pixels at 192 dpi), Escape, and `answer`.
TEST_F(ScriptRunTest, WaysToEndADialog) {
    const struct {
        const char* line;
        const char* outcome;
    } cases[] = {
        {"answer ok", "form ok name= enabled=1 list=0"},
        {"answer cancel", "form cancel"},
        {"key escape", "form cancel"},
        {"tap 120 666", "form ok name= enabled=1 list=0"},
        {"tap 360 666", "form cancel"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        WriteScript(std::string("command 49900\n") + c.line + "\nstate @/state.json\nquit\n");
        ASSERT_EQ(Run(), 0) << Read("stderr.txt");
        ExpectHas("state.json", {"\"dialog\":null", std::string("\"text\":\"") + c.outcome + "\""});
    }
}

// The values each kind of control takes are the core's; here what only the
// running program knows.
TEST_F(ScriptRunTest, DialogStepsThatDoNotFitFail) {
    const struct {
        const char* lines;
        const char* error;
    } cases[] = {
        {"key 7\nfly away", "unknown line"},
        {"set 902 x", "no dialog is open"},
        {"command 49900\nset 999 1", "has no control 999"},
        {"command 49900\nset 903 0\nset 902 x", "is greyed"},
        {"command 49900\nchoose /tmp/a.png", "file browser"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.lines);
        WriteScript(std::string(c.lines) + "\nquit\n");
        EXPECT_EQ(Run(), 2);
        EXPECT_NE(Read("stderr.txt").find(c.error), std::string::npos) << Read("stderr.txt");
    }
}

// A message box takes `answer` from before it or from the line right after
// the one that opened it, when the word fits the box; otherwise the
// default. The exit question (40003) shows which: yes ends the program and
// saves the options, no leaves it running.
TEST_F(ScriptRunTest, AnswerBeforeOrAfterTheBox) {
    const struct {
        const char* lines;
        bool exits;
    } cases[] = {
        {"command 40003\nanswer no", false},
        {"command 40003\n# a comment between\n\nanswer no", false},
        {"answer no\ncommand 40003", false},
        {"command 40003\nanswer yes", true},
        {"command 40003", true},
        // The notice of 40011 takes ok only: the no waits for the question.
        {"command 40011\nanswer no\ncommand 40003", false},
        // A form's report is a notice; the question after it is answered.
        {"command 49900\nanswer ok\nanswer ok\ncommand 40003\nanswer no", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.lines);
        fs::remove(Path("options"));
        WriteScript(std::string(c.lines) + "\nstate @/state.json\nquit\n");
        ASSERT_EQ(Run(), 0) << Read("stderr.txt");
        EXPECT_EQ(fs::exists(Path("options")), c.exits);
        EXPECT_EQ(fs::exists(Path("state.json")), !c.exits);
        fs::remove(Path("state.json"));
    }
}

// The file browser of command 49901 (maps): `choose` walks into a folder,
// Back comes up with that folder selected, the state names the folder and
// the rows, and choosing a file hands its path to the command.
TEST_F(ScriptRunTest, FileBrowserByScript) {
    fs::create_directories(Path("maps/sub"));
    std::ofstream(Path("maps/MAP.Bmp")) << "BM";
    std::ofstream(Path("maps/notes.txt")) << "-";
    WriteScript(
        "command 49901\nchoose @/maps/sub\nkey back\nstate @/open.json\n"
        "choose @/maps/MAP.Bmp\nstate @/done.json\nquit\n");
    ASSERT_EQ(Run(), 0) << Read("stderr.txt");
    ExpectHas("open.json",
              {"\"resourceId\":111,\"caption\":\"打开文件\",\"softKeys\":[\"向上\",\"取消\"]",
               "{\"id\":40026,\"kind\":\"list\",\"text\":\"sub\",\"value\":2,",
               "\"mode\":1,\"folder\":\"" + Path("maps") +
                   "\",\"filter\":\"地图 [*.BMP; *.JPG; *.GIF; *.PNG]\",\"rows\":[{\"name\":"
                   "\"..\",\"sizeText\":\"\",\"isFolder\":true},{\"name\":\"MAP.Bmp\","
                   "\"sizeText\":\"2B\",\"isFolder\":false},{\"name\":\"sub\",\"sizeText\":\"\","
                   "\"isFolder\":true}]}"});
    ExpectHas("done.json", {"\"dialog\":null", "\"text\":\"chosen " + Path("maps/MAP.Bmp") + "\""});
}

}  // namespace
