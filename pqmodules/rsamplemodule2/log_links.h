// Four storcli reports of one controller, attached whole.
#pragma once

#include "pqmodules/rsamplemodule2/collection.h"

namespace pq {

/// Adds the row of "LSILINK" for `controller`, unless one of the reports is missing.
void CollectLogLinks(const RaidLogsCollection& collection, int controller);

void DescribeLogLinks(ModuleDescription& module);

}  // namespace pq
