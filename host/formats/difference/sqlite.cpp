#include <vector>

#include "host/database/plain_table.h"
#include "host/formats/database_file.h"
#include "host/formats/difference/difference_formats.h"
#include "host/formats/difference/rows.h"

namespace host {
namespace {

constexpr char kText[] = "TEXT";
constexpr char kNumber[] = "INTEGER";

void AddValue(Statement& values, const OptionalText& value, bool isNumber = false) {
  if (!value) {
    values << nullptr;
  } else if (isNumber) {
    values.Add(CellKind::kInteger, *value);
  } else {
    values << *value;
  }
}

void AddDifferences(Database& database, const Difference& difference) {
  std::vector<PlainTable::Column> columns;
  for (const DifferenceRowColumn& column : ListDifferenceRowColumns()) {
    columns.push_back({column.name, kText});
  }
  PlainTable table(database, kDifferences, columns);
  ForEachDifferenceRow(difference, [&](const DifferenceRow& row) {
    for (const DifferenceRowColumn& column : ListDifferenceRowColumns()) {
      AddValue(table.Row(), column.get(row));
    }
    table.Row().Run();
  });
}

void AddNewEntries(Database& database, const Difference& difference) {
  std::vector<PlainTable::Column> columns;
  for (const NewEntryColumn& column : ListNewEntryColumns()) {
    columns.push_back({column.name, column.isNumber ? kNumber : kText});
  }
  PlainTable table(database, kNewEntries, columns);
  for (const LogDifference& log : difference.logs) {
    for (const NewEntry& entry : log.entries) {
      for (const NewEntryColumn& column : ListNewEntryColumns()) {
        AddValue(table.Row(), column.get(log, entry), column.isNumber);
      }
      table.Row().Run();
    }
  }
}

}  // namespace

void WriteDifferenceSqlite(const NamedDifference& named, const Screen& /*screen*/,
                           std::ostream& out) {
  WriteDatabase(out, [&](Database& database) {
    database.Run("BEGIN");
    AddDifferences(database, named.difference);
    AddNewEntries(database, named.difference);
    database.Run("COMMIT");
  });
}

}  // namespace host
