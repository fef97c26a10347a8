#include "host/answers/parts/report_values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "host/answers/parts/report_lines.h"
#include "host/text/ascii.h"
#include "host/text/decoder.h"

namespace host {
namespace {

Integer ReadWhole(std::string_view text, int base) {
  std::int64_t number = 0;
  const char* end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number, base);
  if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
  return number;
}

/// Length of the number at the start of `text`; 0 without.
std::size_t MeasureNumber(std::string_view text) {
  std::size_t at = text.starts_with('-') ? 1 : 0;
  const std::size_t digits = at;
  while (at < text.size() && text[at] >= '0' && text[at] <= '9') ++at;
  if (at == digits) return 0;
  if (at + 1 < text.size() && text[at] == '.' && text[at + 1] >= '0' && text[at + 1] <= '9') {
    ++at;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') ++at;
  }
  return at;
}

/// Binary digits of a unit's factor; none for other words.
std::optional<int> FindUnitShift(std::string_view unit) {
  constexpr std::string_view kPrefixes = "kmgtpe";
  const std::string lower = LowerCase(unit);
  if (lower == "b" || lower == "bytes") return 0;
  if (lower.size() < 2 || lower.size() > 3 || lower.back() != 'b') return std::nullopt;
  if (lower.size() == 3 && lower[1] != 'i') return std::nullopt;
  const std::size_t at = kPrefixes.find(lower.front());
  if (at == std::string_view::npos) return std::nullopt;
  return static_cast<int>(at + 1) * 10;
}

/// The numbers of a text, parted by single characters.
class Fields {
 public:
  explicit Fields(std::string_view text) : rest(text) {}

  /// Takes a number of at most `most` digits; -1 without.
  int Take(std::size_t most) {
    std::size_t length = 0;
    while (length < rest.size() && length < most && rest[length] >= '0' && rest[length] <= '9') {
      ++length;
    }
    int number = -1;
    if (length > 0) std::from_chars(rest.data(), rest.data() + length, number);
    rest.remove_prefix(length);
    digits = length;
    return number;
  }
  std::size_t LastDigits() const { return digits; }
  /// Takes `c`, or one of several; 0 when something else follows.
  char TakeOneOf(std::string_view characters) {
    if (rest.empty() || characters.find(rest.front()) == std::string_view::npos) return 0;
    const char c = rest.front();
    rest.remove_prefix(1);
    return c;
  }
  void SkipBlanks() {
    while (!rest.empty() && IsBlank(rest.front())) rest.remove_prefix(1);
  }
  std::string_view TakeWord() {
    SkipBlanks();
    std::size_t end = 0;
    while (end < rest.size() && !IsBlank(rest[end])) ++end;
    const std::string_view word = rest.substr(0, end);
    rest.remove_prefix(end);
    SkipBlanks();
    return word;
  }

 private:
  static bool IsBlank(char c) { return c == ' ' || c == '\t'; }

  std::string_view rest;
  std::size_t digits = 0;
};

struct Moment {
  int year = -1;
  int month = -1;
  int day = -1;
  int hour = -1;
  int minute = -1;
  int second = -1;
};

bool ReadClock(Fields& fields, Moment& moment) {
  moment.hour = fields.Take(2);
  if (fields.TakeOneOf(":") == 0) return false;
  moment.minute = fields.Take(2);
  if (fields.TakeOneOf(":") == 0) return false;
  moment.second = fields.Take(2);
  return moment.second >= 0;
}

std::string Format(const Moment& moment) {
  constexpr std::array<int, 12> kDays{31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const auto isIn = [](int number, int first, int last) {
    return number >= first && number <= last;
  };
  if (!isIn(moment.year, 1970, 9999) || !isIn(moment.month, 1, 12) ||
      !isIn(moment.day, 1, kDays[static_cast<std::size_t>(moment.month - 1)]) ||
      !isIn(moment.hour, 0, 23) || !isIn(moment.minute, 0, 59) || !isIn(moment.second, 0, 60)) {
    return {};
  }
  // Every entry of a log has a time, and fmt takes as long as all the rest of reading it.
  std::string text = "0000-00-00T00:00:00";
  const auto write = [&](std::size_t end, int number) {
    for (; number > 0; number /= 10) text[--end] = static_cast<char>('0' + number % 10);
  };
  write(4, moment.year);
  write(7, moment.month);
  write(10, moment.day);
  write(13, moment.hour);
  write(16, moment.minute);
  write(19, moment.second);
  return text;
}

/// "Tue Jun  2 18:02:08 2015"
std::string ReadNamedMonth(std::string_view text) {
  constexpr std::array<std::string_view, 12> kMonths{"jan", "feb", "mar", "apr", "may", "jun",
                                                     "jul", "aug", "sep", "oct", "nov", "dec"};
  Fields fields(text);
  fields.TakeWord();
  const std::string month = LowerCase(fields.TakeWord());
  const auto found = std::find(kMonths.begin(), kMonths.end(), month);
  if (found == kMonths.end()) return {};
  Moment moment;
  moment.month = static_cast<int>(found - kMonths.begin()) + 1;
  moment.day = fields.Take(2);
  fields.SkipBlanks();
  if (!ReadClock(fields, moment)) return {};
  fields.SkipBlanks();
  moment.year = fields.Take(4);
  return Format(moment);
}

/// Numbers only, in one of two orders.
std::string ReadNumericDate(std::string_view text) {
  Fields fields(text);
  Moment moment;
  const int first = fields.Take(4);
  const bool yearFirst = fields.LastDigits() == 4;
  const char separator = fields.TakeOneOf("/-");
  if (first < 0 || separator == 0) return {};
  const int second = fields.Take(2);
  if (fields.TakeOneOf({&separator, 1}) == 0) return {};
  const int third = fields.Take(yearFirst ? 2 : 4);
  moment.month = yearFirst ? second : first;
  moment.day = yearFirst ? third : second;
  moment.year = yearFirst ? first : third;
  if (!yearFirst && fields.LastDigits() == 2) moment.year += third < 70 ? 2000 : 1900;
  fields.TakeOneOf(",T");
  fields.SkipBlanks();
  if (!ReadClock(fields, moment)) return {};
  return Format(moment);
}

}  // namespace

Integer ReadInteger(std::string_view text) { return ReadWhole(Trim(text), 10); }

Integer FindInteger(std::string_view text, std::string_view label, char separator) {
  ReportLines lines(SkipByteOrderMark(text));
  for (ReportLine line; lines.Next(line);) {
    const auto told = SplitLabel(line.text, separator);
    if (told && told->label == label) return ReadInteger(told->value);
  }
  return std::nullopt;
}

Integer ReadHex(std::string_view text) {
  std::string_view digits = Trim(text);
  if (digits.starts_with("0x") || digits.starts_with("0X")) digits.remove_prefix(2);
  if (digits.starts_with('-')) return std::nullopt;
  return ReadWhole(digits, 16);
}

Integer ReadHexDigits(std::string_view text, std::size_t least, std::size_t most) {
  if (text.size() < least || text.size() > most || text.starts_with('-')) return std::nullopt;
  return ReadWhole(text, 16);
}

Real ReadLeadingReal(std::string_view text) {
  const std::string_view trimmed = Trim(text);
  const std::size_t length = MeasureNumber(trimmed);
  if (length == 0) return std::nullopt;
  double number = 0;
  const auto read = std::from_chars(trimmed.data(), trimmed.data() + length, number);
  if (read.ec != std::errc()) return std::nullopt;
  return number;
}

Integer ReadLeadingInteger(std::string_view text) {
  const std::string_view trimmed = Trim(text);
  std::int64_t number = 0;
  const auto read = std::from_chars(trimmed.data(), trimmed.data() + trimmed.size(), number);
  if (read.ec != std::errc()) return std::nullopt;
  return number;
}

bool IsSizeUnit(std::string_view text) { return FindUnitShift(text).has_value(); }

Integer ReadSize(std::string_view text) {
  const std::string_view trimmed = Trim(text);
  const std::size_t length = MeasureNumber(trimmed);
  if (length == 0) return std::nullopt;
  const std::string_view after = Trim(trimmed.substr(length));
  const auto shift = FindUnitShift(after.substr(0, after.find_first_of(" \t([,")));
  const Real number = ReadLeadingReal(trimmed);
  if (!shift || !number || *number < 0) return std::nullopt;
  const double bytes = std::round(std::ldexp(*number, *shift));
  constexpr double kMost = 9.2e18;  // of what an integer holds
  if (bytes > kMost) return std::nullopt;
  return static_cast<std::int64_t>(bytes);
}

std::string ReadTime(std::string_view text) {
  const std::string_view trimmed = Trim(text);
  if (trimmed.empty()) return {};
  const bool startsWithDigit = trimmed.front() >= '0' && trimmed.front() <= '9';
  return startsWithDigit ? ReadNumericDate(trimmed) : ReadNamedMonth(trimmed);
}

}  // namespace host
