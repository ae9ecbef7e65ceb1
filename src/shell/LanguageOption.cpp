#include "LanguageOption.h"

#include <cstdio>

namespace satwalk::shell {

namespace {

// The shipped language a locale name stands for ("en_US.UTF-8" -> "en"),
// or empty.
std::string_view LanguageOfLocale(std::string_view locale) {
    if (locale == "C" || locale == "POSIX" || locale.starts_with("C."))
        return "en";
    const std::size_t end = locale.find_first_of("_.@");
    const std::string_view language = locale.substr(0, end);
    if (language.empty())
        return {};
    for (const Language& l : kLanguages) {
        const std::string_view code = l.code;
        if (code == locale || code.substr(0, code.find('_')) == language)
            return code;
    }
    return {};
}

}  // namespace

bool IsLanguageChoice(std::string_view choice) {
    if (choice == kAutomaticLanguage)
        return true;
    for (const Language& l : kLanguages) {
        if (choice == l.code)
            return true;
    }
    return false;
}

std::string LanguageOptionPath(const std::string& optionsPath) {
    const std::size_t slash = optionsPath.rfind('/');
    return (slash == std::string::npos ? std::string() : optionsPath.substr(0, slash + 1)) +
           "language";
}

std::string LoadLanguageOption(const std::string& path) {
    std::FILE* f = std::fopen(path.c_str(), "rbe");
    if (f == nullptr)
        return kDefaultLanguage;
    char text[16] = {};
    const std::size_t n = std::fread(text, 1, sizeof text - 1, f);
    std::fclose(f);
    return ParseLanguageOption(std::string_view(text, n));
}

std::string ParseLanguageOption(std::string_view bytes) {
    std::string_view line = bytes.substr(0, bytes.find('\n'));
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.remove_suffix(1);
    return IsLanguageChoice(line) ? std::string(line) : std::string(kDefaultLanguage);
}

bool SaveLanguageOption(const std::string& path, std::string_view choice) {
    const std::string temporary = path + ".new";
    std::FILE* f = std::fopen(temporary.c_str(), "wbe");
    if (f == nullptr)
        return false;
    const std::string line = std::string(choice) + "\n";
    const bool written = std::fputs(line.c_str(), f) >= 0;
    if (std::fclose(f) != 0 || !written || std::rename(temporary.c_str(), path.c_str()) != 0) {
        std::remove(temporary.c_str());
        return false;
    }
    return true;
}

std::string ResolveLanguage(std::string_view choice,
                            const std::function<const char*(const char*)>& environment) {
    if (choice != kAutomaticLanguage)
        return IsLanguageChoice(choice) ? std::string(choice) : std::string(kDefaultLanguage);
    const auto value = [&](const char* name) -> std::string_view {
        const char* v = environment ? environment(name) : nullptr;
        return v != nullptr ? v : "";
    };
    std::string_view list = value("LANGUAGE");
    while (!list.empty()) {
        const std::size_t colon = list.find(':');
        const std::string_view language = LanguageOfLocale(list.substr(0, colon));
        if (!language.empty())
            return std::string(language);
        list = colon == std::string_view::npos ? std::string_view() : list.substr(colon + 1);
    }
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const std::string_view locale = value(name);
        if (locale.empty())
            continue;
        const std::string_view language = LanguageOfLocale(locale);
        return std::string(language.empty() ? "en" : language);
    }
    return "en";
}

}  // namespace satwalk::shell
