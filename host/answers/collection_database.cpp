#include "host/answers/collection_database.h"

#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "host/answers/health/finding_tables.h"
#include "host/answers/machine_identity.h"
#include "host/answers/parts/part_tables.h"
#include "host/text/ascii.h"

namespace host {
namespace {

void AddValue(Statement& values, const PartValue& value) {
  if (const auto* text = std::get_if<std::string_view>(&value)) {
    values << *text;
  } else if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    values << *integer;
  } else if (const auto* real = std::get_if<double>(&value)) {
    values << *real;
  } else {
    values << nullptr;
  }
}

/// Columns of parts, or of findings.
template <typename Columns>
std::vector<DatabaseWriter::PlainColumn> ListSqlColumns(const Columns& columns) {
  std::vector<DatabaseWriter::PlainColumn> listed;
  for (const auto& column : columns) listed.push_back({column.name, NameSqlType(column.type)});
  return listed;
}

/// What a class of the machine is called must not change the names of the tables that are the same
/// for all machines.
void ReserveTables(DatabaseWriter& writer) {
  for (const PartTable& table : GetPartTables()) writer.Reserve(table.name);
  for (const FindingTable& table : GetFindingTables()) writer.Reserve(table.name);
}

DatabaseWriter::Facts ListIdentity(const Collection& collection) {
  const MachineIdentity identity = FindMachineIdentity(collection);
  return {{"maker", identity.maker},
          {"product", identity.product},
          {"serial", identity.serial},
          {"assetTag", identity.assetTag}};
}

DatabaseWriter::Facts ListVerdict(const Health& health) {
  return {{"verdict", LowerCase(GetVerdict(health))},
          {"asOf", health.asOf},
          {"asOfFrom", health.asOfFrom}};
}

DatabaseWriter::Facts ListFacts(const Collection& collection, const Health& health) {
  DatabaseWriter::Facts facts = ListIdentity(collection);
  for (auto& fact : ListVerdict(health)) facts.push_back(std::move(fact));
  return facts;
}

/// Of the machine added last.
void AddFindings(DatabaseWriter& writer, const Health& health) {
  for (const FindingTable& table : GetFindingTables()) {
    const std::vector<FindingRow> rows = ListRows(table, health);
    writer.AddRows(table.name, ListSqlColumns(table.columns), rows.size(),
                   [&](std::size_t row, Statement& values) {
                     for (const FindingColumn& column : table.columns) {
                       AddValue(values, column.get(rows[row]));
                     }
                   });
  }
}

void AddCollection(DatabaseWriter& writer, const CollectionView& view,
                   const DatabaseWriter::Facts& facts, const Assessment& assessment,
                   std::string_view machine) {
  ReserveTables(writer);
  writer.Add(view, facts, machine);
  AddParts(writer, assessment.parts);
  AddFindings(writer, assessment.health);
}

}  // namespace

void AddParts(DatabaseWriter& writer, const Parts& parts) {
  for (const PartTable& table : GetPartTables()) {
    writer.AddRows(table.name, ListSqlColumns(table.columns), table.count(parts),
                   [&](std::size_t row, Statement& values) {
                     const std::shared_ptr<const Part> part = table.at(parts, row);
                     for (const PartColumn& column : table.columns) {
                       AddValue(values, column.get(*part));
                     }
                   });
  }
}

void AddCollection(DatabaseWriter& writer, Collection& collection, const Assessment& assessment,
                   std::string_view machine, Attachments attachments) {
  const DatabaseWriter::Facts facts = ListFacts(collection, assessment.health);
  collection.answers.clear();
  collection.files.clear();
  AddCollection(writer, CollectionView(collection, attachments), facts, assessment, machine);
}

void AddCollection(DatabaseWriter& writer, const CollectionView& view, std::string_view machine) {
  const Collection& collection = view.GetCollection();
  if (collection.machineIsKnown) {
    const Assessment assessment = Assess(collection);
    AddCollection(writer, view, ListFacts(collection, assessment.health), assessment, machine);
  } else {
    writer.Add(view, ListIdentity(collection), machine);
  }
}

void AddVerdict(DatabaseWriter& writer, const Health& health, std::string_view machine) {
  writer.AddFacts(ListVerdict(health), machine);
  AddParts(writer, {});  // Their tables are there, whatever else could be read.
  AddFindings(writer, health);
}

void FillDatabase(Database& database, const CollectionView& view) {
  DatabaseWriter writer(database, Machines::kOne);
  AddCollection(writer, view);
  writer.Complete();
}

void FillDatabase(Database& database, Collection& collection, const Assessment& assessment,
                  Attachments attachments) {
  DatabaseWriter writer(database, Machines::kOne);
  AddCollection(writer, collection, assessment, {}, attachments);
  writer.Complete();
}

}  // namespace host
