// The inventory of field-replaceable units (FRU) and the system event log (SEL) of the BMC.
#pragma once

#include "frame/description.h"
#include "pqmodules/rbmcinfo/collection.h"

namespace pq {

/// Adds the rows of "FRUINFO". Returns 0 after the last one, 1 after a failure.
int CollectFru(const BmcCollection& collection);
/// Adds the rows of "SELINFO". Returns as CollectFru.
int CollectSel(const BmcCollection& collection);

void DescribeFruAndSel(ModuleDescription& module);

}  // namespace pq
