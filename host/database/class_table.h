// The table of a class in a database: its columns, its rows and what is told of them.
#pragma once

#include <cstdint>

#include "host/collect/table_view.h"
#include "host/database/sql_tables.h"

namespace host {

/// Adds a table of a collection, the `position`th there.
void AddClassTable(const TableView& view, std::int64_t position, SqlTables& tables);

/// Adds the classes and columns that modules describe and no collection has.
void AddDescribedClasses(SqlTables& tables);

}  // namespace host
