#include <iostream>

#include "fleet/pqfleet.h"
#include "host/program/terminal.h"

int main(int argc, char** argv) {
  const host::TerminalFacts facts = host::PrepareTerminal();
  const host::Console console{.programName = "pqfleet",
                              .out = std::cout,
                              .error = std::cerr,
                              .inIsTerminal = facts.inIsTerminal,
                              .outIsTerminal = facts.outIsTerminal,
                              .errorIsTerminal = facts.errorIsTerminal,
                              .colors = facts.colors,
                              .width = facts.width};
  return fleet::RunPqfleet(host::GetProgramArguments(argc, argv), console);
}
