// The log of a collection. What tools print is logged line by line and, in places, word by word,
// which is many times what they printed: a long log is packed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "host/logger/logger.h"

namespace host {

class KeptLog {
 public:
  /// A line; its text is valid for the call that is given it.
  struct Line {
    unsigned level;
    std::string_view file;
    int line;
    std::string_view text;  ///< bytes in the machine's code page
  };

  void Add(const LogLine& line);
  std::size_t CountLines() const { return count; }

  /// Calls take(Line) for each, in the order in which they came.
  template <typename Take>
  void ForEach(const Take& take) const {
    for (const std::string& piece : packed) TakeLines(Unpack(piece), take);
    TakeLines(last, take);
  }

 private:
  struct Head {
    std::size_t size;  ///< of the text, which follows
    int line;
    std::uint16_t file;  ///< in `files`
    std::uint16_t level;
  };

  template <typename Take>
  void TakeLines(std::string_view piece, const Take& take) const {
    while (!piece.empty()) take(TakeLine(piece));
  }

  static std::string Unpack(const std::string& piece);
  Line TakeLine(std::string_view& piece) const;
  std::uint16_t NumberFile(const std::string& file);

  std::vector<std::string> packed;  ///< all pieces but the last
  std::string last;
  std::deque<std::string> files;  ///< a few: one for each module
  std::size_t count = 0;
};

}  // namespace host
