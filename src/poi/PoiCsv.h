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
#pragma once

#include <cstddef>
#include <cstdint>
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

inline constexpr const char* kOpenPoiFileFailed = "Open POI File failed!";

// The byte walker, fed in pieces of any size, appending to `list`.
class PoiCsvParser {
  public:
    static constexpr std::size_t kFieldDropLength = 99;
    static constexpr std::size_t kTextCut = 19;

    PoiCsvParser(PoiEncoding encoding, PoiList& list) : decoder_(encoding), list_(list) {}

    void Feed(const char* data, std::size_t size);
    void Finish();  // the end of the file

  private:
    void EndField();
    void Store(char (&to)[kPoiTextBytes]);

    PoiTextDecoder decoder_;
    PoiList& list_;
    bool inComment_ = false;
    char text_[kFieldDropLength + 1] = {};
    std::size_t length_ = 0;
    std::uint32_t field_ = 0;
    bool fourthColumn_ = false;
    PoiRecord record_;
};

// Reads the file at `path` into `list`; false when it cannot be opened
// (missing, unreadable, not a regular file), with nothing added.
bool ReadPoiCsv(const std::string& path, PoiList& list);

}  // namespace satwalk::poi
