// The user manual as data: which file holds it for a language, where it is
// found under the data folder, its headings with the anchors the viewer
// gives them, and the table of contents built from them. No Qt: the viewer
// (qt/ManualDialog) renders what this returns.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace satwalk::help {

// The manual's folder under the data folder, with its images beside it.
inline constexpr const char* kManualFolder = "manual";
// The language the program speaks when nothing else is asked for.
inline constexpr std::string_view kDefaultLanguage = "zh_CN";
// The manual is a file of the data folder, but a broken installation could
// put anything there: a larger file is not read.
inline constexpr std::size_t kManualSizeLimit = 4 * 1024 * 1024;

// Its texts are the string table's (kStrManualMissing and the others).

// "satwalk.en.md" for an English language code ("en", "en_US", "en-GB"),
// "satwalk.zh_CN.md" for any other.
std::string ManualFileName(std::string_view language);

// The path of the manual for `language` in `dataDir`/manual, or of the
// Chinese one when that language has none; empty when neither is there.
std::string FindManual(const std::string& dataDir, std::string_view language);

struct ManualHeading {
    int level = 0;  // 1 to 6
    std::string text;
    std::string anchor;  // unique within the manual
};

// The ATX headings ("# " to "###### ") outside fenced code blocks, in
// document order, their text without the inline marks ** and `.
std::vector<ManualHeading> ManualHeadings(std::string_view markdown);

// A heading's anchor: ASCII letters lower-cased, digits and other scripts'
// letters kept, spaces and hyphens one hyphen, punctuation (ASCII, CJK and
// full-width) dropped. ManualHeadings makes repeats unique with "-1", "-2".
std::string HeadingAnchor(std::string_view text);

// `markdown` with a table of contents after its first level-1 heading (at
// the start when it has none): the paragraph `title` in bold, then a list
// of links to every level-2 heading, the level-3 ones nested below theirs.
std::string WithContents(std::string_view markdown, std::string_view title);

}  // namespace satwalk::help
