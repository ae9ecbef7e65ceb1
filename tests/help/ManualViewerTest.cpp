// "用户手册" in the running program: it opens full-screen, the keys and the
// contents' links scroll it, OK closes it, and a missing manual is said
// instead of an empty window.
#include <cstdlib>

#include "ScriptRun.h"

namespace {

using ManualViewerTest = ScriptRunTest;

TEST_F(ManualViewerTest, OpensScrollsJumpsAndCloses) {
    WriteScript(
        "command 40201\n"
        "state @/open.json\n"
        "key down\nkey down\nkey right\n"
        "state @/scrolled.json\n"
        "key left\nkey left\nkey up\nkey up\n"
        "state @/top.json\n"
        // The first entry of the contents, below the title.
        "tap 90 151\n"
        "state @/jumped.json\n"
        "answer ok\n"
        "state @/closed.json\n"
        "quit\n");
    ASSERT_EQ(Run(), 0) << Read("stderr.txt");
    ExpectHas("open.json", {"\"caption\":\"用户手册\"", "\"softKeys\":[\"目录\",\"关闭\"]",
                            "satwalk.zh_CN.md", "\"scroll\":0,"});
    EXPECT_EQ(Read("scrolled.json").find("\"scroll\":0,"), std::string::npos);
    ExpectHas("top.json", {"\"scroll\":0,"});
    ExpectHas("jumped.json", {"\"caption\":\"用户手册\""});
    EXPECT_EQ(Read("jumped.json").find("\"scroll\":0,"), std::string::npos);
    ExpectHas("closed.json", {"\"dialog\":null"});
}

TEST_F(ManualViewerTest, MissingManualIsSaid) {
    fs::create_directories(Path("data"));
    setenv("SATWALK_DATA_DIR", Path("data").c_str(), 1);
    WriteScript("command 40201\nstate @/state.json\nquit\n");
    const int status = Run();
    unsetenv("SATWALK_DATA_DIR");
    ASSERT_EQ(status, 0) << Read("stderr.txt");
    ExpectHas("state.json", {"找不到用户手册", "satwalk.zh_CN.md", "\"dialog\":null"});
}

}  // namespace
