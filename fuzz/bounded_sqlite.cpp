#include "fuzz/bounded_sqlite.h"

#include <sqlite3.h>

namespace fuzz {
namespace {

int allowedSteps = 0;

int Bound(sqlite3* connection, char** /*error*/, const sqlite3_api_routines* /*api*/) {
  sqlite3_progress_handler(
      connection, allowedSteps, [](void*) { return 1; }, nullptr);
  return SQLITE_OK;
}

}  // namespace

void BoundSqlite(int steps, long long bytes) {
  allowedSteps = steps;
  sqlite3_hard_heap_limit64(bytes);
  sqlite3_auto_extension(reinterpret_cast<void (*)()>(&Bound));
}

}  // namespace fuzz
