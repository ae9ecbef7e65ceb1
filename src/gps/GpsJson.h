// The fix record as one JSON object, as `satwalk-tool decode` prints it and
// the program's state dump embeds it.
#pragma once

#include <string>

#include "GpsState.h"

namespace satwalk::gps {

// Appends the members of the fix (no braces): every text field by name, the
// 12 satellite rows, latitudeDegrees, longitudeDegrees and fixValid from
// `values` (the record's numbers) and fixTimeLocal ("YYYY-MM-DD
// hh:mm:ss.mmm", or null when `timeKnown` is false).
void AppendGpsJsonMembers(std::string& out, const GpsState& state, const FixValues& values,
                          bool timeKnown);

// The local fix time as "YYYY-MM-DD hh:mm:ss.mmm".
std::string FormatFixTime(FileTime time);

}  // namespace satwalk::gps
