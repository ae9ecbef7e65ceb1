// Reading one folder for the file browser with POSIX calls. Never throws,
// never follows more than the entries themselves: a folder that cannot be
// opened is reported, entries that vanish or cannot be examined are left
// out, and only folders and regular files come back (a FIFO or a device is
// never offered for opening). Symbolic links count as what they point to;
// a dangling or looping link is left out.
#pragma once

#include <string>
#include <vector>

#include "FileListing.h"

namespace satwalk::browser {

struct DirectoryRead {
    bool ok = false;  // false: the folder could not be opened or read
    int error = 0;    // errno when not ok
    std::vector<DirEntry> entries;
};

DirectoryRead ReadDirectory(const std::string& folder);

}  // namespace satwalk::browser
