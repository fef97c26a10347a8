#include "host/collect/row_cells.h"

#include <algorithm>

namespace host {

const std::vector<std::size_t>& RowCells::PlacesIn(const Row& row) {
  const auto [known, isNew] = places.try_emplace(row.shape);
  if (isNew) {
    std::map<std::string, std::size_t> byKey;
    const std::vector<Column>& columns = row.shape->columns;
    for (std::size_t i = 0; i < columns.size(); ++i) byKey[columns[i].key] = i;
    for (const Column& column : table.columns) {
      const auto found = byKey.find(column.key);
      known->second.push_back(found == byKey.end() ? kMissing : found->second);
    }
  }
  return known->second;
}

const std::string* FindAttribute(const RowShape& shape, const std::string& key,
                                 const std::string& name) {
  // The last one holds, as with properties.
  const auto found =
      std::find_if(shape.attributes.rbegin(), shape.attributes.rend(),
                   [&](const Attribute& a) { return a.propertyKey == key && a.name == name; });
  return found == shape.attributes.rend() ? nullptr : &found->value;
}

bool IsAttachment(const RowShape& shape, const std::string& key) {
  const std::string* raw = FindAttribute(shape, key, "raw");
  return raw != nullptr && *raw == "true";
}

}  // namespace host
