#include "host/redact/searchable_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include "host/text/decoder.h"

namespace host {
namespace {

using std::string_view_literals::operator""sv;

/// How files begin that are packed, or no text at all.
constexpr std::string_view kBinaryBeginnings[] = {"PK\x03\x04"sv,
                                                  "\x1f\x8b"sv,
                                                  "MZ\x90"sv,
                                                  "7z\xbc\xaf"sv,
                                                  "BZh9"sv,
                                                  "\xfd\x37zXZ\0"sv,
                                                  "%PDF"sv,
                                                  "\x89PNG"sv,
                                                  "\x7f"
                                                  "ELF"sv,
                                                  "MSCF"sv,
                                                  "\x28\xb5\x2f\xfd"sv,
                                                  "Rar!"sv,
                                                  "SQLite format 3"sv};
constexpr std::string_view kByteOrderMarks[] = {"\xff\xfe"sv, "\xfe\xff"sv};
/// Code pages of scripts most of whose letters are beyond ASCII.
constexpr std::array<std::uint32_t, 4> kOtherScripts = {932, 936, 1251, kUtf8CodePage};

/// A text of which more than one byte in so many is no sign of a text is none.
constexpr std::size_t kBytesPerOddOne = 50;
constexpr std::size_t kFewOddOnes = 8;

bool IsOdd(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte < 0x20 && "\a\b\t\n\v\f\r\x1a\x1b"sv.find(c) == std::string_view::npos) ||
         byte == 0x7f;
}

/// Whether the NUL at `at` is one of several in a row with one byte between them.
bool IsHalfOfCharacter(std::string_view bytes, std::size_t at) {
  const auto isNul = [&](std::size_t other) {
    return other < bytes.size() && bytes[other] == '\0';
  };
  const bool hasNeighbour = (at > 1 && isNul(at - 2)) || isNul(at + 2);
  const bool isAlone = !(at > 0 && isNul(at - 1)) && !isNul(at + 1);
  return hasNeighbour && isAlone;
}

bool IsFew(std::size_t odd, std::size_t all) {
  return odd <= kFewOddOnes || odd * kBytesPerOddOne <= all;
}

}  // namespace

bool IsSearchable(std::string_view bytes, std::uint32_t codePage) {
  const auto begins = [&](std::string_view beginning) { return bytes.starts_with(beginning); };
  if (std::ranges::any_of(kBinaryBeginnings, begins)) return false;
  if (std::ranges::any_of(kByteOrderMarks, begins)) {
    // The NULs are at odd places when the low byte comes first.
    std::size_t odd = 0;
    for (std::size_t at = bytes.front() == '\xff' ? 3 : 2; at < bytes.size(); at += 2) {
      if (bytes[at] != '\0') ++odd;
    }
    return odd == 0;
  }
  std::size_t odd = 0;
  std::size_t beyondAscii = 0;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    if ((bytes[at] & 0x80) != 0) ++beyondAscii;
    if (IsOdd(bytes[at]) && !(bytes[at] == '\0' && IsHalfOfCharacter(bytes, at))) ++odd;
  }
  const bool isOtherScript = std::ranges::find(kOtherScripts, codePage) != kOtherScripts.end();
  if (!isOtherScript && beyondAscii > kFewOddOnes && beyondAscii * 2 > bytes.size()) return false;
  return IsFew(odd, bytes.size());
}

}  // namespace host
