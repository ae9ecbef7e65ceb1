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

// Track files and their statistics.
inline constexpr int kStrTrackInfo = 40301;      // "轨迹信息", the dialog and its menu entry
inline constexpr int kStrNotATrackFile = 40302;  // "%s" takes the file's name
inline constexpr int kStrTrackFileCut = 40303;   // "%s" takes the file's name
inline constexpr int kStrSaveGpxTrack = 40304;   // the option
inline constexpr int kStrStatDistance = 40310;
inline constexpr int kStrStatDuration = 40311;
inline constexpr int kStrStatMovingTime = 40312;
inline constexpr int kStrStatAverageSpeed = 40313;
inline constexpr int kStrStatMaxSpeed = 40314;
inline constexpr int kStrStatGain = 40315;
inline constexpr int kStrStatLoss = 40316;
inline constexpr int kStrStatMinElevation = 40317;
inline constexpr int kStrStatMaxElevation = 40318;
inline constexpr int kStrStatPoints = 40319;
inline constexpr int kStrElevationProfile = 40320;
inline constexpr int kStrSpeedProfile = 40321;
inline constexpr int kStrNoTrackData = 40322;
inline constexpr int kStrLiveTrack = 40323;

// The degree sign (character 176) as UTF-8, drawn after angles.
inline constexpr const char* kDegreeSign = "\xC2\xB0";

}  // namespace satwalk::common
