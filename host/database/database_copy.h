// Takes the tables of one database over into another.
#pragma once

#include "host/database/database.h"
#include "host/database/sql_tables.h"

namespace host {

/// Adds all tables of `from`, whose rows are those of one machine; `to` is for several.
void CopyTables(Database& from, SqlTables& to);

}  // namespace host
