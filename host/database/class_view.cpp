#include "host/database/class_view.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <vector>

#include "host/text/ascii.h"

namespace host {
namespace {

/// `value`, an SQL expression of a trimmed text, as a number if it is one.
std::string ConvertToNumber(const std::string& value) {
  // An integer is one that is written as SQLite writes it: "0012" is a name.
  return fmt::format(
      "CASE WHEN CAST(CAST({0} AS INTEGER) AS TEXT) = {0} THEN CAST({0} AS INTEGER) "
      "WHEN {0} GLOB '*[0-9].[0-9]*' AND replace(ltrim({0}, '-'), '.', '') NOT GLOB '*[^0-9]*' "
      "AND {0} NOT GLOB '*.*.*' AND {0} NOT GLOB '--*' THEN CAST({0} AS REAL) "
      "ELSE nullif({0}, '') END",
      value);
}

}  // namespace

std::string MakeClassView(const SqlTable& table, std::string_view view) {
  UniqueNames columnNames;
  std::vector<std::string> trimmed;
  std::vector<std::string> shown;
  for (const SqlColumn& column : table.columns) {
    if (column.key.empty()) {
      trimmed.push_back(QuoteName(column.name));
      shown.push_back(QuoteName(columnNames.Take(column.name)));
      continue;
    }
    const std::string value = fmt::format("c{}", trimmed.size());
    trimmed.push_back(fmt::format("trim({}, char(9, 10, 11, 12, 13, 32, 160)) AS {}",
                                  QuoteName(column.name), value));
    std::string name = MakeSnakeCase(column.label);
    if (name.empty()) name = LowerCase(column.key);
    const bool isNumber = column.holdsNumbers || std::string_view(column.type) == kIntegerType;
    shown.push_back(fmt::format(
        "{} AS {}", isNumber ? ConvertToNumber(value) : fmt::format("nullif({}, '')", value),
        QuoteName(columnNames.Take(name))));
  }
  return fmt::format("CREATE VIEW {} AS SELECT {} FROM (SELECT {} FROM {})", QuoteName(view),
                     fmt::join(shown, ", "), fmt::join(trimmed, ", "), QuoteName(table.name));
}

}  // namespace host
