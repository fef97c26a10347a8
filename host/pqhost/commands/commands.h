// The program's commands. Each is one file of this folder; commands.cpp lists them.
#pragma once

#include <functional>
#include <vector>

#include "host/pqhost/commands/option_set.h"
#include "host/program/console.h"

namespace host {

/// Does a command's work with the options that were given. Returns the exit code. Throws UsageError
/// for options that do not go together; UsageError, RecordingError or LiveError when the command
/// cannot begin.
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
  /// kOfNagios: whatever goes wrong ends with kExitUnknown.
  enum class ExitCodes { kOfProgram, kOfNagios } exitCodes = ExitCodes::kOfProgram;
  bool isHidden = false;  ///< for developers: not in help, messages and completions
};

extern const Command kCollectCommand;
extern const Command kModulesCommand;
extern const Command kQueryCommand;
extern const Command kHealthCommand;
extern const Command kCheckCommand;
extern const Command kVerifyCommand;
extern const Command kHelpCommand;
extern const Command kCompletionCommand;

/// All commands, in the order of the help.
const std::vector<const Command*>& GetCommands();

}  // namespace host
