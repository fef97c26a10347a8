// A difference as rows of one form, for databases and spreadsheets.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "host/answers/difference/difference.h"

namespace host {

inline constexpr std::string_view kDifferences = "differences";
inline constexpr std::string_view kNewEntries = "new_entries";

/// Of the table `differences`. What has no meaning for a row is none.
struct DifferenceRow {
  std::string kind;  ///< finding, part, cell, report, log, not compared
  std::string part;  ///< table of parts, class or log
  OptionalText id;
  OptionalText serial;
  std::string change;
  OptionalText column;
  OptionalText before;
  OptionalText after;
  OptionalText text;
};

struct DifferenceRowColumn {
  std::string_view name;
  std::string_view description;
  OptionalText (*get)(const DifferenceRow& row);
};
std::span<const DifferenceRowColumn> ListDifferenceRowColumns();

/// In the order of the difference.
void ForEachDifferenceRow(const Difference& difference,
                          const std::function<void(const DifferenceRow&)>& take);

/// Of the table `new_entries`.
struct NewEntryColumn {
  std::string_view name;
  bool isNumber;
  std::string_view description;
  OptionalText (*get)(const LogDifference& log, const NewEntry& entry);
};
std::span<const NewEntryColumn> ListNewEntryColumns();

}  // namespace host
