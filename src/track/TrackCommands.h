// Command ids of the track feature's menu entries.
#pragma once

namespace satwalk::track::cmd {

inline constexpr int kShowTrack = 40032;
inline constexpr int kSaveTrack = 40039;
inline constexpr int kViewTrack = 40040;
inline constexpr int kCloseTrack = 40041;
inline constexpr int kTrack10s = 40055;  // to 40058 (60 s)
inline constexpr int kTrackInfo = 40301;

}  // namespace satwalk::track::cmd
