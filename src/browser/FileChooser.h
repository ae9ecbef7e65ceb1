// What a feature needs of the file browser: open it in a mode with a title
// and hear of the file chosen. The dialog itself is the platform's.
#pragma once

#include <functional>
#include <string>

namespace satwalk::browser {

struct ChosenFile {
    std::string path;  // full path
    std::string name;  // the file's name as the browser showed it
};

using FileChosen = std::function<void(const ChosenFile& file)>;

class FileChooser {
  public:
    // Shows the browser in `mode` (a BrowserMode) titled `title`. `chosen`
    // runs once a file has been chosen, on the user-interface thread, and
    // not at all when the user cancels.
    virtual void ChooseFile(int mode, const std::string& title, FileChosen chosen) = 0;

  protected:
    ~FileChooser() = default;
};

}  // namespace satwalk::browser
