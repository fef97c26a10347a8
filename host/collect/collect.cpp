#include "host/collect/collect.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "host/catalogue/table_sources.h"
#include "host/collect/collection_run.h"
#include "host/collect/failed_tools.h"
#include "host/collect/failures.h"
#include "host/collect/omissions.h"
#include "host/collect/recorded_source.h"
#include "host/collect/status_explainer.h"
#include "host/collect/tool_history.h"
#include "host/secrets/amt_login.h"
#include "host/text/decoder.h"

namespace host {
namespace {

constexpr char kInterruptedProblem[] =
    "interrupted: the collection ended after the tool that was running; what comes after it is "
    "missing";

class LogKeeper final : public CollectionListener {
 public:
  bool WantsLog() const override { return true; }
  void Log(const LogLine& line) override { log.Add(line); }

  KeptLog log;
};

class AnswerKeeper final : public CollectionListener {
 public:
  void Module(const std::string& name, const std::string& /*description*/) override {
    module = name;
  }
  void OnProcess(const std::string& /*application*/, const std::string& commandLine,
                 bool /*inheritHandles*/, bool /*pipe*/) override {
    answers.push_back({{}, module, HidePassword(commandLine), {}});
  }
  void OnSystem(const std::string& command) override {
    answers.push_back({{}, module, command, {}});
  }
  void OnAnswer(const ToolAnswer& answer) override {
    if (!answers.empty()) static_cast<ToolAnswer&>(answers.back()) = answer;
  }
  void OnProcessEnd(std::uint32_t exitCode) override {
    if (!answers.empty()) answers.back().exitCode = exitCode;
  }

  std::vector<CollectedAnswer> answers;

 private:
  std::string module;
};

/// The names of the files that are attached to the rows of `table` although nothing is in them.
std::vector<std::string> ListEmptyAttachments(const Table& table) {
  std::vector<std::string> names;
  for (const Row& row : table.rows) {
    for (const Attribute& attribute : row.shape->attributes) {
      if (attribute.name != "filename") continue;
      const auto& columns = row.shape->columns;
      const auto column = std::ranges::find(columns, attribute.propertyKey, &Column::key);
      if (column == columns.end()) continue;
      const auto place = static_cast<std::size_t>(column - columns.begin());
      if (row.Value(place).empty()) names.push_back(attribute.value);
    }
  }
  return names;
}

/// The property `key` of the first row of `table`; empty without one.
std::string_view FindFirstValue(const Table& table, const std::string& key) {
  if (table.rows.empty()) return {};
  const Row row = table.rows.front();
  const auto column = std::ranges::find(row.shape->columns, key, &Column::key);
  if (column == row.shape->columns.end()) return {};
  return row.Value(static_cast<std::size_t>(column - row.shape->columns.begin()));
}

/// One line of UTF-8.
std::string DescribeFailure(const Failure& failure, const TextDecoder& decode) {
  std::string where = decode(failure.module);
  if (!failure.tool.empty()) where += ", " + decode(failure.tool);
  std::string line = fmt::format("not collected: {}: {}", where, decode(failure.text));
  if (!failure.tables.empty()) {
    line += fmt::format(" (concerns {})", fmt::join(failure.tables, ", "));
  }
  return line;
}

}  // namespace

Collection Collect(Source& source, const Selection& selection, CollectionListener& listener,
                   KeepLog keepLog) {
  const auto hasPrograms = [&](const std::string& commandLine) {
    return source.HasPrograms(commandLine);
  };
  CollectionListeners listeners;
  FailureList failures;
  failures.FindMissingPrograms(hasPrograms);
  listeners.Add(failures);
  ToolHistory history;
  history.Ask(
      hasPrograms, [&](const std::string& fileName) { return source.LogFileSize(fileName); },
      [&](const std::string& path) { return source.FindOldFile(path); });
  listeners.Add(history);
  AnswerKeeper answers;
  listeners.Add(answers);
  LogKeeper log;
  if (keepLog == KeepLog::kYes) listeners.Add(log);
  listeners.Add(listener);

  Collection collection;
  collection.tablesNamed = !selection.tables.empty();
  collection.isSelection = collection.tablesNamed || !selection.modules.empty();
  collection.repository = std::make_unique<halyard::repository::RRepository>();
  {
    CollectionRun run(source, selection, listeners);
    collection.collected = std::chrono::system_clock::now();
    run.Enumerate(*collection.repository, collection);
  }
  const bool wasInterrupted = listener.WantsEnd();
  if (wasInterrupted) history.Interrupted();

  collection.machine = source.Facts();
  collection.answers = std::move(answers.answers);
  const TextDecoder decode(collection.machine.codePage);
  const std::map<std::string, Table>& stored = TablesOf(*collection.repository);
  const OmissionEvidence evidence{
      collection.answers, hasPrograms,
      [&](const std::string& fileName) { return source.LogFileSize(fileName).has_value(); },
      [&](const std::string& className, const std::string& key) {
        const auto rows = stored.find(className);
        return rows == stored.end() ? std::string_view() : FindFirstValue(rows->second, key);
      }};
  const StatusExplainer statuses(history);
  for (CollectedTable& table : collection.tables) {
    const auto rows = stored.find(table.className);
    if (rows != stored.end()) table.rows = &rows->second;
    table.status = statuses.FindStatus(table.module, table.className, table.RowCount());
    table.status.notes = statuses.FindNotes(table.module, table.className);
    if (!table.status.notes.empty()) table.status.oldFiles = table.status.notes.front();
    if (table.rows != nullptr) {
      const std::vector<std::string> more =
          statuses.DescribeEmptyFiles(table.module, ListEmptyAttachments(*table.rows));
      table.status.notes.insert(table.status.notes.end(), more.begin(), more.end());
    }
    const pq::TableDescription* known = FindTableDescription(table.className);
    if (known != nullptr && table.status.IsOfAnOutput()) {
      for (const std::string& note :
           FindOmissions(*known, table.module, table.RowCount(), evidence)) {
        table.status.notes.push_back(decode(note));
      }
    }
  }
  collection.doubts = source.Doubts();
  collection.problems = collection.doubts;
  const auto addProblems = [&](const std::vector<Failure>& found) {
    for (const Failure& failure : found) {
      collection.problems.push_back(DescribeFailure(failure, decode));
    }
  };
  addProblems(failures.Failures());
  addProblems(FindFailedTools(history, [&](const std::string& className) {
    const auto rows = stored.find(className);
    return rows != stored.end() && !rows->second.rows.empty();
  }));
  if (!source.HasLogFolder()) {
    collection.problems.push_back(
        fmt::format("the log folder {} went away during the collection; what tools wrote there "
                    "is missing",
                    decode(collection.machine.logFolder)));
  }
  if (wasInterrupted) collection.problems.emplace_back(kInterruptedProblem);
  collection.log = std::move(log.log);
  collection.files = source.Files();
  return collection;
}

Collection Collect(const Recording& recording, const Selection& selection,
                   CollectionListener& listener, KeepLog keepLog) {
  RecordedSource source(recording);
  return Collect(source, selection, listener, keepLog);
}

Collection Collect(const Recording& recording, const Selection& selection) {
  CollectionListener nobody;
  return Collect(recording, selection, nobody);
}

}  // namespace host
