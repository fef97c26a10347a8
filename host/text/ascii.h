// Letters and digits of ASCII. Nothing here depends on a locale; bytes above 127 stay as they are.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace host {

inline bool IsAscii(std::string_view text) {
  // Eight bytes at a time: reports of megabytes come through here.
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  std::uint64_t bits = 0;
  for (; text.size() >= sizeof bits; text.remove_prefix(sizeof bits)) {
    std::memcpy(&bits, text.data(), sizeof bits);
    if ((bits & kHighBits) != 0) return false;
  }
  return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

constexpr char LowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool IsAsciiDigit(char c) { return c >= '0' && c <= '9'; }

constexpr bool IsAsciiLetterOrDigit(char c) {
  return IsAsciiDigit(c) || (LowerCase(c) >= 'a' && LowerCase(c) <= 'z');
}

inline std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = LowerCase(c);
  return lower;
}

}  // namespace host
