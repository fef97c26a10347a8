#include "tests/support/program/host_run.h"

#include <sstream>

#include "host/pqhost/pqhost.h"
#include "tests/support/collected.h"

namespace test {

HostRun RunHost(const std::vector<std::string>& arguments, const HostTerminal& terminal) {
  std::ostringstream out;
  std::ostringstream error;
  const host::Console console{.programName = "pqhost",
                              .out = out,
                              .error = error,
                              .outIsTerminal = terminal.out,
                              .errorIsTerminal = terminal.error,
                              .colors = terminal.colors,
                              .width = terminal.width};
  HostRun run;
  run.exitCode = host::RunPqhost(arguments, console);
  run.out = out.str();
  run.error = error.str();
  return run;
}

std::string Sample(const std::string& name) { return SamplesFolder() + "/" + name; }

}  // namespace test
