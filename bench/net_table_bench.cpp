// The ARP and connection tables: their pieces alone, and the whole collector.
#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>
#include <utility>

#include "bench/support/collection_cost.h"
#include "frame/tokens.h"
#include "pqmodules/rwininfo/net_table.h"

namespace {

std::string ConnectionText(std::int64_t rows) {
  std::string text =
      "\r\nActive Connections\r\n\r\n"
      "  Proto  Local Address          Foreign Address        State\r\n";
  for (std::int64_t i = 0; i < rows; ++i) {
    text += "  TCP    10.24.8.31:" + std::to_string(10000 + i % 50000) + "       far-host-" +
            std::to_string(i % 900) + ":443        ESTABLISHED\r\n";
  }
  return text;
}

std::string ArpText(std::int64_t rows) {
  std::string text = "\r\nInterface: 10.24.8.31 --- 0x11\r\n";
  for (std::int64_t i = 0; i < rows; ++i) {
    text += "  10.24." + std::to_string(10 + i / 90) + "." + std::to_string(10 + i % 90) +
            "           00-1c-73-5a-90-02     dynamic   \r\n";
  }
  return text;
}

/// Adds the throughput of `text` since `start`, and how that compares with a fgets pass.
void CountPieces(benchmark::State& state, const std::string& text, std::clock_t start) {
  const double seconds = static_cast<double>(std::clock() - start) /
                         static_cast<double>(CLOCKS_PER_SEC) /
                         static_cast<double>(state.iterations());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
  state.counters["xfgets"] = seconds / bench::FgetsSeconds(text);
}

template <std::size_t columns>
std::size_t CountDealtRows(std::string_view text) {
  std::array<std::string_view, columns> row;
  std::size_t count = 0;
  for (pq::TokenScan tokens(text, " \r\n"); pq::DealRow(tokens, row);) ++count;
  return count;
}

/// From a connection output to its columns.
void BM_SplitConnections(benchmark::State& state) {
  const std::string text = ConnectionText(state.range(0));
  const std::clock_t start = std::clock();
  for (auto _ : state) {
    const std::size_t rows = pq::FindConnectionRows(text).value();
    benchmark::DoNotOptimize(CountDealtRows<4>(std::string_view(text).substr(rows)));
  }
  CountPieces(state, text, start);
}
BENCHMARK(BM_SplitConnections)->Arg(100)->Arg(10000)->Arg(100000);

/// From an ARP output to its columns; 500 rows are what its scan takes.
void BM_SplitArp(benchmark::State& state) {
  const std::string text = ArpText(state.range(0));
  const std::clock_t start = std::clock();
  for (auto _ : state) {
    const pq::ArpScan scan = pq::ScanArpLines(text);
    benchmark::DoNotOptimize(CountDealtRows<3>(scan.rows));
  }
  CountPieces(state, text, start);
}
BENCHMARK(BM_SplitArp)->Arg(50)->Arg(500);

/// A machine on which `tool` prints `text`.
bench::CollectionCase Printing(const std::string& tool, const std::string& arguments,
                               const std::string& table, std::string text, std::int64_t rows) {
  bench::CollectionCase printing{.machine = {},
                                 .module = "Windows_Related_Info",
                                 .table = table,
                                 .text = std::move(text),
                                 .lineCount = rows};
  printing.machine.commands.resize(1);
  printing.machine.commands[0].tool = tool;
  printing.machine.commands[0].arguments = arguments;
  printing.machine.commands[0].standardOutput = printing.text;
  return printing;
}

void BM_Connections(benchmark::State& state) {
  MeasureCollection(state, Printing("netstat.exe", "", "NETSTATINFO",
                                    ConnectionText(state.range(0)), state.range(0)));
}
BENCHMARK(BM_Connections)->Arg(100)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_Arp(benchmark::State& state) {
  MeasureCollection(state,
                    Printing("arp.exe", "-a", "ARPINFO", ArpText(state.range(0)), state.range(0)));
}
BENCHMARK(BM_Arp)->Arg(50)->Arg(500)->Unit(benchmark::kMillisecond);

}  // namespace
