#include "PoiText.h"

#include <cerrno>

namespace satwalk::poi {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

// Length of the valid UTF-8 sequence at p (1 to 4), 0 when it is not
// valid; `cut` tells a valid start that the end of the text cuts short.
std::size_t SequenceAt(const unsigned char* p, std::size_t left, bool& cut) {
    cut = false;
    const unsigned char c = p[0];
    if (c < 0x80)
        return 1;
    std::size_t need = 0;
    unsigned char low = 0x80, high = 0xBF;
    if (c >= 0xC2 && c <= 0xDF) {
        need = 1;
    } else if (c >= 0xE0 && c <= 0xEF) {
        need = 2;
        low = c == 0xE0 ? 0xA0 : 0x80;
        high = c == 0xED ? 0x9F : 0xBF;
    } else if (c >= 0xF0 && c <= 0xF4) {
        need = 3;
        low = c == 0xF0 ? 0x90 : 0x80;
        high = c == 0xF4 ? 0x8F : 0xBF;
    } else {
        return 0;
    }
    for (std::size_t k = 1; k <= need; ++k) {
        if (k >= left) {
            cut = true;
            return 0;
        }
        if (p[k] < low || p[k] > high)
            return 0;
        low = 0x80;
        high = 0xBF;
    }
    return need + 1;
}

}  // namespace

void Utf8Validator::Feed(const unsigned char* data, std::size_t size) {
    for (std::size_t i = 0; i < size && valid_; ++i) {
        const unsigned char c = data[i];
        if (need_ > 0) {
            if (c < low_ || c > high_) {
                valid_ = false;
                break;
            }
            --need_;
            low_ = 0x80;
            high_ = 0xBF;
            continue;
        }
        if (c < 0x80)
            continue;
        if (c >= 0xC2 && c <= 0xDF) {
            need_ = 1;
        } else if (c >= 0xE0 && c <= 0xEF) {
            need_ = 2;
            if (c == 0xE0)
                low_ = 0xA0;  // overlong
            if (c == 0xED)
                high_ = 0x9F;  // surrogates
        } else if (c >= 0xF0 && c <= 0xF4) {
            need_ = 3;
            if (c == 0xF0)
                low_ = 0x90;  // overlong
            if (c == 0xF4)
                high_ = 0x8F;  // above U+10FFFF
        } else {
            valid_ = false;
        }
    }
}

bool IsValidUtf8(std::string_view text) {
    Utf8Validator v;
    v.Feed(reinterpret_cast<const unsigned char*>(text.data()), text.size());
    return v.Valid();
}

PoiTextDecoder::PoiTextDecoder(PoiEncoding encoding) : encoding_(encoding) {
    if (encoding_ == PoiEncoding::Gb18030)
        gb_ = iconv_open("UTF-8", "GB18030");
}

PoiTextDecoder::~PoiTextDecoder() {
    if (gb_ != reinterpret_cast<iconv_t>(-1))
        iconv_close(gb_);
}

std::string PoiTextDecoder::Decode(std::string_view bytes) {
    std::string out;
    if (encoding_ == PoiEncoding::Utf8 || gb_ == reinterpret_cast<iconv_t>(-1)) {
        const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
        std::size_t i = 0;
        while (i < bytes.size()) {
            bool cut = false;
            const std::size_t n = SequenceAt(p + i, bytes.size() - i, cut);
            if (cut)
                break;
            if (n == 0) {
                out += kReplacement;
                ++i;
            } else {
                out.append(bytes.substr(i, n));
                i += n;
            }
        }
        return out;
    }
    iconv(gb_, nullptr, nullptr, nullptr, nullptr);
    char* in = const_cast<char*>(bytes.data());
    std::size_t inLeft = bytes.size();
    char buffer[256];
    while (inLeft > 0) {
        char* dst = buffer;
        std::size_t dstLeft = sizeof buffer;
        const std::size_t r = iconv(gb_, &in, &inLeft, &dst, &dstLeft);
        out.append(buffer, static_cast<std::size_t>(dst - buffer));
        if (r != static_cast<std::size_t>(-1))
            break;
        if (errno == EILSEQ) {
            out += kReplacement;
            ++in;
            --inLeft;
        } else if (errno != E2BIG) {
            break;  // EINVAL: cut short at the end
        }
    }
    return out;
}

std::string CutToUtf16Units(const std::string& text, std::size_t units) {
    std::size_t i = 0, used = 0;
    while (i < text.size()) {
        const auto c = static_cast<unsigned char>(text[i]);
        const std::size_t length = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
        const std::size_t need = length == 4 ? 2 : 1;
        if (used + need > units)
            break;
        used += need;
        i += length;
    }
    return text.substr(0, i);
}

}  // namespace satwalk::poi
