#include "host/database/plain_table.h"

#include <fmt/format.h>

#include <string>

#include "host/database/sql_names.h"

namespace host {
namespace {

sqlite3* MakeTable(sqlite3* handle, std::string_view name,
                   std::span<const PlainTable::Column> columns) {
  std::string definitions;
  for (const PlainTable::Column& column : columns) {
    definitions += fmt::format("{}{} {}", definitions.empty() ? "" : ", ", QuoteName(column.name),
                               column.type);
  }
  Execute(handle, fmt::format("CREATE TABLE {} ({})", QuoteName(name), definitions));
  return handle;
}

}  // namespace

PlainTable::PlainTable(Database& database, std::string_view name, std::span<const Column> columns)
    : insert(MakeTable(database.handle, name, columns), MakeInsert(name, columns.size())) {}

}  // namespace host
