// What tables of parts are called in sentences.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace host {

/// "missing_drives" as "missing drives"; of one part as "missing drive".
inline std::string NameParts(std::string_view table, std::size_t count) {
  std::string name(table == "leds" ? "LEDs" : table == "self_tests" ? "self-tests" : table);
  std::ranges::replace(name, '_', ' ');
  if (count != 1) return name;
  if (name.ends_with("ies")) return name.replace(name.size() - 3, 3, "y");
  name.pop_back();
  return name;
}

/// As in "1 power supply" and "2 power supplies".
inline std::string CountParts(std::string_view table, std::size_t count) {
  return std::to_string(count) + ' ' + NameParts(table, count);
}

}  // namespace host
