// Texts in JSON, and JSON where a terminal may read it.
#pragma once

#include <concepts>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>

namespace host {

/// Every byte as the character with that code, in UTF-8: the machine's texts in JSON, lossless.
std::string ByteText(std::string_view bytes);

/// Appends `text` (valid UTF-8) to `json` as a JSON text, quotes included.
void AppendJsonText(std::string& json, std::string_view text);
/// The same without the quotes.
void AppendJsonCharacters(std::string& json, std::string_view text);

/// Appends a text of the machine, each byte as in ByteText, as a JSON text, quotes included.
void AppendJsonBytes(std::string& json, std::string_view bytes);
/// Writes the same, however long, without a copy of it in memory.
void WriteJsonBytes(std::ostream& out, std::string_view bytes);

/// Appends a JSON array of the elements of `list`; `appendOne(json, element)` appends one of them.
template <typename List, typename AppendOne>
void AppendJsonList(std::string& json, const List& list, const AppendOne& appendOne) {
  json += '[';
  const char* separator = "";
  for (const auto& element : list) {
    json += separator;
    appendOne(json, element);
    separator = ",";
  }
  json += ']';
}

/// Appends a JSON array of whole numbers.
template <typename List>
void AppendJsonNumbers(std::string& json, const List& numbers) {
  AppendJsonList(json, numbers, [](std::string& text, std::integral auto number) {
    text += std::to_string(number);
  });
}

/// Builds one JSON object in one line, member by member. Names are plain ASCII.
class JsonObject {
 public:
  JsonObject& AddText(std::string_view name, std::string_view utf8) {
    AppendJsonText(Begin(name), utf8);
    return *this;
  }
  JsonObject& AddBytes(std::string_view name, std::string_view bytes) {
    AppendJsonBytes(Begin(name), bytes);
    return *this;
  }
  JsonObject& AddNumber(std::string_view name, std::integral auto number) {
    Begin(name) += std::to_string(number);
    return *this;
  }
  JsonObject& AddFlag(std::string_view name, bool flag) {
    Begin(name) += flag ? "true" : "false";
    return *this;
  }
  /// Adds the one JSON value that `append(json)` appends.
  template <typename Append>
  JsonObject& Add(std::string_view name, const Append& append) {
    append(Begin(name));
    return *this;
  }

  /// Begins a member whose value is written after what Take() gives, and then the closing brace.
  std::string TakeBefore(std::string_view name) {
    Begin(name);
    return std::move(json);
  }
  /// The object; nothing can be added afterwards.
  std::string Take() { return std::move(json += '}'); }

 private:
  std::string& Begin(std::string_view name);

  std::string json = "{";
};

/// Writes `json` (valid UTF-8) with all that a terminal would obey escaped, such as the control
/// characters from 127 to 159; JSON itself escapes those below 32. They occur only inside texts, so
/// the meaning is the same.
void WriteJsonForTerminal(std::string_view json, std::ostream& out);

/// A stream that passes lines of JSON on to `out`, escaped in that way.
class JsonForTerminal : private std::streambuf {
 public:
  explicit JsonForTerminal(std::ostream& out) : out(out), stream(this) {}

  std::ostream& Stream() { return stream; }

 private:
  int_type overflow(int_type character) override;

  std::ostream& out;
  std::string line;
  std::ostream stream;
};

}  // namespace host
