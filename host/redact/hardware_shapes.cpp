// What is burnt into hardware: MAC addresses, world-wide names, GUIDs.
#include <algorithm>
#include <string>

#include "host/redact/shape_characters.h"
#include "host/redact/value_shapes.h"

namespace host {
namespace {

int HexDigitOf(char c) { return IsAsciiDigit(c) ? c - '0' : LowerCase(c) - 'a' + 10; }

/// Of a list of interfaces, or after a label.
bool TellsMac(std::string_view text, std::size_t at, std::size_t end) {
  if ((at > 0 && text[at - 1] == '.') || text.substr(end).starts_with(" ..")) return true;
  const std::size_t lineFeed = at == 0 ? std::string_view::npos : text.rfind('\n', at - 1);
  const std::size_t begin = lineFeed == std::string_view::npos ? 0 : lineFeed + 1;
  constexpr std::size_t kLongestLabel = 80;
  const std::size_t from = std::max(begin, at - std::min(at, kLongestLabel));
  const std::string label = LowerCase(text.substr(from, at - from));
  return label.find("mac") != std::string::npos || label.find("physical") != std::string::npos ||
         label.find("hardware") != std::string::npos;
}

}  // namespace

bool ReadGuid(std::string_view text, std::size_t at, const TakeValue& take) {
  constexpr std::size_t kGroups[] = {8, 4, 4, 4, 12};
  std::size_t end = at;
  for (const std::size_t size : kGroups) {
    if (end > at && PeekAt(text, end++) != '-') return false;
    if (CountHexDigits(text, end) != size) return false;
    end += size;
  }
  if (IsAsciiLetterOrDigit(PeekAt(text, end))) return false;
  take(ValueKind::kGuid, at, end);
  return true;
}

bool ReadPairs(std::string_view text, std::size_t at, const TakeValue& take) {
  const char separator = PeekAt(text, at + 2);
  if (separator != '-' && separator != ':' && separator != ' ') return false;
  std::size_t end = at;
  std::size_t pairs = 0;
  while (CountHexDigits(text, end) == 2 && !IsAsciiLetterOrDigit(PeekAt(text, end + 2))) {
    ++pairs;
    end += 2;
    if (PeekAt(text, end) != separator) break;
    ++end;
  }
  if (end > at && text[end - 1] == separator) --end;
  constexpr std::size_t kMacPairs = 6;
  constexpr std::size_t kWwnPairs = 8;
  if (pairs != kMacPairs && pairs != kWwnPairs) return false;
  // Six bytes with blanks between them can be anything.
  if (separator == ' ' && !TellsMac(text, at, end)) return false;
  if (separator != ' ' && at > 0 && text[at - 1] == separator) return false;
  const bool isMulticast = pairs == kMacPairs && (HexDigitOf(text[at + 1]) & 1) != 0;
  if (!isMulticast) take(pairs == kMacPairs ? ValueKind::kMac : ValueKind::kWwn, at, end);
  return true;
}

bool ReadDottedMac(std::string_view text, std::size_t at, const TakeValue& take) {
  std::size_t end = at;
  bool hasLetter = false;
  for (int group = 0; group < 3; ++group) {
    if (group > 0 && PeekAt(text, end++) != '.') return false;
    if (CountHexDigits(text, end) != 4) return false;
    for (int i = 0; i < 4; ++i, ++end) hasLetter = hasLetter || !IsAsciiDigit(text[end]);
  }
  if (!hasLetter || IsAsciiLetterOrDigit(PeekAt(text, end))) return false;
  take(ValueKind::kMac, at, end);
  return true;
}

void ReadWwn(std::string_view text, std::size_t at, const TakeValue& take) {
  constexpr std::size_t kDigits = 16;
  std::size_t begin = at;
  if (text[at] == '0' && LowerCase(PeekAt(text, at + 1)) == 'x') begin = at + 2;
  const std::size_t size = CountHexDigits(text, begin);
  if (size != kDigits && size != 2 * kDigits) return;
  if (IsAsciiLetterOrDigit(PeekAt(text, begin + size))) return;
  constexpr std::size_t kPrefix = 4;
  const std::string prefix =
      LowerCase(text.substr(begin - std::min(begin, kPrefix), std::min(begin, kPrefix)));
  const bool isNamed = prefix == "naa." || prefix == "eui." || prefix == "nna.";
  // 5 and 6 begin the names that IEEE gives to makers.
  if (isNamed || text[begin] == '5' || (text[begin] == '6' && size == 2 * kDigits)) {
    take(ValueKind::kWwn, begin, begin + size);
  }
}

}  // namespace host
