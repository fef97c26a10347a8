// The firmware's terminal log of the first controller, one row per line.
#pragma once

#include "pqmodules/rsamplemodule2/collection.h"

namespace pq {

/// Adds the rows of "FWTERMLOG".
void CollectTermLog(const RaidLogsCollection& collection);

void DescribeTermLog(ModuleDescription& module);

}  // namespace pq
