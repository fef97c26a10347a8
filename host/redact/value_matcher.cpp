#include "host/redact/value_matcher.h"

#include <algorithm>
#include <array>

#include "host/text/ascii.h"

namespace host {
namespace {

/// A character of a text, and where it is.
struct ReadCharacter {
  char c;
  std::size_t at;    ///< of its byte, or of its two digits after a percent sign
  std::size_t size;  ///< in bytes; 0: there is none of that writing
};

int ReadDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = LowerCase(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

bool IsEscape(std::string_view text, std::size_t at) {
  return text[at] == '%' && at + 2 < text.size() && ReadDigit(text[at + 1]) >= 0 &&
         ReadDigit(text[at + 2]) >= 0;
}

char Unescape(std::string_view text, std::size_t at) {
  return static_cast<char>(ReadDigit(text[at + 1]) << 4 | ReadDigit(text[at + 2]));
}

ReadCharacter ReadAt(std::string_view text, std::size_t at, Writing writing) {
  if (at >= text.size()) return {0, at, 0};
  if (writing == Writing::kPlain) {
    if (IsEscape(text, at)) return {Unescape(text, at), at + 1, 3};
    return {text[at], at, 1};
  }
  if (at + 1 >= text.size()) return {0, at, 0};
  const bool isBig = writing == Writing::kBigEndian;
  if (text[isBig ? at : at + 1] != '\0') return {0, at, 0};
  return {text[isBig ? at + 1 : at], isBig ? at + 1 : at, 2};
}

/// The character right before `at`; NUL when there is none.
char FindBefore(std::string_view text, std::size_t at, Writing writing) {
  if (writing == Writing::kPlain) {
    if (at >= 3 && IsEscape(text, at - 3)) return Unescape(text, at - 3);
    return at == 0 ? '\0' : text[at - 1];
  }
  // The low byte comes last.
  if (writing == Writing::kBigEndian) return at == 0 ? '\0' : text[at - 1];
  return at < 2 ? '\0' : ReadAt(text, at - 2, writing).c;
}

bool IsPartOfWord(char c) { return IsAsciiLetterOrDigit(c) || (c & 0x80) != 0; }

bool IsBounded(std::string_view text, const Match& match, Boundary boundary) {
  if (boundary == Boundary::kAnything) return true;
  const std::size_t step = match.writing == Writing::kPlain ? 1 : 2;
  const char before = FindBefore(text, match.begin, match.writing);
  const char after = ReadAt(text, match.end, match.writing).c;
  if (boundary == Boundary::kNoWord) return !IsPartOfWord(before) && !IsPartOfWord(after);
  if (IsAsciiDigit(before) || IsAsciiDigit(after)) return false;
  const bool followsDot = before == '.' && match.begin >= 2 * step &&
                          IsAsciiDigit(FindBefore(text, match.begin - step, match.writing));
  const bool precedesDot =
      after == '.' && IsAsciiDigit(ReadAt(text, match.end + step, match.writing).c);
  return !followsDot && !precedesDot;
}

constexpr std::array<char, 256> kLowerCase = [] {
  std::array<char, 256> lower{};
  for (std::size_t i = 0; i < lower.size(); ++i) lower[i] = LowerCase(static_cast<char>(i));
  return lower;
}();

char FoldCase(char c) { return kLowerCase[static_cast<unsigned char>(c)]; }

void WriteCharacter(std::string& text, const ReadCharacter& place, char c) {
  const bool isCapital = place.c >= 'A' && place.c <= 'Z' && c >= 'a' && c <= 'z';
  if (isCapital) c = static_cast<char>(c - 'a' + 'A');
  if (place.size != 3) {
    text[place.at] = c;
    return;
  }
  const bool hasCapitals = text[place.at] < 'a' && text[place.at + 1] < 'a';
  const char* digits = hasCapitals ? "0123456789ABCDEF" : "0123456789abcdef";
  text[place.at] = digits[static_cast<unsigned char>(c) >> 4];
  text[place.at + 1] = digits[c & 15];
}

constexpr unsigned kNulClass = 36;
constexpr unsigned kPercentClass = 37;

}  // namespace

constexpr std::array<unsigned char, 256> Beginnings::kClasses = [] {
  constexpr unsigned kFirstShared = 38;
  constexpr unsigned kShared = (1U << kClassBits) - kFirstShared;
  std::array<unsigned char, 256> classes{};
  for (unsigned i = 0; i < classes.size(); ++i) {
    const char c = LowerCase(static_cast<char>(i));
    unsigned number = kFirstShared + i % kShared;
    if (IsAsciiDigit(c)) number = static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'z') number = 10 + static_cast<unsigned>(c - 'a');
    if (c == '\0') number = kNulClass;
    if (c == '%') number = kPercentClass;
    classes[i] = static_cast<unsigned char>(number);
  }
  return classes;
}();

void Beginnings::Set(char first, char second, char third) {
  known.set(AddTo(AddTo(AddTo(0, first), second), third));
}

void Beginnings::Add(std::string_view spelling) {
  const char first = spelling[0];
  const char second = spelling[1];
  Set(first, second, spelling[2]);
  Set(first, '\0', second);
  Set('\0', first, '\0');
  Set(first, second, '%');
  for (const bool isCapital : {false, true}) {
    const auto code = [&](char c) {
      const bool isLetter = c >= 'a' && c <= 'z';
      return static_cast<unsigned char>(isCapital && isLetter ? c - 'a' + 'A' : c);
    };
    constexpr char kDigits[] = "0123456789abcdef";
    Set(first, '%', kDigits[code(second) >> 4]);
    Set('%', kDigits[code(first) >> 4], kDigits[code(first) & 15]);
  }
}

void ValueMatcher::Add(std::string_view spelling, std::string_view replacement, std::size_t value,
                       Boundary boundary) {
  std::uint32_t node = 0;
  for (const char c : spelling) {
    const std::uint64_t edge = std::uint64_t{node} << 8 | static_cast<unsigned char>(c);
    const auto [next, isNew] =
        nodes.try_emplace(edge, static_cast<std::uint32_t>(nodes.size() + 1));
    if (isNew) ends.push_back(0);
    node = next->second;
  }
  if (ends[node] != 0) return;
  entries.push_back({std::string(replacement), value, boundary});
  ends[node] = static_cast<std::uint32_t>(entries.size());
  beginnings.Add(spelling);
}

template <typename TakeEnd>
void ValueMatcher::Walk(std::string_view text, std::size_t at, Writing writing,
                        const TakeEnd& takeEnd) const {
  std::uint32_t node = 0;
  for (;;) {
    const ReadCharacter read = ReadAt(text, at, writing);
    if (read.size == 0) return;
    const std::uint64_t edge =
        std::uint64_t{node} << 8 | static_cast<unsigned char>(FoldCase(read.c));
    const auto next = nodes.find(edge);
    if (next == nodes.end()) return;
    node = next->second;
    at += read.size;
    if (ends[node] != 0) takeEnd(entries[ends[node] - 1], at);
  }
}

std::optional<Match> ValueMatcher::MatchAt(std::string_view text, std::size_t at,
                                           Writing writing) const {
  std::optional<Match> longest;
  Walk(text, at, writing, [&](const Entry& entry, std::size_t end) {
    const Match match{entry.value, writing, at, end};
    if (IsBounded(text, match, entry.boundary)) longest = match;
  });
  return longest;
}

std::optional<Match> ValueMatcher::FindNext(std::string_view text, std::size_t from) const {
  if (from + 2 >= text.size()) return std::nullopt;
  std::uint32_t number = Beginnings::AddTo(Beginnings::AddTo(0, text[from]), text[from + 1]);
  for (std::size_t at = from; at + 2 < text.size(); ++at) {
    number = Beginnings::AddTo(number, text[at + 2]);
    if (!beginnings.Has(number)) continue;
    std::optional<Match> match = MatchAt(text, at, Writing::kPlain);
    if (!match && text[at + 1] == '\0') match = MatchAt(text, at, Writing::kLittleEndian);
    if (!match && text[at] == '\0') match = MatchAt(text, at, Writing::kBigEndian);
    if (match) return match;
  }
  return std::nullopt;
}

void ValueMatcher::Replace(std::string& text, const Match& match) const {
  // The texts are the same until the end of the match is known.
  const std::string* replacement = nullptr;
  Walk(text, match.begin, match.writing, [&](const Entry& entry, std::size_t end) {
    if (end == match.end) replacement = &entry.replacement;
  });
  if (replacement == nullptr) return;
  std::size_t at = match.begin;
  for (const char c : *replacement) {
    const ReadCharacter read = ReadAt(text, at, match.writing);
    WriteCharacter(text, read, c);
    at += read.size;
  }
}

}  // namespace host
