#include "bench/support/collection_cost.h"

#include <cstdio>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "bench/support/heap.h"
#include "bench/support/repository_calls.h"
#include "frame/halyard/repository.h"
#include "frame/logkit/log.h"
#include "frame/module.h"
#include "host/collect/collection_run.h"
#include "host/collect/recorded_source.h"
#include "host/logger/logger.h"
#include "host/repository/store.h"

namespace bench {
namespace {

using halyard::repository::RRepository;

double ProcessorSeconds() {
  return static_cast<double>(std::clock()) / static_cast<double>(CLOCKS_PER_SEC);
}

/// Adds what a row of `table` costs where `kept` bytes are held in all.
void CountRows(benchmark::State& state, const RRepository& repository, const std::string& table,
               std::size_t kept) {
  const auto& tables = host::TablesOf(repository);
  const auto found = tables.find(table);
  if (found == tables.end()) return;
  std::size_t text = 0;
  for (const host::Row& row : found->second.rows) {
    for (const std::string_view value : row.Values()) text += value.size();
  }
  const auto rows = static_cast<double>(found->second.rows.size());
  state.counters["kept/row"] = static_cast<double>(kept) / rows;
  state.counters["text/row"] = static_cast<double>(text) / rows;
}

/// What the collection asks of the host.
struct HostCalls {
  RepositoryCalls repository;
  std::int64_t logLines = 0;
};

HostCalls CallsOf(const CollectionCase& measured) {
  /// Writes the calls down.
  class Writer final : public host::CollectionListener {
   public:
    host::RepositoryObserver* Calls() override { return &calls; }
    RepositoryCalls calls;
  };
  Writer writer;
  host::RecordedSource source(measured.machine);
  RRepository repository;
  host::Collection ignored;
  HostCalls calls;
  {
    const host::LogSinkInUse counter([&](const host::LogLine& /*line*/) { ++calls.logLines; });
    host::CollectionRun(source, {{measured.module}, {measured.table}}, writer)
        .Enumerate(repository, ignored);
  }
  calls.repository = std::move(writer.calls);
  return calls;
}

/// As many lines as a collection writes, each with a short text, for a logger that nobody listens
/// to.
void WriteLogLines(std::int64_t count) {
  for (std::int64_t i = 0; i < count; ++i) {
    LogKit::Log(pq::kDetail, __FILE__, __LINE__).Stream() << "[repo] " << std::string_view("ok");
  }
}

}  // namespace

double FgetsSeconds(const std::string& text) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), &std::fclose);
  if (!file || std::fwrite(text.data(), 1, text.size(), file.get()) != text.size()) {
    throw std::runtime_error("no room for a temporary file");
  }
  constexpr double kLongEnough = 0.2;
  char line[512];
  int passes = 0;
  const double start = ProcessorSeconds();
  double spent = 0;
  do {
    std::rewind(file.get());
    while (std::fgets(line, sizeof(line), file.get()) != nullptr) benchmark::DoNotOptimize(line);
    ++passes;
    spent = ProcessorSeconds() - start;
  } while (spent < kLongEnough);
  return spent / passes;
}

void MeasureCollection(benchmark::State& state, const CollectionCase& measured) {
  const HostCalls calls = CallsOf(measured);
  std::size_t heap = 0;
  double spent = 0;
  double storing = 0;
  double logging = 0;
  for (auto _ : state) {
    state.PauseTiming();
    host::RecordedSource source(measured.machine);
    host::CollectionListener nobody;
    host::CollectionRun run(source, {{measured.module}, {measured.table}}, nobody);
    host::Collection ignored;
    auto repository = std::make_unique<RRepository>();
    const std::size_t before = HeapInUse();
    ResetHeapPeak();
    state.ResumeTiming();

    const double start = ProcessorSeconds();
    run.Enumerate(*repository, ignored);
    spent += ProcessorSeconds() - start;

    state.PauseTiming();
    heap = HeapPeak() - before;
    CountRows(state, *repository, measured.table, HeapInUse() - before);
    repository = std::make_unique<RRepository>();
    const double storeStart = ProcessorSeconds();
    calls.repository.Replay(*repository);
    const double logStart = ProcessorSeconds();
    storing += logStart - storeStart;
    WriteLogLines(calls.logLines);
    logging += ProcessorSeconds() - logStart;
    repository.reset();
    state.ResumeTiming();
  }
  const auto lines = static_cast<double>(measured.lineCount);
  const double seconds = spent / static_cast<double>(state.iterations());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(measured.text.size()));
  state.counters["ns/line"] = seconds * 1e9 / lines;
  state.counters["heap/line"] = static_cast<double>(heap) / lines;
  state.counters["heap/text"] =
      static_cast<double>(heap) / static_cast<double>(measured.text.size());
  const double fgets = FgetsSeconds(measured.text);
  const double store = storing / static_cast<double>(state.iterations());
  const double log = logging / static_cast<double>(state.iterations());
  state.counters["xfgets"] = seconds / fgets;
  state.counters["log/line"] = static_cast<double>(calls.logLines) / lines;
  state.counters["log/fgets"] = log / fgets;
  state.counters["own/fgets"] = (seconds - store - log) / fgets;
}

}  // namespace bench
