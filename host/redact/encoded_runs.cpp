#include "host/redact/encoded_runs.h"

#include <array>
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

/// The places of the Base64 characters from `at` on; `at` becomes the end of them.
void CollectBase64(std::string_view text, std::size_t& at, std::vector<std::size_t>& places) {
  places.clear();
  std::size_t inLine = 0;
  while (at < text.size()) {
    if (Base64Value(text[at]) >= 0) {
      places.push_back(at++);
      ++inLine;
      continue;
    }
    const std::size_t lineFeed = text[at] == '\r' ? at + 1 : at;
    const bool goesOn = inLine >= kWrappedLine && lineFeed + 1 < text.size() &&
                        text[lineFeed] == '\n' && Base64Value(text[lineFeed + 1]) >= 0;
    if (!goesOn) return;
    at = lineFeed + 1;
    inLine = 0;
  }
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

void ChangeBase64(std::string& text, const ChangeBytes& change,
                  const std::function<void(const Stretch&)>& noteChange) {
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
    CollectBase64(text, at, places);
    for (std::size_t phase = 0; phase < 4; ++phase) {
      if (places.size() - phase < kShortestBase64) break;
      DecodeBase64(text, places, phase, bytes);
      if (!change(bytes)) continue;
      EncodeBase64(text, places, phase, bytes);
      noteChange({places.front(), places.back() + 1});
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

void ChangeHex(std::string& text, const ChangeBytes& change,
               const std::function<void(const Stretch&)>& noteChange) {
  std::vector<std::size_t> places;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!IsPair(text, at) || (at > 0 && HexValue(text[at - 1]) >= 0)) continue;
    CollectPairs(text, at, places);
    if (places.size() < kFewestPairs) continue;
    std::string bytes;
    for (const std::size_t place : places) {
      bytes += static_cast<char>(HexValue(text[place]) << 4 | HexValue(text[place + 1]));
    }
    if (!change(bytes)) continue;
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
    noteChange({places.front(), places.back() + 2});
  }
}

}  // namespace

void ChangeEncodedBytes(std::string& text, const ChangeBytes& change,
                        const std::function<void(const Stretch&)>& noteChange) {
  ChangeBase64(text, change, noteChange);
  ChangeHex(text, change, noteChange);
}

}  // namespace host
