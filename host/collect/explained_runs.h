// What runs of tools tell of a table, whether it has rows or not.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "frame/description.h"
#include "host/collect/table_status.h"
#include "host/collect/tool_history.h"

namespace host {

/// The machine lacks the programs of `missing`, at least one run.
TableStatus ExplainMissing(const ToolHistory& history, const std::vector<const ToolRun*>& missing);

/// What tools printed explains why the table is empty; none when it does not.
std::optional<TableStatus> ExplainByAnswers(const ToolHistory& history, const std::string& module,
                                            const pq::TableDescription& table);

/// Whether the failure of `run` leaves nothing out of `table`.
bool IsMadeUpFor(const ToolHistory& history, const ToolRun& run, const pq::TableDescription& table);

}  // namespace host
