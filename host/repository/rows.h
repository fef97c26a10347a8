// The rows of a table. A row costs what its own texts cost and little more: a tool's answer can be
// millions of lines, each a row, of which some are empty.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "host/text/byte_chunks.h"

namespace host {

/// What a value is. Properties are texts or integers; answers of a database can be anything.
enum class CellKind : unsigned char { kText, kInteger, kReal, kNothing };

/// One column of a row: a property without its value.
struct Column {
  std::string key;
  std::string label;
  CellKind kind = CellKind::kText;
  bool flag = false;
  auto operator<=>(const Column&) const = default;
};

/// An attribute record of a row.
struct Attribute {
  std::string propertyKey;
  std::string name;
  std::string value;
  auto operator<=>(const Attribute&) const = default;
};

/// The part that many rows share.
struct RowShape {
  std::string className;
  std::string instanceKey;
  int number = -1;
  std::vector<Column> columns;  ///< in the order in which the keys were first set
  std::vector<Attribute> attributes;
  auto operator<=>(const RowShape&) const = default;
};

/// One instance as it was when it was added; a view. Texts are bytes in the machine's code page.
class Row {
 public:
  /// `memory` has of each value of `shape` where it ends, counted from the first, in `width` bytes,
  /// then all of them.
  Row(const RowShape& shape, const unsigned char* memory, std::size_t width)
      : shape(&shape), memory(memory), width(width) {}

  std::size_t ValueCount() const { return shape->columns.size(); }
  /// Of a column of the shape; numbers as decimal ones, nothing as an empty text.
  std::string_view Value(std::size_t place) const {
    const std::size_t begin = place == 0 ? 0 : EndOf(place - 1);
    const auto* texts = reinterpret_cast<const char*>(memory) + ValueCount() * width;
    return {texts + begin, EndOf(place) - begin};
  }
  std::vector<std::string_view> Values() const {
    std::vector<std::string_view> values;
    for (std::size_t i = 0; i < ValueCount(); ++i) values.push_back(Value(i));
    return values;
  }
  /// The end of its memory.
  const unsigned char* End() const {
    const std::size_t count = ValueCount();
    return memory + count * width + (count == 0 ? 0 : EndOf(count - 1));
  }

  const RowShape* shape;

 private:
  std::size_t EndOf(std::size_t place) const {
    std::size_t end = 0;
    for (std::size_t byte = 0; byte < width; ++byte) {
      end |= std::size_t{memory[place * width + byte]} << (8 * byte);
    }
    return end;
  }

  const unsigned char* memory;
  std::size_t width;
};

/// Rows in the order in which they came. Those that are there stay valid when others are added.
class Rows {
  /// Rows of one shape and width, one after the other in memory: an address for each would take
  /// more than the texts of many.
  struct Run {
    std::size_t first;  ///< number of its first row
    const RowShape* shape;
    const unsigned char* memory;
    std::size_t width;
  };
  static constexpr std::size_t kMostOfRun = 64;  ///< as finding a row passes those before it

 public:
  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Row;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = Row;

    Iterator() = default;
    Iterator(const Rows& rows, std::size_t number, std::size_t run)
        : rows(&rows), number(number), run(run) {
      if (number < rows.count) memory = rows.runs[run].memory;
    }
    Row operator*() const {
      const Run& at = rows->runs[run];
      return {*at.shape, memory, at.width};
    }
    Iterator& operator++() {
      const unsigned char* const next = (**this).End();
      ++number;
      const bool isLast = run + 1 == rows->runs.size() || rows->runs[run + 1].first > number;
      memory = isLast ? next : rows->runs[++run].memory;
      return *this;
    }
    void operator++(int) { ++*this; }
    bool operator==(const Iterator& other) const { return number == other.number; }

   private:
    const Rows* rows = nullptr;
    std::size_t number = 0;
    std::size_t run = 0;
    const unsigned char* memory = nullptr;  ///< of the row
  };

  std::size_t size() const { return count; }
  bool empty() const { return count == 0; }
  Iterator begin() const { return {*this, 0, 0}; }
  Iterator end() const { return {*this, count, 0}; }
  Row front() const { return *begin(); }
  /// `number` is less than size().
  Row operator[](std::size_t number) const {
    const auto after =
        std::upper_bound(runs.begin(), runs.end(), number,
                         [](std::size_t wanted, const Run& run) { return wanted < run.first; });
    const auto run = static_cast<std::size_t>(after - runs.begin()) - 1;
    Iterator row(*this, runs[run].first, run);
    for (std::size_t i = runs[run].first; i < number; ++i) ++row;
    return *row;
  }

  /// `values` has one text per column of `shape`, which has to outlive this.
  void Add(const RowShape& shape, const std::vector<std::string>& values) {
    std::size_t textSize = 0;
    for (const std::string& value : values) textSize += value.size();
    std::size_t width = 1;
    while (width < sizeof(textSize) && textSize >> (8 * width) != 0) width *= 2;
    const std::size_t beforeTexts = values.size() * width;
    char* const packed = texts.Take(beforeTexts + textSize);
    std::size_t textEnd = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i].copy(packed + beforeTexts + textEnd, values[i].size());
      textEnd += values[i].size();
      for (std::size_t byte = 0; byte < width; ++byte) {
        packed[i * width + byte] = static_cast<char>(textEnd >> (8 * byte));
      }
    }
    const auto* const memory = reinterpret_cast<const unsigned char*>(packed);
    const bool goesOn = !runs.empty() && memory == lastEnd && runs.back().shape == &shape &&
                        runs.back().width == width && count - runs.back().first < kMostOfRun;
    if (!goesOn) runs.push_back({count, &shape, memory, width});
    lastEnd = memory + beforeTexts + textSize;
    ++count;
  }

 private:
  ByteChunks texts;
  std::deque<Run> runs;
  std::size_t count = 0;
  const unsigned char* lastEnd = nullptr;  ///< of the last row
};

}  // namespace host
