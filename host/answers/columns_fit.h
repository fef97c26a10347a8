// Tables whose columns do not fit what the tool printed. A module deals a report's words over fixed
// columns; other versions of a tool, other products and values with blanks shift them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/answers/parts/collected_rows.h"
#include "host/collect/collection.h"

namespace host {

/// Notes in the status of each table that shows something else than its report says what it is, and
/// where the report is.
void NoteUnfitColumns(Collection& collection);

/// A table beside the report that it was made of.
struct TableBesideReport {
  std::string_view className;
  std::vector<CollectedRow> rows;
  std::string_view report;  ///< UTF-8
};

struct ColumnCheck {
  std::string_view className;
  /// Class and property whose first row has the report whole; none where only a file has it.
  std::string_view attachmentClass;
  std::string_view attachmentKey;
  /// What does not fit, for people; empty when all does.
  std::string (*findMisfit)(const TableBesideReport& table);
};

/// How a value that differs from the report's is told; long ones are cut.
std::string TellOtherValue(std::string_view label, std::string_view shown,
                           std::string_view printed);

}  // namespace host
