// Judges a machine with many parts, and does as little else as it can, so that its instructions can
// be counted.
//   judge_many_parts events COUNT   entries in a controller's log, whose reports are read as well
//   judge_many_parts group COUNT    drives, volumes and missing drives in one group
#include <cstdlib>
#include <string>

#include "host/answers/health/health.h"
#include "tests/answers/health/judged.h"
#include "tests/support/many_events.h"
#include "tests/support/part_checks.h"

namespace {

host::Parts ReadManyEvents(std::size_t count) {
  test::Reports reports;
  for (const host::RecordedCommand& command : test::MakeMachineOfManyEvents(count).commands) {
    if (command.arguments == "/c0 show") reports["lsishowall"] = command.standardOutput;
    if (command.arguments == "/c0 show events") reports["lsieventlog"] = command.standardOutput;
  }
  return test::ReadLsiReports(reports);
}

host::Parts MakeManyOfOneGroup(std::size_t count) {
  host::Parts parts;
  test::AddController(parts);
  for (std::size_t i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    test::AddDrive(parts, "lsi0 69:" + number, i % 2 == 0 ? "Onln" : "Rbld").group = "lsi0 g0";
    test::AddVolume(parts, "lsi0 v" + number, "Dgrd");
    host::MissingDrive& missing = parts.missingDrives.emplace_back();
    missing.id = "lsi0 g0 row " + number;
    missing.controller = "lsi0";
    missing.group = "lsi0 g0";
    missing.state = "Optl";
  }
  return parts;
}

}  // namespace

int main(int, char** arguments) {
  const auto count = static_cast<std::size_t>(std::strtoul(arguments[2], nullptr, 10));
  const bool isOfEvents = std::string(arguments[1]) == "events";
  host::HealthOptions options;
  options.asOf = "2026-11-18";
  host::JudgeParts(isOfEvents ? ReadManyEvents(count) : MakeManyOfOneGroup(count), {}, options);
}
