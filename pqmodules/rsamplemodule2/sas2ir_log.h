// The controller log of an LSI SAS2-generation adapter, one row per log entry.
#pragma once

#include "pqmodules/rsamplemodule2/collection.h"

namespace pq {

/// Adds the rows of "SAS2IRLOG".
void CollectSas2IrLog(const RaidLogsCollection& collection);

void DescribeSas2IrLog(ModuleDescription& module);

}  // namespace pq
