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
  std::vector<std::string_view> tokens;
  TokenScan scan(text, delimiters);
  for (std::string_view token = scan.Next(); !token.empty(); token = scan.Next()) {
    tokens.push_back(token);
  }
  return tokens;
}

bool DealRow(TokenScan& tokens, std::span<std::string_view> row) {
  for (std::string_view& cell : row) cell = tokens.Next();
  return !row.front().empty();
}

}  // namespace pq
