// White space around texts of tools.
#pragma once

#include <string_view>

namespace host {

/// Blanks, tabs and line ends.
constexpr bool IsWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// `text` without white space around it; what is left is a part of it.
constexpr std::string_view Trim(std::string_view text) {
  // Every line of a report comes through here; find_first_not_of calls a function per character.
  std::size_t first = 0;
  while (first < text.size() && IsWhiteSpace(text[first])) ++first;
  std::size_t end = text.size();
  while (end > first && IsWhiteSpace(text[end - 1])) --end;
  return text.substr(first, end - first);
}

}  // namespace host
