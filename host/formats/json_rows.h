// The rows of a table in JSON (docs/json.md).
#pragma once

#include <cstddef>

#include "host/collect/table_view.h"
#include "host/formats/json_buffer.h"

namespace host {

class JsonRows {
 public:
  /// `table` outlives this.
  explicit JsonRows(const TableView& table);

  /// Appends an object of the row's properties. Those whose keys read the same are one member:
  /// where the first is, with the last's value.
  void Append(std::size_t row, JsonBuffer& json) const;

 private:
  const TableView& table;
  bool keysRepeat;
};

}  // namespace host
