// The interface's language ("语言" in "选项"): Chinese, English or automatic.
// The options record has no byte for it, so the choice lives in a small file
// of its own beside the options file, `language`, as the `ports`, `relay`
// and `track-gpx` files do. The file holds one line, a language's code or
// "auto"; a missing file, or anything else, is Chinese. The choice takes
// effect at the next start: every text is translated once, at start-up.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace satwalk::shell {

// A language the program ships: its code (the translation file is
// satwalk_<code>.qm) and its name in itself, as "选项" lists it.
struct Language {
    const char* code;
    const char* name;
};
// Chinese first: the table's own texts, the default.
inline constexpr Language kLanguages[] = {{"zh_CN", "中文"}, {"en", "English"}};
inline constexpr const char* kDefaultLanguage = "zh_CN";
inline constexpr const char* kAutomaticLanguage = "auto";

inline constexpr int kIdLanguageLabel = 1163;  // "语言:" in "选项"
inline constexpr int kIdLanguageCombo = 1164;  // the languages, then "自动"

// True for a shipped language's code or "auto".
bool IsLanguageChoice(std::string_view choice);

std::string LanguageOptionPath(const std::string& optionsPath);
// The choice a language file's bytes hold: its first line, when that is a
// shipped language's code or "auto"; else Chinese.
std::string ParseLanguageOption(std::string_view bytes);
// The saved choice: a shipped language's code or "auto"; Chinese when the
// file is missing or says anything else.
std::string LoadLanguageOption(const std::string& path);
// Writes a new file that replaces the old one once complete; false when it
// could not.
bool SaveLanguageOption(const std::string& path, std::string_view choice);

// The language a choice stands for. "auto" follows the environment as
// gettext programs do: each entry of LANGUAGE (a colon-separated list) in
// turn, then the first of LC_ALL, LC_MESSAGES and LANG that is set; the
// first that names a shipped language wins ("zh_TW.UTF-8" reads as Chinese,
// "en_GB" as English), "C" and "POSIX" read as English. Nothing usable gives
// English, the language most readers share. `environment` returns a
// variable's value or null.
std::string ResolveLanguage(std::string_view choice,
                            const std::function<const char*(const char*)>& environment);

}  // namespace satwalk::shell
