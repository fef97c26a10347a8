#include "host/text/json_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "host/text/decoder.h"
#include "host/text/screen_text.h"

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

void AppendByteCharacters(std::string& json, std::string_view bytes) {
  for (const char c : bytes) {
    if (IsEscaped(c)) {
      AppendEscaped(json, c);
    } else {
      AppendByte(json, c);
    }
  }
}

}  // namespace

std::string ByteText(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char c : bytes) AppendByte(text, c);
  return text;
}

void AppendJsonCharacters(std::string& json, std::string_view text) {
  std::size_t written = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!IsEscaped(text[i])) continue;
    json.append(text, written, i - written);
    AppendEscaped(json, text[i]);
    written = i + 1;
  }
  json.append(text, written);
}

void AppendJsonText(std::string& json, std::string_view text) {
  json += '"';
  AppendJsonCharacters(json, text);
  json += '"';
}

void AppendJsonBytes(std::string& json, std::string_view bytes) {
  json += '"';
  AppendByteCharacters(json, bytes);
  json += '"';
}

void WriteJsonBytes(std::ostream& out, std::string_view bytes) {
  constexpr std::size_t kPiece = std::size_t{1} << 16;
  std::string json;
  out << '"';
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kPiece, bytes.size()))) {
    json.clear();
    AppendByteCharacters(json, bytes.substr(0, kPiece));
    out << json;
  }
  out << '"';
}

std::string& JsonObject::Begin(std::string_view name) {
  if (json.size() > 1) json += ',';
  json.append(1, '"').append(name).append("\":");
  return json;
}

void WriteJsonForTerminal(std::string_view json, std::ostream& out) {
  std::size_t written = 0;
  for (std::size_t i = 0; i < json.size();) {
    // Most of it; line feeds are between the texts.
    if (static_cast<unsigned char>(json[i]) < 0x7F) {
      ++i;
      continue;
    }
    std::string_view rest = json.substr(i);
    const char32_t c = TakeUtf8(rest);
    const std::size_t next = json.size() - rest.size();
    if (IsObeyed(c)) {
      out << json.substr(written, i - written)
          << fmt::format("\\u{:04x}", static_cast<std::uint32_t>(c));
      written = next;
    }
    i = next;
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
