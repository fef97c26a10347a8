// The three long listings of a BMC, from 1,000 to 1,000,000 lines.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <string>
#include <utility>

#include "bench/support/collection_cost.h"
#include "tests/support/bmc_machine.h"

namespace bench {
namespace {

/// `count` lines in the form of `format`, which takes a number twice.
std::string RepeatLine(const char* format, std::int64_t count) {
  std::string text;
  std::array<char, 128> line{};
  for (std::int64_t i = 0; i < count; ++i) {
    const auto number = static_cast<unsigned>(i & 0xFFFF);
    const int length = std::snprintf(line.data(), line.size(), format, number, number);
    text.append(line.data(), static_cast<std::size_t>(length));
  }
  return text;
}

/// A BMC of which only the query `arguments` has something to say.
CollectionCase BmcListing(const std::string& arguments, std::uint32_t family, std::string text,
                          std::int64_t lineCount) {
  CollectionCase listing{.machine = test::MakeBmcMachine(family),
                         .module = "BMC_Info",
                         .table = "MCINFO",
                         .text = std::move(text),
                         .lineCount = lineCount};
  for (host::RecordedCommand& answer : listing.machine.commands) {
    answer.standardOutput = answer.arguments == arguments ? listing.text : "";
  }
  return listing;
}

void BM_Sel(benchmark::State& state) {
  MeasureCollection(
      state, BmcListing("sel", 9,
                        RepeatLine("%04x 03/21/22 08:44:03 INF BMC  Fan #%04x  OK 6f [00 ff]\r\n",
                                   state.range(0)),
                        state.range(0)));
}

void BM_Sdr(benchmark::State& state) {
  MeasureCollection(
      state, BmcListing("sensor", 7,
                        RepeatLine("%04x SDR Full 01 01 20 a 01 snum %04x Fan = 48 OK 5400 RPM\r\n",
                                   state.range(0)),
                        state.range(0)));
}

void BM_Sensors(benchmark::State& state) {
  MeasureCollection(
      state, BmcListing("sensor -s -q", 9,
                        RepeatLine("Fan %04x|%04x.0|RPM|ok|600.0|900.0|1200.0|na |na |na\r\n",
                                   state.range(0)),
                        state.range(0)));
}

void SetBmcLines(benchmark::internal::Benchmark* benchmark) {
  benchmark->RangeMultiplier(10)->Range(1'000, 1'000'000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_Sel)->Apply(SetBmcLines);
BENCHMARK(BM_Sdr)->Apply(SetBmcLines);
BENCHMARK(BM_Sensors)->Apply(SetBmcLines);

}  // namespace
}  // namespace bench
