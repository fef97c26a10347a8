#include "host/redact/value_list.h"

#include <algorithm>
#include <cstddef>

#include "host/redact/ordinary_words.h"
#include "host/redact/value_finder.h"
#include "host/text/ascii.h"

namespace host {
namespace {

constexpr std::size_t kMacDigits = 12;
constexpr std::size_t kWwnDigits = 16;
constexpr std::size_t kGuidDigits = 32;

/// More of a value is not one.
constexpr std::size_t kLongestValue = 200;

/// The digits of an address that is written with signs between them; nothing when it is none.
std::optional<std::string> FindDigits(ValueKind kind, std::string_view text) {
  const std::string lower = LowerCase(text);
  std::string_view rest = lower;
  for (const std::string_view prefix : {"0x", "naa.", "eui.", "{"}) {
    if (rest.starts_with(prefix)) rest.remove_prefix(prefix.size());
  }
  std::string digits;
  for (const char c : rest) {
    if (std::string_view("0123456789abcdef").find(c) != std::string_view::npos) {
      digits += c;
    } else if (std::string_view(" :-.}").find(c) == std::string_view::npos) {
      return std::nullopt;
    }
  }
  const bool fits = kind == ValueKind::kMac ? digits.size() == kMacDigits
                    : kind == ValueKind::kGuid
                        ? digits.size() == kGuidDigits
                        : digits.size() == kWwnDigits || digits.size() == 2 * kWwnDigits;
  return fits ? std::optional(digits) : std::nullopt;
}

bool HasDigits(ValueKind kind) {
  return kind == ValueKind::kMac || kind == ValueKind::kWwn || kind == ValueKind::kGuid;
}

/// `digits` with `separator` after each group.
std::string GroupDigits(std::string_view digits, std::size_t group, char separator) {
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && i % group == 0) text += separator;
    text += digits[i];
  }
  return text;
}

std::string DashGuid(std::string_view digits) {
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i == 8 || i == 12 || i == 16 || i == 20) text += '-';
    text += digits[i];
  }
  return text;
}

/// The ways in which an address of such digits may be written; the same ones in the same order for
/// each.
std::vector<std::string> WriteDigits(ValueKind kind, const std::string& digits) {
  if (kind == ValueKind::kGuid) return {DashGuid(digits), digits};
  return {digits, GroupDigits(digits, 2, '-'), GroupDigits(digits, 2, ':'),
          GroupDigits(digits, 2, ' '), GroupDigits(digits, 4, '.')};
}

Boundary ChooseBoundary(ValueKind kind, std::string_view text) {
  if (kind == ValueKind::kIpv4) return Boundary::kNoAddress;
  constexpr std::size_t kLongEnough = 8;
  const bool hasDigit = std::any_of(text.begin(), text.end(), &IsAsciiDigit);
  const bool hasLetter = std::any_of(
      text.begin(), text.end(), [](char c) { return !IsAsciiDigit(c) && IsAsciiLetterOrDigit(c); });
  const bool isMixed = text.size() >= kLongEnough && hasDigit && hasLetter;
  return isMixed ? Boundary::kAnything : Boundary::kNoWord;
}

/// Spells a pseudonym, which has a character for each of `key`, for a spelling of the key: a
/// character of several bytes gets its own as often.
std::string FitPseudonym(std::string_view pseudonym, std::string_view key,
                         std::string_view spelling) {
  if (pseudonym.size() == spelling.size()) return std::string(pseudonym);
  if (key.size() != spelling.size()) return {};
  std::string fitted;
  for (const char c : pseudonym) {
    const std::size_t before = key.size();
    TakeUtf8(key);
    fitted.append(before - key.size(), c);
  }
  return fitted;
}

/// `utf8` with a byte for each character; nothing when one has a number beyond a byte's.
std::string WriteLatin1(std::string_view utf8) {
  std::string text;
  while (!utf8.empty()) {
    const char32_t c = TakeUtf8(utf8);
    if (c > 0xFF) return {};
    text += static_cast<char>(c);
  }
  return text;
}

void AppendUtf16(std::string& text, char16_t unit, bool isBigEndian) {
  const char high = static_cast<char>(unit >> 8);
  const char low = static_cast<char>(unit & 0xff);
  text += isBigEndian ? high : low;
  text += isBigEndian ? low : high;
}

/// A value with its pseudonym as UTF-16 has them.
struct WideSpelling {
  std::string value;
  std::string pseudonym;
};

WideSpelling WriteUtf16(std::string_view key, std::string_view pseudonym, bool isBigEndian) {
  WideSpelling wide;
  for (const char replacement : pseudonym) {
    const char32_t c = TakeUtf8(key);
    const bool isPair = c > 0xFFFF;
    if (isPair) {
      AppendUtf16(wide.value, static_cast<char16_t>(0xD7C0 + (c >> 10)), isBigEndian);
      AppendUtf16(wide.pseudonym, static_cast<unsigned char>(replacement), isBigEndian);
    }
    AppendUtf16(wide.value, static_cast<char16_t>(isPair ? 0xDC00 + (c & 0x3FF) : c), isBigEndian);
    AppendUtf16(wide.pseudonym, static_cast<unsigned char>(replacement), isBigEndian);
  }
  wide.value = LowerCase(wide.value);
  return wide;
}

}  // namespace

ValueList::ValueList(const RedactionRules& rules, const Pseudonyms& pseudonyms,
                     std::uint32_t codePage)
    : rules(rules),
      pseudonyms(pseudonyms),
      decode(codePage),
      ordinaryWords(ListOrdinaryWords()),
      keptNames(ListToolFiles()) {}

void ValueList::Keep(std::string_view name) {
  const std::string lower = LowerCase(name);
  keptNames.insert(lower);
  keptNames.insert(lower.substr(0, lower.rfind('.')));
}

std::optional<std::size_t> ValueList::Add(ValueKind kind, std::string_view bytes) {
  if (!rules.kinds.contains(kind) || bytes.size() > kLongestValue) return std::nullopt;
  const ValueKind foundAs = kind;
  const std::string text = decode(bytes);
  std::string key = LowerCase(text);
  if (HasDigits(kind)) {
    const std::optional<std::string> digits = FindDigits(kind, bytes);
    if (digits) {
      key = *digits;
    } else {
      kind = ValueKind::kSerial;
    }
  }
  // Most values come many times.
  const auto known = numbers.find(key);
  if (known != numbers.end() && values[known->second].kind == kind) return known->second;
  if (IsNoSecret(foundAs, bytes)) return std::nullopt;
  if (kind == ValueKind::kPath && keptNames.contains(key)) return std::nullopt;
  if (known != numbers.end()) {
    ListedValue& value = values[known->second];
    if (kind < value.kind && !HasDigits(kind) && !HasDigits(value.kind)) {
      value.kind = kind;
      value.isOrdinary = value.isOrdinary && IsOrdinary(kind, key);
      if (kind == ValueKind::kPassword) value.pseudonym = pseudonyms.Make(kind, key);
    }
    return known->second;
  }
  std::string pseudonym = MakePseudonym(kind, key);
  if (pseudonym == key) return std::nullopt;  // a network or a name without letters and digits
  if (!IsAscii(key)) machineBytes.emplace(key, LowerCase(bytes));
  values.push_back({.kind = kind,
                    .text = text,
                    .pseudonym = std::move(pseudonym),
                    .isOrdinary = IsOrdinary(kind, key),
                    .where = {}});
  keys.push_back(key);
  return numbers.emplace(std::move(key), values.size() - 1).first->second;
}

std::string ValueList::MakePseudonym(ValueKind kind, const std::string& key) {
  if (kind == ValueKind::kPassword) return pseudonyms.Make(kind, key);
  std::string pseudonym = pseudonyms.Make(kind, key);
  constexpr int kMostAttempts = 100;
  for (int i = 1; i < kMostAttempts && usedPseudonyms.contains(pseudonym) && !IsAscii(key); ++i) {
    pseudonym = pseudonyms.Make(kind, key, i);
  }
  usedPseudonyms.insert(pseudonym);
  return pseudonym;
}

bool ValueList::IsOrdinary(ValueKind kind, const std::string& key) const {
  constexpr std::size_t kLongNumber = 8;
  if (key.size() < ValueMatcher::kShortest) return true;
  if (ordinaryWords.contains(key) || keptNames.contains(key) || IsCommonFolder(key)) return true;
  const bool isNumber = std::all_of(key.begin(), key.end(), &IsAsciiDigit);
  const bool isWord = std::none_of(key.begin(), key.end(), &IsAsciiDigit);
  if (isNumber) return key.size() < kLongNumber;
  return isWord && kind == ValueKind::kSerial && key.size() < kLongNumber;
}

std::vector<std::string> ValueList::ListSpellings(const std::string& key) const {
  const auto bytes = machineBytes.find(key);
  if (bytes == machineBytes.end()) return {key};
  return {bytes->second, key, LowerCase(WriteLatin1(key))};
}

ValueMatcher ValueList::MakeMatcher() const {
  ValueMatcher matcher;
  for (std::size_t number = 0; number < values.size(); ++number) {
    const ListedValue& value = values[number];
    if (value.isOrdinary) continue;
    const std::string& key = keys[number];
    const Boundary boundary = ChooseBoundary(value.kind, key);
    if (HasDigits(value.kind)) {
      const std::vector<std::string> spellings = WriteDigits(value.kind, key);
      const std::vector<std::string> replacements = WriteDigits(value.kind, value.pseudonym);
      for (std::size_t i = 0; i < spellings.size(); ++i) {
        matcher.Add(spellings[i], replacements[i], number, boundary);
      }
      continue;
    }
    for (const std::string& spelling : ListSpellings(key)) {
      const std::string replacement = FitPseudonym(value.pseudonym, key, spelling);
      if (spelling.size() >= ValueMatcher::kShortest && replacement.size() == spelling.size()) {
        matcher.Add(spelling, replacement, number, boundary);
      }
    }
    // The matcher reads UTF-16 of characters of one byte by itself.
    if (!WriteLatin1(key).empty()) continue;
    for (const bool isBigEndian : {false, true}) {
      const WideSpelling wide = WriteUtf16(key, value.pseudonym, isBigEndian);
      // Bytes of other characters beside it would be taken for letters.
      matcher.Add(wide.value, wide.pseudonym, number, Boundary::kAnything);
    }
  }
  return matcher;
}

std::string ValueList::Replacement(std::size_t number, std::string_view bytes) const {
  const ListedValue& value = values[number];
  std::string text = value.pseudonym;
  if (HasDigits(value.kind)) {
    // The signs between the digits stay.
    text = std::string(bytes);
    std::size_t next = 0;
    const std::size_t hex = LowerCase(bytes).starts_with("0x") ? 2 : 0;
    for (std::size_t i = hex; i < text.size() && next < value.pseudonym.size(); ++i) {
      const bool isDigit =
          std::string_view("0123456789abcdef").find(LowerCase(text[i])) != std::string_view::npos;
      if (isDigit) text[i] = value.pseudonym[next++];
    }
  } else {
    text = FitPseudonym(text, keys[number], bytes);
    // What machine and UTF-8 spell in other lengths.
    if (text.size() != bytes.size()) text.assign(bytes.size(), 'x');
  }
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isCapital = bytes[i] >= 'A' && bytes[i] <= 'Z';
    if (isCapital && text[i] >= 'a' && text[i] <= 'z') {
      text[i] = static_cast<char>(text[i] - 'a' + 'A');
    }
  }
  return text;
}

}  // namespace host
