// The data of a controller's event.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace pq {

/// The lines of event data after a record's "=======" line, line ends and all, as far as they fit.
class EventData {
 public:
  void Clear() { length = 0; }
  void Append(std::string_view line) {
    length += line.copy(text.data() + length, text.size() - length);
  }
  std::string_view Text() const { return {text.data(), length}; }

 private:
  std::array<char, 2047> text{};
  std::size_t length = 0;
};

}  // namespace pq
