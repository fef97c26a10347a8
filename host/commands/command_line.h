// A program's command line: its commands as a table, the words that it understands, and their way
// to a command.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/commands/option_set.h"
#include "host/program/console.h"

namespace host {

/// Does a command's work with the options that were given. Returns the exit code. Throws UsageError
/// for options that do not go together, and what its program explains when the command cannot
/// begin.
using CommandRun = std::function<int(const Console&)>;

struct Command {
  const char* name;
  const char* summary;  ///< one line of the program's help
  const char* footer;   ///< below the options in the command's own help: examples, exit codes
  /// Defines the options. The set outlives the result, which is called, if at all, once the command
  /// line has been read and the values have been checked.
  CommandRun (*define)(OptionSet& set);
  /// Of --time-limit, which every command has: whether the command ends by itself.
  enum class TimeLimit { kOfProgram, kItsOwn } timeLimit = TimeLimit::kOfProgram;
  /// kOfNagios: whatever goes wrong ends with kExitUnknown; kOfDiff: with kExitMisused.
  enum class ExitCodes { kOfProgram, kOfNagios, kOfDiff } exitCodes = ExitCodes::kOfProgram;
  bool isHidden = false;  ///< for developers: not in help, messages and completions
};

struct Program {
  const char* name;
  const char* description;
  const char* examples;                         ///< below the commands in its help
  const std::vector<const Command*>& commands;  ///< in the order of the help
};

/// Runs the command that the arguments name (UTF-8, without the program's name), or shows the help
/// or the version. Returns the exit code. Throws UsageError, and as CommandRun.
int RunCommandLine(const Program& program, const std::vector<std::string>& arguments,
                   const Console& console);

struct CommandDescription {
  std::string name;  ///< empty: the program itself
  std::vector<OptionDescription> options;
};

/// The commands in the order of the help, without the hidden ones, then the program itself; options
/// in the order of the help, but --help last.
std::vector<CommandDescription> DescribeCommandLine(const Program& program);

/// The exit code of the command that `arguments` name when it fails, of other commands with
/// `usual`.
int ChooseFailureExit(const Program& program, const std::vector<std::string>& arguments, int usual);

}  // namespace host
