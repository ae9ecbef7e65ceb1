// Any window file: read back or refused, and what is read, fitted to screens
// made of its own numbers as well as to an ordinary pair, keeps the minimum
// size and its top edge on a screen.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "WindowGeometry.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace satwalk::shell;
    const auto wish =
        ParseWindowGeometry(std::string_view(reinterpret_cast<const char*>(data), size));
    if (!wish)
        return 0;
    const std::vector<ScreenRect> screens[] = {
        {{0, 0, 1920, 1050}, {1920, 0, 1280, 1024}},
        {{wish->x, wish->y, wish->width, wish->height}},
        {{wish->y, wish->x, wish->height, wish->width}, {0, 0, 800, 600}},
        {}};
    for (const auto& on : screens) {
        const WindowGeometry g = Sanitize(*wish, on, 320, 400);
        if (g.width < 320 || g.height < 400)
            __builtin_trap();
        if (!on.empty() && on.front().height >= 48 && g.y < on.front().y && g.y < on.back().y)
            __builtin_trap();
    }
    return 0;
}
