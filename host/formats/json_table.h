// A table of a collection in JSON (docs/json.md).
#pragma once

#include "host/collect/table_view.h"
#include "host/formats/json_buffer.h"

namespace host {

/// Appends it as one object, flushed row by row.
void AppendJsonTable(const TableView& table, JsonBuffer& json);

}  // namespace host
