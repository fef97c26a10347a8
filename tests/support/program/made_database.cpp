#include "tests/support/program/made_database.h"

#include <sqlite3.h>

#include <stdexcept>

namespace test {

void MakeDatabase(const std::string& path, const std::string& sql) {
  sqlite3* handle = nullptr;
  std::string problem;
  if (sqlite3_open(path.c_str(), &handle) != SQLITE_OK ||
      sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    problem = sqlite3_errmsg(handle);
  }
  sqlite3_close(handle);
  if (!problem.empty()) throw std::runtime_error(path + ": " + problem);
}

}  // namespace test
