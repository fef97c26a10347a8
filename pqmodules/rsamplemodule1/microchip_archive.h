// The support archive of a Microchip (formerly PMC) controller: its configuration as rows, its
// report files whole.
#pragma once

#include <string>
#include <string_view>

#include "frame/labelled_columns.h"
#include "frame/module.h"
#include "frame/table_source.h"

namespace pq {

/// The labels of a configuration report. The controller's mode stands for its model too.
const LabelledColumns& MicrochipConfigFacts();

/// The fact in a line (zero-terminated) of a configuration report; mode and model told apart.
LabelledFact ReadMicrochipConfigFact(std::string_view line);

/// Adds one row each of "PMCINFO", "PMCVER" and "PMCLINK", or none at all.
void CollectMicrochipArchive(RRepository& repo);

TableSources DescribeMicrochipArchive();

}  // namespace pq
