// Small files of the program's own (a setting in a file beside the options):
// read their first bytes, write them whole or not at all, name them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace satwalk::common {

// The first `most` bytes of the file at `path` (fewer if it is shorter), or
// nothing if it cannot be opened. A file larger than `most` is not an error:
// what follows is never read, so no file can make this allocate more.
std::optional<std::string> ReadFileStart(const std::string& path, std::size_t most);

// Writes `contents` to `path` + ".new", then renames it over `path`, so a
// reader sees either the old file or the whole new one. False, with the old
// file untouched and the temporary removed, if any step fails.
bool ReplaceFile(const std::string& path, std::string_view contents);

// The path of the file `name` in the folder that holds `path` (just `name`
// for a path without a folder).
std::string PathBeside(const std::string& path, std::string_view name);

}  // namespace satwalk::common
