// Bytes in hexadecimal digits.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// Two digits in lower case for each byte.
inline std::string HexText(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

}  // namespace host
