// The tables of a database that are not of classes (docs/sql.md).
#pragma once

#include "host/database/sql_tables.h"

namespace host {

inline constexpr char kMachineTable[] = "machine";
inline constexpr char kModulesTable[] = "modules";
inline constexpr char kTablesTable[] = "tables";
inline constexpr char kNotesTable[] = "notes";
inline constexpr char kDoubtsTable[] = "doubts";
inline constexpr char kProblemsTable[] = "problems";
inline constexpr char kColumnsTable[] = "columns";
inline constexpr char kAttachmentsTable[] = "attachments";
inline constexpr char kLogTable[] = "log";

/// Makes them.
void MakeOwnTables(SqlTables& tables);

}  // namespace host
