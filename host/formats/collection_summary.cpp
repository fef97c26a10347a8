#include "host/formats/collection_summary.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/text/count_text.h"

namespace host {

std::string DescribeOutcome(const Collection& collection) {
  std::size_t filled = 0;
  std::size_t rows = 0;
  for (const CollectedTable& table : collection.tables) {
    if (table.RowCount() > 0) ++filled;
    rows += table.RowCount();
  }
  return fmt::format("{} of {} with {}", filled, FormatCount(collection.tables.size(), "table"),
                     FormatCount(rows, "row"));
}

std::vector<TableGroup> GroupTables(const Collection& collection) {
  std::vector<TableToGroup> tables;
  for (const CollectedTable& table : collection.tables) {
    const auto module = std::ranges::find(collection.modules, table.module, &CollectedModule::name);
    tables.push_back({table.className, table.module,
                      module == collection.modules.end() ? table.module : module->description});
  }
  return GroupByArea(tables);
}

}  // namespace host
