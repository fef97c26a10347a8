// Tools that did not end by themselves. They would not the next time either, and each start would
// cost its whole time limit.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "host/collect/command_text.h"
#include "host/text/ascii.h"

namespace host {

class HungTools {
 public:
  /// The tool of this command line was ended after so many seconds.
  void Add(std::string_view commandLine, unsigned seconds) {
    secondsByTool.try_emplace(LowerCase(FindTool(commandLine)), seconds);
  }

  /// After how many seconds the tool of this command line was ended, whatever it was asked for;
  /// none: it never was.
  std::optional<unsigned> Find(std::string_view commandLine) const {
    const auto found = secondsByTool.find(LowerCase(FindTool(commandLine)));
    return found == secondsByTool.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  std::map<std::string, unsigned> secondsByTool;  ///< by file name
};

}  // namespace host
