// Finds many values in a text in one pass: as they are, in other case, percent-encoded, in UTF-16.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host {

/// What may be beside a value.
enum class Boundary {
  kAnything,   ///< the value is so long and mixed that it is nothing else
  kNoWord,     ///< no letter or digit
  kNoAddress,  ///< no digit, nor a dot with a digit after it: the value is an IPv4 address
};

/// How a character is written: as a byte or percent-encoded, or in UTF-16.
enum class Writing { kPlain, kLittleEndian, kBigEndian };

struct Match {
  std::size_t value = 0;  ///< as it was added
  Writing writing = Writing::kPlain;
  std::size_t begin = 0;
  std::size_t end = 0;  ///< in bytes
};

/// Three characters as a number, of which each one more makes the next: of a text, most places are
/// told by it to be the beginning of nothing.
class Beginnings {
 public:
  static std::uint32_t AddTo(std::uint32_t number, char c) {
    return (number << kClassBits | kClasses[static_cast<unsigned char>(c)]) & (kCount - 1);
  }

  /// Of the three low bytes, the first one highest.
  static std::uint32_t NumberOf(std::uint32_t bytes) {
    return std::uint32_t{kClasses[bytes >> 16 & 0xff]} << (2 * kClassBits) |
           std::uint32_t{kClasses[bytes >> 8 & 0xff]} << kClassBits | kClasses[bytes & 0xff];
  }

  /// `spelling` as it is, percent-encoded and in UTF-16.
  void Add(std::string_view spelling);
  /// False where no value can begin.
  bool Has(std::uint32_t number) const { return known[number]; }

 private:
  /// Without case; characters that are no letters and digits share what is left.
  static constexpr int kClassBits = 6;
  static constexpr std::uint32_t kCount = std::uint32_t{1} << (3 * kClassBits);
  static const std::array<unsigned char, 256> kClasses;

  void Set(char first, char second, char third);

  std::bitset<kCount> known;
};

class ValueMatcher {
 public:
  static constexpr std::size_t kShortest = 4;

  /// `spelling` is the value in bytes, of at least kShortest and without capitals; a second value
  /// of the same spelling is ignored. `replacement` is as long, in small letters.
  void Add(std::string_view spelling, std::string_view replacement, std::size_t value,
           Boundary boundary);

  /// The first match from `from` on; of several that begin there, the longest.
  std::optional<Match> FindNext(std::string_view text, std::size_t from) const;
  const Beginnings& ListBeginnings() const { return beginnings; }

  /// Writes the replacement over `match`, which was found in `text`, in the same writing and case.
  void Replace(std::string& text, const Match& match) const;

 private:
  struct Entry {
    std::string replacement;
    std::size_t value;
    Boundary boundary;
  };

  std::optional<Match> MatchAt(std::string_view text, std::size_t at, Writing writing) const;
  template <typename TakeEnd>
  void Walk(std::string_view text, std::size_t at, Writing writing, const TakeEnd& takeEnd) const;

  Beginnings beginnings;
  std::unordered_map<std::uint64_t, std::uint32_t> nodes;  ///< by parent and character
  std::vector<std::uint32_t> ends = {0};  ///< by node: the entry that ends there, from 1; 0: none
  std::vector<Entry> entries;
};

}  // namespace host
