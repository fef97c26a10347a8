#include "fleet/row_tables.h"

#include <algorithm>

#include "host/answers/health/finding_tables.h"
#include "host/answers/parts/part_tables.h"
#include "host/catalogue/table_sources.h"
#include "host/text/ascii.h"

namespace fleet {
namespace {

/// The part that is a log: entries of controllers and of the management controller.
constexpr std::string_view kEvents = "events";
/// Asked of one server, where its findings are.
constexpr std::string_view kEvidence = "evidence";
/// They have temperatures.
constexpr std::string_view kDrives = "drives";
constexpr std::string_view kSensors = "sensors";

/// Before the name of a table of packed rows.
const std::string kPacked = "packed_";

std::string ChooseType(host::PartType type) {
  switch (type) {
    case host::PartType::kInteger:
      return "bigint";
    case host::PartType::kReal:
      return "double precision";
    case host::PartType::kText:
      break;
  }
  return "text";
}

RowTable MakeClassTable(const pq::TableDescription& description) {
  const std::string name = NameClassTable(description.className);
  RowTable table{name, kPacked + name, "", description.title, description.isLog, false, {}};
  for (const pq::ColumnDescription& column : description.columns) {
    table.columns.push_back({column.key, "text", column.text});
  }
  table.columns.push_back({kMoreColumn, "jsonb", "what else a row has, and integers"});
  return table;
}

/// Of parts and of findings: they describe themselves alike.
template <typename Described>
RowTable MakePartTable(const Described& described) {
  const std::string name = NamePartTable(described.name);
  const bool isLog = described.name == kEvents;
  RowTable table{name,
                 isLog || described.name == kEvidence ? kPacked + name : name,
                 std::string(described.name),
                 std::string(described.description),
                 isLog,
                 described.name == kDrives || described.name == kSensors,
                 {}};
  for (const auto& column : described.columns) {
    table.columns.push_back(
        {std::string(column.name), ChooseType(column.type), std::string(column.description)});
  }
  return table;
}

}  // namespace

RowTables::RowTables() {
  for (const pq::ModuleDescription& module : host::GetModuleDescriptions()) {
    for (const pq::TableDescription& table : module.tables) {
      // Several modules may describe the same class.
      if (!Find(NameClassTable(table.className))) tables.push_back(MakeClassTable(table));
    }
  }
  for (const host::PartTable& part : host::GetPartTables()) tables.push_back(MakePartTable(part));
  for (const host::FindingTable& table : host::GetFindingTables()) {
    tables.push_back(MakePartTable(table));
  }
}

std::optional<std::size_t> RowTables::Find(std::string_view name) const {
  const auto found = std::find_if(tables.begin(), tables.end(),
                                  [&](const RowTable& table) { return table.name == name; });
  if (found == tables.end()) return std::nullopt;
  return static_cast<std::size_t>(found - tables.begin());
}

std::string NameClassTable(std::string_view className) {
  return "class_" + host::LowerCase(std::string(className));
}

std::string NamePartTable(std::string_view part) { return "part_" + std::string(part); }

}  // namespace fleet
