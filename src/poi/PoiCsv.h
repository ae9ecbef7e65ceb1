// POI files: comma-separated 8-bit text, one point a line,
//   longitude,latitude,name[,note]
// read byte by byte with the rules the files in use were written for:
// - ';' starts a comment that runs up to and including the next LF or up
//   to a zero byte. The LF it eats does not end the record, so text after a
//   comment carries the interrupted record on into the next line. (Kept as
//   it is: files rely on it.)
// - The comment's skip does not watch for the end of the file: the read
//   past the end yields no byte, which it takes as a zero byte, so the skip
//   ends there and the file's end is handled as always. (Kept as it is.)
// - ',', CR and '@' end a field; '"' is dropped wherever it stands.
// - LF appends the record in progress (always, even an empty one) without
//   ending a field: a line ended by a bare LF loses its last field.
// - A field that reaches 99 bytes is emptied and collected again from
//   empty. A name or note keeps its first 19 bytes.
// - At the end of the file pending text becomes the name, or the note once
//   any line has had a fourth column, and that record is appended.
// - Texts end at a NUL byte.
// Memory stays bounded whatever the input: a field never holds more than 98
// bytes, the file is read in fixed blocks, and the reader stops at a budget
// of records (every LF is one, even on an empty line).
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "CursorList.h"
#include "PoiText.h"

namespace satwalk::poi {

// 19 bytes of 8-bit text decode to at most 57 bytes of UTF-8.
inline constexpr std::size_t kPoiTextBytes = 58;

struct PoiRecord {
    double latitude = 0;            // signed degrees, column 1
    double longitude = 0;           // signed degrees, column 0
    char name[kPoiTextBytes] = {};  // column 2, UTF-8, NUL-terminated: the label
    char note[kPoiTextBytes] = {};  // column 3, UTF-8, NUL-terminated: kept, not shown
    std::uint32_t category = 0;     // the point's own icon (a GPX waypoint's); 0: the group's
};

using PoiList = track::CursorList<PoiRecord>;

// Records one file gives at most (132 MB of them) and all files together:
// past them a file is read up to the budget and the user is told.
inline constexpr std::uint64_t kMaxPoisPerFile = 1'000'000;
inline constexpr std::uint64_t kMaxPois = 2'000'000;

using PoiSink = std::function<void(const PoiRecord&)>;

// The byte walker, fed in pieces of any size, handing each record to the
// sink while fewer than `maxRecords` have gone there.
class PoiCsvParser {
  public:
    static constexpr std::size_t kFieldDropLength = 99;
    static constexpr std::size_t kTextCut = 19;

    PoiCsvParser(PoiEncoding encoding, PoiSink sink, std::uint64_t maxRecords = kMaxPoisPerFile)
        : decoder_(encoding), sink_(std::move(sink)), maxRecords_(maxRecords) {}
    PoiCsvParser(PoiEncoding encoding, PoiList& list)
        : PoiCsvParser(encoding, [&list](const PoiRecord& r) { list.Append(r); }) {}

    void Feed(const char* data, std::size_t size);
    void Finish();  // the end of the file
    // A record came past the budget: the rest of the file need not be read.
    bool Full() const { return records_ > maxRecords_; }

  private:
    void Emit();
    void EndField();
    void Store(char (&to)[kPoiTextBytes]);

    PoiTextDecoder decoder_;
    PoiSink sink_;
    std::uint64_t maxRecords_;
    std::uint64_t records_ = 0;
    bool inComment_ = false;
    char text_[kFieldDropLength + 1] = {};
    std::size_t length_ = 0;
    std::uint32_t field_ = 0;
    bool fourthColumn_ = false;
    PoiRecord record_;
};

enum class PoiRead {
    Read,        // to the end
    Truncated,   // up to the budget: the file had more records
    OpenFailed,  // missing, unreadable, not a regular file: nothing given
};

// Reads the file at `path`, handing at most `maxRecords` records to the sink.
PoiRead ReadPoiCsv(const std::string& path, const PoiSink& onRecord,
                   std::uint64_t maxRecords = kMaxPoisPerFile);
// The same into `list`; false when the file cannot be opened.
bool ReadPoiCsv(const std::string& path, PoiList& list);

}  // namespace satwalk::poi
