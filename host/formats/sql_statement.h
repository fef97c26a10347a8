// Statements of our own on a database that is being made. Errors are DatabaseError.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "host/formats/database.h"
#include "host/repository/store.h"

namespace host {

struct CloseStatement {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, CloseStatement>;

/// Runs statements without rows.
void Execute(sqlite3* handle, const std::string& sql);

/// An INSERT statement that is run once per row.
class Insert {
 public:
  Insert(sqlite3* handle, std::string_view table, std::size_t columnCount);

  Insert& operator<<(std::string_view text);
  Insert& operator<<(std::int64_t number);
  Insert& operator<<(std::nullptr_t) {
    ++bound;
    return *this;
  }
  /// A cell's text, as what it is.
  Insert& Add(CellKind kind, std::string_view text);

  /// All columns must have been given a value. The next row can follow.
  void Run();

 private:
  void Check(int result) const;

  sqlite3* handle;
  StatementHandle statement;
  int bound = 0;
};

}  // namespace host
