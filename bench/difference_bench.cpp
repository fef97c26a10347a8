// What changed between two collections of a machine whose RAID controller has logged a lot.
#include <benchmark/benchmark.h>

#include <cstddef>

#include "bench/support/bar.h"
#include "host/answers/difference/difference.h"
#include "host/collect/collect.h"
#include "tests/support/many_events.h"

namespace {

/// The bar: seconds of processor time for logs of 100,000 entries.
constexpr double kMostSecondsOfDiff = 1;

void BM_Difference(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const host::Collection before = host::Collect(test::MakeMachineOfManyEvents(count));
  const host::Collection after = host::Collect(test::MakeMachineOfManyEvents(count + count / 10));
  const host::Assessment assessedBefore = host::Assess(before);
  const host::Assessment assessedAfter = host::Assess(after);
  bench::HoldBar(state, kMostSecondsOfDiff, [&] {
    const host::Difference difference =
        host::FindDifference({before, assessedBefore}, {after, assessedAfter});
    benchmark::DoNotOptimize(difference.logs.size());
  });
}
BENCHMARK(BM_Difference)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
