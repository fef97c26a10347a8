// The RAID inventory module on long reports: a summary that is searched for labels, and a log of
// the support archive that is attached whole.
#include <benchmark/benchmark.h>

#include <string>
#include <utility>

#include "bench/support/collection_cost.h"

namespace bench {
namespace {

CollectionCase Inventory(std::string text, std::int64_t lineCount) {
  return {.machine = {},
          .module = "sampleModule1",
          .table = "RAIDINFO",
          .text = std::move(text),
          .lineCount = lineCount};
}

void BM_LsiSummary(benchmark::State& state) {
  std::string text;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    text += i % 4 == 0
                ? "FW Version = 5.270.01-3927\r\n"
                : "69:9     21 Onln   1   7.276 TB SAS  HDD N   N  512B HY8000NX0045 U  -\r\n";
  }
  CollectionCase summary = Inventory(std::move(text), state.range(0));
  host::RecordedCommand command;
  command.tool = "storcli.exe";
  command.arguments = "/c0 show";
  command.standardOutput = summary.text;
  summary.machine.commands = {command};
  MeasureCollection(state, summary);
}

void BM_AttachedReport(benchmark::State& state) {
  std::string text;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    text += "[0000002.117004] phy: CN0 lanes 0-3 ready, 12.0 Gb/s\r\n";
  }
  CollectionCase archive = Inventory(std::move(text), state.range(0));
  archive.machine.files = {{"C:\\Support\\Firmware\\Controller_1_Config.txt", ""},
                           {"C:\\Support\\Firmware\\Controller_1_Debug_Log.txt", archive.text}};
  MeasureCollection(state, archive);
}

BENCHMARK(BM_LsiSummary)->RangeMultiplier(10)->Range(1000, 1000000);
BENCHMARK(BM_AttachedReport)->RangeMultiplier(10)->Range(1000, 1000000);

}  // namespace
}  // namespace bench
