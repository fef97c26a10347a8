#include "host/collect/empty_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "host/catalogue/table_sources.h"
#include "host/collect/explained_runs.h"
#include "host/collect/failures.h"
#include "host/collect/known_words.h"
#include "host/recorded/machine_files.h"

namespace host {
namespace {

const TableStatus kInterrupted{"interrupted", "the collection was interrupted before"};
constexpr char kNoSuchDevice[] = "no such device";
constexpr char kDeclined[] = "declined";
constexpr char kToolError[] = "tool reported an error";
constexpr char kNotOpened[] = "output could not be opened";

bool Concerns(const pq::Explanation& explanation, const std::string& className) {
  return explanation.tables.empty() ||
         std::ranges::find(explanation.tables, className) != explanation.tables.end();
}

bool IsToolOf(const ToolRun& run, const pq::TableDescription& table) {
  return std::any_of(
      table.commands.begin(), table.commands.end(),
      [&](const pq::ToolCommand& command) { return IsOfProgram(run, command.program); });
}

/// The outcome of a program with such an error.
const char* FindErrorOutcome(const ToolRun& run) {
  if (run.endedAfterSeconds) return "ended";
  if (run.memoryLimit > 0) return "out of memory";
  return run.isUnwritable ? kNotOpened : kToolError;
}

/// The run that decides what there is for the table. At least one of `runs` is there.
const ToolRun& ChooseRun(const std::vector<const ToolRun*>& runs,
                         const pq::TableDescription& table) {
  const auto find = [&](auto test) { return std::ranges::find_if(runs, test); };
  if (table.commandsAreAlternatives) {
    const auto well = std::find_if(runs.rbegin(), runs.rend(),
                                   [](const ToolRun* run) { return !HasFailed(*run); });
    if (well != runs.rend()) return **well;
    const auto failed = find([](const ToolRun* run) { return run->isThere && !run->explanation; });
    if (failed != runs.end()) return **failed;
    return **find([](const ToolRun* run) { return run->isThere; });
  }
  const auto ending = find([](const ToolRun* run) { return HasEndedStep(*run); });
  if (ending != runs.end()) return **ending;
  const auto failed =
      find([](const ToolRun* run) { return HasFailed(*run) || !DescribeError(*run).empty(); });
  return failed != runs.end() ? **failed : *runs.back();
}

/// Why nobody knows whether the device is there that `run` looked for; none when it is known, or
/// the run looked for none.
std::optional<TableStatus> ExplainPresenceTest(const ToolHistory& history, const ToolRun& run) {
  const pq::PresenceTest* test = FindPresenceTest(run.commandLine);
  if (test == nullptr || run.refused) return std::nullopt;
  TableStatus status;
  if (!run.isThere) {
    status = ExplainMissing(history, {&run});
  } else if (run.endedAfterSeconds || run.memoryLimit > 0) {
    status = {FindErrorOutcome(run),
              fmt::format("{} {}", FileNameOf(run.program), DescribeError(run))};
  } else {
    return std::nullopt;
  }
  status.text += ", so it is not known whether this machine has " + test->device;
  return status;
}

TableStatus ExplainRuns(const ToolHistory& history, const std::vector<const ToolRun*>& found,
                        const pq::TableDescription& table) {
  if (std::ranges::none_of(found, &ToolRun::isThere)) return ExplainMissing(history, found);
  const ToolRun& run = ChooseRun(found, table);
  if (!run.isThere) return ExplainMissing(history, {&run});
  const std::string_view name = FileNameOf(run.program);
  const std::string error = DescribeError(run);
  if (run.endedAfterSeconds || run.memoryLimit > 0) {
    return {FindErrorOutcome(run), fmt::format("{} {}", name, error)};
  }
  if (run.refused) return kInterrupted;
  if (!run.startFailure.empty()) {
    return {"could not start", fmt::format("{}: {}", name, run.startFailure)};
  }
  if (run.hadNothingToReport) {
    return {kNotOpened,
            fmt::format("{}{}{}: {}", name, error.empty() ? "" : " ", error, run.openFailure)};
  }
  if (!error.empty()) return {FindErrorOutcome(run), fmt::format("{} {}", name, error)};
  if (!run.openFailure.empty()) {
    return {kNotOpened, fmt::format("{}: {}", name, run.openFailure)};
  }
  for (const ToolRun& needed : history.Runs()) {
    if (&needed <= &run || needed.module != run.module || needed.startFailure.empty()) continue;
    if (std::ranges::find(table.neededCommands, needed.program) == table.neededCommands.end()) {
      continue;
    }
    return {"could not start", fmt::format("{}: {}", needed.program, needed.startFailure)};
  }
  bool printed = run.printed || run.isFiltered;
  for (const pq::ToolCommand& command : table.commands) {
    printed = printed || (!command.file.empty() && history.HasLogText(command.file));
  }
  if (!printed) return {"nothing printed", fmt::format("{} printed nothing", name)};
  if (!table.whyNoRow.empty()) return {"no rows in output", table.whyNoRow};
  return {"no rows in output", fmt::format("{} printed nothing that belongs here", name)};
}

std::optional<TableStatus> ExplainByLog(const ToolHistory& history, const std::string& module,
                                        const pq::TableDescription& table) {
  const std::span<const std::string> lines = history.TellingLines(module);
  if (lines.empty()) return std::nullopt;
  const auto& explanations = FindModuleDescription(module)->explanations;
  for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
    for (const pq::Explanation& explanation : explanations) {
      if (!Explains(explanation, *line) || !Concerns(explanation, table.className)) continue;
      return TableStatus{explanation.outcome, explanation.text};
    }
  }
  return std::nullopt;
}

TableStatus ExplainWithoutRun(const ToolHistory& history, const std::string& module,
                              const pq::TableDescription& table) {
  if (const auto explained = ExplainByLog(history, module, table)) {
    const std::string& outcome = explained->outcome;
    if (outcome != kNoSuchDevice && outcome != kToolError && outcome != kDeclined) {
      return *explained;
    }
    for (const ToolRun& run : history.Runs()) {
      if (run.module != module) continue;
      if (const auto unknown = ExplainPresenceTest(history, run)) return *unknown;
    }
    return *explained;
  }
  if (history.WasInterrupted()) return kInterrupted;
  // Of the table's own tools, and of the one that the module asks first, since that can end it all.
  std::vector<const ToolRun*> deciding;
  const ToolRun* last = nullptr;
  for (const ToolRun& run : history.Runs()) {
    if (run.module != module) continue;
    if (deciding.empty() || IsToolOf(run, table)) deciding.push_back(&run);
    last = &run;
  }
  for (const ToolRun* decided : deciding) {
    const ToolRun& run = *decided;
    if (!HasFailed(run)) continue;
    if (!run.isThere) return ExplainMissing(history, {&run});
    if (run.endedBefore || run.isUnwritable) {
      return {FindErrorOutcome(run),
              fmt::format("{} {}", FileNameOf(run.program), DescribeError(run))};
    }
    if (run.startFailure.empty()) continue;
    return {"could not start", fmt::format("{}: {}", FileNameOf(run.program), run.startFailure)};
  }
  for (const ToolRun* run : deciding) {
    if (run->openFailure.empty()) continue;
    return {kNotOpened, fmt::format("{}: {}", FileNameOf(run->program), run->openFailure)};
  }
  // Not every module says that it cannot open the output of its first tool, but it ends there.
  if (last != nullptr && last == deciding.front() && !last->file.empty() &&
      history.LacksLogFile(last->file)) {
    return {kNotOpened, fmt::format("{}: {} is not there", FileNameOf(last->program), last->file)};
  }
  return {"not reached", "no step of the collection asked for it"};
}

}  // namespace

TableStatus ExplainEmptyTable(const ToolHistory& history, const std::string& module,
                              const pq::TableDescription& table) {
  if (!table.whyAlwaysEmpty.empty()) return {"always empty", table.whyAlwaysEmpty};
  const std::vector<const ToolRun*> found = history.FindRuns(module, table);
  const bool isExplained =
      !table.commandsAreAlternatives || std::ranges::all_of(found, [](const ToolRun* run) {
        return !run->isThere || run->explanation != nullptr;
      });
  if (const auto explained = ExplainByAnswers(history, module, table); explained && isExplained) {
    return *explained;
  }
  return found.empty() ? ExplainWithoutRun(history, module, table)
                       : ExplainRuns(history, found, table);
}

}  // namespace host
