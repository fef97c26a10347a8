// A collection as a folder of CSV files, one for each table (docs/csv.md).
#pragma once

#include <filesystem>

#include "host/collect/collection.h"

namespace host {

/// Writes CLASS.csv for each table into `folder`, which is there and empty. Throws
/// std::runtime_error or UsageError for a file that cannot be written.
void WriteCsvFolder(const Collection& collection, bool identifiesRows,
                    const std::filesystem::path& folder);

}  // namespace host
