// Runs the program inside a test.
#pragma once

#include <string>
#include <vector>

namespace test {

struct HostRun {
  int exitCode = -1;
  std::string out;    ///< from standard output
  std::string error;  ///< from standard error
};

/// Who the program talks to.
struct HostTerminal {
  bool out = false;
  bool error = false;
  bool colors = false;
  unsigned width = 120;
};

HostRun RunHost(const std::vector<std::string>& arguments, const HostTerminal& terminal = {});

/// `name` among the recordings that come with the product, as an argument.
std::string Sample(const std::string& name);

}  // namespace test
