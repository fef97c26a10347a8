// pqfleet query: asks about all servers, in PostgreSQL's SQL.

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/fleet_answer.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "host/commands/common_options.h"
#include "host/program/result_output.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kQueryFooter[] = R"(Examples:
  pqfleet query "SELECT server, id, serial FROM drives WHERE media_errors > 0"
  pqfleet query "SELECT verdict, count(*) FROM verdict_now GROUP BY 1" --format csv
  pqfleet query "SELECT * FROM silent ORDER BY received"

Views: the parts of every server's newest recording, with pqhost's names and
columns (docs/parts.md), and findings, evidence, verdict_now, verdict_history,
media_error_trend, silent, parked, progress (docs/fleet.md).
Exit codes: 0 answered; 1 the database refuses the query, or it takes too long;
2 wrong use, or the database is not there.
)";

struct QueryOptions {
  GivenSettings settings;
  std::vector<std::string> words;
  host::ResultOptions result;
  std::optional<unsigned> timeLimit;
};

constexpr unsigned kUsualSeconds = 30;

Answer AskAsReader(Connection& connection, const std::string& sql, unsigned seconds) {
  // One statement, as somebody who may only read the views.
  connection.Run(
      fmt::format("begin read only; set local role fleet_reader;"
                  "set local statement_timeout = '{0}s';"
                  "set local lock_timeout = '{0}s'",
                  seconds));
  Answer answer = connection.Ask(sql);
  connection.RollBack();
  return answer;
}

int RunQuery(const QueryOptions& options, const host::Console& console) {
  if (options.words.empty()) {
    throw host::UsageError(
        "there is no query: give one, as in pqfleet query \"SELECT * FROM verdict_now\"");
  }
  const host::Format& format = host::ChooseFormat(options.result, console);
  const Settings settings = ReadSettings(options.settings);
  Connection connection(settings.database, "pqfleet query");
  RequireSchema(connection);
  host::ResultOutput output(options.result.output, console);
  const Answer answer =
      AskAsReader(connection, options.words.back(), options.timeLimit.value_or(kUsualSeconds));
  const host::Collection collection = MakeCollection(answer, options.words.back());
  output.Write([&](const host::Screen& screen, std::ostream& out) {
    format.write(collection, screen, out);
  });
  host::TellWritten(format.resultName, options.result.output, console);
  return host::kExitDone;
}

host::CommandRun DefineQuery(host::OptionSet& set) {
  const auto options = std::make_shared<QueryOptions>();
  set.AddArguments("QUERY", "SQL", host::OptionValue::kAny, 1, options->words,
                   "One statement that only reads");
  AddFormat(set, options->result, "answer", host::FormatsFor::kAnswer);
  AddOutput(set, options->result, "answer");
  AddTimeLimit(set, options->timeLimit, "Give the query up after so many seconds; 30 unless given");
  AddDatabaseOptions(set, options->settings);
  return [options](const host::Console& console) { return RunQuery(*options, console); };
}

}  // namespace

const host::Command kQueryCommand = {"query", "Ask about all servers, in SQL", kQueryFooter,
                                     &DefineQuery, host::Command::TimeLimit::kItsOwn};

}  // namespace fleet
