// What tools write to the console instead of their output, such as that a program is missing: many
// of them the same again and again. It is told once all tools have run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "host/collect/collection_listener.h"

namespace host {

class ToolChatter final : public CollectionListener {
 public:
  void OnToolConsole(std::string_view text) override;

  /// Writes each line once, in the order in which they first came, with how often it came.
  /// `codePage` is that of the lines; what a terminal would obey is escaped.
  void Tell(std::uint32_t codePage, std::ostream& out) const;

 private:
  struct Line {
    std::string text;
    std::size_t count = 0;
  };
  void Add(std::string_view line);

  std::vector<Line> lines;
  std::size_t others = 0;  ///< lines that there is no room for
};

}  // namespace host
