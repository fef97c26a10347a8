// Finds many values in a text in one pass: as they are, in other case, percent-encoded, in UTF-16.
#pragma once

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

class ValueMatcher {
 public:
  static constexpr std::size_t kShortest = 4;

  /// `spelling` is the value in bytes, of at least kShortest and without capitals; a second value
  /// of the same spelling is ignored. `replacement` is as long, in small letters.
  void Add(std::string_view spelling, std::string_view replacement, std::size_t value,
           Boundary boundary);

  /// The first match from `from` on; of several that begin there, the longest.
  std::optional<Match> FindNext(std::string_view text, std::size_t from) const;

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

  static constexpr std::size_t kBeginnings = std::size_t{1} << 18;
  std::bitset<kBeginnings> beginnings;  ///< of values, by a number made of three characters
  std::unordered_map<std::uint64_t, std::uint32_t> nodes;  ///< by parent and character
  std::unordered_map<std::uint32_t, Entry> entries;        ///< by the node that they end at
};

}  // namespace host
