#include "host/program/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>
#include <system_error>

namespace host {
namespace {

std::string_view GetVariable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

TerminalFacts PrepareTerminal() {
  TerminalFacts facts;
  facts.inIsTerminal = isatty(STDIN_FILENO) != 0;
  facts.outIsTerminal = isatty(STDOUT_FILENO) != 0;
  facts.errorIsTerminal = isatty(STDERR_FILENO) != 0;
  facts.colors =
      facts.outIsTerminal && GetVariable("NO_COLOR").empty() && GetVariable("TERM") != "dumb";
  winsize size{};
  const int terminal = facts.outIsTerminal ? STDOUT_FILENO : STDERR_FILENO;
  if ((facts.outIsTerminal || facts.errorIsTerminal) && ioctl(terminal, TIOCGWINSZ, &size) == 0 &&
      size.ws_col > 0) {
    facts.width = size.ws_col;
  }
  return facts;
}

// Tools only run on Windows.
std::unique_ptr<std::ostream> TakeStandardOutput() { return nullptr; }

std::vector<std::string> GetProgramArguments(int argc, char** argv) {
  return argc > 0 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

std::filesystem::path FindProgramFolder() {
  std::error_code ignored;
  return std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
}

}  // namespace host
