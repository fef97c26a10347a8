#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "host/pqhost/commands/command_line.h"
#include "host/pqhost/pqhost.h"
#include "host/pqhost/start.h"
#include "host/program/desktop.h"
#include "host/program/interruption.h"
#include "host/program/large_texts.h"
#include "host/program/short_of_memory.h"
#include "host/program/terminal.h"

int main(int argc, char** argv) {
  // No other exit code means the same of every command: which one it is takes memory to know.
  host::EndCleanlyWithoutMemory(host::kExitUnknown);
  host::GiveBackLargeTexts();
  const host::Start start = host::PlanStart(host::GetProgramArguments(argc, argv),
                                            host::HasOwnConsole(), &host::FindDesktopFolder);
  const std::vector<std::string>& arguments = start.arguments;
  const int failureExit = host::ChooseFailureExit(arguments, host::kExitIncomplete);
  host::EndCleanlyWithoutMemory(failureExit);
  host::EndCleanlyWhenAsked(failureExit);
  const host::TerminalFacts facts = host::PrepareTerminal();
  const std::unique_ptr<std::ostream> results = host::TakeStandardOutput();
  bool isHandedOver = false;
  const auto restartElevated = [&] {
    std::vector<std::string> again = arguments;
    again.emplace_back(host::kOwnWindow);
    isHandedOver = host::StartElevated(again);
    return isHandedOver;
  };
  const host::Console console{.programName = "pqhost",
                              .out = results ? *results : std::cout,
                              .error = std::cerr,
                              .inIsTerminal = facts.inIsTerminal,
                              .outIsTerminal = facts.outIsTerminal,
                              .errorIsTerminal = facts.errorIsTerminal,
                              .colors = facts.colors,
                              .width = facts.width,
                              .programFolder = host::FindProgramFolder(),
                              .openFile = &host::OpenOnDesktop,
                              .restartElevated = restartElevated};
  const int exitCode = host::RunPqhost(arguments, console);
  if (start.waitsForEnter && !isHandedOver) {
    console.error << "Press Enter to close this window." << std::endl;
    host::WaitForEnter();
  }
  return exitCode;
}
