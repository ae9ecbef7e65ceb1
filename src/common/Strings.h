// The string table: interface texts by their resource ids, in UTF-8.
#pragma once

#include <string>

namespace satwalk::common {

// The text of string `id`, or an empty view when the table has no such id.
const char* LoadString(int id);

// Fills the one "%s" of a table string (or of any format) with `argument`.
std::string FormatString(const char* format, const std::string& argument);

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

// The NMEA relay: its option, said once when it cannot listen (%s: the
// address and the system's reason); the receiver settings' entry of a gpsd
// found on this machine.
inline constexpr int kStrRelayOption = 41701;
inline constexpr int kStrRelayCannotListen = 41702;
inline constexpr int kStrLocalGpsd = 41703;

// The degree sign (character 176) as UTF-8, drawn after angles.
inline constexpr const char* kDegreeSign = "\xC2\xB0";

}  // namespace satwalk::common
