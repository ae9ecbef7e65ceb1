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
    ExpectHas("open.json", {"\"currentScreen\":0,", "\"dialog\":{\"resourceId\":900,",
                            "\"items\":[\"甲\",\"乙\",\"丙\"]"});
    // Words after the id are joined by one blank; key 7 is typed into the
    // edit, not taken as the speedometer's key.
    ExpectHas("edited.json", {"\"value\":\"西湖 北岸7\"", "\"text\":\"丙\",\"value\":2",
                              "\"currentScreen\":0,", "\"fixValid\":true"});
    ExpectHas("greyed.json", {"\"value\":\"西湖 北岸7\",\"enabled\":false", "\"value\":0,"});
    ExpectHas("done.json",
              {"\"dialog\":null", "\"text\":\"form ok name=西湖 北岸7 enabled=0 list=2\""});
}

// The values each kind of control takes are the core's; here what only the
// running program knows.
TEST_F(ScriptRunTest, DialogStepsThatDoNotFitFail) {
    const struct {
        const char* lines;
        const char* error;
    } cases[] = {{"key 7\nfly away", "unknown line"},
                 {"set 902 x", "no dialog is open"},
                 {"command 49900\nset 999 1", "has no control 999"},
                 {"command 49900\nset 903 0\nset 902 x", "is greyed"},
                 {"command 49900\nchoose /tmp/a.png", "file browser"}};
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
    } cases[] = {{"command 40003\nanswer no", false},
                 {"command 40003\n# a comment between\n\nanswer no", false},
                 {"answer no\ncommand 40003", false},
                 {"command 40003\nanswer yes", true},
                 {"command 40003", true},
                 // The notice of 40011 takes ok only: the no waits for the question.
                 {"command 40011\nanswer no\ncommand 40003", false},
                 // A form's report is a notice; the question after it is answered.
                 {"command 49900\nanswer ok\nanswer ok\ncommand 40003\nanswer no", false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.lines);
        fs::remove(Path("options"));
        WriteScript(std::string(c.lines) + "\nstate @/state.json\nquit\n");
        ASSERT_EQ(Run(), 0) << Read("stderr.txt");
        EXPECT_EQ(std::tuple(fs::exists(Path("options")), fs::exists(Path("state.json"))),
                  std::tuple(c.exits, !c.exits));
        fs::remove(Path("state.json"));
    }
}

}  // namespace
