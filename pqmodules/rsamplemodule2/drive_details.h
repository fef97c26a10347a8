// The detailed report of every drive of the first controller, one row per drive.
#pragma once

#include "pqmodules/rsamplemodule2/collection.h"

namespace pq {

/// Adds the rows of "PDLIST".
void CollectDriveDetails(const RaidLogsCollection& collection);

void DescribeDriveDetails(ModuleDescription& module);

}  // namespace pq
