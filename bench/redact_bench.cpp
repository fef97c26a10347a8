// Redaction of a recording with a long report.
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <cstddef>
#include <string>

#include "bench/support/bar.h"
#include "host/redact/redaction.h"

namespace {

/// The bar: seconds of processor time for 100 MB, as many as the tools of a large server print.
constexpr double kMostSecondsOfRedaction = 5;
constexpr std::size_t kMegabyte = 1'000'000;

/// `values`: how many connections, peers and drives there are; the report tells them over and over.
host::Recording MakeRecording(std::size_t megabytes, std::size_t values) {
  std::string report;
  for (std::size_t line = 0; report.size() < megabytes * kMegabyte; ++line) {
    const std::size_t i = line % values;
    report += fmt::format(
        "  TCP    10.24.{}.{}:445         client-{:07}:50112     ESTABLISHED\r\n"
        "SN = Z4K{:08}\r\nDrive Temperature =  24C (75.20 F)\r\nShield Counter = 0\r\n"
        "Event Description: Rebuild progress on PD 20(e0x45/s14) is 34.00%(3162s)\r\n",
        i / 200 % 200, i % 200 + 1, i, i);
  }
  host::Recording recording;
  recording.commands.push_back({"netstat.exe", "", report, {}});
  return recording;
}

void BM_Redaction(benchmark::State& state) {
  const host::Recording recording = MakeRecording(static_cast<std::size_t>(state.range(0)),
                                                  static_cast<std::size_t>(state.range(1)));
  const host::RedactionRules rules = host::MakeRules(host::kPublicProfile);
  const host::Pseudonyms pseudonyms("a key of the benchmark");
  bench::HoldBar(state, kMostSecondsOfRedaction, [&] {
    benchmark::DoNotOptimize(host::RedactRecording(recording, rules, pseudonyms).leaks.size());
  });
}
BENCHMARK(BM_Redaction)
    ->ArgNames({"MB", "values"})
    ->Args({10, 1000})
    ->Args({100, 1000})
    ->Args({10, 10000})
    ->Args({10, 1000000})  // none comes twice
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

}  // namespace
