// Reads the parts of a machine with many entries in its log and judges them, and does as little
// else as it can, so that its instructions can be counted.
//   judge_many_events COUNT
#include <cstdlib>

#include "host/answers/health/health.h"
#include "tests/support/many_events.h"
#include "tests/support/part_checks.h"

int main(int, char** arguments) {
  const auto count = static_cast<std::size_t>(std::strtoul(arguments[1], nullptr, 10));
  test::Reports reports;
  for (const host::RecordedCommand& command : test::MakeMachineOfManyEvents(count).commands) {
    if (command.arguments == "/c0 show") reports["lsishowall"] = command.standardOutput;
    if (command.arguments == "/c0 show events") reports["lsieventlog"] = command.standardOutput;
  }
  host::HealthOptions options;
  options.asOf = "2026-11-18";
  host::JudgeParts(test::ReadLsiReports(reports), {}, options);
}
