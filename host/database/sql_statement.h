// Statements of our own on a database that is being made. Errors are DatabaseError.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "host/database/database.h"
#include "host/repository/store.h"

struct sqlite3;
struct sqlite3_stmt;

namespace host {

struct CloseStatement {
  void operator()(sqlite3_stmt* statement) const;
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, CloseStatement>;

/// Runs statements without rows.
void Execute(sqlite3* handle, const std::string& sql);

/// What the columns of its answer are called.
Database::Names ListColumnNames(sqlite3_stmt* statement);
/// Reads a column of the row at hand. False when there was no memory for it.
bool ReadColumn(sqlite3_stmt* statement, int column, Database::Value& value);

/// A statement without rows that is run many times, each time with other values for its places.
class Statement {
 public:
  Statement(sqlite3* handle, const std::string& sql);

  /// The value for the next place.
  Statement& operator<<(std::string_view text);
  Statement& operator<<(std::int64_t number);
  Statement& operator<<(double number);
  Statement& operator<<(std::nullptr_t) {
    ++bound;
    return *this;
  }
  /// A cell's text, as what it is.
  Statement& Add(CellKind kind, std::string_view text);
  /// A text that stays where it is until Run() is over: it may be a whole report, which is not
  /// copied once more.
  Statement& Borrow(std::string_view text);

  /// To be called when each place has its value.
  void Run();

 private:
  void Check(int result) const;

  sqlite3* handle;
  StatementHandle statement;
  int bound = 0;
};

/// INSERT of rows with so many columns.
std::string MakeInsert(std::string_view table, std::size_t columnCount);

}  // namespace host
