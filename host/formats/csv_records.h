// Records of comma-separated values, after RFC 4180.
#pragma once

#include <ostream>
#include <string_view>

#include "host/text/screen_text.h"

namespace host {

class CsvRecords {
 public:
  /// `escapes`: nothing that a terminal obeys stays.
  CsvRecords(bool escapes, std::ostream& out) : escapes(escapes), out(out) {}

  void WriteField(std::string_view text) {
    if (inRecord) out << ',';
    inRecord = true;
    if (escapes) {
      WriteQuoted(EscapeControls(text));
    } else {
      WriteQuoted(text);
    }
  }

  void EndRecord() {
    out << "\r\n";
    inRecord = false;
  }

 private:
  /// In quotes only if there is need for them.
  void WriteQuoted(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
      out << text;
      return;
    }
    out << '"';
    for (std::size_t at = 0; (at = text.find('"')) != std::string_view::npos;) {
      out << text.substr(0, at + 1) << '"';
      text.remove_prefix(at + 1);
    }
    out << text << '"';
  }

  bool escapes;
  std::ostream& out;
  bool inRecord = false;
};

}  // namespace host
