// What the collectors of the RAID inventory module share: its tables and its log.
#pragma once

#include <string>

#include "frame/module.h"

namespace pq {

/// Table classes: keys of the module's registry and classes of its instances.
inline const std::string kSample1Table1 = "S1TABLE1";
inline const std::string kSample1Table2 = "S1TABLE2";
inline const std::string kJunAddTable = "JUNADDTABLE";
inline const std::string kRaidInfo = "RAIDINFO";
inline const std::string kController = "CONTROLLER";
inline const std::string kPmcInfo = "PMCINFO";
inline const std::string kPmcVer = "PMCVER";
inline const std::string kPmcLink = "PMCLINK";

inline constexpr ModuleLog kInventoryLog{"pqmodules/rsamplemodule1"};

}  // namespace pq
