// Letters of ASCII. Nothing here depends on a locale; bytes above 127 stay as they are.
#pragma once

#include <string>
#include <string_view>

namespace host {

constexpr char LowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = LowerCase(c);
  return lower;
}

}  // namespace host
