#include "tests/support/posix/work_growth.h"

#include <cctype>
#include <cstdint>
#include <stdexcept>

#include "tests/support/posix/shell_command.h"

namespace test {
namespace {

/// Fewer than that may be anything's.
constexpr double kLeastInstructions = 1e6;

/// The number in the line "I refs: 38,902,108" of Valgrind.
double FindInstructions(const std::string& written) {
  const std::size_t at = written.find("refs:");
  if (at == std::string::npos) throw std::runtime_error("no count in " + written);
  std::string digits;
  for (const char c : written.substr(at, written.find('\n', at) - at)) {
    if (std::isdigit(static_cast<unsigned char>(c)) != 0) digits += c;
  }
  return std::stod(digits);
}

double CountInstructions(const std::string& command) {
  return FindInstructions(RunShellCommand(
      "valgrind --tool=callgrind --callgrind-out-file=/dev/null " + command + " 2>&1"));
}

}  // namespace

double MeasureGrowth(int size, const std::function<std::string(int size)>& makeCommand) {
  const double none = CountInstructions(makeCommand(0));
  const double once = CountInstructions(makeCommand(size)) - none;
  const double twice = CountInstructions(makeCommand(2 * size)) - none;
  if (once < kLeastInstructions) throw std::runtime_error("too little work: " + makeCommand(size));
  return twice / once;
}

}  // namespace test
