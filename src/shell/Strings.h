// The string table: interface texts by their resource ids, in UTF-8.
#pragma once

#include <string>

namespace satwalk::shell {

// The text of string `id`, or an empty view when the table has no such id.
const char* LoadString(int id);

// Fills the one "%s" of a table string (or of any format) with `argument`.
std::string FormatString(const char* format, const std::string& argument);

// Said once when the receiver speaks only other satellite systems' talkers
// while the all-talkers setting is off: names the setting.
const char* OtherTalkersHint();

inline constexpr int kStrCaption = 40208;
inline constexpr int kStrConfigureReceiverFirst = 40092;
inline constexpr int kStrBluetoothPortFailed = 40093;
inline constexpr int kStrCannotConnect = 40094;
inline constexpr int kStrStartLinkFailed = 40095;
inline constexpr int kStrConnectionLost = 40096;
inline constexpr int kStrDataTimeout = 40097;
inline constexpr int kStrConfirmExit = 40098;
inline constexpr int kStrStopGps = 40108;
inline constexpr int kStrStartGps = 40109;
inline constexpr int kStrMenu = 40077;
inline constexpr int kStrView = 40078;

}  // namespace satwalk::shell
