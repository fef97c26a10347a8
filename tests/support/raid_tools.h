// A machine whose RAID tools answer as a test says. Without more, storcli finds no controller and
// every other tool is missing.
#pragma once

#include <string>
#include <vector>

#include "host/recorded/recording.h"
#include "tests/support/collected.h"

namespace test {

class RaidTools {
 public:
  host::Recording recording;

  /// `countReport` is storcli's report on the number of controllers.
  explicit RaidTools(const std::string& countReport = "Controller Count = 0\n") {
    Storcli("show ctrlcount", countReport);
  }

  /// The tool answers with `text`; several answers for one command come in turn.
  RaidTools& Answer(const std::string& tool, const std::string& arguments, const std::string& text,
                    std::uint32_t exitCode = 0) {
    host::RecordedCommand command;
    command.tool = tool;
    command.arguments = arguments;
    command.standardOutput = text;
    command.exitCode = exitCode;
    recording.commands.push_back(command);
    return *this;
  }
  RaidTools& Storcli(const std::string& arguments, const std::string& text) {
    return Answer("storcli.exe", arguments, text);
  }
  /// The interpreter cannot be started for the command.
  RaidTools& RefuseStart(const std::string& tool, const std::string& arguments,
                         std::uint32_t error) {
    Answer(tool, arguments, "");
    recording.commands.back().startError = error;
    return *this;
  }
  /// The exit code of the command cannot be read.
  RaidTools& HideExitCode(const std::string& tool, const std::string& arguments,
                          std::uint32_t error) {
    Answer(tool, arguments, "");
    recording.commands.back().exitCodeError = error;
    return *this;
  }
  /// The report cannot be written into the log folder, and is not there.
  RaidTools& RefuseReport(const std::string& fileName) {
    recording.readOnly.push_back(recording.logFolder + fileName);
    return *this;
  }

  /// The result of the RAID logs module on it.
  Collected Collect() const { return test::Collect(recording, "sampleModule2", {"TINFO"}); }
};

}  // namespace test
