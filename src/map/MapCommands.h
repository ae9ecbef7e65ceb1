// Command ids of the map feature's menu entries, keys and soft keys.
#pragma once

namespace satwalk::map::cmd {

inline constexpr int kLoadMap = 40020;
inline constexpr int kCloseMap = 40021;
inline constexpr int kWorldMap = 40029;
inline constexpr int kLoadedMap = 40030;
inline constexpr int kShowMap = 40031;
inline constexpr int kSetReferencePoint1 = 40034;  // to 40038
inline constexpr int kShowReferencePoints = 40053;
inline constexpr int kCancelPlacement = 40071;
inline constexpr int kRecentMap1 = 40203;  // to 40207

}  // namespace satwalk::map::cmd
