// The command line of pqhost.
#pragma once

#include <string>
#include <vector>

#include "host/commands/command_line.h"
#include "host/program/console.h"

namespace host {

/// As the functions of the same names, of pqhost.
int RunCommandLine(const std::vector<std::string>& arguments, const Console& console);
std::vector<CommandDescription> DescribeCommandLine();
int ChooseFailureExit(const std::vector<std::string>& arguments, int usual);

}  // namespace host
