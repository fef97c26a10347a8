// The support archive of a Microchip (formerly PMC) controller: its configuration as rows, its
// report files whole.
#pragma once

#include <string_view>

#include "frame/description.h"
#include "frame/labelled_columns.h"
#include "pqmodules/rsamplemodule1/collection.h"

namespace pq {

/// The labels of a configuration report. A line with the label of the mode may also tell the model.
const LabelledColumns& GetMicrochipConfigFacts();

/// The fact in a line (zero-terminated) of a configuration report; mode and model told apart.
LabelledFact ReadMicrochipConfigFact(std::string_view line);

/// Adds one row each of "PMCINFO", "PMCVER" and "PMCLINK", or none at all.
void CollectMicrochipArchive(const RaidInventoryCollection& collection);

void DescribeMicrochipArchive(ModuleDescription& module);

}  // namespace pq
