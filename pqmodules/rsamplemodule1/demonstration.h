// Fixed rows of the RAID inventory that show a host how a module's rows look.
#pragma once

#include "frame/description.h"
#include "pqmodules/rsamplemodule1/collection.h"

namespace pq {

/// Adds the rows of "S1TABLE1" and "S1TABLE2".
void AddDemonstrationRows(const RaidInventoryCollection& collection);

void DescribeInventoryDemonstration(ModuleDescription& module);

}  // namespace pq
