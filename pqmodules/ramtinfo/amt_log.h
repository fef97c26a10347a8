// The event log of Intel AMT, after asking the operator for address and credentials.
#pragma once

#include "frame/description.h"
#include "pqmodules/ramtinfo/collection.h"

namespace pq {

/// Asks the operator and adds the rows of "AMTLOG": one instance that grows line by line. Returns
/// 0, also when the operator declines, or 1 after a failure.
int CollectAmtLog(const AmtCollection& collection);

void DescribeAmtLog(ModuleDescription& module);

}  // namespace pq
