#include "host/formats/parts_document.h"

#include <fmt/format.h>

#include "host/answers/parts/part_tables.h"

namespace host {
namespace {

constexpr char kPartsHead[] =
    "# Parts\n\nMade by `pqhost modules --format parts` from what the tables say of themselves.\n\n"
    "Parts are what is true of the machine, the same for every vendor, read from what the tools "
    "printed: by the heads\nof their tables and by their labels, wherever values begin. They are "
    "tables in [SQL](sql.md) and arrays of `parts` in\n[JSON](json.md). What the class tables "
    "([tables.md](tables.md)) leave out, such as other controllers, is here.\n\n"
    "A value that no tool told is `NULL`. Every part ends with the place where it was read: class, "
    "row (from 1), key and,\nof a whole report, line (from 1), and the tool.\n";

const char* NameType(PartType type) {
  switch (type) {
    case PartType::kInteger:
      return "integer";
    case PartType::kReal:
      return "real";
    default:
      return "text";
  }
}

}  // namespace

std::string WritePartsDocument() {
  std::string text = kPartsHead;
  for (const PartTable& table : GetPartTables()) {
    text += fmt::format("\n## {}\n\n{}\n\n| column | type | holds |\n|---|---|---|\n", table.name,
                        table.description);
    for (const PartColumn& column : table.columns) {
      text += fmt::format("| `{}` | {} | {} |\n", column.name, NameType(column.type),
                          column.description);
    }
  }
  return text;
}

}  // namespace host
