// Tables by the part of the machine that they are about: the order in which people are shown them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// All areas that modules describe, in the order of the modules; the samples last.
const std::vector<std::string>& ListAreas();

/// The device that the area is about, such as "a BMC"; empty: every machine has it.
std::string FindDevice(std::string_view area);

/// A table as it is to be grouped.
struct TableToGroup {
  std::string className;
  std::string module;
  std::string moduleDescription;  ///< the area of a class that no module describes
};

/// Tables that are listed together.
struct TableGroup {
  std::string area;                  ///< its title
  std::vector<std::string> modules;  ///< that they come from, each once
  std::vector<std::size_t> tables;   ///< their places in the list that was grouped, in its order
};

/// Groups in the order of ListAreas(), but others before the samples. Texts are returned as given.
std::vector<TableGroup> GroupByArea(const std::vector<TableToGroup>& tables);

}  // namespace host
