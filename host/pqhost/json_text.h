// Texts in JSON, and JSON where a terminal may read it.
#pragma once

#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace host {

/// Every byte as the character with that code, in UTF-8: how a text of the machine stands in JSON.
std::string ByteText(std::string_view bytes);

/// `json` (valid UTF-8) with the control characters from 127 to 159 escaped, which a terminal would
/// obey; those below 32 JSON escapes itself. They occur only inside texts, so it means the same.
std::string EscapeJsonForTerminal(std::string_view json);

/// A stream that passes lines of JSON on to `out`, escaped so.
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
