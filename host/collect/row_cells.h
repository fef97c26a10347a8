// The rows of a table by its columns. Rows of one class need not have the same properties.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "host/repository/store.h"

namespace host {

class RowCells {
 public:
  /// Refers to `table`, which must not change meanwhile.
  explicit RowCells(const Table& table) : table(table) {}

  /// For each column of the table its place in `row`, or kMissing. Valid until the next call.
  const std::vector<std::size_t>& PlacesIn(const Row& row);

  static constexpr std::size_t kMissing = static_cast<std::size_t>(-1);

 private:
  const Table& table;
  std::map<const RowShape*, std::vector<std::size_t>> places;
};

/// The value of the attribute `name` of the property `key`; null when it has none.
const std::string* FindAttribute(const RowShape& shape, const std::string& key,
                                 const std::string& name);

/// Whether the property holds a whole file (its attribute "raw" is "true").
bool IsAttachment(const RowShape& shape, const std::string& key);

}  // namespace host
