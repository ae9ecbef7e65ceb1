#include "PoiCategories.h"

#include "PoiText.h"

namespace satwalk::poi {

namespace {

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        char x = a[i], y = b[i];
        if (x >= 'A' && x <= 'Z')
            x = static_cast<char>(x - 'A' + 'a');
        if (y >= 'A' && y <= 'Z')
            y = static_cast<char>(y - 'A' + 'a');
        if (x != y)
            return false;
    }
    return true;
}

}  // namespace

std::uint32_t LookUpPoiCategory(std::string& baseName) {
    for (std::uint32_t i = 1; i <= kPoiCategoryCount; ++i) {
        const PoiCategory& row = PoiCategoryTable[i];
        if (EqualIgnoringCase(baseName, row.code) || EqualIgnoringCase(baseName, row.name)) {
            baseName = row.name;
            return i;
        }
    }
    return 0;
}

std::string PoiBaseName(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    std::string_view name = slash == std::string_view::npos ? path : path.substr(slash + 1);
    name = name.substr(0, name.find('.'));
    name = name.substr(0, name.find('\0'));
    const PoiEncoding encoding = IsValidUtf8(name) ? PoiEncoding::Utf8 : PoiEncoding::Gb18030;
    PoiTextDecoder decoder(encoding);
    return CutToUtf16Units(decoder.Decode(name), 19);
}

}  // namespace satwalk::poi
