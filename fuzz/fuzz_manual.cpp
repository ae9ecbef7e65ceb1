// Any manual text: every heading has a level from 1 to 6 and an anchor of
// its own, and the table of contents adds no heading of its own.
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "Manual.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace satwalk::help;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::vector<ManualHeading> headings = ManualHeadings(text);
    std::set<std::string> anchors;
    for (const ManualHeading& h : headings) {
        if (h.level < 1 || h.level > 6 || h.anchor.empty() || !anchors.insert(h.anchor).second)
            __builtin_trap();
    }
    const std::string withContents = WithContents(text, "目录");
    if (withContents.size() <= text.size() ||
        ManualHeadings(withContents).size() != headings.size())
        __builtin_trap();
    return 0;
}
