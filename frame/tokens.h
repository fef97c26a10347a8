// Splitting a tool's output into tokens, and dealing tokens to the columns of a table in turn.
#pragma once

#include <array>
#include <span>
#include <string_view>
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

/// All pieces at once, which take several times a long text.
std::vector<std::string_view> SplitTokens(std::string_view text, std::string_view delimiters);

/// Deals the next tokens to `row` like cards: the first to column 0, the next to column 1, and so
/// on; the last columns of the last row may get none. False without any token.
bool DealRow(TokenScan& tokens, std::span<std::string_view> row);

}  // namespace pq
