// The string table: interface texts by their resource ids, in UTF-8.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace satwalk::common {

// The text of string `id`, or an empty view when the table has no such id.
const char* LoadString(int id);

// Fills the one "%s" of a table string (or of any format) with `argument`.
std::string FormatString(const char* format, const std::string& argument);
// Fills the "%s" of a format in order; text of an argument is never read as
// a format itself.
std::string FormatStrings(const char* format, std::initializer_list<std::string_view> arguments);

inline constexpr int kStrCancel = 40004;
inline constexpr int kStrOk = 40005;
inline constexpr int kStrAltitude = 40081;
inline constexpr int kStrSpeed = 40082;
inline constexpr int kStrCourse = 40083;
inline constexpr int kStrSatellites = 40084;
inline constexpr int kStrAlarm = 40088;
inline constexpr int kStrOff = 40089;

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
inline constexpr int kStrLogBeingWritten = 40105;
inline constexpr int kStrOpenFile = 40118;
inline constexpr int kStrRadioSwitchFailed = 40192;
inline constexpr int kStrStopGps = 40108;
inline constexpr int kStrStartGps = 40109;
inline constexpr int kStrMenu = 40077;
inline constexpr int kStrView = 40078;

// A file past its reader's budget: the file's name and how much was shown.
inline constexpr int kStrTrackLogTooLarge = 41601;
inline constexpr int kStrPoiFileTooLarge = 41602;
// A recording that could not be written, with the reason below, in the
// window's title and the state's status until a write succeeds again.
inline constexpr int kStrTrackRecordingFailed = 41603;
inline constexpr int kStrNmeaRecordingFailed = 41604;
inline constexpr int kStrReasonDiskFull = 41605;
inline constexpr int kStrReasonFolderMissing = 41606;
inline constexpr int kStrReasonNotPermitted = 41607;
inline constexpr int kStrReasonWriteError = 41608;
// The settings could not be saved at exit: the file and the reason.
inline constexpr int kStrSaveOptionsFailed = 41609;
// A reference-point file that is there but cannot be read: its name.
inline constexpr int kStrReferenceFileUnreadable = 41610;
// The unreadable file was kept under the second name before a new one was
// written.
inline constexpr int kStrReferenceFileKept = 41611;

// The reason text (one of the four above) for an errno of a failed write.
const char* WriteFailureReason(int error);

// The degree sign (character 176) as UTF-8, drawn after angles.
inline constexpr const char* kDegreeSign = "\xC2\xB0";

}  // namespace satwalk::common
