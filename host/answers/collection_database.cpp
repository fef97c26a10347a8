#include "host/answers/collection_database.h"

#include <string>
#include <variant>
#include <vector>

#include "host/answers/machine_identity.h"
#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/read_parts.h"

namespace host {
namespace {

const char* NameType(PartType type) {
  switch (type) {
    case PartType::kInteger:
      return "INTEGER";
    case PartType::kReal:
      return "REAL";
    default:
      return "TEXT";
  }
}

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

}  // namespace

void AddParts(DatabaseWriter& writer, const Parts& parts) {
  for (const PartTable& table : GetPartTables()) {
    std::vector<DatabaseWriter::PlainColumn> columns;
    for (const PartColumn& column : table.columns) {
      columns.push_back({column.name, NameType(column.type)});
    }
    writer.AddRows(table.name, columns, table.count(parts),
                   [&](std::size_t row, Statement& values) {
                     const Part& part = table.at(parts, row);
                     for (const PartColumn& column : table.columns) {
                       AddValue(values, column.get(part));
                     }
                   });
  }
}

void AddCollection(DatabaseWriter& writer, const CollectionView& view, std::string_view machine) {
  const Collection& collection = view.GetCollection();
  const MachineIdentity identity = FindMachineIdentity(collection);
  writer.Add(view,
             {{"maker", identity.maker},
              {"product", identity.product},
              {"serial", identity.serial},
              {"assetTag", identity.assetTag}},
             machine);
  if (collection.machineIsKnown) AddParts(writer, ReadParts(collection));
}

void FillDatabase(Database& database, const CollectionView& view) {
  DatabaseWriter writer(database, Machines::kOne);
  AddCollection(writer, view);
  writer.Complete();
}

}  // namespace host
