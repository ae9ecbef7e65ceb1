#include "BrowserNavigator.h"

#include <utility>

namespace satwalk::browser {

namespace {

char FoldAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool StartsWithFolded(std::string_view name, std::string_view prefix) {
    if (name.size() < prefix.size())
        return false;
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        if (FoldAscii(name[i]) != FoldAscii(prefix[i]))
            return false;
    }
    return true;
}

// One character typed again and again ("ccc") steps through the names
// that start with it rather than looking for a name that starts "ccc".
bool IsOneCharRepeated(std::string_view text) {
    return text.size() > 1 && text.find_first_not_of(text[0]) == std::string_view::npos;
}

}  // namespace

BrowserNavigator::BrowserNavigator(int mode, Reader reader)
    : mode_(mode), reader_(std::move(reader)) {}

void BrowserNavigator::List(const std::string& folder, std::string_view cameFrom) {
    folder_ = folder;
    rows_ = BuildListing(mode_, folder, reader_ ? reader_(folder) : std::vector<DirEntry>{});
    selected_ = rows_.empty() ? kNoRow : InitialRow(rows_, cameFrom);
    typed_.clear();
    ++listings_;
}

void BrowserNavigator::GoUp() {
    if (IsRoot(folder_))
        return;
    const std::string left(FolderName(folder_));
    List(ParentFolder(folder_), left);
}

void BrowserNavigator::Open(std::size_t row) {
    if (row >= rows_.size())
        return;
    const ListingRow chosen = rows_[row];
    if (chosen.isUp)
        GoUp();
    else if (chosen.isFolder)
        List(ChildPath(folder_, chosen.name));
    else
        chosen_ = ChildPath(folder_, chosen.name);
}

void BrowserNavigator::Select(std::size_t row) {
    if (row < rows_.size())
        selected_ = row;
}

void BrowserNavigator::Press(std::size_t row, Pointer pointer, bool second) {
    // The second press of a mouse double click belongs to the first click,
    // which has already opened its row; whatever is under it now is not
    // what the user aimed at.
    dropClick_ = second && pointer == Pointer::Mouse;
    pressed_ = row;
    if (!dropClick_)
        Select(row);
}

void BrowserNavigator::Release(std::size_t row) {
    const bool click = !dropClick_ && row != kNoRow && row == pressed_;
    pressed_ = kNoRow;
    dropClick_ = false;
    if (click)
        Open(row);
}

void BrowserNavigator::Type(std::string_view text, std::int64_t ms) {
    if (text.empty())
        return;
    if (typed_.empty() || ms - typedAt_ > kTypeAheadResetMs || ms < typedAt_)
        typed_.clear();
    typed_ += text;
    typedAt_ = ms;
    // A name begun anew looks past the selected row, so that typing its
    // first letter again moves on; a name growing keeps the row while it
    // still fits.
    std::string_view prefix = typed_;
    std::size_t from = selected_ == kNoRow ? 0 : selected_;
    if (typed_.size() == text.size() || IsOneCharRepeated(typed_)) {
        if (IsOneCharRepeated(typed_))
            prefix = std::string_view(typed_).substr(0, 1);
        ++from;
    }
    const std::size_t n = rows_.size();
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t row = (from + i) % n;
        if (!rows_[row].isUp && StartsWithFolded(rows_[row].displayName, prefix)) {
            selected_ = row;
            return;
        }
    }
}

}  // namespace satwalk::browser
