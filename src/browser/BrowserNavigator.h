// The file browser's behaviour without its widgets: which folder is listed,
// which row is selected, and what each click, tap and key does to them.
//
// A stylus tap opens the row under it, and so does a mouse click. A mouse
// double click is two clicks to the system, but its user meant one: the
// first click opens what is under it, and the second, which would land in
// the folder just opened, is dropped. Touch keeps one tap, one opening.
// Typing selects the first row whose name starts with what was typed within
// the last second. Plain values on the user-interface thread; the folder
// itself is read through the reader given.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "FileListing.h"

namespace satwalk::browser {

// Where a press came from: a mouse, or a finger or stylus on the screen.
enum class Pointer { Mouse, Touch };

// How long typed letters add up before a new name is begun.
inline constexpr std::int64_t kTypeAheadResetMs = 1000;

// Row number for "no row", a press or release beside the rows.
inline constexpr std::size_t kNoRow = static_cast<std::size_t>(-1);

class BrowserNavigator {
  public:
    using Reader = std::function<std::vector<DirEntry>(const std::string& folder)>;

    BrowserNavigator(int mode, Reader reader);

    // Lists `folder` (absolute); the row of `cameFrom` (a child's name) is
    // selected, else the first.
    void List(const std::string& folder, std::string_view cameFrom = {});
    // The folder above, unless at the root.
    void GoUp();
    // Opens `row`: up, into a folder, or chooses a file.
    void Open(std::size_t row);
    void Select(std::size_t row);

    // A press begins a click, and selects its row. `second` is the press a
    // double click ends with. A release on the row pressed is the click.
    void Press(std::size_t row, Pointer pointer, bool second);
    void Release(std::size_t row);
    // Text typed while the list has the keys, at `ms` (any steady clock).
    void Type(std::string_view text, std::int64_t ms);

    const std::string& folder() const { return folder_; }
    const std::vector<ListingRow>& rows() const { return rows_; }
    // kNoRow when the folder lists nothing.
    std::size_t selected() const { return selected_; }
    // Set once a file is chosen.
    const std::optional<std::string>& chosen() const { return chosen_; }
    // Counts listings, so that a view knows when to fill its list again.
    std::uint64_t listings() const { return listings_; }

  private:
    int mode_;
    Reader reader_;
    std::string folder_;
    std::vector<ListingRow> rows_;
    std::size_t selected_ = kNoRow;
    std::optional<std::string> chosen_;
    std::uint64_t listings_ = 0;
    // The click under way: its row, and whether it must come to nothing.
    std::size_t pressed_ = kNoRow;
    bool dropClick_ = false;
    std::string typed_;
    std::int64_t typedAt_ = 0;
};

}  // namespace satwalk::browser
