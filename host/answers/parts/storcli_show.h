// storcli /cN show and show all, of both generations of the tool.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/answers/parts/report.h"

namespace host {

/// Appends the controller with its drives, volumes, groups, missing drives, cache backups and
/// enclosures; nothing when the report is on no controller.
void ReadStorcliShow(const Report& report, Parts& parts);

/// The description of a report of storcli that says it failed; none of others.
std::optional<std::string> FindStorcliFailure(std::string_view text);

/// The report says that there is no controller.
bool TellsNoController(std::string_view text);

}  // namespace host
