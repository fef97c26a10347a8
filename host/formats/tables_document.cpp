#include "host/formats/tables_document.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "host/catalogue/areas.h"
#include "host/catalogue/table_sources.h"
#include "host/collect/selection.h"

namespace host {
namespace {

constexpr char kTablesHead[] =
    "# Tables\n\nMade by `pqhost modules --format markdown` from what the modules register and "
    "describe. Tools are\nbelow the folder of the host's program; files are left in its log "
    "folder.\n";

/// `texts` as code, with commas.
std::string ListAsCode(const std::vector<std::string>& texts) {
  std::vector<std::string> code;
  for (const std::string& text : texts) code.push_back(fmt::format("`{}`", text));
  return fmt::format("{}", fmt::join(code, ", "));
}

std::string DescribeSource(const pq::TableDescription& table) {
  if (!table.whyAlwaysEmpty.empty()) return fmt::format("Always empty: {}.", table.whyAlwaysEmpty);
  if (table.commands.empty()) return "Made of fixed rows.";
  std::vector<std::string> tools;
  std::vector<std::string> files;
  for (const pq::ToolCommand& command : table.commands) {
    tools.push_back(fmt::format("{}{}{}", command.program, command.arguments.empty() ? "" : " ",
                                command.arguments));
    const bool isNew = std::ranges::find(files, command.file) == files.end();
    if (!command.file.empty() && isNew) files.push_back(command.file);
  }
  std::string text = fmt::format("Made from {}.", ListAsCode(tools));
  if (!files.empty()) text += fmt::format(" Left in the log folder: {}.", ListAsCode(files));
  if (table.needsUsEnglish) text += " On US English systems only.";
  for (const pq::Omission& omission : table.leavesOut) {
    if (!omission.text.empty()) text += " " + omission.text;
  }
  return text;
}

/// Numbered keys without labels of their own are shown as a range.
std::string DescribeColumns(const std::vector<pq::ColumnDescription>& columns) {
  std::string text = "\n| key | label | holds |\n|---|---|---|\n";
  if (columns.front().label.empty()) {
    return text + fmt::format("| `{}` to `{}` | as the tool names it | {} |\n", columns.front().key,
                              columns.back().key, columns.front().text);
  }
  for (const pq::ColumnDescription& column : columns) {
    text += fmt::format("| `{}` | {} | {} |\n", column.key, column.label, column.text);
  }
  return text;
}

/// The sections of an area's tables. Tables that have the columns of the one before say so.
std::string DescribeTables(const TableGroup& group, const std::vector<TableToGroup>& tables) {
  std::string text;
  const pq::TableDescription* last = nullptr;
  for (const std::size_t i : group.tables) {
    const pq::TableDescription* table = FindTableDescription(tables[i].className);
    if (table == nullptr) continue;
    text += fmt::format("\n### {}: {}\n\n{} Module `{}`.\n", table->className, table->title,
                        DescribeSource(*table), tables[i].module);
    if (table->columns.empty()) continue;
    if (last != nullptr && last->columns == table->columns) {
      text += fmt::format("\nIts columns are those of {}.\n", last->className);
    } else {
      text += DescribeColumns(table->columns);
      last = table;
    }
  }
  return text;
}

}  // namespace

std::string WriteTablesDocument() {
  std::vector<TableToGroup> tables;
  for (const LoadedModule& module : LoadLinkedModules()) {
    for (const auto& [name, handlers] : module.module->Tables()) {
      tables.push_back({name, module.name, module.description});
    }
  }
  std::string text = kTablesHead;
  for (const TableGroup& group : GroupByArea(tables)) {
    text += fmt::format("\n## {}\n", group.area);
    text += DescribeTables(group, tables);
  }
  return text;
}

}  // namespace host
