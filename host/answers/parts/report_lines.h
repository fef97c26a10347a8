// The lines of a tool's report and the pieces of a line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "host/text/trim.h"

namespace host {

struct ReportLine {
  std::string_view text;    ///< without its end
  std::int64_t number = 0;  ///< from 1
};

/// Takes the lines off a text, one after the other. Lines end with LF, CR LF or CR.
class ReportLines {
 public:
  explicit ReportLines(std::string_view text) : text(text) {}
  /// False after the last line. A line end at the end of the text begins no further line.
  bool Next(ReportLine& line);

 private:
  std::string_view text;
  std::size_t begin = 0;  ///< of the next line
  std::size_t feed = 0;   ///< the first LF from there on, or the end of the text
  std::int64_t number = 0;
};

/// The words of `text`: what is between blanks and tabs.
std::vector<std::string_view> ListWords(std::string_view text);

/// The end of `text`, from its part `word` on.
std::string_view GetFrom(std::string_view text, std::string_view word);
/// The beginning of `text`, up to its part `word`.
std::string_view GetBefore(std::string_view text, std::string_view word);
/// The end of `text`, after its part `word`.
std::string_view GetAfter(std::string_view text, std::string_view word);

/// A label with its value, both trimmed.
struct LabelledValue {
  std::string_view label;
  std::string_view value;
};

/// "LABEL = VALUE" or "LABEL : VALUE", parted at the first `separator`, wherever the value begins;
/// none without a separator or a label.
std::optional<LabelledValue> SplitLabel(std::string_view line, char separator);

/// "LABEL   : VALUE", parted at the first colon between blanks, since labels and values may hold
/// others; without such a one at the first before a blank or the line's end. As above otherwise.
std::optional<LabelledValue> SplitPaddedLabel(std::string_view line);

/// `text` consists of at least `least` characters `c`, blanks around them aside.
bool IsRule(std::string_view text, char c, std::size_t least);

}  // namespace host
