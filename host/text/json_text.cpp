#include "host/text/json_text.h"

#include <fmt/format.h>

namespace host {
namespace {

/// Whether JSON wants the character written as an escape sequence.
bool IsEscaped(char c) { return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\'; }

void AppendEscaped(std::string& json, char c) {
  constexpr std::string_view kShort = "\b\t\n\f\r\"\\";
  constexpr std::string_view kLetters = "btnfr\"\\";
  const std::size_t place = kShort.find(c);
  if (place == std::string_view::npos) {
    json += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
  } else {
    json += '\\';
    json += kLetters[place];
  }
}

void AppendByte(std::string& text, char c) {
  const auto byte = static_cast<unsigned char>(c);
  if (byte < 0x80) {
    text += c;
  } else {
    text += static_cast<char>(0xC0 | (byte >> 6));
    text += static_cast<char>(0x80 | (byte & 0x3F));
  }
}

}  // namespace

std::string ByteText(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char c : bytes) AppendByte(text, c);
  return text;
}

void AppendJsonText(std::string& json, std::string_view text) {
  json += '"';
  std::size_t written = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!IsEscaped(text[i])) continue;
    json.append(text, written, i - written);
    AppendEscaped(json, text[i]);
    written = i + 1;
  }
  json.append(text, written).push_back('"');
}

void AppendJsonBytes(std::string& json, std::string_view bytes) {
  json += '"';
  for (const char c : bytes) {
    if (IsEscaped(c)) {
      AppendEscaped(json, c);
    } else {
      AppendByte(json, c);
    }
  }
  json += '"';
}

std::string& JsonObject::Begin(std::string_view name) {
  if (json.size() > 1) json += ',';
  json.append(1, '"').append(name).append("\":");
  return json;
}

void WriteJsonForTerminal(std::string_view json, std::ostream& out) {
  std::size_t written = 0;
  for (std::size_t i = 0; i < json.size(); ++i) {
    const auto byte = static_cast<unsigned char>(json[i]);
    const auto next = static_cast<unsigned char>(i + 1 < json.size() ? json[i + 1] : 0);
    const bool isPair = byte == 0xC2 && next >= 0x80 && next <= 0x9F;
    if (byte != 0x7F && !isPair) continue;
    out << json.substr(written, i - written) << fmt::format("\\u{:04x}", isPair ? next : byte);
    if (isPair) ++i;
    written = i + 1;
  }
  out << json.substr(written);
}

JsonForTerminal::int_type JsonForTerminal::overflow(int_type character) {
  if (traits_type::eq_int_type(character, traits_type::eof())) return 0;
  line += traits_type::to_char_type(character);
  if (line.ends_with('\n')) {
    WriteJsonForTerminal(line, out);
    line.clear();
  }
  return character;
}

}  // namespace host
