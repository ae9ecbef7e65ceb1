// Command ids of the main window: menus, keys, scripts and the link
// watchdog all send these.
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
inline constexpr int kLoadMap = 40020;
inline constexpr int kWorldMap = 40029;
inline constexpr int kLoadedMap = 40030;
inline constexpr int kShowMap = 40031;
inline constexpr int kShowTrack = 40032;
inline constexpr int kShowPoi = 40033;
inline constexpr int kSetReferencePoint1 = 40034;  // to 40038
inline constexpr int kSaveTrack = 40039;
inline constexpr int kViewTrack = 40040;
inline constexpr int kCloseTrack = 40041;
inline constexpr int kImportPoi = 40042;
inline constexpr int kGpsSettings = 40043;
inline constexpr int kAlarmOff = 40044;
inline constexpr int kAlarm50 = 40045;  // to 40052 (120)
inline constexpr int kShowReferencePoints = 40053;
inline constexpr int kTrack10s = 40055;  // to 40058 (60 s)
inline constexpr int kGpsInfo = 40059;
inline constexpr int kDeleteAllPoi = 40068;
inline constexpr int kCancelPlacement = 40071;
inline constexpr int kOptions = 40197;
inline constexpr int kUserManual = 40201;
inline constexpr int kRecentMap1 = 40203;  // to 40207
inline constexpr int kTrackInfo = 40301;

}  // namespace satwalk::shell::cmd
