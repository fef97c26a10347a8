// The tables that a program serves, and what becomes of them without it.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace host {

/// Those of `classes` that a program of this name serves.
std::vector<std::string> FindServedTables(const std::set<std::string>& classes,
                                          const std::string& program);

/// `before`, and which stay empty; nothing if there is no table to follow it.
std::string SayWhatStaysEmpty(const char* before, const std::vector<std::string>& served);

}  // namespace host
