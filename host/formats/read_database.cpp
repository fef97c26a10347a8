// Reads what database_writer.cpp and collection_database.cpp write.

#include <fmt/format.h>

#include <charconv>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/database/sql_names.h"
#include "host/formats/collection_builder.h"
#include "host/formats/kept_collection.h"
#include "host/text/decoder.h"
#include "host/text/time_text.h"

namespace host {
namespace {

using Values = Database::Values;

void ForEachRow(Database& database, const std::string& sql,
                const std::function<void(const Values&)>& take) {
  database.Query(
      sql, [](const Database::Names&) {}, take);
}

template <typename Number>
Number ReadNumber(std::string_view text) {
  Number number{};
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

std::set<std::string> ListTables(Database& database) {
  std::set<std::string> names;
  ForEachRow(database,
             "SELECT name FROM pragma_table_list WHERE schema = 'main' AND type = 'table'",
             [&](const Values& values) { names.insert(values.front().text); });
  return names;
}

/// Throws std::runtime_error for a database of something else, and for one of several machines.
void CheckTables(Database& database, const std::set<std::string>& names) {
  for (const char* name :
       {"machine", "modules", "tables", "notes", "problems", "columns", "attachments", "log"}) {
    if (!names.contains(name)) throw std::runtime_error("is a database, but of no collection");
  }
  std::string first;
  database.Query(
      "SELECT * FROM machine LIMIT 0",
      [&](const Database::Names& columns) { first = columns.empty() ? "" : columns.front(); },
      [](const Values&) {});
  if (first == "machine") {
    throw std::runtime_error("is of several machines: ask it with pqhost query");
  }
}

void ReadMachine(Database& database, Collection& collection) {
  std::map<std::string, std::string> facts;
  ForEachRow(database, "SELECT name, value FROM machine",
             [&](const Values& values) { facts[values[0].text] = values[1].text; });
  const std::optional<LocalTime> collected = ParseIsoTime(facts["collected"]);
  if (!collected) throw std::runtime_error("does not say when it was collected");
  collection.collected = collected->time;
  // Of the answer to a query there is no verdict.
  collection.machineIsKnown = facts.contains("verdict");
  MachineFacts& machine = collection.machine;
  machine.recorded = facts["recorded"] == "yes";
  machine.name = facts["name"];
  machine.description = facts["description"];
  machine.languageId = ReadNumber<std::uint32_t>(facts["languageId"]);
  machine.toolCodePage = ReadNumber<std::uint32_t>(facts["codePage"]);
  machine.hostExecutable = facts["hostExecutable"];
  machine.logFolder = facts["logFolder"];
  machine.recordedAt = ParseIsoTime(facts["recordedAt"]);
  machine.system = facts["system"];
  machine.maker = facts["maker"];
  machine.product = facts["product"];
  if (!facts["serial"].empty()) machine.serials = {facts["serial"]};
  machine.contentKey = facts["contentKey"];
}

/// A class, and where the database keeps it.
struct KeptTable {
  std::string className;
  std::string name;
  std::map<std::string, Column> columns;                           ///< by their name there
  std::map<std::int64_t, std::vector<Attribute>> attributes = {};  ///< by row, from 1
};

std::vector<KeptTable> ReadTables(Database& database, const std::set<std::string>& names,
                                  CollectionBuilder& builder) {
  std::map<std::string, std::vector<std::string>> notes;
  ForEachRow(database, "SELECT class, text FROM notes",
             [&](const Values& values) { notes[values[0].text].push_back(values[1].text); });
  std::map<std::string, TableStatus> doubted;
  if (names.contains("doubts")) {
    ForEachRow(database, "SELECT class, kind, text FROM doubts", [&](const Values& values) {
      TableStatus& status = doubted[values[0].text];
      const std::string& kind = values[1].text;
      if (kind == "missing") status.missing = values[2].text;
      if (kind == "old files") status.oldFiles = values[2].text;
      if (kind == "unfit label") status.unfitLabels.push_back(values[2].text);
    });
  }
  std::map<std::string, KeptTable> kept;
  std::map<std::string, std::vector<pq::ColumnDescription>> described;
  ForEachRow(database, "SELECT class, key, name, label FROM columns ORDER BY class, position",
             [&](const Values& values) {
               kept[values[0].text].columns[values[2].text] = {.key = values[1].text,
                                                               .label = values[3].text};
               described[values[0].text].push_back(
                   {.key = values[1].text, .label = values[3].text, .text = {}});
             });
  ForEachRow(database, "SELECT class, row, key, filename FROM attachments",
             [&](const Values& values) {
               std::vector<Attribute>& attributes =
                   kept[values[0].text].attributes[ReadNumber<std::int64_t>(values[1].text)];
               attributes.push_back({values[2].text, "raw", "true"});
               if (values[3].text != values[2].text) {
                 attributes.push_back({values[2].text, "filename", values[3].text});
               }
             });
  std::vector<KeptTable> tables;
  ForEachRow(database, "SELECT class, name, module, outcome, status FROM tables ORDER BY position",
             [&](const Values& values) {
               const std::string& className = values[0].text;
               CollectedTable table;
               table.className = className;
               table.module = values[2].text;
               table.status = std::move(doubted[className]);
               table.status.outcome = values[3].text;
               table.status.text = values[4].text;
               table.status.notes = notes[className];
               table.columns = described[className];
               builder.AddTable(std::move(table));
               KeptTable& one = tables.emplace_back(std::move(kept[className]));
               one.className = className;
               one.name = values[1].text;
             });
  return tables;
}

void ReadRows(Database& database, const KeptTable& table, CollectionBuilder& builder) {
  std::vector<std::optional<Column>> columns;  // of the table there; none: no property
  const auto findColumns = [&](const Database::Names& names) {
    for (const std::string& name : names) {
      const auto found = table.columns.find(name);
      columns.push_back(found == table.columns.end() || columns.empty()
                            ? std::nullopt
                            : std::optional(found->second));
    }
  };
  database.Query(fmt::format("SELECT * FROM {} ORDER BY 1", QuoteName(table.name)), findColumns,
                 [&](const Values& values) {
                   RowShape shape;
                   shape.className = table.className;
                   std::vector<std::string> texts;
                   for (std::size_t i = 0; i < values.size(); ++i) {
                     if (!columns[i] || values[i].kind == CellKind::kNothing) continue;
                     shape.columns.push_back(*columns[i]);
                     shape.columns.back().kind = values[i].kind;
                     texts.push_back(values[i].text);
                   }
                   const auto found =
                       table.attributes.find(ReadNumber<std::int64_t>(values[0].text));
                   if (found != table.attributes.end()) shape.attributes = found->second;
                   builder.AddRow(shape, texts);
                 });
}

PartValue ReadPartValue(const Database::Value& value, PartType type) {
  if (value.kind == CellKind::kNothing) return {};
  if (type == PartType::kText) return std::string_view(value.text);
  if (value.kind == CellKind::kInteger) return ReadNumber<std::int64_t>(value.text);
  if (value.kind == CellKind::kReal) return ReadNumber<double>(value.text);
  return {};
}

void ReadParts(Database& database, const PartTable& table, CollectionBuilder& builder) {
  std::map<std::string, std::size_t, std::less<>> places;
  database.Query(
      fmt::format("SELECT * FROM {}", QuoteName(table.name)),
      [&](const Database::Names& names) {
        for (std::size_t i = 0; i < names.size(); ++i) places.emplace(names[i], i);
      },
      [&](const Values& values) {
        builder.AddPart(table, [&](const PartColumn& column) -> PartValue {
          const auto place = places.find(column.name);
          if (place == places.end()) return {};
          return ReadPartValue(values[place->second], column.type);
        });
      });
}

void ReadLog(Database& database, KeptLog& log) {
  ForEachRow(database, "SELECT level, file, line, text FROM log ORDER BY position",
             [&](const Values& values) {
               log.Add({.level = ReadNumber<unsigned>(values[0].text),
                        .file = values[1].text,
                        .line = ReadNumber<int>(values[2].text),
                        .text = values[3].text});
             });
}

}  // namespace

Collection ReadDatabaseCollection(Database& database) {
  const std::set<std::string> names = ListTables(database);
  CheckTables(database, names);
  CollectionBuilder builder;
  Collection& collection = builder.Get();
  ReadMachine(database, collection);
  ForEachRow(database, "SELECT name, description FROM modules ORDER BY position",
             [&](const Values& values) {
               collection.modules.push_back({values[0].text, values[1].text});
             });
  for (const KeptTable& table : ReadTables(database, names, builder)) {
    ReadRows(database, table, builder);
  }
  for (const PartTable& table : GetPartTables()) {
    if (names.contains(std::string(table.name))) ReadParts(database, table, builder);
  }
  ForEachRow(database, "SELECT text FROM problems ORDER BY position",
             [&](const Values& values) { collection.problems.push_back(values.front().text); });
  ReadLog(database, collection.log);
  return builder.Take();
}

}  // namespace host
