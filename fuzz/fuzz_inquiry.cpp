// Any answers a Bluetooth inquiry may bring: lines of "name<TAB>address",
// a line without a tab being a device that gave no name. The rows that come
// out are valid UTF-8 of at most 255 UTF-16 units, never more than asked.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "BluetoothSearch.h"

namespace {

// UTF-16 units of valid UTF-8, or -1 when it is not valid.
long Units(std::string_view s) {
    long units = 0;
    for (std::size_t i = 0; i < s.size();) {
        const unsigned char c = static_cast<unsigned char>(s[i]);
        const std::size_t n = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
        if (c >= 0x80 && c < 0xC2)
            return -1;
        if (i + n > s.size())
            return -1;
        for (std::size_t k = 1; k < n; ++k) {
            if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80)
                return -1;
        }
        units += n == 4 ? 2 : 1;
        i += n;
    }
    return units;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace satwalk::link;
    std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<InquiryAnswer> answers;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
        const std::size_t tab = line.find('\t');
        InquiryAnswer a;
        a.hasName = tab != std::string_view::npos;
        a.name = std::string(line.substr(0, tab));
        a.address = a.hasName ? std::string(line.substr(tab + 1)) : std::string(line);
        answers.push_back(std::move(a));
    }
    const int maxCount = size > 0 ? 1 + data[0] % kMaxDevices : kMaxDevices;
    const InquiryResult r = FinishInquiry(answers, maxCount);
    if (static_cast<int>(r.devices.size()) > maxCount)
        __builtin_trap();
    for (const BluetoothDevice& d : r.devices) {
        const long units = Units(d.name);
        if (units <= 0 || units > static_cast<long>(kNameUnits) || d.address == 0 ||
            d.address > 0xFFFFFFFFFFFFull)
            __builtin_trap();
    }
    return 0;
}
