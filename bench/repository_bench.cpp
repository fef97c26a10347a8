// Storing rows: what one costs in time and memory, and that neither depends on how many there are.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>

#include "bench/support/heap.h"
#include "frame/halyard/repository.h"
#include "host/repository/store.h"

namespace {

using halyard::repository::RInstance;
using halyard::repository::RRepository;

constexpr std::size_t kTextLength = 80;

/// time/row: processor time of a row. kept/row, text/row: bytes held for a row, and how many are
/// its text.
void MeasureRows(benchmark::State& state, void (*fill)(RRepository&, std::int64_t)) {
  const std::int64_t rows = state.range(0);
  std::size_t kept = 0;
  for (auto _ : state) {
    const std::size_t before = bench::HeapInUse();
    auto repository = std::make_unique<RRepository>();
    fill(*repository, rows);
    benchmark::DoNotOptimize(host::TablesOf(*repository).size());
    kept = bench::HeapInUse() - before;
    state.PauseTiming();
    repository.reset();
    state.ResumeTiming();
  }
  const auto count = static_cast<double>(rows);
  state.counters["time/row"] = benchmark::Counter(
      count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  state.counters["kept/row"] = static_cast<double>(kept) / count;
  state.counters["text/row"] = static_cast<double>(kTextLength);
}

/// A new instance for every row.
void AddInstances(RRepository& repository, std::int64_t rows) {
  const std::string text(kTextLength, 't');
  for (std::int64_t i = 0; i < rows; ++i) {
    RInstance instance("SELINFO", "SEL Information", -1);
    instance.AddProperty("SEL", "SEL Info", text, false);
    instance.AddToRepository(repository);
  }
}

/// One instance as a row buffer.
void CommitRowBuffer(RRepository& repository, std::int64_t rows) {
  const std::string text(kTextLength, 't');
  RInstance instance("SELINFO", "SEL Information", -1);
  for (std::int64_t i = 0; i < rows; ++i) {
    instance.AddProperty("SEL", "SEL Info", text, false);
    instance.AddToRepository(repository);
  }
}

/// Rows that have nothing in common but their class.
void AddDifferentRows(RRepository& repository, std::int64_t rows) {
  const std::string text(kTextLength, 't');
  for (std::int64_t i = 0; i < rows; ++i) {
    const std::string name = std::to_string(i);
    RInstance instance("LSILINK", name, -1);
    instance.AddProperty(name, "Link", text, false);
    instance.AddToRepository(repository);
  }
}

void BM_AddInstances(benchmark::State& state) { MeasureRows(state, AddInstances); }
void BM_CommitRowBuffer(benchmark::State& state) { MeasureRows(state, CommitRowBuffer); }
void BM_AddDifferentRows(benchmark::State& state) { MeasureRows(state, AddDifferentRows); }

BENCHMARK(BM_AddInstances)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CommitRowBuffer)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AddDifferentRows)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
