// Whatever a gpsd (or something pretending to be one) may answer, split
// anywhere between reads: the filter keeps every byte of the lines that are
// not JSON, in order, whatever the split, and the decoder takes what is left.
// The same bytes as a source address (a line of the ports file) parse to
// something or to Invalid, never crash.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "GpsState.h"
#include "NetSource.h"
#include "NmeaDecoder.h"
#include "SourceAddress.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace satwalk;
    if (size == 0)
        return 0;
    const std::size_t cut = data[0] % size;
    const std::string input(reinterpret_cast<const char*>(data) + 1, size - 1);

    link::GpsdFilter whole;
    std::string a = input;
    a.resize(whole.Feed(a.data(), a.size()));

    link::GpsdFilter split;
    std::string b = input.substr(0, cut);
    std::string c = input.substr(std::min(cut, input.size()));
    b.resize(split.Feed(b.data(), b.size()));
    c.resize(split.Feed(c.data(), c.size()));
    if (a != b + c || a.size() > input.size())
        std::abort();
    if (!a.empty() && a[0] == '{')
        std::abort();
    for (std::size_t i = 1; i < a.size(); ++i) {
        if (a[i - 1] == '\n' && a[i] == '{')
            std::abort();
    }

    gps::GpsState state;
    gps::GsvAssembly assembly;
    gps::ParseNmeaBuffer(state, assembly, a, nullptr);

    const link::SourceAddress address = link::ParseSourceAddress(input);
    if (address.kind != link::SourceKind::Tty && address.kind != link::SourceKind::Invalid &&
        (address.host.empty() || address.port == 0))
        std::abort();
    [[maybe_unused]] const std::string label = link::SourceLabel(address);
    return 0;
}
