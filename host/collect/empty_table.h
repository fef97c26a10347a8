// Why a table has no rows.
#pragma once

#include <string>

#include "frame/description.h"
#include "host/collect/table_status.h"
#include "host/collect/tool_history.h"

namespace host {

/// Of a known table of `module`.
TableStatus ExplainEmptyTable(const ToolHistory& history, const std::string& module,
                              const pq::TableDescription& table);

}  // namespace host
