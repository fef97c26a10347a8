// What Intel's RAID tools, rstcli and IntelVROCCli, tell.
#pragma once

#include "host/answers/parts/collected_rows.h"
#include "host/answers/parts/report.h"

namespace host {

/// Appends the controllers, groups, volumes and drives of a report. Their places are lines of it.
void ReadIntelReport(const Report& report, Parts& parts);

/// Reads what the tools printed, and appends the source "intel". The tables of the classes are
/// places of what they show as it is printed.
void ReadIntel(const CollectedRows& rows, Parts& parts);

}  // namespace host
