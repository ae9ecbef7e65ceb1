// The language choice: its file beside the options, and what "auto" makes
// of the environment.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <string>

#include "LanguageOption.h"

namespace satwalk::shell {
namespace {

TEST(LanguageOptionTest, FileKeepsAChoiceAndReadsAnythingElseAsChinese) {
    const std::string path = "/tmp/satwalk-language-" + std::to_string(::getpid());
    EXPECT_EQ(LoadLanguageOption(path), "zh_CN");  // no file
    for (const char* choice : {"en", "auto", "zh_CN"}) {
        ASSERT_TRUE(SaveLanguageOption(path, choice));
        EXPECT_EQ(LoadLanguageOption(path), choice);
    }
    for (const char* text : {"", "de\n", "english", "en_US\n", "enx", "\xff\xfe"}) {
        std::ofstream(path, std::ios::binary) << text;
        EXPECT_EQ(LoadLanguageOption(path), "zh_CN") << text;
    }
    std::remove(path.c_str());
    EXPECT_FALSE(SaveLanguageOption("/nonexistent-folder/language", "en"));
    EXPECT_EQ(LanguageOptionPath("/home/u/.config/satwalk/options"),
              "/home/u/.config/satwalk/language");
}

TEST(LanguageOptionTest, AutomaticFollowsLanguageThenTheLocale) {
    const struct {
        std::map<std::string, std::string> environment;
        const char* language;
    } cases[] = {
        {{}, "en"},
        {{{"LANG", "zh_CN.UTF-8"}}, "zh_CN"},
        {{{"LANG", "zh_TW.UTF-8"}}, "zh_CN"},
        {{{"LANG", "en_GB.UTF-8"}}, "en"},
        {{{"LANG", "de_DE.UTF-8"}}, "en"},
        {{{"LANG", "C"}}, "en"},
        {{{"LANG", "zh_CN.UTF-8"}, {"LC_ALL", "C.UTF-8"}}, "en"},
        {{{"LANG", "en_US.UTF-8"}, {"LC_MESSAGES", "zh_CN.UTF-8"}}, "zh_CN"},
        {{{"LANG", "en_US.UTF-8"}, {"LANGUAGE", "fr:zh_CN:en"}}, "zh_CN"},
        {{{"LANG", "zh_CN.UTF-8"}, {"LANGUAGE", "en_GB:zh"}}, "en"},
        {{{"LANG", "zh_CN.UTF-8"}, {"LANGUAGE", "fr:de"}}, "zh_CN"},
        {{{"LANG", "zh_CN.UTF-8"}, {"LANGUAGE", ":"}}, "zh_CN"},
    };
    for (const auto& c : cases) {
        const auto environment = [&c](const char* name) -> const char* {
            const auto it = c.environment.find(name);
            return it == c.environment.end() ? nullptr : it->second.c_str();
        };
        std::string described;
        for (const auto& [name, value] : c.environment) described += name + "=" + value + " ";
        EXPECT_EQ(ResolveLanguage("auto", environment), c.language) << described;
        // A language chosen by name does not look at the environment.
        EXPECT_EQ(ResolveLanguage("en", environment), "en") << described;
        EXPECT_EQ(ResolveLanguage("zh_CN", environment), "zh_CN") << described;
    }
}

}  // namespace
}  // namespace satwalk::shell
