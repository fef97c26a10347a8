// One more recording in a process that has collected some before: the two-socket server, from
// memory.
#include <benchmark/benchmark.h>

#include <string>

#include "host/collect/collect.h"
#include "host/collect/selection.h"
#include "tests/support/samples.h"

namespace {

const host::Recording& ReadTwoSocketServer() {
  static const host::Recording kRecording = test::LoadSamples().at("two-socket-server");
  return kRecording;
}

void BM_CollectOneMore(benchmark::State& state) {
  const host::Recording& recording = ReadTwoSocketServer();
  for (auto _ : state) benchmark::DoNotOptimize(host::Collect(recording).tables.size());
}
BENCHMARK(BM_CollectOneMore)->Unit(benchmark::kMicrosecond);

/// Where that time goes: each module by itself. The machine, the registry and the facts are in
/// each.
void CollectModule(benchmark::State& state, const std::string& module) {
  const host::Recording& recording = ReadTwoSocketServer();
  host::Selection selection;
  selection.modules = {module};
  for (auto _ : state) benchmark::DoNotOptimize(host::Collect(recording, selection).tables.size());
}

const bool kModulesAdded = [] {
  for (const host::LoadedModule& module : host::LoadLinkedModules()) {
    benchmark::RegisterBenchmark(("BM_CollectModule/" + module.name).c_str(), &CollectModule,
                                 module.name)
        ->Unit(benchmark::kMicrosecond);
  }
  return true;
}();

}  // namespace
