// pqfleet work: parses what is ready.

#include <fmt/format.h>
#include <sys/mman.h>

#include <cerrno>
#include <chrono>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <system_error>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/end_request.h"
#include "fleet/parser.h"
#include "fleet/row_tables.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "fleet/store.h"
#include "fleet/team.h"
#include "fleet/worker.h"
#include "host/text/count_text.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kWorkFooter[] = R"(Examples:
  pqfleet work                       parse what is ready, and wait for more
  pqfleet work --workers 4 --once    end when nothing is ready

Each recording is parsed in a process of its own that can open nothing. One that
cannot be parsed is parked with its reason: see pqfleet parked. Ctrl-C, or the
signal TERM, ends it after the recording at hand; what was claimed and not
begun is ready for others.
Exit codes: 0 done; 1 something was parked; 2 wrong use, or the database or the
store is not there.
)";

constexpr unsigned kMostWorkers = 1024;
constexpr unsigned kMostBatch = 4096;
constexpr unsigned kLongestLease = 86400;

struct WorkOptions {
  GivenSettings settings;
  std::optional<unsigned> workers;
  std::optional<unsigned> batch;
  std::optional<unsigned> lease;
  bool once = false;
  std::string sandbox = "strict";
};

/// What each worker counted, in memory that all of them share.
class SharedCounts {
 public:
  explicit SharedCounts(std::size_t workers) : size(workers * sizeof(BatchCounts)) {
    void* const memory =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::system_error(errno, std::generic_category(), "mmap");
    counts = static_cast<BatchCounts*>(memory);
    for (std::size_t i = 0; i < workers; ++i) new (&counts[i]) BatchCounts;
  }
  SharedCounts(const SharedCounts&) = delete;
  SharedCounts& operator=(const SharedCounts&) = delete;
  ~SharedCounts() { munmap(counts, size); }

  BatchCounts& Of(std::size_t worker) { return counts[worker]; }

  BatchCounts Sum() const {
    BatchCounts sum;
    for (std::size_t i = 0; i < size / sizeof(BatchCounts); ++i) sum += counts[i];
    return sum;
  }

 private:
  std::size_t size;
  BatchCounts* counts;
};

WorkRules MakeRules(const WorkOptions& options) {
  WorkRules rules;
  if (options.batch) rules.batch = *options.batch;
  if (options.lease) rules.lease = std::chrono::seconds(*options.lease);
  rules.once = options.once;
  rules.sandbox = options.sandbox == "limits" ? Sandbox::kLimits : Sandbox::kStrict;
  return rules;
}

int RunWork(const WorkOptions& options, const host::Console& console) {
  const Settings settings = ReadSettings(options.settings);
  const std::unique_ptr<Store> store = OpenStore(RequireStore(settings));
  const RowTables tables;
  {
    // What is wrong from the beginning on is told at once; a worker waits for what may pass.
    Connection connection(settings.database, "pqfleet work");
    OpenSchema(connection, tables);
  }
  Parser parser(tables);
  EndRequest endRequest;
  const std::size_t workers = options.workers.value_or(1);
  SharedCounts counts(workers);
  const auto work = [&](std::size_t number) {
    EndRequest ownRequest;
    Worker worker(
        settings.database, *store, tables, parser, MakeRules(options),
        [&](std::chrono::milliseconds time) { return ownRequest.Sleep(time); },
        [&](const std::string& line) { host::Complain(console, line); });
    try {
      counts.Of(number) += worker.Work();
      return host::kExitDone;
    } catch (const std::exception& error) {
      counts.Of(number) += worker.Counts();
      host::Complain(console, error.what());
      return host::kExitMisused;
    }
  };
  int exitCode = RunTeam(workers, work, endRequest);
  const BatchCounts sum = counts.Sum();
  console.error << fmt::format("{} done, {} parked, {}\n", sum.done, sum.parked,
                               host::FormatCount(sum.rows, "row") + " written");
  if (exitCode == host::kExitDone && sum.parked > 0) exitCode = host::kExitIncomplete;
  return exitCode;
}

host::CommandRun DefineWork(host::OptionSet& set) {
  const auto options = std::make_shared<WorkOptions>();
  set.AddCount("--workers", "COUNT", options->workers, kMostWorkers,
               "Work with so many processes; 1 unless given");
  set.AddCount("--batch", "COUNT", options->batch, kMostBatch,
               "Claim so many recordings at once; 64 unless given");
  set.AddFlag("--once", options->once, "End when nothing is ready");
  set.AddCount("--lease", "SECONDS", options->lease, kLongestLease,
               "Leave a claim to others when nothing is heard of its worker for so long; 60 unless "
               "given");
  set.AddChoice(
      "--sandbox", {"strict", "limits"}, options->sandbox,
      "What a parsing process may do: strict, compute and answer; limits, anything within "
      "its limits, where the system cannot refuse calls; strict unless given");
  AddSettingsOptions(set, options->settings);
  return [options](const host::Console& console) { return RunWork(*options, console); };
}

}  // namespace

const host::Command kWorkCommand = {"work", "Parse what is ready", kWorkFooter, &DefineWork};

}  // namespace fleet
