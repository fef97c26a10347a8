#include "host/database/prepared_query.h"

#include <sqlite3.h>

#include <memory>

#include "host/database/query_guard.h"

namespace host {
namespace {

struct ResetStatement {
  void operator()(sqlite3_stmt* statement) const { sqlite3_reset(statement); }
};

}  // namespace

PreparedQuery::PreparedQuery(Database& database, const std::string& sql)
    : handle(database.handle), timeLimit(database.queryTime) {
  sqlite3_stmt* raw = nullptr;
  const int result = sqlite3_prepare_v3(handle, sql.c_str(), static_cast<int>(sql.size()),
                                        SQLITE_PREPARE_PERSISTENT, &raw, nullptr);
  if (result != SQLITE_OK) FailAsSqlite(handle);
  statement.reset(raw);
  names = ListColumnNames(raw);
}

void PreparedQuery::Run(const std::function<void(const Database::Values&)>& onRow) {
  const TimeGuard time(handle, timeLimit);
  const std::unique_ptr<sqlite3_stmt, ResetStatement> run(statement.get());
  Database::Values values(names.size());
  int result = SQLITE_DONE;
  while ((result = sqlite3_step(run.get())) == SQLITE_ROW) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (!ReadColumn(run.get(), static_cast<int>(i), values[i])) FailAsSqlite(handle);
    }
    onRow(values);
  }
  if (result == SQLITE_DONE) return;
  time.FailIfTimeIsUp();
  FailAsSqlite(handle);
}

}  // namespace host
