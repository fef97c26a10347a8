// Reading a recording from its folder: time grows with the commands and no faster.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "bench/support/heap.h"
#include "host/files/whole_file.h"
#include "host/recording/recording_reader.h"

namespace {

namespace fs = std::filesystem;

/// recording.json with `commands` commands, laid out as a written one. They share one output file.
std::string MakeJson(std::int64_t commands) {
  std::string json = "{\n  \"format\": 1,\n  \"commands\": [";
  for (std::int64_t i = 0; i < commands; ++i) {
    json.append(i == 0 ? "\n" : ",\n")
        .append("    {\n      \"tool\": \"storcli64.exe\",\n      \"arguments\": \"/c0/e252/s")
        .append(std::to_string(i))
        .append(" show all\",\n      \"stdout\": \"output.txt\",\n      \"exitCode\": 1\n    }");
  }
  return json + "\n  ]\n}\n";
}

/// heap/text: the highest mark of memory, with the recording itself, in sizes of recording.json.
void BM_ReadRecording(benchmark::State& state) {
  const fs::path folder = fs::temp_directory_path() / "pq_bench_recording";
  fs::remove_all(folder);
  const std::string json = MakeJson(state.range(0));
  host::CreateWholeFile(folder / "recording.json", json);
  host::CreateWholeFile(folder / "output.txt", "Controller = 0\n");
  std::size_t peak = 0;
  for (auto _ : state) {
    const std::size_t before = bench::HeapInUse();
    bench::ResetHeapPeak();
    benchmark::DoNotOptimize(host::LoadRecording(folder).commands.size());
    peak = bench::HeapPeak() - before;
  }
  fs::remove_all(folder);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(json.size()));
  state.counters["heap/text"] = static_cast<double>(peak) / static_cast<double>(json.size());
}
BENCHMARK(BM_ReadRecording)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
