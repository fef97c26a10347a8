// Tables that no part covers, by their cells, and the tools' reports by their lines.
#pragma once

#include "host/answers/difference/difference.h"
#include "host/answers/difference/side.h"

namespace host {

/// Adds to the difference's cells, and the tables that only one side could read.
void CompareCells(const Sides& sides, const DifferenceOptions& options, Difference& difference);

/// Adds the reports that differ.
void CompareReports(const Sides& sides, Difference& difference);

}  // namespace host
