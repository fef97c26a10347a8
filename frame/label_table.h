// Finding the first label of a table in a line of a tool's report, such as "Serial Number =".
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace pq {

/// Which label a line holds, and where.
struct LabelMatch {
  int index = -1;            ///< place in the table; -1: no label
  std::size_t position = 0;  ///< of the label's first occurrence in the line
  explicit operator bool() const { return index >= 0; }
};

/// Labels (none of them empty) in the order in which a line is tested against them.
class LabelTable {
 public:
  /// Keeps its own form of the labels.
  explicit LabelTable(const std::vector<std::string_view>& labels);

  /// The first label in table order that stands anywhere in `line`.
  LabelMatch FindIn(std::string_view line) const;

 private:
  std::vector<std::string_view> labels;
};

/// The text of the zero-terminated `line` from `offset` on; empty when it would start behind the
/// end.
inline const char* TextFrom(std::string_view line, std::size_t offset) {
  return offset < line.size() ? line.data() + offset : "";
}

}  // namespace pq
