// Programs that run for months outlive the database's bad hours.
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "fleet/database.h"

namespace fleet {

/// Calls `work` with a connection until it returns. When the database cannot be reached, or its
/// disk is full, it tells so, waits, longer each time, and calls it again. `wait` returns whether
/// somebody wants an end. Throws what `work` throws, and DatabaseFailure for any other reason.
void WorkPatiently(const ConnectionWords& database, const std::string& purpose,
                   const std::function<void(Connection& connection)>& work,
                   const std::function<bool(std::chrono::milliseconds time)>& wait,
                   const std::function<void(const std::string& line)>& tell);

}  // namespace fleet
