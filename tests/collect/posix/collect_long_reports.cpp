// Collects with one module from a sample whose tools print their reports many times over, garbled
// in several ways, and does nothing else, so that its instructions can be counted.
//   collect_long_reports MODULE SAMPLE TIMES
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

#include "host/collect/collect.h"
#include "host/collect/selection.h"
#include "host/recording/recording_reader.h"
#include "tests/support/collected.h"
#include "tests/support/random_recording.h"

namespace {

constexpr int kGarbled = 10;

}  // namespace

int main(int, char** arguments) {
  const long times = std::strtol(arguments[3], nullptr, 10);
  host::Recording machine = host::LoadRecording(test::SamplesFolder() + "/" + arguments[2]);
  test::RandomNumbers random(20261122);
  for (host::RecordedCommand& command : machine.commands) {
    const std::string_view report = command.standardOutput;
    // The same ones again and again, so that twice the times are twice the text.
    std::string reports;
    for (int i = 0; i < kGarbled; ++i) reports += test::GarbleReport(report, random);
    std::string longer(report);
    longer.reserve(longer.size() + static_cast<std::size_t>(times) * reports.size());
    for (long i = 0; i < times; ++i) longer += reports;
    command.standardOutput = std::move(longer);
  }
  host::Selection selection;
  selection.modules = {arguments[1]};
  host::Collect(machine, selection);
}
