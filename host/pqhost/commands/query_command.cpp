// pqhost query: asks a collection, or a database that one was written to, in SQL. The answer is one
// table, so that every format can show it.

#include <fmt/format.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/database/database.h"
#include "host/files/partial_file.h"
#include "host/formats/answer_builder.h"
#include "host/formats/formats.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/commands/shared_options.h"
#include "host/pqhost/kept_files.h"
#include "host/pqhost/query_sources.h"
#include "host/pqhost/recordings.h"
#include "host/program/deadline.h"
#include "host/program/result_output.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

constexpr char kQueryFooter[] = R"(Examples:
  pqhost query --replay RECORDING "SELECT name, reading FROM v_sensorinfo WHERE status <> 'ok'"
  pqhost collect --format sqlite --output server.db
  pqhost query server.db "SELECT class, rows, status FROM tables" --format csv
  pqhost query --replay FOLDER_OF_RECORDINGS "SELECT machine, sn FROM v_pdlist"
)";

struct QueryOptions {
  std::vector<std::string> words;              ///< files, if any, then the statement
  std::vector<std::filesystem::path> replays;  ///< recordings, or folders of recordings
  SourceOptions source;
  ResultOptions result;
  std::optional<unsigned> timeLimit;  ///< seconds
};

/// More databases than anybody names one by one.
constexpr int kMostWords = 10'000;

/// The answer as a collection of one table.
Collection Ask(Database& database, const std::string& sql) {
  AnswerBuilder answer(sql);
  database.Query(
      sql, [&](const Database::Names& names) { answer.NameColumns(names); },
      [&](const Database::Values& values) { answer.AddRow(values); });
  return answer.Take();
}

/// Whatever is none of this program's files is opened as a database, which tells why it is none.
KeptFile RecogniseWord(const std::filesystem::path& path) {
  try {
    return RecogniseFile(path);
  } catch (const UsageError&) {
    return KeptFile::kDatabase;
  }
}

QuerySources FindSources(const QueryOptions& options) {
  std::vector<std::filesystem::path> replays = options.replays;
  QuerySources sources;
  for (std::size_t i = 0; i + 1 < options.words.size(); ++i) {
    const std::filesystem::path path = PathFromText(options.words[i]);
    switch (RecogniseWord(path)) {
      case KeptFile::kRecording:
        replays.push_back(path);
        break;
      case KeptFile::kDatabase:
        sources.databases.push_back(path);
        break;
      default:
        sources.results.push_back(path);
    }
  }
  sources.recordings = FindRecordings(replays);
  return sources;
}

/// Also takes a single recording for the machine.
void SettleOptions(QueryOptions& options, const QuerySources& sources) {
  const bool isLive = sources.Count() == 0;
  // The tools of this machine run in the log folder.
  if (isLive) options.result.output.MakeAbsolute();
  for (const std::filesystem::path& recording : sources.recordings) {
    options.source.replay = recording;
    RefuseMisuseOfReplay(options.source);
    RefuseInRecording(options.source, "--output", options.result.output);
  }
  if (!isLive) RefuseLogFolder(options.source);
}

/// Ends the program when its time is over. --time-limit is for all that the command does; without
/// it the question has its usual time, and the rest as much as it takes.
class QueryTime {
 public:
  /// Begins with the command. `console` has to outlive this.
  QueryTime(std::optional<unsigned> limit, const Console& console)
      : limit(limit), time(limit.value_or(kUsualQueryTime.count())), console(console) {
    if (limit) Start();
  }

  std::chrono::seconds Get() const { return time; }

  /// The answer of `ask`, which is bound to the question's time.
  template <typename AskQuestion>
  Collection Guard(const AskQuestion& ask) {
    isAsking = true;
    if (!limit) Start();
    Collection answer = ask();
    if (!limit) deadline.reset();
    isAsking = false;
    return answer;
  }

 private:
  void Start() {
    // SQLite looks at the time between the steps of a statement, and one step can take for ever: to
    // find a megabyte in a megabyte is one.
    constexpr std::chrono::seconds kTimeToNotice{2};
    deadline = std::make_unique<Deadline>(time + kTimeToNotice, [this] {
      Complain(console, isAsking ? MakeTimeout(time).what() : DescribeOverdue(*limit));
      RemovePartialFiles();
      std::_Exit(kExitMisused);
    });
  }

  std::optional<unsigned> limit;
  std::chrono::seconds time;
  const Console& console;
  std::atomic<bool> isAsking = false;
  std::unique_ptr<Deadline> deadline;  ///< ends before what it uses
};

/// Throws DatabaseError as well.
int AnswerQuery(const QueryOptions& options, const QuerySources& sources, QueryTime& time,
                const Console& console) {
  const Format& format = ChooseFormat(options.result, console);
  const std::vector<std::filesystem::path>& files = sources.databases;
  const bool isOne = sources.Count() == 1;
  const bool isOneFile = isOne && files.size() == 1;
  std::optional<ResultOutput> output;
  const auto openOutput = [&] { output.emplace(options.result.output, console); };
  std::optional<Database> database;
  int exitCode = kExitDone;
  if (isOneFile) {
    openOutput();
  } else if (isOne && !sources.results.empty()) {
    openOutput();
    exitCode = FillFromResult(database.emplace(time.Get()), sources.results.front());
  } else if (sources.Count() <= 1) {
    exitCode = FillFromOne(database.emplace(time.Get()), options.source, console, openOutput);
  } else {
    openOutput();
    exitCode =
        FillFromSeveral(database.emplace(time.Get()), sources, options.source, time.Get(), console);
  }
  const Collection answer = time.Guard([&] {
    if (isOneFile) database.emplace(files.front(), time.Get());
    return Ask(*database, options.words.back());
  });
  database.reset();  // Its memory is for the result now.
  output->Write(
      [&](const Screen& screen, std::ostream& out) { format.write(answer, screen, out); });
  TellWritten(format.resultName, options.result.output, console);
  return exitCode;
}

/// Where the names are that a query can use.
std::string_view HintAtNames(std::string_view refusal) {
  if (refusal.starts_with("no such table: ")) return "; SELECT name FROM sqlite_schema lists them";
  if (refusal.starts_with("no such column: ")) {
    return "; SELECT name FROM pragma_table_info('TABLE') lists those of a table";
  }
  return {};
}

int RunQuery(QueryOptions& options, const Console& console) {
  if (options.words.empty()) {
    throw UsageError(
        "there is no query: give one, as in pqhost query --replay RECORDING \"SELECT * "
        "FROM v_sensorinfo\"");
  }
  QueryTime time(options.timeLimit, console);
  const QuerySources sources = FindSources(options);
  SettleOptions(options, sources);
  try {
    return AnswerQuery(options, sources, time, console);
  } catch (const DatabaseError& error) {
    throw UsageError(error.what() + std::string(HintAtNames(error.what())));
  }
}

CommandRun DefineQuery(OptionSet& set) {
  const auto options = std::make_shared<QueryOptions>();
  set.AddArguments("QUERY", "[FILE]... SQL", OptionValue::kDatabase, kMostWords, options->words,
                   "Files that pqhost wrote, if any, then one SELECT statement");
  set.AddPaths(
      "--replay", OptionValue::kRecording, options->replays,
      "Ask this recording, a folder or a ZIP file, or all in this folder; may be repeated");
  AddReadingRules(set, options->source);
  AddPlugin(set, options->source);
  AddUnsafeFolder(set, options->source);
  AddLogFolder(set, options->source);
  AddFormat(set, options->result, "answer", FormatsFor::kAnswer);
  AddOutput(set, options->result, "answer");
  AddTimeLimit(set, options->timeLimit,
               "Give all up after so many seconds; unless given, the query after 30");
  return [options](const Console& console) { return RunQuery(*options, console); };
}

}  // namespace

const Command kQueryCommand = {"query", "Ask a collection, or the database of one, in SQL",
                               kQueryFooter, &DefineQuery, Command::TimeLimit::kItsOwn};

}  // namespace host
