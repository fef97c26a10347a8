// The program's command line: the words that it understands, and their way to a command.
#pragma once

#include <string>
#include <vector>

#include "host/pqhost/commands/option_set.h"
#include "host/program/console.h"

namespace host {

/// Runs the command that the arguments name (UTF-8, without the program's name), or shows the help
/// or the version. Returns the exit code. Throws UsageError, and as CommandRun.
int RunCommandLine(const std::vector<std::string>& arguments, const Console& console);

struct CommandDescription {
  std::string name;  ///< empty: the program itself
  std::vector<OptionDescription> options;
};

/// The commands in the order of the help, without the hidden ones, then the program itself; options
/// in the order of the help, but --help last.
std::vector<CommandDescription> DescribeCommandLine();

/// The exit code of the command that `arguments` name when it fails, of other commands with
/// `usual`.
int ChooseFailureExit(const std::vector<std::string>& arguments, int usual);

}  // namespace host
