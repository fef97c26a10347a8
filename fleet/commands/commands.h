// The program's commands. Each is one file of this folder; commands.cpp lists them.
#pragma once

#include <vector>

#include "host/commands/command_line.h"

namespace fleet {

extern const host::Command kInitCommand;
extern const host::Command kSubmitCommand;
extern const host::Command kWorkCommand;
extern const host::Command kStatusCommand;
extern const host::Command kParkedCommand;
extern const host::Command kReparseCommand;
extern const host::Command kRebuildCommand;
extern const host::Command kQueryCommand;
extern const host::Command kShowCommand;
extern const host::Command kHistoryCommand;
extern const host::Command kExportCommand;
extern const host::Command kForgetCommand;
extern const host::Command kExpireCommand;
extern const host::Command kMetricsCommand;
extern const host::Command kServeCommand;

/// All commands, in the order of the help.
const std::vector<const host::Command*>& GetCommands();

}  // namespace fleet
