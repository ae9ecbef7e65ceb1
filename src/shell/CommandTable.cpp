#include "CommandTable.h"

#include <algorithm>
#include <vector>

namespace satwalk::shell {

namespace {

struct Row {
    int id;
    std::string path;
};

// "卫星图\t[2]" reads "卫星图 [2]" in a table.
std::string Plain(const std::string& text) {
    std::string out = text;
    std::replace(out.begin(), out.end(), '\t', ' ');
    return out;
}

void Collect(const MenuEntry& entry, const std::string& path, std::vector<Row>& rows) {
    for (const MenuEntry& e : entry.items) {
        const std::string here = path + " › " + Plain(e.text);
        if (e.IsSubmenu()) {
            Collect(e, here, rows);
        } else if (std::none_of(rows.begin(), rows.end(),
                                [&](const Row& r) { return r.id == e.id; })) {
            rows.push_back({e.id, here});
        }
    }
}

}  // namespace

std::string CommandTable(const Shell& shell) {
    std::vector<Row> rows;
    for (const MenuEntry& root : {shell.BuildViewMenu(), shell.BuildMainMenu()})
        Collect(root, Plain(root.text), rows);
    for (int id : shell.features().CommandIds()) {
        if (std::none_of(rows.begin(), rows.end(), [&](const Row& r) { return r.id == id; }))
            rows.push_back({id, "(no menu entry of its own)"});
    }

    std::string out = "| Id | Menu entry | Works |\n|---|---|---|\n";
    for (const Row& r : rows) {
        const bool handled = shell.features().FindCommand(r.id) != nullptr;
        out += "| " + std::to_string(r.id) + " | " + r.path + " | " + (handled ? "yes" : "coming") +
               " |\n";
    }
    const std::vector<std::string> verbs = shell.features().ScriptVerbs();
    if (!verbs.empty()) {
        out += "\nScript steps added by the program's features:";
        for (std::size_t i = 0; i < verbs.size(); ++i)
            out += (i == 0 ? " `" : ", `") + verbs[i] + "`";
        out += ".\n";
    }
    return out;
}

}  // namespace satwalk::shell
