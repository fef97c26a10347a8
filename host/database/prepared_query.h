// Statements of the program's own that are made once and run for one machine after the other.
#pragma once

#include <functional>
#include <string>

#include "host/database/database.h"
#include "host/database/sql_statement.h"

namespace host {

class PreparedQuery {
 public:
  /// `database` outlives it. Throws DatabaseError.
  PreparedQuery(Database& database, const std::string& sql);

  const Database::Names& Columns() const { return names; }
  /// Calls `onRow` for each row of the answer, if there are any. Throws DatabaseError, also when it
  /// takes longer than a query of the database may.
  void Run(const std::function<void(const Database::Values&)>& onRow);

 private:
  sqlite3* handle;
  std::chrono::seconds timeLimit;
  StatementHandle statement;
  Database::Names names;
};

}  // namespace host
