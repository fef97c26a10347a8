// How many rows a table has, or why it has none.
#pragma once

#include <string>
#include <vector>

namespace host {

/// Among labels: all of them.
constexpr char kAnyLabel[] = "*";

struct TableStatus {
  /// One of the words of docs/json.md, such as "rows" or "tool missing".
  std::string outcome;
  std::string text;  ///< UTF-8, for people
  /// More that is true of the table, such as what it leaves out: a sentence each. UTF-8.
  std::vector<std::string> notes = {};
  /// Of rows that are not the tool's, which is missing: why. `text` has it, too.
  std::string missing = {};
  /// Of rows from files that were there before: since when, and why there are no newer ones. A note
  /// as well.
  std::string oldFiles = {};
  /// Labels of cells that show something else than the report, or kAnyLabel. A note tells.
  std::vector<std::string> unfitLabels = {};

  /// Whether an output was read for the table, with rows for it or without.
  bool IsOfAnOutput() const { return outcome == "rows" || outcome == "no rows in output"; }
};

/// Text and notes of the status, in one line.
std::string DescribeStatus(const TableStatus& status);

}  // namespace host
