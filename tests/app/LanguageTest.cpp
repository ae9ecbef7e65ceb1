// The translations against the string table: every text has one, with the
// same placeholders and menu key, and installing a language changes what
// LoadString gives until Chinese is installed again.
#include <gtest/gtest.h>

#include <QTranslator>

#include <string>
#include <string_view>

#include "Language.h"
#include "LanguageOption.h"
#include "Strings.h"

namespace satwalk::app {
namespace {

int Count(std::string_view text, std::string_view part) {
    int n = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos;
         at = text.find(part, at + part.size()))
        ++n;
    return n;
}

// The menu key after the tab ("\t[1]"), or empty.
std::string_view Key(std::string_view text) {
    const std::size_t tab = text.find('\t');
    return tab == std::string_view::npos ? std::string_view() : text.substr(tab);
}

TEST(LanguageTest, EveryTextHasATranslationWithItsPlaceholdersAndKey) {
    for (const shell::Language& language : shell::kLanguages) {
        if (std::string_view(language.code) == shell::kDefaultLanguage)
            continue;
        QTranslator translator;
        ASSERT_TRUE(
            translator.load(QStringLiteral("satwalk_") + language.code, SATWALK_TRANSLATIONS_DIR))
            << language.code;
        for (const common::StringEntry& e : common::StringTable()) {
            const std::string text =
                translator.translate(kTranslationContext, e.text, std::to_string(e.id).c_str())
                    .toStdString();
            if (text.empty()) {
                ADD_FAILURE() << language.code << " lacks a translation of " << e.id << " \""
                              << e.text << "\" (scripts/translations, then Qt Linguist)";
                continue;
            }
            EXPECT_EQ(Count(text, "%s"), Count(e.text, "%s")) << e.id << ": " << text;
            EXPECT_EQ(Key(text), Key(e.text)) << e.id << ": " << text;
        }
    }
}

TEST(LanguageTest, InstalledLanguageIsWhatTheTableGives) {
    const struct {
        const char* code;
        const char* ok;
        const char* menu;
    } cases[] = {{"en", "OK", "GPS Information\t[1]"}, {"zh_CN", "确定", "GPS 信息\t[1]"}};
    for (const auto& c : cases) {
        ASSERT_TRUE(InstallLanguage(c.code, SATWALK_TRANSLATIONS_DIR)) << c.code;
        EXPECT_STREQ(common::LoadString(common::kStrOk), c.ok);
        EXPECT_STREQ(common::LoadString(common::kStrMenuGpsInfo), c.menu);
    }
    EXPECT_FALSE(InstallLanguage("xx", SATWALK_TRANSLATIONS_DIR));
    EXPECT_STREQ(common::LoadString(common::kStrOk), "确定");
}

}  // namespace
}  // namespace satwalk::app
