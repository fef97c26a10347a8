// All that a batch changes of what the database has, gathered so that each table is told once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "fleet/database.h"
#include "fleet/row_tables.h"

namespace fleet {

/// What is added are rows as COPY has them.
struct BatchChanges {
  struct OfTable {
    std::vector<std::int64_t> removedServers, removedRows;  ///< each a server and a row of it
    std::string added;
  };
  std::map<std::size_t, OfTable> tables;  ///< by their places in RowTables
  std::vector<std::int64_t> judgedServers, severities;
  std::vector<std::int64_t> stateServers;  ///< whose states are replaced
  std::string states;
  std::vector<std::int64_t> factObjects;  ///< whose results and drive errors are replaced
  std::string results;
  std::string driveErrors;
  std::size_t rows = 0;  ///< written or removed, apart from states
};

void ApplyChanges(const BatchChanges& changes, const RowTables& tables, Connection& connection);

}  // namespace fleet
