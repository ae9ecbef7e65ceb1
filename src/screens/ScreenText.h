// Interface texts the screens draw (UTF-8), keyed by their string ids.
#pragma once

namespace satwalk::screens::text {

inline constexpr const char* kAltitude = "海拔";      // 40081
inline constexpr const char* kSpeed = "速度";         // 40082
inline constexpr const char* kCourse = "方位角";      // 40083
inline constexpr const char* kSatellites = "卫星数";  // 40084
inline constexpr const char* kAlarm = "警报";         // 40088
inline constexpr const char* kOff = "关闭";           // 40089

// The degree sign (character 176) as UTF-8.
inline constexpr const char* kDegree = "\xC2\xB0";

}  // namespace satwalk::screens::text
