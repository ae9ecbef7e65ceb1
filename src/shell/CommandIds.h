// Command ids of the shell's own commands: menus, keys, scripts and the
// link watchdog send these. The map, track and POI features keep theirs in
// their own folders.
#pragma once

namespace satwalk::shell::cmd {

inline constexpr int kExit = 40003;
inline constexpr int kAbout = 40006;
inline constexpr int kLeftSoftKey = 40007;  // the left button of a plain soft-key bar
inline constexpr int kStartGps = 40011;
inline constexpr int kStopGps = 40012;
inline constexpr int kSkyPlot = 40013;
inline constexpr int kSatelliteData = 40014;
inline constexpr int kSpeedometer = 40015;
inline constexpr int kCompass = 40016;
inline constexpr int kMetric = 40017;
inline constexpr int kImperial = 40018;
inline constexpr int kNautical = 40019;
inline constexpr int kGpsSettings = 40043;
inline constexpr int kAlarmOff = 40044;
inline constexpr int kAlarm50 = 40045;  // to 40052 (120)
inline constexpr int kGpsInfo = 40059;
inline constexpr int kOptions = 40197;
inline constexpr int kUserManual = 40201;

}  // namespace satwalk::shell::cmd
