// The program: what it is asked, what it answers. main.cpp only calls it.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace host {

/// Where the program writes, and to whom.
struct Console {
  std::ostream& out;
  std::ostream& error;
  bool outIsTerminal = false;
  bool errorIsTerminal = false;
  bool colors = false;   ///< results may carry colour sequences
  unsigned width = 120;  ///< columns for results; also when they do not go to a terminal
  /// The folder of the program's file, where the library stands by default.
  std::filesystem::path programFolder;
};

inline constexpr int kExitDone = 0;
inline constexpr int kExitIncomplete = 1;  ///< something could not be collected or written
inline constexpr int kExitMisused = 2;     ///< wrong use or unreadable input; nothing was collected

/// Runs the program. `arguments` are UTF-8, without the program's name. Returns the exit code.
int RunPqhost(const std::vector<std::string>& arguments, const Console& console);

}  // namespace host
