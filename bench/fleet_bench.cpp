// A recording of a fleet, from its ZIP file to what the database gets: in this process, and in one
// of its own.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <sstream>
#include <string>
#include <utility>

#include "fleet/isolation.h"
#include "fleet/parsed.h"
#include "fleet/parser.h"
#include "fleet/row_tables.h"
#include "host/recording/recording_writer.h"
#include "tests/support/samples.h"

namespace {

/// A night of the largest sample.
struct Night {
  Night() {
    const host::Recording recording = test::LoadSamples().at("two-socket-server");
    std::ostringstream out;
    host::WriteZippedRecording(recording, out);
    zip = std::move(out).str();
    key = host::ComputeContentKey(recording);
  }

  std::string Parse() {
    constexpr auto kDay = std::chrono::year{2026} / 11 / 18;
    return Pack(parser.Parse(zip, key,
                             host::LocalTime{std::chrono::sys_days{kDay}, std::chrono::hours(1)}));
  }

  std::string zip;
  std::string key;
  fleet::RowTables tables;
  fleet::Parser parser{tables};
};

void BM_FleetParse(benchmark::State& state) {
  Night night;
  for (auto _ : state) benchmark::DoNotOptimize(night.Parse().size());
}
BENCHMARK(BM_FleetParse)->Unit(benchmark::kMillisecond);

/// Its processor time is told as child_ms; scripts/fleet_acceptance.sh has the bar, for a whole
/// fleet.
void BM_FleetChild(benchmark::State& state) {
  Night night;
  double fastest = std::numeric_limits<double>::infinity();
  for (auto _ : state) {
    const fleet::IsolatedAnswer answer =
        fleet::RunIsolated([&] { return night.Parse(); }, {}, fleet::Sandbox::kStrict);
    constexpr double kThousand = 1000;
    fastest = std::min(fastest, static_cast<double>(answer.cpuMicroseconds) / kThousand);
  }
  state.counters["child_ms"] = fastest;
}
BENCHMARK(BM_FleetChild)->Unit(benchmark::kMillisecond);

}  // namespace
