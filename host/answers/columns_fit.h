// Tables whose columns do not fit what the tool printed. A module deals a report's words over fixed
// columns; other versions of a tool, other products and values with blanks shift them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/answers/parts/collected_rows.h"
#include "host/collect/collection.h"

namespace host {

/// What the note on such a table begins with.
constexpr std::string_view kUnfitNote = "columns do not fit this report: ";

/// Notes in the status of each table that shows something else than its report says what it is, and
/// where the report is. A note takes the place of the reason why a table has no rows.
void NoteUnfitColumns(Collection& collection);

/// A table beside the report that it was made of.
struct TableBesideReport {
  std::string_view className;
  CollectedRowList rows;
  std::string_view report;  ///< UTF-8
};

/// What does not fit.
struct Misfit {
  /// All cells may be of it.
  Misfit(std::string text = {}) : text(std::move(text)) {}  // NOLINT(google-explicit-constructor)
  Misfit(std::string text, std::vector<std::string> labels)
      : text(std::move(text)), labels(std::move(labels)) {}

  std::string text;                               ///< for people; empty when all fits
  std::vector<std::string> labels = {kAnyLabel};  ///< as TableStatus::unfitLabels
};

struct ColumnCheck {
  std::string_view className;
  /// Class and property whose first row has the report whole; none where only the tool's file or
  /// its output has it.
  std::string_view attachmentClass;
  std::string_view attachmentKey;
  Misfit (*findMisfit)(const TableBesideReport& table);
};

/// How a value that differs from the report's is told; long ones are cut.
std::string TellOtherValue(std::string_view label, std::string_view shown,
                           std::string_view printed);

/// The same of a value whose label the report does not have.
std::string TellStranger(std::string_view label, std::string_view shown);

/// Rows with a value that is not the report's.
class OtherRows {
 public:
  /// Each row once, by the first of its columns that differs.
  void Take(std::int64_t row, std::string_view label, std::string_view shown,
            std::string_view printed);
  /// The same of a value whose label the report does not have.
  void TakeStranger(std::int64_t row, std::string_view label, std::string_view shown);
  bool IsEmpty() const { return columns.empty(); }
  /// Of each column its first row, and how many more there are.
  std::string Tell() const;

 private:
  void Add(std::int64_t row, std::string_view label, const std::string& told);

  struct OtherColumn {
    std::string label;
    std::string first;
    std::size_t more = 0;
  };
  std::vector<OtherColumn> columns;
};

}  // namespace host
