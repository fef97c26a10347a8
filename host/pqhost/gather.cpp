#include "host/pqhost/gather.h"

#include <fmt/format.h>

#include <optional>

#include "host/collect/failures.h"
#include "host/collect/table_status.h"
#include "host/live/interruption.h"
#include "host/pqhost/collection_progress.h"
#include "host/text/decoder.h"

namespace host {
namespace {

class LogKeeper final : public CollectionListener {
 public:
  void Log(const LogLine& line) override { lines.push_back(line); }
  std::vector<LogLine> lines;
};

/// One line of UTF-8 for each failure.
std::vector<std::string> DescribeFailures(const FailureList& failures, const TextDecoder& decode) {
  std::vector<std::string> lines;
  for (const Failure& failure : failures.Failures()) {
    std::string where = decode(failure.module);
    if (!failure.tool.empty()) where += ", " + decode(failure.tool);
    lines.push_back(fmt::format("not collected: {}: {}", where, decode(failure.text)));
  }
  return lines;
}

}  // namespace

Gathered Gather(const SourceOptions& from, const SelectionOptions& wanted, const Console& console,
                bool keepLog, const std::function<void(CollectionListeners&)>& beforeRun) {
  CollectionListeners listeners;
  FailureList failures;
  listeners.Add(failures);
  StatusTracker statuses;
  listeners.Add(statuses);
  LogKeeper log;
  if (keepLog) listeners.Add(log);

  std::unique_ptr<Source> source = OpenSource(from, console, listeners);
  const auto hasPrograms = [&](const std::string& commandLine) {
    return source->HasPrograms(commandLine);
  };
  failures.FindMissingPrograms(hasPrograms);
  statuses.Ask(hasPrograms,
               [&](const std::string& fileName) { return source->LogFileSize(fileName); });
  ModuleList added;
  source->AddModules(added);
  const std::vector<LoadedModule> modules = RegisterModules(added);
  const std::vector<ModuleSelection> selection =
      SelectTables(modules, wanted.modules, wanted.tables);
  beforeRun(listeners);
  const InterruptionWatch interruptionWatch;

  std::optional<CollectionProgress> progress;
  if (console.errorIsTerminal) {
    progress.emplace(console.error, console.width);
    listeners.Add(*progress);
  }
  Collection collection =
      RunCollection(selection, !wanted.tables.empty(), listeners, &InterruptionRequested);
  progress.reset();
  if (InterruptionRequested()) statuses.Interrupted();

  collection.machine = source->Facts();
  for (CollectedTable& table : collection.tables) {
    table.status = statuses.StatusOf(table.module, table.className, table.RowCount());
  }
  collection.problems = DescribeFailures(failures, TextDecoder(collection.machine.codePage));
  if (InterruptionRequested()) {
    collection.problems.emplace_back(
        "interrupted: the collection ended after the tool that was running; what comes after it is "
        "missing");
  }
  collection.log = std::move(log.lines);
  return {std::move(source), std::move(collection)};
}

}  // namespace host
