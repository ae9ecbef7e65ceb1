// The program's state as one JSON object, for script runs and tests.
#pragma once

#include <string>
#include <vector>

#include "Shell.h"

namespace satwalk::shell {

struct LoggedMessage {
    std::string text;
    MessageIcon icon;
};

struct StateExtras {
    std::string storageRoot;
    std::string optionsPath;
    std::vector<LoggedMessage> messages;
    int raiseRequests = 0;  // second starts that asked this copy forward
};

// The shell's members, then each feature's section, then the messages.
std::string BuildStateJson(const Shell& shell, const StateExtras& extras);

}  // namespace satwalk::shell
