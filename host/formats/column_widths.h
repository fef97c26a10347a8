// How wide the columns of a table become on a screen.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace host {

/// Blanks between two columns.
inline constexpr std::size_t kColumnGap = 2;

/// How much room a column needs, in columns of the screen.
class ColumnNeed {
 public:
  /// `shown` is the label or a cell, which may have several lines.
  void Add(std::string_view shown);

  /// With one line on the screen per line of a cell.
  std::size_t Whole() const { return whole; }
  /// The column's width when columns may be at most `most` wide. More than that if a word needs it.
  std::size_t WidthAt(std::size_t most) const;

 private:
  std::size_t whole = 1;
  std::size_t longestWord = 1;
};

/// A width for each column, so that they fit `screenWidth` with their gaps. None when they do not
/// fit: the widest columns give way, but only as long as no word has to be broken.
std::vector<std::size_t> FitColumns(const std::vector<ColumnNeed>& needs, std::size_t screenWidth);

}  // namespace host
