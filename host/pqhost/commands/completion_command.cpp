// pqhost completion: a shell's completion of this command line, for completions/.

#include <memory>
#include <string>

#include "host/pqhost/commands/commands.h"
#include "host/pqhost/commands/completions.h"

namespace host {
namespace {

constexpr char kCompletionFooter[] = R"(Examples:
  pqhost completion --shell bash > completions/pqhost.bash
  pqhost completion --shell powershell > completions/pqhost.ps1
)";

int RunCompletion(const std::string& shell, const Console& console) {
  console.out << (shell == "bash" ? WriteBashCompletion() : WritePowerShellCompletion());
  return kExitDone;
}

CommandRun DefineCompletion(OptionSet& set) {
  const auto shell = std::make_shared<std::string>("bash");
  set.AddChoice("--shell", {"bash", "powershell"}, *shell, "Shell: bash or powershell");
  return [shell](const Console& console) { return RunCompletion(*shell, console); };
}

}  // namespace

const Command kCompletionCommand = {"completion",
                                    "Write a shell's completion of this command line",
                                    kCompletionFooter,
                                    &DefineCompletion,
                                    Command::TimeLimit::kOfProgram,
                                    Command::ExitCodes::kOfProgram,
                                    /*isHidden=*/true};

}  // namespace host
