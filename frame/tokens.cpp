#include "frame/tokens.h"

#include <algorithm>

namespace pq {

std::vector<std::string_view> SplitTokens(std::string_view text, std::string_view delimiters) {
  text = text.substr(0, text.find('\0'));
  std::vector<std::string_view> tokens;
  std::size_t at = 0;
  while ((at = text.find_first_not_of(delimiters, at)) != std::string_view::npos) {
    const std::size_t end = std::min(text.find_first_of(delimiters, at), text.size());
    tokens.push_back(text.substr(at, end - at));
    at = end;
  }
  return tokens;
}

std::string_view DealtColumns::At(std::size_t row, std::size_t column) const {
  const std::size_t index = row * columnCount + column;
  return index < tokens.size() ? tokens[index] : std::string_view();
}

}  // namespace pq
