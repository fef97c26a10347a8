// The table classes of the RAID inventory: keys of the module's registry and classes of its
// instances.
#pragma once

namespace pq {

inline constexpr char kSample1Table1[] = "S1TABLE1";
inline constexpr char kSample1Table2[] = "S1TABLE2";
inline constexpr char kJunAddTable[] = "JUNADDTABLE";
inline constexpr char kRaidInfo[] = "RAIDINFO";
inline constexpr char kController[] = "CONTROLLER";
inline constexpr char kPmcInfo[] = "PMCINFO";
inline constexpr char kPmcVer[] = "PMCVER";
inline constexpr char kPmcLink[] = "PMCLINK";

}  // namespace pq
