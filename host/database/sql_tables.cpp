#include "host/database/sql_tables.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "host/database/class_view.h"
#include "host/text/ascii.h"

namespace host {
namespace {

/// The first column of every table, if there are several machines.
constexpr char kMachineColumn[] = "machine";

}  // namespace

SqlRows::SqlRows(sqlite3* handle, const SqlTable& table, const std::string* machine)
    : machine(machine), insert(handle, MakeInsert(table.name, table.columns.size())) {}

Statement& SqlRows::Begin() {
  if (machine != nullptr) insert << *machine;
  return insert;
}

SqlTable& SqlTables::Find(std::string_view name, bool isOfClass) {
  const auto [known, isNew] = tables.try_emplace({isOfClass, std::string(name)});
  SqlTable& table = known->second;
  if (!isNew) return table;
  table.name = names.Take(name);
  table.isOfClass = isOfClass;
  if (isForSeveral) table.columns.push_back({.name = table.columnNames.Take(kMachineColumn)});
  if (isOfClass) {
    table.columns.push_back({.name = table.columnNames.Take(kRowColumn), .type = kIntegerType});
  }
  return table;
}

SqlTables::Places SqlTables::Provide(SqlTable& table, const std::vector<SqlColumn>& columns) {
  Places places;
  for (const SqlColumn& wanted : columns) {
    // Keys that differ as bytes can read the same: each has its place.
    std::size_t place = isForSeveral ? 1 : 0;
    while (place < table.columns.size() &&
           (table.columns[place].key != wanted.key ||
            (wanted.key.empty() && table.columns[place].name != wanted.name) ||
            std::ranges::find(places, place) != places.end())) {
      ++place;
    }
    places.push_back(place);
    if (place < table.columns.size()) continue;
    SqlColumn& added = table.columns.emplace_back(wanted);
    added.name = table.columnNames.Take(wanted.name);
    if (!table.isMade) continue;
    ownRows.clear();
    Execute(handle, fmt::format("ALTER TABLE {} ADD COLUMN {} {}", QuoteName(table.name),
                                QuoteName(added.name), added.type));
  }
  if (std::exchange(table.isMade, true)) return places;
  std::vector<std::string> definitions;
  for (const SqlColumn& column : table.columns) {
    definitions.push_back(fmt::format("{} {}", QuoteName(column.name), column.type));
  }
  // The number finds a row at once, and takes no room of its own.
  if (table.isOfClass && !isForSeveral) definitions.front() += " PRIMARY KEY";
  Execute(handle,
          fmt::format("CREATE TABLE {} ({})", QuoteName(table.name), fmt::join(definitions, ", ")));
  return places;
}

SqlRows& SqlTables::AddTo(const char* table) {
  const auto known = ownRows.find(table);
  if (known != ownRows.end()) return known->second;
  return ownRows.emplace(table, AddRows(Find(table, /*isOfClass=*/false))).first->second;
}

void SqlTables::Remove(std::string_view name) {
  for (const auto& [key, table] : tables) {
    if (!table.isMade) continue;
    Statement remove(handle, fmt::format("DELETE FROM {} WHERE {} = ?", QuoteName(table.name),
                                         QuoteName(table.columns.front().name)));
    remove << name;
    remove.Run();
  }
}

void SqlTables::MakeViews() {
  for (const auto& [key, table] : tables) {
    if (!table.isOfClass) continue;
    Execute(handle, MakeClassView(table, names.Take("v_" + LowerCase(table.name))));
  }
}

}  // namespace host
