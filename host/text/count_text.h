// Counts for people.
#pragma once

#include <cstddef>
#include <string>

namespace host {

/// As in "1 row" and "2 rows".
inline std::string FormatCount(std::size_t count, const char* noun) {
  return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

}  // namespace host
