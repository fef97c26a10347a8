// Rows of values in little memory: a log's entries would otherwise take ten times what a tool
// printed of them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "host/text/byte_chunks.h"

namespace host {

/// Nothing, or a value of the column's type. A text is a view of the part's own.
using PartValue = std::variant<std::monostate, std::int64_t, double, std::string_view>;

/// Numbers take as many bytes as they need, and a text that comes again in its column takes two.
/// Texts of a row stay where they are as long as this lives, whatever is added. Copies share what
/// they have in common.
class PackedRows {
 public:
  std::size_t size() const { return rows.size(); }

  /// One value for each column: as many for every row.
  void Add(std::span<const PartValue> values);
  /// Gives a row another value in its first column.
  void ReplaceFirst(std::size_t row, const PartValue& value);

  PartValue Get(std::size_t row, std::size_t column) const;
  /// Calls take(PartValue) for each column of a row.
  template <typename Take>
  void ForEach(std::size_t row, const Take& take) const {
    const char* at = rows[row].first;
    take(Read(at, 0));
    at = rows[row].others;
    for (std::size_t column = 1; column < words.size(); ++column) take(Read(at, column));
  }

 private:
  struct Row {
    const char* first;   ///< the value of the first column
    const char* others;  ///< those of the others
  };
  /// The texts of a column that are kept once.
  struct Words {
    std::vector<std::string_view> all;
    std::unordered_map<std::string_view, std::size_t> numbers;
    std::size_t found = 0;  ///< how often one was there already
    bool isInUse = true;    ///< false: hardly any comes again
  };
  const char* Keep(std::string_view bytes);
  PartValue Read(const char*& at, std::size_t column) const;
  /// Of a text that is not kept as a word yet, where it will be.
  struct NewWord {
    std::size_t column;
    std::size_t begin;
    std::size_t size;
  };
  void Write(const PartValue& value, std::size_t column);
  void KeepWords(const char* packed);

  std::deque<Row> rows;
  ByteChunks texts;
  std::vector<Words> words;       ///< of each column
  std::string row;                ///< the one that is being added
  std::vector<NewWord> newWords;  ///< in it
};

}  // namespace host
