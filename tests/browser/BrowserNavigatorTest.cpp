// The browser's clicks, taps and typing over a made-up folder tree: each
// sequence of events and the folder, selection and choice it leaves.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "BrowserNavigator.h"

namespace satwalk::browser {
namespace {

// One event: a mouse click ('m'), a mouse double click ('d': its first click
// on `row`, its second press and release on `second`), a touch tap ('t'), a
// touch double tap ('D'), a press on `row` let go on `second` ('p'), the way
// up ('u'), or `text` typed at `ms` ('k').
struct Step {
    char what;
    std::size_t row = 0, second = 0;
    const char* text = "";
    std::int64_t ms = 0;
};

void Apply(BrowserNavigator& nav, const Step& s) {
    const Pointer pointer = s.what == 't' || s.what == 'D' ? Pointer::Touch : Pointer::Mouse;
    switch (s.what) {
        case 'm':
        case 't':
            nav.Press(s.row, pointer, false);
            nav.Release(s.row);
            break;
        case 'd':
        case 'D':
            nav.Press(s.row, pointer, false);
            nav.Release(s.row);
            nav.Press(s.second, pointer, true);
            nav.Release(s.second);
            break;
        case 'p':
            nav.Press(s.row, pointer, false);
            nav.Release(s.second);
            break;
        case 'u':
            nav.GoUp();
            break;
        case 'k':
            nav.Type(s.text, s.ms);
            break;
    }
}

TEST(BrowserNavigator, EventSequences) {
    const std::map<std::string, std::vector<DirEntry>> tree = {
        {"/", {{"data", true, 0}}},
        // Listed: .., a.png, Alpha/, alps.jpg, b.gif, beta/, Map.bmp, maps/
        {"/data",
         {{"maps", true, 0},
          {"Alpha", true, 0},
          {"beta", true, 0},
          {"a.png", false, 1},
          {"alps.jpg", false, 1},
          {"b.gif", false, 1},
          {"Map.bmp", false, 1},
          {"notes.txt", false, 1}}},
        // Listed: .., x.png, y.png, zone/
        {"/data/maps", {{"zone", true, 0}, {"x.png", false, 1}, {"y.png", false, 1}}},
    };
    struct Case {
        const char* name;
        std::vector<Step> steps;
        const char* folder;
        const char* selected;
        const char* chosen;
    };
    const Case cases[] = {
        {"mouse double click enters only", {{'d', 7, 1}}, "/data/maps", "..", ""},
        {"mouse double click on ..", {{'d', 0, 1}}, "/", "data", ""},
        {"mouse double click on a file", {{'d', 1, 2}}, "/data", "a.png", "/data/a.png"},
        {"two mouse clicks", {{'m', 7}, {'m', 1}}, "/data/maps", "x.png", "/data/maps/x.png"},
        {"touch double tap is two taps", {{'D', 7, 3}}, "/data/maps/zone", "..", ""},
        {"touch tap opens", {{'t', 5}}, "/data/beta", "..", ""},
        {"released elsewhere", {{'p', 4, 5}}, "/data", "b.gif", ""},
        {"released beside the rows", {{'p', 4, kNoRow}}, "/data", "b.gif", ""},
        {"up selects the folder left", {{'m', 7}, {'u'}}, "/data", "maps", ""},
        {"first letter", {{'k', 0, 0, "a", 0}}, "/data", "a.png", ""},
        {"letters add up", {{'k', 0, 0, "a", 0}, {'k', 0, 0, "L", 300}}, "/data", "Alpha", ""},
        {"longer name",
         {{'k', 0, 0, "a", 0}, {'k', 0, 0, "l", 300}, {'k', 0, 0, "ps", 600}},
         "/data",
         "alps.jpg",
         ""},
        {"same letter steps on", {{'k', 0, 0, "b", 0}, {'k', 0, 0, "b", 200}}, "/data", "beta", ""},
        {"a pause begins anew",
         {{'k', 0, 0, "m", 0}, {'k', 0, 0, "a", 1500}},
         "/data",
         "a.png",
         ""},
        {"no such name", {{'p', 4, 5}, {'k', 0, 0, "q", 0}}, "/data", "b.gif", ""},
        {"typing after entering", {{'d', 7, 1}, {'k', 0, 0, "y", 100}}, "/data/maps", "y.png", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        BrowserNavigator nav(kBrowseMaps, [&tree](const std::string& folder) {
            const auto it = tree.find(folder);
            return it == tree.end() ? std::vector<DirEntry>{} : it->second;
        });
        nav.List("/data");
        for (const Step& s : c.steps) Apply(nav, s);
        EXPECT_EQ(nav.folder(), c.folder);
        ASSERT_LT(nav.selected(), nav.rows().size());
        EXPECT_EQ(nav.rows()[nav.selected()].displayName, c.selected);
        EXPECT_EQ(nav.chosen().value_or(""), c.chosen);
    }
}

}  // namespace
}  // namespace satwalk::browser
