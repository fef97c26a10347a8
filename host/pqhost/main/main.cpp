#include <iostream>

#include "host/pqhost/pqhost.h"
#include "host/program/terminal.h"

int main(int argc, char** argv) {
  const host::TerminalFacts facts = host::PrepareTerminal();
  const host::Console console{
      std::cout,    std::cerr,   facts.outIsTerminal,  facts.errorIsTerminal,
      facts.colors, facts.width, host::ProgramFolder()};
  return host::RunPqhost(host::ProgramArguments(argc, argv), console);
}
