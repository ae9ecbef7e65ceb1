// The file browser: the program's own full-screen open-file dialog, in
// which the user walks the folder tree and picks one map image, track log
// or POI file. The current folder across the top (40023), the list of its
// folders and the mode's files with their icons and sizes (40026), the
// mode's filter caption across the bottom (40024); the soft keys "向上"
// (up, greyed at the root) and "取消". A tap or click on a row or Enter opens
// it: ".." and "向上" go up, Back (Backspace, Escape, on their release) goes
// up too unless at the root, a folder is entered, a file is chosen. A mouse
// double click opens the row of its first click only; typing a name's first
// letters selects it. The rules are BrowserNavigator's.
//
//   browser::qt::ChooseFile(window.dialogs(), browser::kBrowseMaps, 40118,
//                           [this](const std::string& path) { LoadMap(path); });
//
// In script mode `choose PATH` walks to the file's folder and opens it, and
// the state's `dialog` adds `mode`, `folder`, `filter` and `rows` (`name`,
// `sizeText`, `isFolder`).
#pragma once

#include <QElapsedTimer>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "BrowserNavigator.h"
#include "Dialogs.h"
#include "FileListing.h"

class QTreeWidget;
class QLabel;

namespace satwalk::browser::qt {

inline constexpr int kFileBrowserDialog = 111;
inline constexpr int kFolderLabel = 40023;
inline constexpr int kFilterLabel = 40024;
inline constexpr int kFileList = 40026;

class FileBrowser final : public shell::qt::FullScreenDialog {
  public:
    // Lists `folder` (an absolute path) in `mode` under the caption `title`.
    FileBrowser(shell::qt::DialogStack& stack, int mode, const QString& title,
                const std::string& folder);

    // Lists `folder`; the row of `cameFrom` (a child's name) is selected, else
    // the first.
    void ListFolder(const std::string& folder, const std::string& cameFrom = {});
    // ".." and "向上": the folder above, unless at the root.
    void GoUp();
    // Opens row `row`: up, into a folder, or chooses a file.
    void Activate(int row);

    const std::string& folder() const { return nav_.folder(); }
    // The file chosen: set when the dialog ends with Ok.
    const std::string& chosenPath() const { return chosenPath_; }
    const std::vector<ListingRow>& rows() const { return nav_.rows(); }
    int currentRow() const;
    QTreeWidget* list() const { return list_; }

    bool Choose(const std::string& path, std::string& error) override;
    void WriteExtraState(common::JsonMembers& members) const override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

  private:
    // Shows what the navigator holds: the listing when it is new, the
    // selection, and the end of the dialog once a file is chosen.
    void Show();

    int mode_;
    BrowserNavigator nav_;
    std::uint64_t shownListing_ = 0;
    std::string chosenPath_;
    QElapsedTimer typing_;
    QLabel* folderLabel_;
    QTreeWidget* list_;
};

// Opens the browser over the window, in the folder of its last use (or
// `startFolder` the first time, or the home folder), and calls `chosen` with the
// file's full path when the user picks one (after the dialog has gone);
// nothing when cancelled. The dialog belongs to the stack.
FileBrowser* ChooseFile(shell::qt::DialogStack& stack, int mode, int titleStringId,
                        std::function<void(const std::string& path)> chosen,
                        const std::string& startFolder = {});

}  // namespace satwalk::browser::qt
