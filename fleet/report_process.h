// A server's report, made by a process of its own: whatever its recording has in it, the pages
// live.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace fleet {

/// What this program, called with `arguments`, writes to standard output; none when it fails, or
/// takes more time or memory than a report does.
std::optional<std::string> RunReport(const std::vector<std::string>& arguments);

}  // namespace fleet
