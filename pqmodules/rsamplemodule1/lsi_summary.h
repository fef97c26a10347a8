// The summary of the first LSI controller.
#pragma once

#include "frame/description.h"
#include "frame/labelled_columns.h"
#include "pqmodules/rsamplemodule1/collection.h"

namespace pq {

/// The facts of a summary. The function number ends the row.
const LabelledColumns& GetLsiSummaryFacts();

/// Adds the row of "RAIDINFO". A summary without a function number adds none.
void CollectLsiSummary(const RaidInventoryCollection& collection);

void DescribeLsiSummary(ModuleDescription& module);

}  // namespace pq
