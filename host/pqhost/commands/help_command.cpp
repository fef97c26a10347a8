// pqhost help: the help of the program or of a command, for those who ask for it by a word.

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "host/pqhost/commands/command_line.h"
#include "host/pqhost/commands/commands.h"

namespace host {
namespace {

constexpr char kHelpFooter[] = R"(Examples:
  pqhost help
  pqhost help collect
)";

/// The word is the first of a command line; one that names no command is refused as it is there.
int ShowHelp(const std::vector<std::string>& words, const Console& console) {
  if (words.empty()) return RunCommandLine({"--help"}, console);
  const bool isCommand = std::ranges::any_of(
      GetCommands(), [&](const Command* command) { return words.front() == command->name; });
  if (!isCommand) return RunCommandLine({words.front()}, console);
  return RunCommandLine({words.front(), "--help"}, console);
}

CommandRun DefineHelp(OptionSet& set) {
  const auto words = std::make_shared<std::vector<std::string>>();
  set.AddArguments("COMMAND", "[COMMAND]", OptionValue::kCommand, 1, *words,
                   "The command; none: the program");
  return [words](const Console& console) { return ShowHelp(*words, console); };
}

}  // namespace

const Command kHelpCommand = {"help", "Show the help of the program or of a command", kHelpFooter,
                              &DefineHelp};

}  // namespace host
