// The label tables over the reports that they are for: one pass that reads each line with fgets and
// looks for a label, beside a bare fgets pass over the same file.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "frame/label_table.h"
#include "pqmodules/rsamplemodule1/lsi_summary.h"
#include "pqmodules/rsamplemodule1/microchip_archive.h"
#include "tests/support/collected.h"

namespace bench {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// A temporary file of `lineCount` lines: a report of the two-socket server, over and over.
File WriteReport(const std::string& name, std::int64_t lineCount, std::int64_t& size) {
  std::ifstream sample(test::SamplesFolder() + "/two-socket-server/" + name, std::ios::binary);
  std::vector<std::string> lines;
  for (std::string line; std::getline(sample, line);) {
    if (line.ends_with('\r')) line.pop_back();
    lines.push_back(line + "\n");
  }
  if (lines.empty()) throw std::runtime_error("no sample " + name);
  std::string text;
  for (std::int64_t i = 0; i < lineCount; ++i) {
    text += lines[static_cast<std::size_t>(i) % lines.size()];
  }
  size = static_cast<std::int64_t>(text.size());
  File file(std::tmpfile(), &std::fclose);
  if (!file || std::fwrite(text.data(), 1, text.size(), file.get()) != text.size()) {
    throw std::runtime_error("no room for a temporary file");
  }
  return file;
}

/// Processor seconds of a pass that hands each line to `take`.
template <typename Take>
double SecondsOfPass(std::FILE* file, const Take& take) {
  std::rewind(file);
  char line[512];
  const std::clock_t start = std::clock();
  while (std::fgets(line, sizeof(line), file) != nullptr) take(line);
  return static_cast<double>(std::clock() - start) / static_cast<double>(CLOCKS_PER_SEC);
}

/// Counters: ns/line of the pass, and xfgets, how many times as long as a bare pass it takes. Both
/// passes go in turn, and the quickest of each counts, so that other load does not.
void MeasureLabels(benchmark::State& state, const std::string& report,
                   const std::vector<std::string_view>& labels) {
  const pq::LabelTable table(labels);
  std::int64_t size = 0;
  const File file = WriteReport(report, state.range(0), size);
  double quickest = 1e9;
  double quickestBare = 1e9;
  for (auto _ : state) {
    const double seconds = SecondsOfPass(file.get(), [&](const char* line) {
      benchmark::DoNotOptimize(table.FindIn(std::string_view(line)));
    });
    const double bare =
        SecondsOfPass(file.get(), [](char* line) { benchmark::DoNotOptimize(line); });
    state.SetIterationTime(seconds);
    quickest = std::min(quickest, seconds);
    quickestBare = std::min(quickestBare, bare);
  }
  state.SetBytesProcessed(state.iterations() * size);
  state.counters["ns/line"] = quickest * 1e9 / static_cast<double>(state.range(0));
  state.counters["xfgets"] = quickest / quickestBare;
}

std::vector<std::string_view> CollectLabels(const pq::LabelledColumns& columns) {
  std::vector<std::string_view> labels;
  for (const pq::LabelledColumn& column : columns.All()) labels.push_back(column.label);
  return labels;
}

/// 14 labels.
void BM_LsiSummaryLabels(benchmark::State& state) {
  MeasureLabels(state, "storcli/c0_show.txt", CollectLabels(pq::GetLsiSummaryFacts()));
}

/// 20 labels.
void BM_MicrochipConfigLabels(benchmark::State& state) {
  MeasureLabels(state, "arcconf/Controller_1_Config.txt",
                CollectLabels(pq::GetMicrochipConfigFacts()));
}

/// 20 labels.
void BM_DriveDetailsLabels(benchmark::State& state) {
  MeasureLabels(state, "storcli/c0_eall_sall_show_all.txt",
                {"Shield Counter =",
                 "Media Error Count =",
                 "Other Error Count =",
                 "Drive Temperature =",
                 "Predictive Failure Count =",
                 "S.M.A.R.T alert flagged by drive =",
                 "SN =",
                 "WWN =",
                 "Firmware Revision =",
                 "Raw size =",
                 "Coerced size =",
                 "Non Coerced size =",
                 "Device Speed =",
                 "Link Speed =",
                 "Logical Sector Size =",
                 "Enclosure position =",
                 "Connected Port Number =",
                 "Commissioned Spare =",
                 "Emergency Spare =",
                 "Needs EKM Attention ="});
}

/// As many labels as `state` says, all beginning alike, in a report that holds none of them.
void BM_ForeignLabels(benchmark::State& state) {
  std::vector<std::string> texts;
  for (std::int64_t i = 0; i < state.range(1); ++i) {
    texts.push_back("Phy " + std::to_string(i) + " Error Rate =");
  }
  MeasureLabels(state, "storcli/c0_show.txt", {texts.begin(), texts.end()});
}

BENCHMARK(BM_LsiSummaryLabels)->RangeMultiplier(10)->Range(1000, 100000)->UseManualTime();
BENCHMARK(BM_MicrochipConfigLabels)->RangeMultiplier(10)->Range(1000, 100000)->UseManualTime();
BENCHMARK(BM_DriveDetailsLabels)->RangeMultiplier(10)->Range(1000, 100000)->UseManualTime();
BENCHMARK(BM_ForeignLabels)->Args({100000, 20})->Args({100000, 200})->UseManualTime();

}  // namespace
}  // namespace bench
