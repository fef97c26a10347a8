// Finding out to whom the program talks.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace host {

struct TerminalFacts {
  bool outIsTerminal = false;
  bool errorIsTerminal = false;
  bool colors = false;
  unsigned width = 120;
};

/// Prepares standard output and standard error for UTF-8 without changed line ends, and says what
/// they are. NO_COLOR (not empty) in the environment ends colours.
TerminalFacts PrepareTerminal();

/// The program's arguments as UTF-8, without its name.
std::vector<std::string> ProgramArguments(int argc, char** argv);

/// The folder of the program's file.
std::filesystem::path ProgramFolder();

}  // namespace host
