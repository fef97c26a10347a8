// Parts and verdict of a machine that has been collected: of small ones, and of one whose RAID
// controller has logged a lot.
#include <benchmark/benchmark.h>

#include <string>

#include "bench/support/bar.h"
#include "host/answers/health/health.h"
#include "host/answers/parts/read_parts.h"
#include "host/collect/collect.h"
#include "tests/support/many_events.h"
#include "tests/support/samples.h"

namespace {

void MeasureParts(benchmark::State& state, const host::Collection& collection) {
  for (auto _ : state) benchmark::DoNotOptimize(host::ReadParts(collection).events.size());
}

void MeasureVerdict(benchmark::State& state, const host::Collection& collection) {
  const host::Parts parts = host::ReadParts(collection);
  host::HealthJudge judge;
  for (auto _ : state) benchmark::DoNotOptimize(judge.Judge(collection, parts).findings.size());
}

/// All that has to be done for one more machine, from what was collected to the verdict.
void MeasureAll(benchmark::State& state, const host::Collection& collection) {
  host::HealthJudge judge;
  for (auto _ : state) {
    const host::Parts parts = host::ReadParts(collection);
    benchmark::DoNotOptimize(judge.Judge(collection, parts).findings.size());
  }
}

/// The same for the only machine of a process.
void MeasureOne(benchmark::State& state, const host::Collection& collection) {
  for (auto _ : state) {
    const host::Parts parts = host::ReadParts(collection);
    benchmark::DoNotOptimize(host::JudgeCollection(collection, parts, {}).findings.size());
  }
}

/// The bar: seconds of processor time for the parts and the verdict of 100,000 events.
constexpr double kMostSecondsOfVerdict = 0.3;

void CheckBar(benchmark::State& state, const host::Collection& collection) {
  host::HealthJudge judge;
  bench::HoldBar(state, kMostSecondsOfVerdict, [&] {
    const host::Parts parts = host::ReadParts(collection);
    benchmark::DoNotOptimize(judge.Judge(collection, parts).findings.size());
  });
}

using Measure = void (*)(benchmark::State& state, const host::Collection& collection);

void BM_ManyEvents(benchmark::State& state, Measure measure) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const host::Collection collection = host::Collect(test::MakeMachineOfManyEvents(count));
  measure(state, collection);
}
BENCHMARK_CAPTURE(BM_ManyEvents, Parts, MeasureParts)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ManyEvents, Verdict, MeasureVerdict)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ManyEvents, All, MeasureAll)
    ->RangeMultiplier(10)
    ->Range(1000, 10000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ManyEvents, All, CheckBar)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_Sample(benchmark::State& state, Measure measure, const std::string& name) {
  const host::Collection collection = host::Collect(test::LoadSamples().at(name));
  measure(state, collection);
}
BENCHMARK_CAPTURE(BM_Sample, HbaParts, MeasureParts, "hba-only")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Sample, HbaAll, MeasureAll, "hba-only")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Sample, HbaOnce, MeasureOne, "hba-only")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Sample, TwoSocketParts, MeasureParts, "two-socket-server")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Sample, TwoSocketAll, MeasureAll, "two-socket-server")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_Sample, TwoSocketOnce, MeasureOne, "two-socket-server")
    ->Unit(benchmark::kMicrosecond);

}  // namespace
