// The drop-down menus as data: what the window shows is rebuilt from this
// each time a drop-down opens.
#pragma once

#include <string>
#include <vector>

namespace satwalk::shell {

struct MenuEntry {
    int id = 0;  // command id; 0 for a sub-menu
    std::string text;
    bool enabled = true;
    bool checkable = false;  // carries a check or radio mark
    bool radio = false;      // one of an exclusive group
    bool checked = false;
    std::vector<MenuEntry> items;  // the entries of a sub-menu

    bool IsSubmenu() const { return id == 0; }
};

// An entry, a radio entry of a group, a check entry, a sub-menu.
MenuEntry MenuItem(int id, std::string text, bool enabled = true);
MenuEntry MenuRadio(int id, std::string text, bool checked);
MenuEntry MenuCheck(int id, std::string text, bool checked);
MenuEntry MenuSub(std::string text, std::vector<MenuEntry> items);

// Depth-first search by command id; null when absent.
const MenuEntry* FindMenuEntry(const MenuEntry& root, int id);

// The menu as indented text, one entry per line with its marks, for state
// dumps and tests.
std::string DescribeMenu(const MenuEntry& root);

}  // namespace satwalk::shell
