#include "Json.h"

#include <charconv>
#include <cmath>

namespace satwalk::common {

namespace {

// Length of the valid UTF-8 sequence at p (1..4), or 0 when the bytes there
// are not one.
std::size_t Utf8SequenceLength(const unsigned char* p, const unsigned char* end) {
    const unsigned c = p[0];
    std::size_t n;
    unsigned min;
    if (c >= 0xC2 && c <= 0xDF) {
        n = 2;
        min = 0x80;
    } else if (c >= 0xE0 && c <= 0xEF) {
        n = 3;
        min = 0x800;
    } else if (c >= 0xF0 && c <= 0xF4) {
        n = 4;
        min = 0x10000;
    } else {
        return 0;
    }
    if (static_cast<std::size_t>(end - p) < n)
        return 0;
    unsigned cp = c & (0x7F >> n);
    for (std::size_t i = 1; i < n; ++i) {
        if ((p[i] & 0xC0) != 0x80)
            return 0;
        cp = (cp << 6) | (p[i] & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
        return 0;
    return n;
}

void AppendEscapedByte(std::string& out, unsigned char c) {
    static constexpr char kHex[] = "0123456789abcdef";
    const char buf[6] = {'\\', 'u', '0', '0', kHex[c >> 4], kHex[c & 0xF]};
    out.append(buf, 6);
}

}  // namespace

void AppendJsonString(std::string& out, std::string_view text) {
    out += '"';
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const auto* end = p + text.size();
    while (p < end) {
        // Plain printable ASCII, by far the usual case, goes over in one run.
        const auto* run = p;
        while (run < end && *run >= 0x20 && *run < 0x7F && *run != '"' && *run != '\\') ++run;
        if (run != p) {
            out.append(reinterpret_cast<const char*>(p), static_cast<std::size_t>(run - p));
            p = run;
            if (p == end)
                break;
        }
        const unsigned char c = *p;
        if (c >= 0x20 && c < 0x7F) {
            if (c == '"' || c == '\\')
                out += '\\';
            out += static_cast<char>(c);
            ++p;
        } else if (c < 0x20 || c == 0x7F) {
            AppendEscapedByte(out, c);
            ++p;
        } else if (std::size_t n = Utf8SequenceLength(p, end)) {
            out.append(reinterpret_cast<const char*>(p), n);
            p += n;
        } else {
            AppendEscapedByte(out, c);
            ++p;
        }
    }
    out += '"';
}

void AppendJsonNumber(std::string& out, double value) {
    if (!std::isfinite(value)) {
        out += "null";
        return;
    }
    char buf[32];
    const auto result = std::to_chars(buf, buf + sizeof buf, value);
    out.append(buf, result.ptr);
}

std::string& JsonMembers::Name(std::string_view name) {
    if (!out_.empty() && out_.back() != '{')
        out_ += ',';
    AppendJsonString(out_, name);
    out_ += ':';
    return out_;
}

void JsonMembers::Bool(std::string_view name, bool value) {
    Name(name) += value ? "true" : "false";
}

void JsonMembers::Int(std::string_view name, long long value) {
    Name(name) += std::to_string(value);
}

void JsonMembers::Text(std::string_view name, std::string_view value) {
    AppendJsonString(Name(name), value);
}

}  // namespace satwalk::common
