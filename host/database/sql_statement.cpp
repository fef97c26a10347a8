#include "host/database/sql_statement.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <charconv>

#include "host/database/query_guard.h"
#include "host/database/sql_names.h"

namespace host {

void CloseStatement::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

void Execute(sqlite3* handle, const std::string& sql) {
  if (sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    FailAsSqlite(handle);
  }
}

std::string MakeInsert(std::string_view table, std::size_t columnCount) {
  std::string places = "?";
  for (std::size_t i = 1; i < columnCount; ++i) places += ",?";
  return fmt::format("INSERT INTO {} VALUES ({})", QuoteName(table), places);
}

Database::Names ListColumnNames(sqlite3_stmt* statement) {
  Database::Names names;
  const int count = sqlite3_column_count(statement);
  for (int i = 0; i < count; ++i) names.emplace_back(sqlite3_column_name(statement, i));
  return names;
}

bool ReadColumn(sqlite3_stmt* statement, int column, Database::Value& value) {
  const int type = sqlite3_column_type(statement, column);
  value = {};
  if (type == SQLITE_NULL) return true;
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  if (text == nullptr && sqlite3_errcode(sqlite3_db_handle(statement)) == SQLITE_NOMEM) {
    return false;
  }
  value.kind = type == SQLITE_INTEGER ? CellKind::kInteger
               : type == SQLITE_FLOAT ? CellKind::kReal
                                      : CellKind::kText;  // bytes, too
  if (text != nullptr) {
    value.text.assign(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
  }
  return true;
}

Statement::Statement(sqlite3* handle, const std::string& sql) : handle(handle) {
  sqlite3_stmt* raw = nullptr;
  Check(sqlite3_prepare_v2(handle, sql.c_str(), -1, &raw, nullptr));
  statement.reset(raw);
}

Statement& Statement::operator<<(std::string_view text) {
  Check(sqlite3_bind_text64(statement.get(), ++bound, text.data(), text.size(), SQLITE_TRANSIENT,
                            SQLITE_UTF8));
  return *this;
}

Statement& Statement::Borrow(std::string_view text) {
  Check(sqlite3_bind_text64(statement.get(), ++bound, text.data(), text.size(), SQLITE_STATIC,
                            SQLITE_UTF8));
  return *this;
}

Statement& Statement::operator<<(std::int64_t number) {
  Check(sqlite3_bind_int64(statement.get(), ++bound, number));
  return *this;
}

Statement& Statement::operator<<(double number) {
  Check(sqlite3_bind_double(statement.get(), ++bound, number));
  return *this;
}

Statement& Statement::Add(CellKind kind, std::string_view text) {
  if (kind == CellKind::kNothing) return *this << nullptr;
  if (kind == CellKind::kInteger) {
    std::int64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return *this << number;
  }
  if (kind == CellKind::kReal) {
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return *this << number;
  }
  return *this << text;
}

void Statement::Run() {
  if (sqlite3_step(statement.get()) != SQLITE_DONE) FailAsSqlite(handle);
  sqlite3_reset(statement.get());
  sqlite3_clear_bindings(statement.get());
  bound = 0;
}

void Statement::Check(int result) const {
  if (result != SQLITE_OK) FailAsSqlite(handle);
}

}  // namespace host
