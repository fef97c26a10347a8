#include "host/collect/failed_tools.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "host/collect/explained_runs.h"
#include "host/recorded/machine_files.h"
#include "host/recorded/own_commands.h"

namespace host {
namespace {

/// Whether the list of failures holds the run, or nothing failed.
bool IsTold(const ToolRun& run) {
  if (run.endedAfterSeconds || run.memoryLimit > 0) return true;
  return !run.isThere || (HasEndedStep(run) && !run.hadNothingToReport);
}

/// Whether the exit code is an answer, or of a command that says nothing by it: a folder may be
/// there already, and a file to copy may not.
bool HasOrdinaryExitCode(const ToolRun& run) {
  return FindPresenceTest(run.commandLine) == nullptr && !IsOwnCommand(run.program);
}

}  // namespace

std::vector<Failure> FindFailedTools(
    const ToolHistory& history, const std::function<bool(const std::string& className)>& hasRows) {
  std::vector<Failure> failures;
  for (const ToolRun& run : history.Runs()) {
    std::string error = DescribeError(run);
    if (run.oldFile) {
      error = fmt::format("{}; files of {} are used instead", DescribeOldFile(run),
                          FormatAge(*run.oldFile));
    } else if (error.empty() || IsTold(run) || run.explanation != nullptr ||
               !HasOrdinaryExitCode(run)) {
      continue;
    }
    const std::vector<const pq::TableDescription*> tables = FindTablesOf(run);
    const auto leavesNothingOut = [&](const pq::TableDescription* table) {
      return IsMadeUpFor(history, run, *table) ||
             (run.exitCode.value_or(0) == 0 && !run.printedErrorLine && hasRows(table->className));
    };
    const bool needsNoWord =
        !run.oldFile && !tables.empty() && std::ranges::all_of(tables, leavesNothingOut);
    if (needsNoWord) continue;
    auto known = std::ranges::find_if(failures, [&](const Failure& failure) {
      return failure.module == run.module && failure.tool == FileNameOf(run.program) &&
             failure.text == error;
    });
    if (known == failures.end()) {
      failures.push_back({run.module, std::string(FileNameOf(run.program)), error});
      known = std::prev(failures.end());
    }
    for (const pq::TableDescription* table : tables) {
      if (std::ranges::find(known->tables, table->className) == known->tables.end()) {
        known->tables.push_back(table->className);
      }
    }
  }
  return failures;
}

}  // namespace host
