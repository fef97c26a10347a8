#include "host/pqhost/commands/command_line.h"

#include "host/pqhost/commands/commands.h"

namespace host {
namespace {

constexpr char kDescription[] = "Collects what a server knows about itself and shows it as tables.";

constexpr char kExamples[] = R"(Examples:
  pqhost collect                                 this machine's tables (Windows)
  pqhost collect --replay samples/two-socket-server
                                                 the tables of a recorded machine
  pqhost collect --table ARPINFO --format csv --output arp.csv
                                                 one table as a file
  pqhost collect --replay RECORDING --trace -    all that the modules did, in order
  pqhost check                                   what a collection would find here
  pqhost modules                                 which modules and tables there are
)";

Program DescribeProgram() { return {"pqhost", kDescription, kExamples, GetCommands()}; }

}  // namespace

int RunCommandLine(const std::vector<std::string>& arguments, const Console& console) {
  return RunCommandLine(DescribeProgram(), arguments, console);
}

std::vector<CommandDescription> DescribeCommandLine() {
  return DescribeCommandLine(DescribeProgram());
}

int ChooseFailureExit(const std::vector<std::string>& arguments, int usual) {
  return ChooseFailureExit(DescribeProgram(), arguments, usual);
}

}  // namespace host
