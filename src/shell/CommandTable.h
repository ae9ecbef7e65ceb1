// The command ids that script mode (`command ID`) and the menus send, as a
// Markdown table built from the menus and the feature registry of a running
// program: `satwalk --list-commands` prints it and the README carries it.
#pragma once

#include <string>

#include "Shell.h"

namespace satwalk::shell {

// One row per command: the menu entries in menu order (with their path),
// then the commands that have no entry of their own. A command without a
// handler yet is marked "coming". Ends with the script verbs the features
// added.
std::string CommandTable(const Shell& shell);

}  // namespace satwalk::shell
