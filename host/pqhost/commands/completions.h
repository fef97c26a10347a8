// Completion of the command line in shells, written from the table of commands.
#pragma once

#include <string>

namespace host {

/// Each is a whole script, as in completions/.
std::string WriteBashCompletion();
std::string WritePowerShellCompletion();

}  // namespace host
