// The summary of the first LSI controller.
#pragma once

#include "frame/labelled_columns.h"
#include "frame/module.h"
#include "frame/table_source.h"

namespace pq {

/// The facts of a summary. The function number ends the row.
const LabelledColumns& LsiSummaryFacts();

/// Adds the row of "RAIDINFO". A summary without a function number adds none.
void CollectLsiSummary(RRepository& repo);

TableSource DescribeLsiSummary();

}  // namespace pq
