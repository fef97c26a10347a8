// A recording of a machine: the output of its tools and the files that are on it. Plain
// data, cheap to copy; host/recording knows it as files.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "frame/platform.h"
#include "host/recorded/submission.h"
#include "host/text/bytes.h"

namespace host {

/// One answer of a tool. Texts are bytes as they are on the machine.
struct RecordedCommand {
  std::string tool;       ///< file name of the program; compared without case and without ".exe"
  std::string arguments;  ///< all after the program up to a pipe or a redirection, ends trimmed
  Bytes standardOutput;
  Bytes standardError;
  std::uint32_t exitCode = 0;
  std::uint32_t startError = 0;     ///< not 0: the interpreter cannot be started for it
  std::uint32_t pipeError = 0;      ///< not 0: the pipe for it cannot be created
  std::uint32_t exitCodeError = 0;  ///< not 0: its exit code cannot be read

  bool operator==(const RecordedCommand&) const = default;
};

struct Recording {
  std::string description;
  std::uint32_t languageId = pq::kUsEnglish;
  std::uint32_t codePage = 1252;
  std::string hostExecutable = "C:\\Halyard\\halyard.exe";
  std::string logFolder = "C:\\Halyard\\logs\\";
  std::string workingFolder = "C:\\Halyard\\work\\";
  bool hasLogFolder = true;  ///< false: nobody made the log folder
  std::string console;       ///< the operator's input
  /// Several entries for one command answer in turn; the last one answers from then on.
  std::vector<RecordedCommand> commands;
  /// Windows path to stored bytes.
  std::map<std::string, Bytes> files;
  std::vector<std::string> readOnly;
  std::optional<Submission> submission;  ///< none: nobody knows
  /// SHA-256 of the recording's manifest in hexadecimal; empty when it was not read.
  std::string contentKey;
  /// Why it may not be the machine that was recorded: a line of UTF-8 each.
  std::vector<std::string> doubts;
};

}  // namespace host
