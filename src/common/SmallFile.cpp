#include "SmallFile.h"

#include <cstdio>

namespace satwalk::common {

std::optional<std::string> ReadFileStart(const std::string& path, std::size_t most) {
    std::FILE* f = std::fopen(path.c_str(), "rbe");
    if (f == nullptr)
        return std::nullopt;
    std::string text(most, '\0');
    text.resize(std::fread(text.data(), 1, most, f));
    std::fclose(f);
    return text;
}

bool ReplaceFile(const std::string& path, std::string_view contents) {
    const std::string temporary = path + ".new";
    std::FILE* f = std::fopen(temporary.c_str(), "wbe");
    if (f == nullptr)
        return false;
    const bool written = std::fwrite(contents.data(), 1, contents.size(), f) == contents.size();
    if (std::fclose(f) != 0 || !written || std::rename(temporary.c_str(), path.c_str()) != 0) {
        std::remove(temporary.c_str());
        return false;
    }
    return true;
}

std::string PathBeside(const std::string& path, std::string_view name) {
    const std::size_t slash = path.rfind('/');
    return (slash == std::string::npos ? std::string() : path.substr(0, slash + 1)) +
           std::string(name);
}

}  // namespace satwalk::common
