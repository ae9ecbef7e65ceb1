#include "MenuModel.h"

namespace satwalk::shell {

MenuEntry MenuItem(int id, std::string text, bool enabled) {
    MenuEntry e;
    e.id = id;
    e.text = std::move(text);
    e.enabled = enabled;
    return e;
}

MenuEntry MenuRadio(int id, std::string text, bool checked) {
    MenuEntry e = MenuItem(id, std::move(text));
    e.checkable = true;
    e.radio = true;
    e.checked = checked;
    return e;
}

MenuEntry MenuCheck(int id, std::string text, bool checked) {
    MenuEntry e = MenuItem(id, std::move(text));
    e.checkable = true;
    e.checked = checked;
    return e;
}

MenuEntry MenuSub(std::string text, std::vector<MenuEntry> items) {
    MenuEntry e;
    e.text = std::move(text);
    e.items = std::move(items);
    return e;
}

const MenuEntry* FindMenuEntry(const MenuEntry& root, int id) {
    if (root.id == id && id != 0)
        return &root;
    for (const MenuEntry& e : root.items) {
        if (const MenuEntry* found = FindMenuEntry(e, id))
            return found;
    }
    return nullptr;
}

namespace {

void Describe(const MenuEntry& e, int depth, std::string& out) {
    out.append(static_cast<std::size_t>(depth) * 2, ' ');
    if (e.IsSubmenu()) {
        out += e.text + " >\n";
        for (const MenuEntry& c : e.items) Describe(c, depth + 1, out);
        return;
    }
    if (e.checkable)
        out += e.checked ? (e.radio ? "(*) " : "[x] ") : (e.radio ? "( ) " : "[ ] ");
    out += std::to_string(e.id) + " " + e.text;
    if (!e.enabled)
        out += " (grey)";
    out += "\n";
}

}  // namespace

std::string DescribeMenu(const MenuEntry& root) {
    std::string out;
    Describe(root, 0, out);
    return out;
}

}  // namespace satwalk::shell
