// The file browser's listing rules: which entries of a folder are shown in
// which mode, their size texts, their order, the way up, and walking the
// folder tree by path. Plain values; the directory itself is read by
// ReadDirectory, the dialog around it is the caller's.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace satwalk::browser {

// What the browser is opened for; any other value lists no files.
enum BrowserMode : int {
    kBrowseMaps = 1,       // .BMP .JPG .PNG .GIF
    kBrowseTrackLogs = 2,  // .log .gpx .nmea
    kBrowsePoi = 3,        // .csv .gpx
};

// The caption under the list for a mode (string 40116, 40117, or the POI
// text), empty for an unknown mode.
std::string_view FilterCaption(int mode);

// Whether a file's name ends, compared without regard to ASCII case, with
// one of the mode's extensions.
bool MatchesMode(int mode, std::string_view name);

// A size in bytes as the list's second column shows it: "1024B", "1.50K",
// "15.0M", "150K", "2G"... Always '.' for decimals.
std::string SizeText(std::uint64_t bytes);

struct DirEntry {
    std::string name;  // as the file system holds it (any bytes but '/')
    bool isFolder = false;
    std::uint64_t size = 0;
};

struct ListingRow {
    std::string name;         // the entry's own name, for walking and opening
    std::string displayName;  // the same as valid UTF-8, for showing
    std::string sizeText;     // files only
    bool isFolder = false;    // folders and ".."
    bool isUp = false;        // the ".." row
};

// The rows of `folder` in `mode`: ".." first unless the folder is the root,
// then every folder and every file of the mode, ordered by name without
// regard to ASCII case (folders and files mixed).
std::vector<ListingRow> BuildListing(int mode, std::string_view folder,
                                     const std::vector<DirEntry>& entries);

// The row to select after listing: the folder just left when coming up from
// it (`cameFrom`, a name), else the first.
std::size_t InitialRow(const std::vector<ListingRow>& rows, std::string_view cameFrom);

bool IsRoot(std::string_view folder);
// The folder above (the path up to its last '/', or "/" at the top).
std::string ParentFolder(std::string_view folder);
// The name of the folder itself (its last component; empty at the root).
std::string_view FolderName(std::string_view folder);
std::string ChildPath(std::string_view folder, std::string_view name);

// Valid UTF-8 passes through; every byte that is not part of a valid
// sequence becomes U+FFFD.
std::string SafeDisplayName(std::string_view name);

}  // namespace satwalk::browser
