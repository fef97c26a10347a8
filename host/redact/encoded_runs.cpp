#include "host/redact/encoded_runs.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace host {
namespace {

constexpr char kBase64Alphabet[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kSextet = 6;
constexpr std::size_t kByte = 8;
/// Of a value of four bytes; a shorter one is not replaced.
constexpr std::size_t kShortestBase64 = 6;
constexpr std::size_t kFewestPairs = 4;
/// Lines of that many Base64 characters go on in the next one.
constexpr std::size_t kWrappedLine = 60;

constexpr std::array<std::int8_t, 256> kBase64Values = [] {
  std::array<std::int8_t, 256> values{};
  values.fill(-1);
  for (std::size_t i = 0; i + 1 < sizeof(kBase64Alphabet); ++i) {
    values[static_cast<unsigned char>(kBase64Alphabet[i])] = static_cast<std::int8_t>(i);
  }
  values['-'] = values['+'];
  values['_'] = values['/'];
  return values;
}();

int Base64Value(char c) { return kBase64Values[static_cast<unsigned char>(c)]; }

constexpr std::array<std::int8_t, 256> kHexValues = [] {
  std::array<std::int8_t, 256> values{};
  values.fill(-1);
  for (int i = 0; i < 16; ++i) {
    values[static_cast<unsigned char>("0123456789abcdef"[i])] = static_cast<std::int8_t>(i);
    values[static_cast<unsigned char>("0123456789ABCDEF"[i])] = static_cast<std::int8_t>(i);
  }
  return values;
}();

int HexValue(char c) { return kHexValues[static_cast<unsigned char>(c)]; }

/// The characters of Base64 from a place on, one after the other.
class Base64Run {
 public:
  Base64Run(std::string_view text, std::size_t begin) : text(text), next(begin) {}

  /// False at the end.
  bool Take() {
    if (IsBase64(next)) {
      ++inLine;
    } else {
      const std::size_t lineFeed = next < text.size() && text[next] == '\r' ? next + 1 : next;
      const bool goesOn = inLine >= kWrappedLine && lineFeed < text.size() &&
                          text[lineFeed] == '\n' && IsBase64(lineFeed + 1);
      if (!goesOn) return false;
      next = lineFeed + 1;
      inLine = 1;
    }
    ++next;
    return true;
  }

  /// Of the one that was taken last.
  std::size_t Place() const { return next - 1; }
  std::uint32_t Value() const { return static_cast<std::uint32_t>(Base64Value(text[next - 1])); }

 private:
  bool IsBase64(std::size_t at) const { return at < text.size() && Base64Value(text[at]) >= 0; }

  std::string_view text;
  std::size_t next;
  std::size_t inLine = 0;
};

constexpr std::size_t kPhases = 4;

/// With which of the run's first characters bytes begin that have one of `beginnings`, and where
/// the run ends.
struct Base64Phases {
  std::array<bool, kPhases> mayHave{};
  std::size_t end = 0;
};

Base64Phases FindPhases(Base64Run run, const Beginnings& beginnings) {
  constexpr std::size_t kInView = 5;  // three bytes of any phase
  Base64Phases phases;
  std::uint32_t bits = 0;
  for (std::size_t count = 1; run.Take(); ++count) {
    phases.end = run.Place() + 1;
    bits = bits << kSextet | run.Value();
    if (count < kInView) continue;
    // A byte may begin with each second bit of the first character in view. Six bits are one and
    // eight a byte: by that it is known with which character these bytes began.
    const bool hasFirst = beginnings.Has(Beginnings::NumberOf(bits >> 6));
    const bool hasSecond = beginnings.Has(Beginnings::NumberOf(bits >> 4));
    const bool hasThird = beginnings.Has(Beginnings::NumberOf(bits >> 2));
    if (!(hasFirst | hasSecond | hasThird)) continue;
    const std::size_t place = count - kInView;
    phases.mayHave[place % kPhases] |= hasFirst;
    phases.mayHave[(place + 3) % kPhases] |= hasSecond;
    phases.mayHave[(place + 2) % kPhases] |= hasThird;
  }
  return phases;
}

/// The places of the characters.
void CollectBase64(Base64Run run, std::vector<std::size_t>& places) {
  places.clear();
  while (run.Take()) places.push_back(run.Place());
}

/// Makes `bytes` those that begin with the character number `phase`, of which there is one.
void DecodeBase64(std::string_view text, const std::vector<std::size_t>& places, std::size_t phase,
                  std::string& bytes) {
  bytes.resize((places.size() - phase) * kSextet / kByte);
  char* next = bytes.data();
  std::uint32_t bits = 0;
  std::size_t count = 0;
  for (std::size_t i = phase; i < places.size(); ++i) {
    bits = bits << kSextet | static_cast<std::uint32_t>(Base64Value(text[places[i]]));
    count += kSextet;
    if (count < kByte) continue;
    count -= kByte;
    *next++ = static_cast<char>(bits >> count & 0xff);
  }
}

/// Bits beyond the last whole byte stay.
void EncodeBase64(std::string& text, const std::vector<std::size_t>& places, std::size_t phase,
                  std::string_view bytes) {
  for (std::size_t i = phase; i < places.size(); ++i) {
    char& c = text[places[i]];
    const int before = Base64Value(c);
    int value = 0;
    for (std::size_t bit = 0; bit < kSextet; ++bit) {
      const std::size_t at = (i - phase) * kSextet + bit;
      const int old = before >> (kSextet - 1 - bit) & 1;
      const bool isBeyond = at / kByte >= bytes.size();
      const int now =
          isBeyond ? old
                   : static_cast<unsigned char>(bytes[at / kByte]) >> (kByte - 1 - at % kByte) & 1;
      value = value << 1 | now;
    }
    if (value != before) c = kBase64Alphabet[value];
  }
}

/// Calls `take` with the bytes that may have one of `beginnings`, the places of the run's
/// characters and the number of the one that the bytes begin with.
template <typename Take>
void ForEachBase64(std::string_view text, const Beginnings& beginnings, const Take& take) {
  std::vector<std::size_t> places;
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (Base64Value(text[at]) < 0) continue;
    // Most are words, too short for any value.
    std::size_t end = at + 1;
    while (end < text.size() && end - at < kShortestBase64 && Base64Value(text[end]) >= 0) ++end;
    if (end - at < kShortestBase64) {
      at = end;
      continue;
    }
    const Base64Run run(text, at);
    const Base64Phases phases = FindPhases(run, beginnings);
    at = phases.end;
    places.clear();
    for (std::size_t phase = 0; phase < kPhases; ++phase) {
      if (!phases.mayHave[phase]) continue;
      if (places.empty()) CollectBase64(run, places);
      if (places.size() - phase < kShortestBase64) break;
      DecodeBase64(text, places, phase, bytes);
      take(bytes, places, phase);
    }
  }
}

/// Whether a pair of hexadecimal digits begins at `at`.
bool IsPair(std::string_view text, std::size_t at) {
  return at + 1 < text.size() && HexValue(text[at]) >= 0 && HexValue(text[at + 1]) >= 0;
}

/// Where the next pair begins, at or after `at`, with no more than a separator or the end of a line
/// before it.
std::size_t SkipSeparator(std::string_view text, std::size_t at) {
  constexpr std::size_t kMostSeparators = 4;
  std::size_t next = at;
  while (next < text.size() && next - at < kMostSeparators &&
         std::string_view(" :-,\r\n").find(text[next]) != std::string_view::npos) {
    ++next;
  }
  return next;
}

/// The places of the pairs from `at` on; `at` becomes the end of them.
void CollectPairs(std::string_view text, std::size_t& at, std::vector<std::size_t>& places) {
  places.clear();
  std::size_t next = at;
  while (IsPair(text, next)) {
    places.push_back(next);
    at = next + 2;
    next = SkipSeparator(text, at);
  }
}

/// Calls `take` with the bytes and the places of the pairs.
template <typename Take>
void ForEachHex(std::string_view text, const Take& take) {
  std::vector<std::size_t> places;
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!IsPair(text, at) || (at > 0 && HexValue(text[at - 1]) >= 0)) continue;
    CollectPairs(text, at, places);
    if (places.size() < kFewestPairs) continue;
    bytes.clear();
    for (const std::size_t place : places) {
      bytes += static_cast<char>(HexValue(text[place]) << 4 | HexValue(text[place + 1]));
    }
    take(bytes, places);
  }
}

void EncodeHex(std::string& text, const std::vector<std::size_t>& places, std::string_view bytes) {
  for (std::size_t i = 0; i < places.size(); ++i) {
    char* pair = &text[places[i]];
    const bool hasCapitals =
        (pair[0] >= 'A' && pair[0] <= 'F') || (pair[1] >= 'A' && pair[1] <= 'F');
    const char* digits = hasCapitals ? "0123456789ABCDEF" : "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(bytes[i]);
    if ((HexValue(pair[0]) << 4 | HexValue(pair[1])) == byte) continue;
    pair[0] = digits[byte >> 4];
    pair[1] = digits[byte & 15];
  }
}

}  // namespace

void ChangeEncodedBytes(std::string& text, const Beginnings& beginnings,
                        const ChangeBytes& change) {
  ForEachBase64(text, beginnings,
                [&](std::string& bytes, const std::vector<std::size_t>& places, std::size_t phase) {
                  if (change(bytes)) EncodeBase64(text, places, phase, bytes);
                });
  ForEachHex(text, [&](std::string& bytes, const std::vector<std::size_t>& places) {
    if (change(bytes)) EncodeHex(text, places, bytes);
  });
}

void ReadEncodedBytes(std::string_view text, const Beginnings& beginnings, const TakeBytes& take) {
  ForEachBase64(text, beginnings,
                [&](const std::string& bytes, const auto& /*places*/, std::size_t /*phase*/) {
                  take(bytes);
                });
  ForEachHex(text, [&](const std::string& bytes, const auto& /*places*/) { take(bytes); });
}

}  // namespace host
