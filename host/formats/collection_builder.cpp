#include "host/formats/collection_builder.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "host/text/decoder.h"

namespace host {

CollectionBuilder::CollectionBuilder() : parts(std::make_shared<Parts>()) {
  collection.repository = std::make_unique<halyard::repository::RRepository>();
  collection.machine.codePage = kUtf8CodePage;
}

void CollectionBuilder::AddTable(CollectedTable table) {
  if (std::ranges::find(collection.tables, table.className, &CollectedTable::className) !=
      collection.tables.end()) {
    throw std::runtime_error(fmt::format("has the table {} twice", table.className));
  }
  collection.tables.push_back(std::move(table));
}

void CollectionBuilder::AddRow(const RowShape& shape, const std::vector<std::string>& values) {
  host::AddRow(*collection.repository, shape, values);
}

void CollectionBuilder::AddPart(const PartTable& table,
                                const std::function<PartValue(const PartColumn& column)>& find) {
  table.add(*parts, [&](Part& part) {
    for (const PartColumn& column : table.columns) column.set(part, find(column));
  });
}

Collection CollectionBuilder::Take() {
  const std::map<std::string, Table>& stored = TablesOf(*collection.repository);
  for (CollectedTable& table : collection.tables) {
    const auto rows = stored.find(table.className);
    if (rows != stored.end()) table.rows = &rows->second;
  }
  collection.parts = std::move(parts);
  return std::move(collection);
}

}  // namespace host
