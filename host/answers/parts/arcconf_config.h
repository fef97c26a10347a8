// The configuration of a Microchip (Adaptec) controller, as arcconf prints and archives it.
#pragma once

#include "host/answers/parts/report.h"

namespace host {

/// Begins the ids of these controllers: "mchp1".
inline constexpr std::string_view kMicrochipId = "mchp";

/// Appends the controller, its drives, volumes, groups, missing drives, cache backups and
/// enclosures that the report on "mchpN" tells of. That the report is not whole, in words; empty
/// when it is, as far as it tells.
std::string ReadArcconfConfig(const Report& report, Parts& parts);

}  // namespace host
