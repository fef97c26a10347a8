// All that a batch changes of what the database has, gathered so that each table is told once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "fleet/binary_rows.h"
#include "fleet/database.h"
#include "fleet/row_tables.h"

namespace fleet {

/// What is added are rows as COPY has them.
struct BatchChanges {
  struct OfTable {
    /// Each a server and a row of it; of packed rows a server, all of whose rows are removed.
    std::vector<std::int64_t> removedServers, removedRows;
    /// Each a server and a row of it that is another now, and the cells of these by column.
    std::vector<std::int64_t> changedServers, changedRows;
    std::vector<std::vector<Value>> changedCells;
    std::string added;
    BinaryRows packs;
  };
  std::map<std::size_t, OfTable> tables;  ///< by their places in RowTables
  std::vector<std::int64_t> judgedServers, severities;
  std::vector<std::int64_t> stateServers;  ///< whose states are replaced
  BinaryRows states;
  std::vector<std::int64_t> factObjects;  ///< whose results and drive errors are replaced
  std::string results;
  std::string driveErrors;
  std::size_t rows = 0;  ///< written or removed, apart from states
};

/// Takes what is added out of `changes`.
void ApplyChanges(BatchChanges& changes, const RowTables& tables, Connection& connection);

}  // namespace fleet
