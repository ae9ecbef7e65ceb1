// Any language file and any locale environment: the choice read is one the
// program offers, and what it resolves to is a language it ships.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "LanguageOption.h"

namespace {

bool Shipped(const std::string& code) {
    for (const satwalk::shell::Language& l : satwalk::shell::kLanguages) {
        if (code == l.code)
            return true;
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace satwalk::shell;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::string choice = ParseLanguageOption(bytes);
    if (!IsLanguageChoice(choice))
        __builtin_trap();
    // The same bytes, cut at NUL, as LANGUAGE, LC_ALL, LC_MESSAGES and LANG.
    std::vector<std::string> values;
    std::size_t from = 0;
    for (int i = 0; i < 4; ++i) {
        const std::size_t end = std::min(bytes.find('\0', from), bytes.size());
        values.emplace_back(from <= bytes.size() ? bytes.substr(from, end - from) : "");
        from = end + 1;
    }
    const char* names[] = {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"};
    const auto environment = [&](const char* name) -> const char* {
        for (int i = 0; i < 4; ++i) {
            if (std::string_view(name) == names[i])
                return values[static_cast<std::size_t>(i)].c_str();
        }
        return nullptr;
    };
    if (!Shipped(ResolveLanguage("auto", environment)) ||
        !Shipped(ResolveLanguage(choice, environment)))
        __builtin_trap();
    return 0;
}
