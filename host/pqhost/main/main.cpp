#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "host/pqhost/commands/command_line.h"
#include "host/pqhost/pqhost.h"
#include "host/program/interruption.h"
#include "host/program/terminal.h"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments = host::GetProgramArguments(argc, argv);
  host::EndCleanlyWhenAsked(host::ChooseFailureExit(arguments, host::kExitIncomplete));
  const host::TerminalFacts facts = host::PrepareTerminal();
  const std::unique_ptr<std::ostream> results = host::TakeStandardOutput();
  const host::Console console{.programName = "pqhost",
                              .out = results ? *results : std::cout,
                              .error = std::cerr,
                              .inIsTerminal = facts.inIsTerminal,
                              .outIsTerminal = facts.outIsTerminal,
                              .errorIsTerminal = facts.errorIsTerminal,
                              .colors = facts.colors,
                              .width = facts.width,
                              .programFolder = host::FindProgramFolder()};
  return host::RunPqhost(arguments, console);
}
