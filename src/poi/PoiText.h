// 8-bit text of POI files into UTF-8: a file is UTF-8 when all of it is
// valid UTF-8, else GB18030, the code page of the Chinese handhelds that
// wrote most of these files. GB18030 is decoded by the C library's iconv.
#pragma once

#include <iconv.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace satwalk::poi {

enum class PoiEncoding { Utf8, Gb18030 };

// Checks UTF-8 fed in pieces (sequences may span pieces): no overlong
// forms, no surrogates, nothing above U+10FFFF.
class Utf8Validator {
  public:
    void Feed(const unsigned char* data, std::size_t size);
    bool Valid() const { return valid_ && need_ == 0; }

  private:
    bool valid_ = true;
    int need_ = 0;              // continuation bytes still due
    unsigned char low_ = 0x80;  // range of the next continuation byte
    unsigned char high_ = 0xBF;
};

bool IsValidUtf8(std::string_view text);

class PoiTextDecoder {
  public:
    explicit PoiTextDecoder(PoiEncoding encoding);
    ~PoiTextDecoder();
    PoiTextDecoder(const PoiTextDecoder&) = delete;
    PoiTextDecoder& operator=(const PoiTextDecoder&) = delete;

    PoiEncoding Encoding() const { return encoding_; }

    // The bytes as UTF-8. A sequence that is not valid becomes U+FFFD; a
    // sequence cut short at the end (a name cut at 19 bytes) is left out.
    std::string Decode(std::string_view bytes);

  private:
    PoiEncoding encoding_;
    iconv_t gb_ = reinterpret_cast<iconv_t>(-1);
};

// The longest prefix of UTF-8 `text` that fits in `units` UTF-16 units.
std::string CutToUtf16Units(const std::string& text, std::size_t units);

}  // namespace satwalk::poi
