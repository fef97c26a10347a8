// JSON on its way to a stream.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "host/text/decoder.h"
#include "host/text/json_text.h"

namespace host {

/// Collects JSON until it is flushed. Flushed row by row, no table is in memory a second time.
class JsonBuffer {
 public:
  /// `write` writes JSON with the escapes that its readers need.
  JsonBuffer(void (*write)(std::string_view json, std::ostream& out), std::ostream& out)
      : write(write), out(out) {}

  JsonBuffer& operator+=(std::string_view more) {
    json += more;
    return *this;
  }
  /// Appends `before` as it is and `text` as a JSON text. Whole files are flushed as they come.
  void AppendText(std::string_view before, std::string_view text) {
    constexpr std::size_t kPiece = std::size_t{1} << 20;
    json.append(before).push_back('"');
    while (text.size() > kPiece) {
      const std::size_t size = text.size() - KeepEnd(text, text.size() - kPiece).size();
      AppendJsonCharacters(json, text.substr(0, size));
      Flush();
      text.remove_prefix(size);
    }
    AppendJsonCharacters(json, text);
    json += '"';
  }
  /// Appends a JSON array, as AppendJsonList does.
  template <typename List, typename AppendOne>
  void AppendList(const List& list, const AppendOne& appendOne) {
    AppendJsonList(json, list, appendOne);
  }

  void Flush() {
    write(json, out);
    json.clear();
  }

 private:
  void (*write)(std::string_view json, std::ostream& out);
  std::ostream& out;
  std::string json;
};

}  // namespace host
