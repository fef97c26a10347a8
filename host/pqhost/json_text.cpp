#include "host/pqhost/json_text.h"

#include <fmt/format.h>

namespace host {

std::string ByteText(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xC0 | (byte >> 6));
      text += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return text;
}

std::string EscapeJsonForTerminal(std::string_view json) {
  std::string escaped;
  escaped.reserve(json.size());
  for (std::size_t i = 0; i < json.size(); ++i) {
    const auto byte = static_cast<unsigned char>(json[i]);
    const auto next = static_cast<unsigned char>(i + 1 < json.size() ? json[i + 1] : 0);
    if (byte == 0x7F) {
      escaped += "\\u007f";
    } else if (byte == 0xC2 && next >= 0x80 && next <= 0x9F) {
      escaped += fmt::format("\\u{:04x}", next);
      ++i;
    } else {
      escaped += json[i];
    }
  }
  return escaped;
}

JsonForTerminal::int_type JsonForTerminal::overflow(int_type character) {
  if (traits_type::eq_int_type(character, traits_type::eof())) return 0;
  line += traits_type::to_char_type(character);
  if (line.ends_with('\n')) {
    out << EscapeJsonForTerminal(line);
    line.clear();
  }
  return character;
}

}  // namespace host
