// Command ids of the POI feature's menu entries.
#pragma once

namespace satwalk::poi::cmd {

inline constexpr int kShowPoi = 40033;
inline constexpr int kImportPoi = 40042;
inline constexpr int kDeleteAllPoi = 40068;

}  // namespace satwalk::poi::cmd
