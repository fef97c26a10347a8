#include "host/answers/parts/packed_rows.h"

#include <cstring>

namespace host {
namespace {

/// What a value begins with, in the lowest bits of a number.
enum Kind : std::uint64_t {
  kWord,     ///< 0: nothing; otherwise the number of a word, from 1
  kText,     ///< its size; its bytes follow
  kInteger,  ///< itself, small ones of both signs
  kWide,     ///< eight bytes follow: kWideInteger or kReal
};
constexpr unsigned kKindBits = 2;
constexpr std::uint64_t kWideInteger = 0;
constexpr std::uint64_t kReal = 1;

constexpr std::size_t kMostWords = 1024;

constexpr unsigned kDigitBits = 7;
constexpr std::uint64_t kMoreDigits = 1U << kDigitBits;

void AppendNumber(std::string& bytes, std::uint64_t number) {
  for (; number >= kMoreDigits; number >>= kDigitBits) {
    bytes += static_cast<char>(number % kMoreDigits + kMoreDigits);
  }
  bytes += static_cast<char>(number);
}

std::uint64_t TakeNumber(const char*& at) {
  std::uint64_t number = 0;
  for (unsigned shift = 0;; shift += kDigitBits) {
    const auto byte = static_cast<unsigned char>(*at++);
    number |= (byte % kMoreDigits) << shift;
    if (byte < kMoreDigits) return number;
  }
}

void AppendHead(std::string& bytes, Kind kind, std::uint64_t rest) {
  AppendNumber(bytes, rest << kKindBits | kind);
}

template <typename Number>
void AppendWide(std::string& bytes, std::uint64_t kind, Number number) {
  static_assert(sizeof(number) == 8);
  AppendHead(bytes, kWide, kind);
  bytes.append(reinterpret_cast<const char*>(&number), sizeof(number));
}

template <typename Number>
Number TakeWide(const char*& at) {
  Number number;
  std::memcpy(&number, at, sizeof(number));
  at += sizeof(number);
  return number;
}

/// 0, -1, 1, -2, ...
std::uint64_t FoldSign(std::int64_t number) {
  return static_cast<std::uint64_t>(number) << 1 ^ static_cast<std::uint64_t>(number >> 63);
}

std::int64_t UnfoldSign(std::uint64_t number) {
  return static_cast<std::int64_t>(number >> 1 ^ (0 - (number & 1)));
}

}  // namespace

void PackedRows::Add(std::span<const PartValue> values) {
  if (words.empty()) words.resize(values.size());
  row.clear();
  newWords.clear();
  Write(values.front(), 0);
  const std::size_t others = row.size();
  for (std::size_t column = 1; column < values.size(); ++column) Write(values[column], column);
  const char* packed = Keep(row);
  rows.push_back({packed, packed + others});
  KeepWords(packed);
}

void PackedRows::ReplaceFirst(std::size_t number, const PartValue& value) {
  row.clear();
  newWords.clear();
  Write(value, 0);
  rows[number].first = Keep(row);
  KeepWords(rows[number].first);
}

void PackedRows::Write(const PartValue& value, std::size_t column) {
  if (const auto* text = std::get_if<std::string_view>(&value)) {
    Words& known = words[column];
    if (known.isInUse) {
      const auto word = known.numbers.find(*text);
      if (word != known.numbers.end()) {
        ++known.found;
        return AppendHead(row, kWord, word->second);
      }
    }
    AppendHead(row, kText, text->size());
    if (known.isInUse) newWords.push_back({column, row.size(), text->size()});
    row += *text;
  } else if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    const std::uint64_t folded = FoldSign(*integer);
    if (folded << kKindBits >> kKindBits == folded) {
      AppendHead(row, kInteger, folded);
    } else {
      AppendWide(row, kWideInteger, *integer);
    }
  } else if (const auto* real = std::get_if<double>(&value)) {
    AppendWide(row, kReal, *real);
  } else {
    AppendHead(row, kWord, 0);
  }
}

PartValue PackedRows::Read(const char*& at, std::size_t column) const {
  const std::uint64_t head = TakeNumber(at);
  const std::uint64_t rest = head >> kKindBits;
  switch (static_cast<Kind>(head % (1U << kKindBits))) {
    case kWord:
      if (rest == 0) return {};
      return words[column].all[rest - 1];
    case kText: {
      const std::string_view text(at, rest);
      at += rest;
      return text;
    }
    case kInteger:
      return UnfoldSign(rest);
    case kWide:
      break;
  }
  if (rest == kReal) return TakeWide<double>(at);
  return TakeWide<std::int64_t>(at);
}

PartValue PackedRows::Get(std::size_t number, std::size_t column) const {
  const char* at = rows[number].first;
  if (column == 0) return Read(at, 0);
  at = rows[number].others;
  for (std::size_t before = 1; before < column; ++before) Read(at, before);
  return Read(at, column);
}

const char* PackedRows::Keep(std::string_view bytes) {
  char* const kept = texts.Take(bytes.size());
  std::memcpy(kept, bytes.data(), bytes.size());
  return kept;
}

void PackedRows::KeepWords(const char* packed) {
  for (const NewWord& made : newWords) {
    Words& known = words[made.column];
    if (known.all.size() == kMostWords) {
      // To look for each of them would be for nothing.
      if (known.found >= kMostWords) continue;
      known.isInUse = false;
      known.numbers = {};
      continue;
    }
    const std::string_view word(packed + made.begin, made.size);
    known.all.push_back(word);
    known.numbers.emplace(word, known.all.size());
  }
}

}  // namespace host
