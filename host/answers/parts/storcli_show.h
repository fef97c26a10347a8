// storcli /cN show and show all, of both generations of the tool.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/answers/parts/report.h"

namespace host {

/// Appends the controller with its drives, volumes, groups, missing drives, cache backups and
/// enclosures; nothing when the report is on no controller. Where the report breaks off, in words;
/// empty when it is whole as far as it tells.
std::string ReadStorcliShow(const Report& report, Parts& parts);

/// A row of the list of drive groups; numbers are "-" where it has none.
struct TopologyRow {
  std::string_view group;
  std::string_view array;
  std::string_view row;
  std::string_view drive;  ///< enclosure and slot
  std::string_view type;
  std::string_view state;
  std::string_view busy;
};

/// Appends the group, or the missing drive, that the row is of; of others nothing. False for a row
/// that does not fit. `at` is its place.
bool AddTopologyRow(const TopologyRow& row, const std::string& controller, const Place& at,
                    Parts& parts);

/// The description of a report of storcli that says it failed; none of others.
std::optional<std::string> FindStorcliFailure(std::string_view text);

/// The report says that there is no controller.
bool TellsNoController(std::string_view text);

}  // namespace host
