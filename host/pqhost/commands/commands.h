// The program's commands. Each is one file of this folder; commands.cpp lists them.
#pragma once

#include <vector>

#include "host/commands/command_line.h"

namespace host {

extern const Command kCollectCommand;
extern const Command kModulesCommand;
extern const Command kQueryCommand;
extern const Command kHealthCommand;
extern const Command kDiffCommand;
extern const Command kShowCommand;
extern const Command kCheckCommand;
extern const Command kSetupCommand;
extern const Command kVerifyCommand;
extern const Command kRedactCommand;
extern const Command kHelpCommand;
extern const Command kCompletionCommand;

/// All commands, in the order of the help.
const std::vector<const Command*>& GetCommands();

}  // namespace host
