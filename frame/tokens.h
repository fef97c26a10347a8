// Splitting a tool's output into tokens, and dealing tokens into the columns of a table in turn.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace pq {

/// Hands out the pieces of a text between runs of delimiters, as strtok finds them.
class TokenScan {
 public:
  /// Refers to `text`, which ends at its first NUL.
  TokenScan(std::string_view text, std::string_view delimiters);

  /// The next piece; none is empty before the end, and all are from there on.
  std::string_view Next();

 private:
  bool IsDelimiter(char c) const { return isDelimiter[static_cast<unsigned char>(c)]; }

  const char* at;
  const char* end;
  std::array<bool, 256> isDelimiter{};
};

/// All pieces at once.
std::vector<std::string_view> SplitTokens(std::string_view text, std::string_view delimiters);

/// Tokens dealt like cards: the first to column 0, the next to column 1, and so on in turn.
class DealtColumns {
 public:
  /// `columnCount` is at least 1.
  DealtColumns(std::vector<std::string_view> tokens, std::size_t columnCount)
      : tokens(std::move(tokens)), columnCount(columnCount) {}

  /// How many tokens column 0 has; later columns may be one short in the last row.
  std::size_t CountRows() const { return (tokens.size() + columnCount - 1) / columnCount; }
  /// The token at a place; empty where the column is too short.
  std::string_view At(std::size_t row, std::size_t column) const;

 private:
  std::vector<std::string_view> tokens;
  std::size_t columnCount;
};

}  // namespace pq
