// The interpreter's own commands on the files of a recorded machine. They answer in words of the
// system, as the interpreter does.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/recorded/interpreter.h"
#include "host/recorded/machine_files.h"

namespace host {

/// The result of a command.
struct CommandOutcome {
  Bytes standardOutput;
  Bytes standardError;
  std::uint32_t exitCode = 0;
};

/// The interpreter's words for a failure, with exit code 1.
CommandOutcome FailWith(std::string_view words);
CommandOutcome FailWith(FileResult result);

/// Its complaint about a missing program; `program` as written on the line.
std::string NotRecognized(std::string_view program);

inline constexpr std::string_view kAccessDenied = "Access is denied.";
inline constexpr std::string_view kNoSuchPath = "The system cannot find the path specified.";
inline constexpr std::string_view kNoSuchFile = "The system cannot find the file specified.";
inline constexpr std::string_view kBadSyntax = "The syntax of the command is incorrect.";

/// Whether `program`, as written on a line, is one of the interpreter's own commands.
bool IsOwnCommand(std::string_view program);

/// copy, md or findstr. `input` came through the pipe.
CommandOutcome RunOwnCommand(const Stage& stage, const Bytes& input, MachineFiles& files);

}  // namespace host
