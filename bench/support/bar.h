// Bars: times that a benchmark must not be above.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <limits>
#include <string>

namespace bench {

/// Runs `work` as often as `state` wants. Fails the benchmark if even the fastest run takes more
/// than `mostSeconds` of processor time.
template <typename Work>
void HoldBar(benchmark::State& state, double mostSeconds, const Work& work) {
  double fastest = std::numeric_limits<double>::infinity();
  for (auto _ : state) {
    const std::clock_t begin = std::clock();
    work();
    fastest = std::min(fastest, static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
  }
  if (fastest <= mostSeconds) return;
  const std::string words = std::to_string(fastest) + " s is more than the bar allows";
  state.SkipWithError(words.c_str());
}

}  // namespace bench
