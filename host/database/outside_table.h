// Tables that are kept elsewhere, as SQLite sees them, and the values that pass between it and us.
#pragma once

#include "host/database/database.h"

struct sqlite3;
struct sqlite3_context;
struct sqlite3_value;

namespace host {

/// Adds `table`, which outlives the connection, as a temporary table: its name comes before those
/// of the database itself. Throws DatabaseError.
void AddOutsideTable(sqlite3* handle, const OutsideTable& table);

/// A text is a view of SQLite's own.
SqlValue TakeValue(sqlite3_value* value);

enum class Lifetime { kWhileQueryRuns, kUntilNextCall };
/// `lifetime` is that of a text.
void GiveResult(sqlite3_context* context, const SqlValue& value, Lifetime lifetime);

}  // namespace host
