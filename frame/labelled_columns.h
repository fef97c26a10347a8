// Reports with one labelled fact per line, such as "Serial Number = SK7": which column a line
// fills, and where its value begins.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "frame/label_table.h"
#include "frame/row_buffer.h"

namespace pq {

struct LabelledColumn {
  std::string_view label;
  std::size_t valueAt = 0;  ///< from the label's first character
  Column column = {};
  bool endsRow = false;  ///< the row is handed over once this column is set
};

/// A column whose value begins right after its label; the blank there belongs to it.
constexpr LabelledColumn MakeLabelledColumn(std::string_view label, const Column& column,
                                            bool endsRow = false) {
  return {label, label.size(), column, endsRow};
}

/// The fact in a line: the column that it fills and its value, line end and all. No column when the
/// line holds no label.
struct LabelledFact {
  const LabelledColumn* source = nullptr;
  std::string_view value;
  explicit operator bool() const { return source != nullptr; }
};

/// Labelled columns in the order in which a line is tested against them.
class LabelledColumns {
 public:
  /// Refers to `columns`.
  explicit LabelledColumns(std::span<const LabelledColumn> columns);

  /// The fact in the zero-terminated `line`; its value points there.
  LabelledFact FindIn(std::string_view line) const;

  /// All of them, in order.
  std::span<const LabelledColumn> All() const { return columns; }

 private:
  std::span<const LabelledColumn> columns;
  LabelTable labels;
};

/// Sets the column of `fact`, if it has one, and commits the row that it ends.
void Fill(RowBuffer& row, const LabelledFact& fact);

}  // namespace pq
