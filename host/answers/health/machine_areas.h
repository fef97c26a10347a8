// The areas of a machine that rules judge and that the report shows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

const std::vector<std::string>& ListMachineAreas();

/// What is wrong with a name that is no area's, and which there are; empty for an area.
std::string DescribeUnknownArea(std::string_view name);

/// Where the parts of a table belong unless more is known about one of them.
std::string_view FindAreaOfTable(std::string_view table);

}  // namespace host
