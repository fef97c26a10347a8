// How the program was started, and what it is to do for that.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace host {

/// The last word of a start in a window of its own, which the program gives itself.
inline constexpr char kOwnWindow[] = "--own-window";

struct Start {
  std::vector<std::string> arguments;
  bool waitsForEnter = false;  ///< the window would close before anybody has read it
};

/// What to do with the words `given`. Without any, in a window that was opened for the program (a
/// double-click), it collects for a report on the desktop, or in the current folder where there is
/// none.
Start PlanStart(std::vector<std::string> given, bool hasOwnConsole,
                const std::function<std::filesystem::path()>& findDesktop);

}  // namespace host
