#include "FileListing.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "Strings.h"

namespace satwalk::browser {

namespace {

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) { return Lower(x) == Lower(y); });
}

// Ascending by name without regard to ASCII case; names equal that way keep
// a fixed order by their bytes.
bool NameBefore(const ListingRow& a, const ListingRow& b) {
    const auto cmp = std::lexicographical_compare_three_way(
        a.name.begin(), a.name.end(), b.name.begin(), b.name.end(), [](char x, char y) {
            return static_cast<unsigned char>(Lower(x)) <=> static_cast<unsigned char>(Lower(y));
        });
    if (cmp != 0)
        return cmp < 0;
    return a.name < b.name;
}

// One scaled size: whole above 100, one decimal from 10, two below.
std::string Scaled(double value, char unit) {
    char buf[48];
    std::to_chars_result r;
    if (value >= 100.0)
        r = std::to_chars(buf, buf + sizeof buf - 1, static_cast<std::int64_t>(value));
    else
        r = std::to_chars(buf, buf + sizeof buf - 1, value, std::chars_format::fixed,
                          value < 10.0 ? 2 : 1);
    *r.ptr = unit;
    return std::string(buf, r.ptr + 1);
}

std::string_view TrimTrailingSlashes(std::string_view folder) {
    while (folder.size() > 1 && folder.back() == '/') folder.remove_suffix(1);
    return folder;
}

}  // namespace

std::string_view FilterCaption(int mode) {
    switch (mode) {
        case kBrowseMaps:
            return common::LoadString(common::kStrFilterMaps);
        case kBrowseTrackLogs:
            return common::LoadString(common::kStrFilterTracks);
        case kBrowsePoi:
            return common::LoadString(common::kStrFilterPoi);
        default:
            return {};
    }
}

bool MatchesMode(int mode, std::string_view name) {
    static constexpr std::array<std::string_view, 4> kMaps = {".bmp", ".jpg", ".png", ".gif"};
    // Five-letter endings: logs, and GeoTIFF maps (listed although the
    // caption, the program's own text, names only the four image kinds).
    if (name.size() >= 5) {
        const std::string_view tail5 = name.substr(name.size() - 5);
        if (mode == kBrowseTrackLogs && EqualsNoCase(tail5, ".nmea"))
            return true;
        if (mode == kBrowseMaps && EqualsNoCase(tail5, ".tiff"))
            return true;
    }
    if (name.size() < 4)
        return false;
    const std::string_view tail = name.substr(name.size() - 4);
    switch (mode) {
        case kBrowseMaps:
            return EqualsNoCase(tail, ".tif") ||
                   std::any_of(kMaps.begin(), kMaps.end(),
                               [&](std::string_view ext) { return EqualsNoCase(tail, ext); });
        case kBrowseTrackLogs:
            return EqualsNoCase(tail, ".log") || EqualsNoCase(tail, ".gpx");
        case kBrowsePoi:
            return EqualsNoCase(tail, ".csv") || EqualsNoCase(tail, ".gpx");
        default:
            return false;
    }
}

std::string SizeText(std::uint64_t bytes) {
    constexpr std::uint64_t kK = 1024, kM = kK * 1024, kG = kM * 1024;
    const double s = static_cast<double>(bytes);
    if (bytes > kG)
        return Scaled(s / static_cast<double>(kG), 'G');
    if (bytes > kM)
        return Scaled(s / static_cast<double>(kM), 'M');
    if (bytes <= kK)
        return std::to_string(bytes) + "B";
    return Scaled(s / static_cast<double>(kK), 'K');
}

std::vector<ListingRow> BuildListing(int mode, std::string_view folder,
                                     const std::vector<DirEntry>& entries) {
    std::vector<ListingRow> rows;
    rows.reserve(entries.size() + 1);
    const bool modeKnown = mode == kBrowseMaps || mode == kBrowseTrackLogs || mode == kBrowsePoi;
    if (modeKnown) {
        for (const DirEntry& e : entries) {
            // The folder's own entries are not rows; the way up is added below.
            if (e.name.empty() || e.name == "." || e.name == "..")
                continue;
            if (!e.isFolder && !MatchesMode(mode, e.name))
                continue;
            ListingRow row;
            row.name = e.name;
            row.displayName = SafeDisplayName(e.name);
            row.isFolder = e.isFolder;
            if (!e.isFolder)
                row.sizeText = SizeText(e.size);
            rows.push_back(std::move(row));
        }
        std::sort(rows.begin(), rows.end(), NameBefore);
    }
    if (!IsRoot(folder))
        rows.insert(rows.begin(), ListingRow{"..", "..", {}, true, true});
    return rows;
}

std::size_t InitialRow(const std::vector<ListingRow>& rows, std::string_view cameFrom) {
    if (!cameFrom.empty()) {
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (!rows[i].isUp && rows[i].name == cameFrom)
                return i;
    }
    return 0;
}

bool IsRoot(std::string_view folder) {
    return TrimTrailingSlashes(folder) == "/" || folder.empty();
}

std::string ParentFolder(std::string_view folder) {
    folder = TrimTrailingSlashes(folder);
    const std::size_t slash = folder.rfind('/');
    if (slash == std::string_view::npos || slash == 0)
        return "/";
    return std::string(TrimTrailingSlashes(folder.substr(0, slash)));
}

std::string_view FolderName(std::string_view folder) {
    folder = TrimTrailingSlashes(folder);
    if (folder == "/")
        return {};
    const std::size_t slash = folder.rfind('/');
    return slash == std::string_view::npos ? folder : folder.substr(slash + 1);
}

std::string ChildPath(std::string_view folder, std::string_view name) {
    std::string path(TrimTrailingSlashes(folder));
    if (path.empty() || path.back() != '/')
        path += '/';
    path += name;
    return path;
}

std::string SafeDisplayName(std::string_view name) {
    std::string out;
    out.reserve(name.size());
    const auto* p = reinterpret_cast<const unsigned char*>(name.data());
    const auto* end = p + name.size();
    while (p < end) {
        const unsigned c = *p;
        std::size_t n = 0;
        unsigned cp = 0, min = 0;
        if (c < 0x80) {
            n = 1;
            cp = c;
        } else if (c >= 0xC2 && c <= 0xDF) {
            n = 2, cp = c & 0x1F, min = 0x80;
        } else if (c >= 0xE0 && c <= 0xEF) {
            n = 3, cp = c & 0x0F, min = 0x800;
        } else if (c >= 0xF0 && c <= 0xF4) {
            n = 4, cp = c & 0x07, min = 0x10000;
        }
        bool valid = n > 0 && static_cast<std::size_t>(end - p) >= n;
        for (std::size_t i = 1; valid && i < n; ++i) {
            valid = (p[i] & 0xC0) == 0x80;
            cp = (cp << 6) | (p[i] & 0x3F);
        }
        valid = valid && cp >= min && cp <= 0x10FFFF && !(cp >= 0xD800 && cp <= 0xDFFF);
        if (valid) {
            out.append(reinterpret_cast<const char*>(p), n);
            p += n;
        } else {
            out += "\xEF\xBF\xBD";
            ++p;
        }
    }
    return out;
}

}  // namespace satwalk::browser
