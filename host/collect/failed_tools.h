// Which tools failed, as far as the modules' log does not tell (failures.h).
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/collect/failures.h"
#include "host/collect/tool_history.h"

namespace host {

/// The tools that failed although the log does not tell: each with each of its reasons once.
/// `hasRows` answers for table classes.
std::vector<Failure> FindFailedTools(
    const ToolHistory& history, const std::function<bool(const std::string& className)>& hasRows);

}  // namespace host
