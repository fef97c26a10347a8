// The log of a collection, in little more memory than its texts: what tools print is logged line by
// line and, in places, word by word.
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
  /// A line; its texts are valid as long as the log.
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
    for (const std::vector<char>& piece : pieces) {
      for (std::size_t at = 0; at < piece.size();) take(ReadLine(piece, at));
    }
  }

 private:
  struct Head {
    std::size_t size;  ///< of the text, which follows
    int line;
    std::uint16_t file;  ///< in `files`
    std::uint16_t level;
  };

  /// Moves `at` on to the next line.
  Line ReadLine(const std::vector<char>& piece, std::size_t& at) const;
  std::uint16_t NumberFile(const std::string& file);

  std::deque<std::vector<char>> pieces;  ///< each of the memory that it was given first
  std::deque<std::string> files;         ///< a few: one for each module
  std::size_t count = 0;
};

}  // namespace host
