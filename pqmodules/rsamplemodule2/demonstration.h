// Fixed rows of the RAID logs that show a host how tables of readings and of texts look.
#pragma once

#include "pqmodules/rsamplemodule2/collection.h"

namespace pq {

/// Adds the rows of "S2TABLE1" and "S2TABLE2".
void AddDemonstrationRows(const RaidLogsCollection& collection);

void DescribeLogsDemonstration(ModuleDescription& module);

}  // namespace pq
