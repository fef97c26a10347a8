// A collection as a folder of CSV files, one for each table (docs/csv.md).
#pragma once

#include <filesystem>

#include "host/collect/collection.h"
#include "host/text/screen.h"

namespace host {

/// Writes CLASS.csv for each table, a file for each kind of part, such as drives.csv, and
/// findings.csv and evidence.csv into `folder`, which is there and empty. Throws std::runtime_error
/// or UsageError for a file that cannot be written.
void WriteCsvFolder(const Collection& collection, const Screen& screen,
                    const std::filesystem::path& folder);

}  // namespace host
