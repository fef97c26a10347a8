// The sensor data repository (SDR) of the BMC.
#pragma once

#include "frame/description.h"
#include "pqmodules/rbmcinfo/collection.h"

namespace pq {

/// Adds the rows of "SDRINFO". Returns 0 after the last one, 1 after a failure or when nothing was
/// added.
int CollectSdr(const BmcCollection& collection);

void DescribeSdr(ModuleDescription& module);

}  // namespace pq
