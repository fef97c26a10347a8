#include "host/database/database_copy.h"

#include <fmt/format.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace host {
namespace {

void CopyTable(Database& from, const std::string& name, SqlTables& to) {
  SqlTable* table = nullptr;
  SqlTables::Places places;
  std::optional<SqlRows> rows;
  from.Query(
      fmt::format("SELECT * FROM {}", QuoteName(name)),
      [&](const Database::Names& columnNames) {
        const bool isOfClass = !columnNames.empty() && columnNames.front() == kRowColumn;
        table = &to.Find(name, isOfClass);
        std::vector<SqlColumn> wanted;
        for (const std::string& column : columnNames) {
          const bool isProperty = isOfClass && !wanted.empty();
          wanted.push_back(
              {.name = column, .key = isProperty ? column : std::string(), .type = kAnyType});
        }
        places = to.Provide(*table, wanted);
        rows.emplace(to.AddRows(*table));
      },
      [&](const Database::Values& values) {
        std::vector<const Database::Value*> sources(table->columns.size());
        for (std::size_t i = 0; i < places.size(); ++i) sources[places[i]] = &values[i];
        Statement& insert = rows->Begin();
        for (std::size_t column = 1; column < sources.size(); ++column) {
          const Database::Value* value = sources[column];
          if (value == nullptr) {
            insert << nullptr;
          } else {
            insert.Add(value->kind, value->text);
          }
        }
        insert.Run();
      });
}

}  // namespace

void CopyTables(Database& from, SqlTables& to) {
  std::vector<std::string> copied;
  from.Query(
      "SELECT name FROM pragma_table_list WHERE schema = 'main' AND type = 'table' "
      "AND name NOT LIKE 'sqlite!_%' ESCAPE '!'",
      [](const Database::Names&) {},
      [&](const Database::Values& values) { copied.push_back(values.front().text); });
  for (const std::string& table : copied) CopyTable(from, table, to);
}

}  // namespace host
