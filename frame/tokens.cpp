#include "frame/tokens.h"

#include <algorithm>

namespace pq {

TokenScan::TokenScan(std::string_view text, std::string_view delimiters)
    : at(text.data()), end(at + std::min(text.find('\0'), text.size())) {
  for (const char c : delimiters) isDelimiter[static_cast<unsigned char>(c)] = true;
}

std::string_view TokenScan::Next() {
  while (at != end && IsDelimiter(*at)) ++at;
  const char* begin = at;
  while (at != end && !IsDelimiter(*at)) ++at;
  return {begin, static_cast<std::size_t>(at - begin)};
}

std::vector<std::string_view> SplitTokens(std::string_view text, std::string_view delimiters) {
  // Counted first: of a long listing a vector that grows takes several times the text.
  std::size_t count = 0;
  for (TokenScan scan(text, delimiters); !scan.Next().empty();) ++count;
  std::vector<std::string_view> tokens;
  tokens.reserve(count);
  TokenScan scan(text, delimiters);
  for (std::string_view token = scan.Next(); !token.empty(); token = scan.Next()) {
    tokens.push_back(token);
  }
  return tokens;
}

std::string_view DealtColumns::At(std::size_t row, std::size_t column) const {
  const std::size_t index = row * columnCount + column;
  return index < tokens.size() ? tokens[index] : std::string_view();
}

}  // namespace pq
