#include "host/answers/difference/difference_options.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "host/answers/difference/compared.h"
#include "host/answers/health/health_options.h"
#include "host/text/ascii.h"
#include "host/text/nearest_name.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

std::vector<std::string> ListPartNames() {
  std::vector<std::string> names;
  for (const ComparedPart& part : ListComparedParts()) names.emplace_back(part.table);
  return names;
}

std::vector<std::string> ListTableNames() {
  std::vector<std::string> names;
  for (const ComparedTable& table : ListComparedTables()) {
    if (table.form != TableForm::kNone) names.emplace_back(table.className);
  }
  return names;
}

/// Null when there is none.
const ComparedTable* FindInAnyCase(std::string_view name) {
  for (const ComparedTable& table : ListComparedTables()) {
    if (LowerCase(table.className) == LowerCase(name)) return &table;
  }
  return nullptr;
}

void CheckColumn(const ComparedPart& part, std::string_view column) {
  std::vector<std::string> columns;
  for (const ComparedColumn& one : part.columns) {
    if (one.use != ColumnUse::kLeftOut) columns.emplace_back(one.name);
  }
  const bool isKnown = std::ranges::any_of(
      columns, [&](const std::string& one) { return FitsPattern(one, column); });
  if (isKnown) return;
  throw UsageError(fmt::format("--ignore {}.{}: no such column of {} is compared{}", part.table,
                               column, part.table, SuggestName(column, columns)));
}

}  // namespace

void TakeIgnored(std::string_view text, DifferenceOptions& options) {
  const std::size_t dot = text.find('.');
  if (dot == 0 || dot == std::string_view::npos || dot + 1 == text.size()) {
    throw UsageError(fmt::format(
        "--ignore {}: give a part or a table and its column, as in drives.firmware", text));
  }
  IgnoredColumn ignored{std::string(text.substr(0, dot)), std::string(text.substr(dot + 1))};
  if (const ComparedTable* table = FindInAnyCase(ignored.table);
      table != nullptr && table->form != TableForm::kNone) {
    ignored.table = table->className;  // Which columns it has is its tool's affair.
  } else if (const ComparedPart* part = FindComparedPart(ignored.table)) {
    CheckColumn(*part, ignored.column);
  } else {
    std::vector<std::string> names = ListPartNames();
    std::ranges::move(ListTableNames(), std::back_inserter(names));
    throw UsageError(fmt::format("--ignore {}: {} is nothing that is compared by its columns{}",
                                 text, ignored.table, SuggestName(ignored.table, names)));
  }
  options.ignored.push_back(std::move(ignored));
}

void TakeTable(std::string_view name, DifferenceOptions& options) {
  const ComparedTable* table = FindInAnyCase(name);
  if (table == nullptr) {
    const std::vector<std::string> names = ListTableNames();
    throw UsageError(fmt::format("--table {}: there is no such table{} (tables: {})", name,
                                 SuggestName(name, names), fmt::join(names, ", ")));
  }
  if (table->form == TableForm::kNone) {
    throw UsageError(
        fmt::format("--table {}: it is not compared by its cells: {}", name, table->why));
  }
  options.tables.emplace_back(table->className);
}

void TakePart(std::string_view name, DifferenceOptions& options) {
  std::vector<std::string> names = ListPartNames();
  names.emplace_back("events");
  if (std::ranges::find(names, name) == names.end()) {
    throw UsageError(fmt::format("--part {}: there is no such part to compare{} (parts: {})", name,
                                 SuggestName(name, names), fmt::join(names, ", ")));
  }
  options.parts.emplace_back(name);
}

bool IsIgnored(const DifferenceOptions& options, std::string_view table, std::string_view column) {
  return std::ranges::any_of(options.ignored, [&](const IgnoredColumn& ignored) {
    return ignored.table == table && FitsPattern(column, ignored.column);
  });
}

}  // namespace host
