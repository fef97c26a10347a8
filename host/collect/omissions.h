// What a table leaves out on this machine, found in what the tools printed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frame/description.h"
#include "host/recorded/machine_observer.h"

namespace host {

/// A command line that a module ran, and the tool's answer.
struct CollectedAnswer : ToolAnswer {
  std::string module;
  std::string commandLine;
  std::optional<std::uint32_t> exitCode;  ///< none: the tool was not awaited, or did not start

  /// A host ended the tool, or had when it was recorded.
  bool WasEnded() const { return exitCode == kEndedExitCode; }
};

/// Answers about a collection, to find omissions.
struct OmissionEvidence {
  std::span<const CollectedAnswer> answers;  ///< in order
  /// Whether the machine has the programs of a command line.
  std::function<bool(const std::string& commandLine)> hasPrograms;
  /// Whether the log folder has a file, given with the folders below it.
  std::function<bool(const std::string& fileName)> hasLogFile;
  /// The property `key` of the first row of a class; empty without one.
  std::function<std::string_view(const std::string& className, const std::string& key)> firstValue;
};

/// A sentence for each omission of `table` that this machine has. Texts of tools in it are bytes in
/// the machine's code page.
std::vector<std::string> FindOmissions(const pq::TableDescription& table, const std::string& module,
                                       std::size_t rowCount, const OmissionEvidence& evidence);

}  // namespace host
