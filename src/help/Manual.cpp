#include "Manual.h"

#include <sys/stat.h>
#include <map>
#include <set>

namespace satwalk::help {

namespace {

bool IsEnglish(std::string_view language) {
    return language.size() >= 2 && (language[0] == 'e' || language[0] == 'E') &&
           (language[1] == 'n' || language[1] == 'N') &&
           (language.size() == 2 || language[2] == '_' || language[2] == '-' || language[2] == '.');
}

bool IsFile(const std::string& path) {
    struct stat s {};
    return stat(path.c_str(), &s) == 0 && S_ISREG(s.st_mode);
}

// Punctuation of the scripts the manual is written in: general
// punctuation (dashes, quotes, ›), CJK symbols and punctuation (「」、。)
// and the full-width forms of ASCII punctuation.
bool IsPunctuation(char32_t c) {
    if (c >= 0x2000 && c <= 0x206F)
        return true;
    if (c >= 0x3000 && c <= 0x303F)
        return true;
    if (c >= 0xFF00 && c <= 0xFF65)
        return !((c >= 0xFF10 && c <= 0xFF19) || (c >= 0xFF21 && c <= 0xFF3A) ||
                 (c >= 0xFF41 && c <= 0xFF5A));
    return c == 0xA0 || c == 0xB7 || c == 0xD7;
}

// The length of the well-formed UTF-8 sequence at `at` and its code point,
// or 0 for a byte that begins none.
std::size_t DecodeUtf8(std::string_view s, std::size_t at, char32_t& c) {
    const auto lead = static_cast<unsigned char>(s[at]);
    std::size_t length = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        c = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        c = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        c = lead & 0x07;
    } else {
        return 0;
    }
    if (at + length > s.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i) {
        const auto b = static_cast<unsigned char>(s[at + i]);
        if ((b & 0xC0) != 0x80)
            return 0;
        c = (c << 6) | (b & 0x3F);
    }
    // Overlong forms, surrogates and code points past U+10FFFF.
    if ((length == 3 && c < 0x800) || (length == 4 && (c < 0x10000 || c > 0x10FFFF)) ||
        (c >= 0xD800 && c <= 0xDFFF))
        return 0;
    return length;
}

std::string_view Trim(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
    return s;
}

// A fence line opens or closes a fenced code block: up to three spaces,
// then three or more backticks or tildes.
std::size_t FenceLength(std::string_view line, char& mark) {
    std::size_t at = 0;
    while (at < 3 && at < line.size() && line[at] == ' ') ++at;
    if (at >= line.size() || (line[at] != '`' && line[at] != '~'))
        return 0;
    mark = line[at];
    std::size_t n = 0;
    while (at + n < line.size() && line[at + n] == mark) ++n;
    return n >= 3 ? n : 0;
}

// The heading of `line` (level 0 when it is none).
ManualHeading ReadHeading(std::string_view line) {
    ManualHeading h;
    std::size_t at = 0;
    while (at < 3 && at < line.size() && line[at] == ' ') ++at;
    int level = 0;
    while (at < line.size() && line[at] == '#' && level < 7) {
        ++level;
        ++at;
    }
    if (level == 0 || level > 6 || (at < line.size() && line[at] != ' ' && line[at] != '\t'))
        return h;
    std::string_view text = Trim(line.substr(at));
    // An optional closing run of '#', after a space.
    std::size_t end = text.size();
    while (end > 0 && text[end - 1] == '#') --end;
    if (end == 0 || text[end - 1] == ' ' || text[end - 1] == '\t')
        text = Trim(text.substr(0, end));
    h.level = level;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '`' || (text[i] == '*' && i + 1 < text.size() && text[i + 1] == '*')) {
            if (text[i] == '*')
                ++i;
            continue;
        }
        h.text += text[i];
    }
    return h;
}

struct ScannedHeading {
    ManualHeading heading;
    std::size_t lineEnd;  // offset just past the line and its newline
};

std::vector<ScannedHeading> Scan(std::string_view markdown) {
    std::vector<ScannedHeading> out;
    std::map<std::string, int, std::less<>> seen;
    std::set<std::string, std::less<>> used;
    char fenceMark = 0;
    std::size_t fence = 0;  // the open fence's length, 0 outside one
    std::size_t from = 0;
    while (from < markdown.size()) {
        std::size_t newline = markdown.find('\n', from);
        const std::size_t lineEnd =
            newline == std::string_view::npos ? markdown.size() : newline + 1;
        std::string_view line = markdown.substr(from, lineEnd - from);
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
        from = lineEnd;
        char mark = 0;
        const std::size_t length = FenceLength(line, mark);
        if (fence != 0) {
            // A closing fence is the mark alone, at least as long as the
            // opening one.
            if (length >= fence && mark == fenceMark &&
                Trim(line).find_first_not_of(mark) == std::string_view::npos)
                fence = 0;
            continue;
        }
        if (length != 0) {
            fence = length;
            fenceMark = mark;
            continue;
        }
        ManualHeading h = ReadHeading(line);
        if (h.level == 0)
            continue;
        // A repeat takes the next free suffix: "a-1" may be a heading's own.
        const std::string anchor = HeadingAnchor(h.text);
        int& repeats = seen[anchor];
        h.anchor = anchor;
        while (used.count(h.anchor) != 0) h.anchor = anchor + "-" + std::to_string(++repeats);
        used.insert(h.anchor);
        out.push_back({std::move(h), lineEnd});
    }
    return out;
}

std::string EscapeLinkText(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == '\\' || c == '*' || c == '_' || c == '`' || c == '<')
            out += '\\';
        out += c;
    }
    return out;
}

}  // namespace

std::string ManualFileName(std::string_view language) {
    return IsEnglish(language) ? "satwalk.en.md" : "satwalk.zh_CN.md";
}

std::string FindManual(const std::string& dataDir, std::string_view language) {
    const std::string folder = dataDir + "/" + kManualFolder + "/";
    for (const std::string& name : {ManualFileName(language), ManualFileName(kDefaultLanguage)}) {
        if (IsFile(folder + name))
            return folder + name;
    }
    return {};
}

std::vector<ManualHeading> ManualHeadings(std::string_view markdown) {
    std::vector<ManualHeading> out;
    for (ScannedHeading& s : Scan(markdown)) out.push_back(std::move(s.heading));
    return out;
}

std::string HeadingAnchor(std::string_view text) {
    std::string out;
    bool hyphen = false;  // a hyphen is due before the next character kept
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        const auto u = static_cast<unsigned char>(c);
        std::size_t length = 1;
        bool keep = false;
        if (u < 0x80) {
            if (c == ' ' || c == '-' || c == '\t') {
                hyphen = !out.empty();
            } else {
                keep = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                       c == '_';
            }
        } else {
            char32_t cp = 0;
            length = DecodeUtf8(text, i, cp);
            if (length == 0)
                length = 1;  // a stray byte is dropped
            else
                keep = !IsPunctuation(cp);
            if (cp == 0x3000)
                hyphen = !out.empty();  // the ideographic space
        }
        if (keep) {
            if (hyphen)
                out += '-';
            hyphen = false;
            if (u < 0x80)
                out += (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
            else
                out.append(text.substr(i, length));
        }
        i += length;
    }
    return out.empty() ? "section" : out;
}

std::string WithContents(std::string_view markdown, std::string_view title) {
    const std::vector<ScannedHeading> headings = Scan(markdown);
    std::size_t insertAt = 0;
    for (const ScannedHeading& s : headings) {
        if (s.heading.level == 1) {
            insertAt = s.lineEnd;
            break;
        }
    }
    std::string contents = "\n**" + EscapeLinkText(title) + "**\n\n";
    for (const ScannedHeading& s : headings) {
        if (s.heading.level != 2 && s.heading.level != 3)
            continue;
        contents += s.heading.level == 3 ? "    - [" : "- [";
        contents += EscapeLinkText(s.heading.text) + "](#" + s.heading.anchor + ")\n";
    }
    contents += "\n";
    std::string out(markdown.substr(0, insertAt));
    if (!out.empty() && out.back() != '\n')
        out += '\n';
    out += contents;
    out.append(markdown.substr(insertAt));
    return out;
}

}  // namespace satwalk::help
