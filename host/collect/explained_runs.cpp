#include "host/collect/explained_runs.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "host/recorded/machine_files.h"
#include "host/text/ascii.h"

namespace host {
namespace {

std::string JoinNames(const std::vector<const ToolRun*>& runs) {
  std::vector<std::string> names;
  for (const ToolRun* run : runs) {
    std::string name(FileNameOf(run->program));
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      names.push_back(std::move(name));
    }
  }
  return fmt::format("{}", fmt::join(names, " and "));
}

}  // namespace

TableStatus ExplainMissing(const ToolHistory& history, const std::vector<const ToolRun*>& missing) {
  const std::string names = JoinNames(missing);
  const bool hasOtherAnswers = std::ranges::any_of(history.Runs(), [&](const ToolRun& run) {
    return run.isThere && LowerCase(run.program) == LowerCase(missing.front()->program);
  });
  if (hasOtherAnswers) {
    return {"tool missing", fmt::format("the recording has no such answer of {}", names)};
  }
  const bool areSeveral = names.find(" and ") != std::string::npos;
  return {"tool missing",
          fmt::format("{} {} not on this machine", names, areSeveral ? "are" : "is")};
}

std::optional<TableStatus> ExplainByAnswers(const ToolHistory& history, const std::string& module,
                                            const pq::TableDescription& table) {
  std::vector<std::string> texts;
  std::string outcome;
  for (const ToolRun& run : history.Runs()) {
    if (run.module != module || run.explanation == nullptr) continue;
    const auto& tables = run.explanation->tables;
    if (std::ranges::find(tables, table.className) == tables.end()) continue;
    outcome = run.explanation->outcome;
    texts.push_back(run.explanation->text);
  }
  if (texts.empty()) return std::nullopt;
  return TableStatus{outcome, fmt::format("{}", fmt::join(texts, "; "))};
}

bool IsMadeUpFor(const ToolHistory& history, const ToolRun& run,
                 const pq::TableDescription& table) {
  if (!table.commandsAreAlternatives) {
    return ExplainByAnswers(history, run.module, table).has_value();
  }
  return std::ranges::any_of(history.FindRuns(run.module, table), [](const ToolRun* other) {
    return !HasFailed(*other) && other->openFailure.empty();
  });
}

}  // namespace host
