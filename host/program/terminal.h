// The terminal that the program was started on, if any, and the words it was started with.
#pragma once

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace host {

struct TerminalFacts {
  bool inIsTerminal = false;
  bool outIsTerminal = false;
  bool errorIsTerminal = false;
  bool colors = false;   ///< on standard output
  unsigned width = 120;  ///< columns
};

/// Sets standard output and standard error up for UTF-8 with line ends left alone, and finds
/// out whether they lead to a terminal. No colours if NO_COLOR is set in the environment and not
/// empty.
TerminalFacts PrepareTerminal();

/// Takes standard output for the program's results alone: whatever else this process, a library in
/// it or a program that it starts writes there goes to standard error from now on. Null where
/// nothing else writes there. After PrepareTerminal(), once.
std::unique_ptr<std::ostream> TakeStandardOutput();

/// The program's arguments as UTF-8, without its name.
std::vector<std::string> GetProgramArguments(int argc, char** argv);

/// The folder of the program's file.
std::filesystem::path FindProgramFolder();

}  // namespace host
