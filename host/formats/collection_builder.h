// Puts a collection together from what a result says of it. All texts are UTF-8.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/answers/parts/part_tables.h"
#include "host/collect/collection.h"

namespace host {

class CollectionBuilder {
 public:
  CollectionBuilder();

  /// All but tables and parts.
  Collection& Get() { return collection; }

  /// Throws std::runtime_error when there is one of that class.
  void AddTable(CollectedTable table);
  /// A row of the table added last. `shape` has its class, and a column for each of `values`.
  void AddRow(const RowShape& shape, const std::vector<std::string>& values);
  /// A part of `table`; `find` gives the value of a column, which stays until the next call.
  void AddPart(const PartTable& table,
               const std::function<PartValue(const PartColumn& column)>& find);

  /// The collection, once.
  Collection Take();

 private:
  Collection collection;
  std::shared_ptr<Parts> parts;
};

}  // namespace host
