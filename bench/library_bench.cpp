// What a host does when it loads the library: takes the five modules and has them register their
// tables.
#include <benchmark/benchmark.h>

#include <boost/shared_ptr.hpp>
#include <vector>

#include "frame/add_modules.h"

namespace {

void BM_LoadLibrary(benchmark::State& state) {
  for (auto _ : state) {
    std::vector<boost::shared_ptr<halyard::repository::RModule>> modules;
    AddModules(modules);
    for (const auto& module : modules) module->RegisterTables();
    benchmark::DoNotOptimize(modules.data());
  }
}
BENCHMARK(BM_LoadLibrary)->Unit(benchmark::kMicrosecond);

}  // namespace
