// Reports with one labelled fact per line, such as "Serial Number = SK7": which column a line
// fills, and where its value begins.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "frame/label_table.h"
#include "frame/row_buffer.h"

namespace pq {

struct LabelledColumn {
  std::string_view label;
  std::size_t valueAt;  ///< from the label's first character
  Column column;
  bool endsRow = false;  ///< the row is handed over once this column is set
};

/// A column whose value begins right behind its label; the blank there belongs to it.
LabelledColumn BehindLabel(std::string_view label, Column column, bool endsRow = false);

/// What a line says: the column that it fills and its value, line end and all. No column when the
/// line holds no label.
struct LabelledFact {
  const LabelledColumn* source = nullptr;
  std::string_view value;
  explicit operator bool() const { return source != nullptr; }
};

/// Labelled columns in the order in which a line is tested against them.
class LabelledColumns {
 public:
  LabelledColumns(std::initializer_list<LabelledColumn> columns);

  /// The fact in the zero-terminated `line`; its value points there.
  LabelledFact FindIn(std::string_view line) const;

  /// All of them, in order.
  const std::vector<LabelledColumn>& All() const { return columns; }

 private:
  std::vector<LabelledColumn> columns;
  LabelTable labels;
};

/// The columns that the labels fill, in order.
std::vector<Column> ColumnsOf(const LabelledColumns& labelled);

/// Sets the column of `fact`, if it has one, and commits the row that it ends.
void Fill(RowBuffer& row, const LabelledFact& fact);

}  // namespace pq
