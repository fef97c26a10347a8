// Finding the first label of a table in a line of a tool's report, such as "Serial Number =".
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
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
///
/// A line is read once, whatever the number of labels, and most of it is stepped over. Of each
/// label one window is watched, as long as the shortest label. Every window of that length covers
/// one of the byte pairs that are a fixed step apart in the line, so only those pairs are looked
/// at, and labels are compared only where a pair occurs in some window.
class LabelTable {
 public:
  /// Keeps its own copy of the labels.
  explicit LabelTable(const std::vector<std::string_view>& labels);

  /// The first label in table order that occurs anywhere in `line`.
  LabelMatch FindIn(std::string_view line) const;

 private:
  static constexpr std::size_t kBuckets = 4096;

  /// A pair of a window: its label, and its offset in the label.
  struct Probe {
    std::uint32_t label;
    std::uint32_t offset;
  };

  /// The bucket of the pair at `text`.
  std::size_t GetBucket(const char* text) const;
  /// The offset in `label` of the window whose pairs occur least often in the whole table.
  std::size_t ChooseWindow(const std::string& label,
                           const std::array<std::uint32_t, kBuckets>& pairCounts) const;

  std::vector<std::string> labels;
  std::size_t pairLength = 0;  ///< 2; 1 when some label has a single character
  std::size_t step = 0;        ///< pairs in a window
  std::array<bool, kBuckets> watched{};
  /// The probes of bucket b are probes[firstProbe[b]] up to probes[firstProbe[b + 1]], in table
  /// order.
  std::array<std::uint32_t, kBuckets + 1> firstProbe{};
  std::vector<Probe> probes;
};

/// Whether `text` occurs anywhere in `line`.
inline bool Contains(std::string_view line, std::string_view text) {
  return line.find(text) != std::string_view::npos;
}

/// The text of the zero-terminated `line` from `offset` on; empty when it would start after the
/// end.
inline const char* GetTextFrom(std::string_view line, std::size_t offset) {
  return offset < line.size() ? line.data() + offset : "";
}

}  // namespace pq
