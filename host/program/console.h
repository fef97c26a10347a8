// The console a program runs on, and the exit codes it ends with.
#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>

#include "host/text/screen.h"

namespace host {

/// Where the program writes, and to whom.
struct Console {
  std::string programName;  ///< begins each of its messages
  std::ostream& out;
  std::ostream& error;
  bool inIsTerminal = false;  ///< someone can be asked
  bool outIsTerminal = false;
  bool errorIsTerminal = false;
  bool colors = false;   ///< results may carry colour sequences
  unsigned width = 120;  ///< columns for results; also when they do not go to a terminal
  /// The folder of the program's file, where the library is by default.
  std::filesystem::path programFolder = {};
  /// Shows a file to the user in a program for it; false when it cannot. Null: nobody looks.
  std::function<bool(const std::filesystem::path& file)> openFile = {};
  /// Starts this program again with the same words, as administrator, in a window of its own; false
  /// when that was refused. Null: never.
  std::function<bool()> restartElevated = {};
};

inline constexpr int kExitDone = 0;
inline constexpr int kExitIncomplete = 1;  ///< something could not be collected or written
inline constexpr int kExitMisused = 2;     ///< wrong use or unreadable input; nothing was collected
/// Of commands with the exit codes of Nagios' plug-ins, whose 1 and 2 are a warning and an alarm.
inline constexpr int kExitUnknown = 3;
/// Of commands with the exit codes of diff, whose 2 is any trouble.
inline constexpr int kExitDifferent = 1;

/// Standard output as the screen for a result.
Screen DescribeScreen(const Console& console);

/// Writes one line to standard error, after the program's name. Control characters in `text`
/// (UTF-8) are escaped.
void Complain(const Console& console, const std::string& text);

}  // namespace host
