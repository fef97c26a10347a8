// White space around texts of tools.
#pragma once

#include <string_view>

namespace host {

/// `text` without blanks, tabs and line ends around it; what is left is a part of it.
constexpr std::string_view Trim(std::string_view text) {
  constexpr std::string_view kWhiteSpace = " \t\r\n\v\f";
  const std::size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return text.substr(text.size());
  return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

}  // namespace host
