// Machines on which the modules take every step of theirs, with what can go wrong in the order of
// steps. Lists of what they do there are in tests/data, in folders for different points of view.
#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "host/recorded/recording.h"

namespace test {

struct StepScenario {
  std::string name;  ///< that of its lists; letters, digits and underscores
  std::string module;
  std::string table;
  std::function<host::Recording()> recording;
  int enumerations = 1;
};

/// How a scenario shows in a failed test.
void PrintTo(const StepScenario& scenario, std::ostream* out);

const std::vector<StepScenario>& ListStepScenarios();

/// A list in tests/data, without its headings: the lines that begin with "#".
std::string ReadList(const std::string& file);

}  // namespace test
