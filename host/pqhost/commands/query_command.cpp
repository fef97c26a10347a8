// pqhost query: asks a collection, or a database that one was written to, in SQL. The answer is one
// table, so that every format can show it.

#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/database/database.h"
#include "host/formats/formats.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/commands/shared_options.h"
#include "host/pqhost/query_sources.h"
#include "host/pqhost/recordings.h"
#include "host/program/deadline.h"
#include "host/program/result_output.h"
#include "host/text/count_text.h"
#include "host/text/decoder.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

using halyard::repository::RRepository;

constexpr char kFooter[] = R"(Examples:
  pqhost query --replay RECORDING "SELECT name, reading FROM v_sensorinfo WHERE status <> 'ok'"
  pqhost collect --format sqlite --output server.db
  pqhost query server.db "SELECT class, rows, status FROM tables" --format csv
  pqhost query --replay FOLDER_OF_RECORDINGS "SELECT machine, sn FROM v_pdlist"
)";

struct QueryOptions {
  std::vector<std::string> words;              ///< databases, if any, then the statement
  std::vector<std::filesystem::path> replays;  ///< recordings, or folders of recordings
  SourceOptions source;
  ResultOptions result;
  std::optional<unsigned> timeLimit;  ///< seconds
};

/// More databases than anybody names one by one.
constexpr int kMostWords = 10'000;
constexpr char kAnswer[] = "ANSWER";
constexpr int kNoNumber = -1;

/// Column names may repeat in an answer; properties may not.
std::vector<std::string> MakeKeys(const Database::Names& names) {
  std::vector<std::string> keys;
  std::set<std::string> taken;
  for (const std::string& name : names) {
    std::string key = name;
    for (int i = 2; !taken.insert(key).second; ++i) key = fmt::format("{}_{}", name, i);
    keys.push_back(std::move(key));
  }
  return keys;
}

/// A row of the answer; each value is kept as what it is.
void AddAnswer(RRepository& answers, std::vector<Column>& columns, const Database::Values& values) {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto& [kind, text] = values[i];
    // SQLite's word for a number without an end, which JSON has none for.
    columns[i].kind = text.ends_with("Inf") ? CellKind::kText : kind;
    texts.push_back(text);
  }
  AddRow(answers, {kAnswer, "query", kNoNumber, columns, {}}, texts);
}

/// The answer as a collection of one table.
Collection Ask(Database& database, const std::string& sql) {
  Collection answer;
  answer.repository = std::make_unique<RRepository>();
  answer.machine.codePage = kUtf8CodePage;
  answer.machineIsKnown = false;
  answer.collected = std::chrono::system_clock::now();
  answer.tablesNamed = true;  // One table, which formats show plainly.
  answer.modules.push_back({"query", sql});
  CollectedTable table{kAnswer, "query", {}, nullptr, {}};
  std::vector<Column> columns;
  database.Query(
      sql,
      [&](const Database::Names& names) {
        const std::vector<std::string> keys = MakeKeys(names);
        for (std::size_t i = 0; i < names.size(); ++i) {
          columns.push_back({.key = keys[i], .label = names[i]});
          table.columns.push_back({.key = keys[i], .label = names[i], .text = {}});
        }
      },
      [&](const Database::Values& values) { AddAnswer(*answer.repository, columns, values); });
  const auto& tables = TablesOf(*answer.repository);
  if (const auto rows = tables.find(kAnswer); rows != tables.end()) table.rows = &rows->second;
  table.status = {"rows", FormatCount(table.RowCount(), "row")};
  answer.tables.push_back(std::move(table));
  return answer;
}

QuerySources FindSources(const QueryOptions& options) {
  QuerySources sources{FindRecordings(options.replays), {}};
  for (std::size_t i = 0; i + 1 < options.words.size(); ++i) {
    sources.databases.push_back(PathFromText(options.words[i]));
  }
  return sources;
}

/// Also takes a single recording for the machine.
void SettleOptions(QueryOptions& options, const QuerySources& sources) {
  const bool isLive = sources.recordings.empty() && sources.databases.empty();
  // The tools of this machine run in the log folder.
  if (isLive) options.result.output.MakeAbsolute();
  for (const std::filesystem::path& recording : sources.recordings) {
    options.source.replay = recording;
    RefuseMisuseOfReplay(options.source);
    RefuseInRecording(options.source, "--output", options.result.output);
  }
  if (options.source.logFolder && sources.recordings.size() + sources.databases.size() > 1) {
    throw UsageError(
        "--log-folder is for the files of one machine: leave it away, or ask one recording");
  }
}

/// Throws DatabaseError as well.
int AnswerQuery(const QueryOptions& options, const QuerySources& sources, const Console& console) {
  // SQLite looks at the time between the steps of a statement, and one step can take for ever: to
  // find a megabyte in a megabyte is one.
  constexpr std::chrono::seconds kTimeToNotice{2};
  const Format& format = ChooseFormat(options.result, console);
  const std::chrono::seconds time(options.timeLimit.value_or(kUsualQueryTime.count()));
  const auto& [recordings, files] = sources;
  const bool isOneFile = recordings.empty() && files.size() == 1;
  std::optional<ResultOutput> output;
  const auto openOutput = [&] { output.emplace(options.result.output, console); };
  std::optional<Database> database;
  int exitCode = kExitDone;
  if (isOneFile) {
    openOutput();
  } else if (recordings.size() + files.size() <= 1) {
    exitCode = FillFromOne(database.emplace(time), options.source, console, openOutput);
  } else {
    openOutput();
    exitCode = FillFromSeveral(database.emplace(time), sources, options.source, time, console);
  }
  Collection answer;
  {
    const Deadline deadline(time + kTimeToNotice, [&] {
      output.reset();
      Complain(console, DescribeTimeout(time));
      std::_Exit(kExitMisused);
    });
    if (isOneFile) database.emplace(files.front(), time);
    answer = Ask(*database, options.words.back());
  }
  database.reset();  // Its memory is for the result now.
  output->Write(
      [&](const Screen& screen, std::ostream& out) { format.write(answer, screen, out); });
  TellWritten(format.resultName, options.result.output, console);
  return exitCode;
}

int RunQuery(QueryOptions& options, const Console& console) {
  if (options.words.empty()) {
    throw UsageError(
        "there is no query: give one, as in pqhost query --replay RECORDING \"SELECT * "
        "FROM v_sensorinfo\"");
  }
  const QuerySources sources = FindSources(options);
  SettleOptions(options, sources);
  try {
    return AnswerQuery(options, sources, console);
  } catch (const DatabaseError& error) {
    throw UsageError(error.what());
  }
}

CommandRun Define(OptionSet& set) {
  const auto options = std::make_shared<QueryOptions>();
  set.AddArguments("QUERY", "[FILE.db]... SQL", OptionValue::kDatabase, kMostWords, options->words,
                   "The databases, if any, then one SELECT statement");
  set.AddPaths(
      "--replay", OptionValue::kRecording, options->replays,
      "Ask this recording, a folder or a ZIP file, or all in this folder; may be repeated");
  AddReadingRules(set, options->source);
  AddPlugin(set, options->source);
  AddUnsafeFolder(set, options->source);
  AddLogFolder(set, options->source);
  AddFormat(set, options->result, "answer", FormatsFor::kAnswer);
  AddOutput(set, options->result, "answer");
  AddTimeLimit(set, options->timeLimit, "Give the query up after so many seconds; 30 unless given");
  return [options](const Console& console) { return RunQuery(*options, console); };
}

}  // namespace

const Command kQueryCommand = {"query", "Ask a collection, or the database of one, in SQL", kFooter,
                               &Define, Command::TimeLimit::kItsOwn};

}  // namespace host
