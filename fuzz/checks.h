// What several targets ask of the texts that they get.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

inline void Require(bool holds) {
  if (!holds) std::abort();
}

inline std::string_view InputText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// Takes the text up to the first `separator`, or all of it, and the separator itself off `text`.
inline std::string_view TakeUpTo(std::string_view& text, char separator) {
  const std::string_view part = text.substr(0, text.find(separator));
  text.remove_prefix(part.size() < text.size() ? part.size() + 1 : part.size());
  return part;
}

/// The parts between separators; one more than there are separators.
inline std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const std::size_t end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

/// The characters of a text; aborts where it is not well-formed UTF-8. It shares no code with the
/// host's own reader.
inline std::vector<char32_t> ReadUtf8(std::string_view text) {
  std::vector<char32_t> characters;
  for (std::size_t i = 0; i < text.size();) {
    const auto lead = static_cast<unsigned char>(text[i]);
    const std::size_t length = lead < 0x80                    ? 1
                               : lead >= 0xC2 && lead <= 0xDF ? 2
                               : lead >= 0xE0 && lead <= 0xEF ? 3
                               : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                              : 0;
    Require(length > 0 && i + length <= text.size());
    constexpr unsigned kLeadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    char32_t c = lead & kLeadBits[length];
    for (std::size_t n = 1; n < length; ++n) {
      const auto next = static_cast<unsigned char>(text[i + n]);
      Require(next >= 0x80 && next <= 0xBF);
      c = c << 6 | (next & 0x3F);
    }
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    Require(c >= kSmallest[length] && c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF));
    characters.push_back(c);
    i += length;
  }
  return characters;
}

inline bool IsControl(char32_t c) { return c < 0x20 || (c >= 0x7F && c <= 0x9F); }

/// Ends a line, or turns its direction.
inline bool TurnsLine(char32_t c) {
  return c == 0x061C || (c >= 0x200E && c <= 0x200F) || (c >= 0x2028 && c <= 0x202E) ||
         (c >= 0x2066 && c <= 0x2069);
}

/// Aborts unless `text` is UTF-8 and a terminal obeys nothing in it but the characters of
/// `allowed`.
inline void RequireForTerminal(std::string_view text, std::u32string_view allowed = U"") {
  for (const char32_t c : ReadUtf8(text)) {
    Require((!IsControl(c) && !TurnsLine(c)) || allowed.find(c) != std::u32string_view::npos);
  }
}

}  // namespace fuzz
