// The contents of a repository: one table per class, one row per AddToRepository. A row costs what
// its own texts cost; all that rows have in common is kept once.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "frame/halyard/repository.h"
#include "host/repository/rows.h"

namespace host {

struct Table {
  std::vector<Column> columns;  ///< every key of any row, in the order in which they first came
  Rows rows;
};

/// The tables by class name; only classes that have rows. Valid as long as the repository lives; an
/// AddToRepository leaves references to tables and rows valid.
REPOSITORY_API const std::map<std::string, Table>& TablesOf(
    const halyard::repository::RRepository& repository);

/// Adds a row as an instance would, with one text in `values` for each column of `shape`.
REPOSITORY_API void AddRow(halyard::repository::RRepository& repository, const RowShape& shape,
                           const std::vector<std::string>& values);

}  // namespace host
