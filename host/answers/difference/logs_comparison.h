// Logs by their entries.
#pragma once

#include <string>

#include "host/answers/difference/difference.h"
#include "host/answers/difference/side.h"

namespace host {

/// "SEL", "LSI lsi0".
std::string NameLog(const std::string& source, const std::string& controller);

/// Adds the logs with new entries, and those that cannot be compared.
void CompareLogs(const Sides& sides, Difference& difference);

}  // namespace host
