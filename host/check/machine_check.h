// Checks a machine before a collection runs: are each module's tools there, can results be written,
// and does anything keep tables empty?
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/collect/machine_facts.h"

namespace host {

struct CheckedMachine {
  MachineFacts facts;
  /// Full path of a program, given with its folder or as the interpreter looks for it; nothing when
  /// it is not there. Bytes in the machine's code page.
  std::function<std::optional<std::string>(const std::string& program)> locate;
  std::optional<Surroundings> surroundings;
  /// Whether a collection would run although the interpreter does not read a folder as it is.
  bool allowsUnsafeFolders = false;
};

struct Finding {
  enum class Kind { kGood, kNote, kMissing };
  Kind kind = Kind::kGood;
  std::string subject;  ///< a module's name, or a part of the machine
  std::string text;     ///< UTF-8, one line: the finding and, unless good, its remedy
};

/// Module by module (all, or those named) and tool by tool, then the machine. Throws UsageError for
/// a module's name that does not fit.
std::vector<Finding> CheckMachine(const CheckedMachine& machine,
                                  const std::vector<std::string>& moduleNames);

}  // namespace host
