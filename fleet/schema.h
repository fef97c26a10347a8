// The schema `fleet` of the database.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fleet/database.h"
#include "fleet/row_tables.h"

namespace fleet {

enum class SchemaState {
  kNone,
  kOlder,    ///< its tables are of an older version
  kNewer,    ///< its tables are of a version that this build does not know
  kOther,    ///< made by a build with other readers
  kCurrent,  ///< by one with the same as this
};

SchemaState FindSchema(Connection& connection);

/// What InstallSchema() did, a line for people each.
using SchemaChanges = std::vector<std::string>;

/// Makes the schema, its roles and its views, or brings them to what this build describes; jobs
/// that are not done become jobs of this build. Nothing is lost but columns that have another type
/// now. Throws DatabaseFailure, and UsageError of a newer fleet; nothing was done then.
SchemaChanges InstallSchema(Connection& connection, const RowTables& tables);

/// This build, in a database that it fits.
struct Schema {
  std::string parser;  ///< its number
  /// The database's number of each of RowTables.
  std::vector<std::uint16_t> tableNumbers;
};

/// Throws UsageError, with the remedy, when the database is made for other readers, or not at all.
Schema OpenSchema(Connection& connection, const RowTables& tables);
enum class Older { kRefused, kAccepted };
/// The same for commands that only ask: any readers will do.
void RequireSchema(Connection& connection, Older older = Older::kRefused);

}  // namespace fleet
