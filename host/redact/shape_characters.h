// What shapes are made of: the characters of a text, one by one.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "host/text/ascii.h"

namespace host {

/// What a character can be part of: each one of a text is asked for.
struct CharacterUse {
  bool isHexDigit : 1;
  bool isWord : 1;
  bool isName : 1;
};
inline constexpr std::array<CharacterUse, 256> kCharacterUses = [] {
  std::array<CharacterUse, 256> uses{};
  for (std::size_t i = 0; i < uses.size(); ++i) {
    const char c = LowerCase(static_cast<char>(i));
    const bool isWord = IsAsciiLetterOrDigit(c);
    uses[i] = {.isHexDigit = IsAsciiDigit(c) || (c >= 'a' && c <= 'f'),
               .isWord = isWord,
               .isName = isWord || c == '-' || c == '_' || (c & 0x80) != 0};
  }
  return uses;
}();

inline CharacterUse UseOf(char c) { return kCharacterUses[static_cast<unsigned char>(c)]; }
inline bool IsHexDigit(char c) { return UseOf(c).isHexDigit; }
inline bool IsNameCharacter(char c) { return UseOf(c).isName; }

/// The character at `at`; NUL beyond the end of the text.
inline char PeekAt(std::string_view text, std::size_t at) {
  return at < text.size() ? text[at] : '\0';
}

/// How many hexadecimal digits there are from `at` on.
inline std::size_t CountHexDigits(std::string_view text, std::size_t at) {
  std::size_t end = at;
  while (IsHexDigit(PeekAt(text, end))) ++end;
  return end - at;
}

}  // namespace host
