// pqfleet parked: recordings that cannot be parsed, and why.

#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/fleet_answer.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "host/commands/common_options.h"
#include "host/program/result_output.h"
#include "host/text/count_text.h"

namespace fleet {
namespace {

constexpr char kFooter[] = R"(Examples:
  pqfleet parked
  pqfleet parked --reason "not in the store" --format csv
  pqfleet parked --reason "not in the store" --retry

Exit codes: 0 done; 1 the database refuses; 2 wrong use, or the database is not
there.
)";

struct ParkedOptions {
  GivenSettings settings;
  std::vector<std::string> reasons;
  bool isRetry = false;
  host::ResultOptions result;
};

int RunParked(const ParkedOptions& options, const host::Console& console) {
  const host::Format& format = host::ChooseFormat(options.result, console);
  const Settings settings = ReadSettings(options.settings);
  Connection connection(settings.database, "pqfleet parked");
  RequireSchema(connection);
  const Value reason = options.reasons.empty() ? Value() : Value(options.reasons.back());
  if (options.isRetry) {
    const Answer answer = connection.Ask(
        "update job j set state = 0, attempts = 0, lost = 0, reason = null from parser p "
        "where p.id = j.parser and p.state = 'current' and j.state = 3 "
        "and ($1::text is null or strpos(j.reason, $1) > 0)",
        {reason});
    console.out << host::FormatCount(answer.Changed(), "recording") << " ready again\n";
    return host::kExitDone;
  }
  const Answer answer = connection.Ask(
      "select recording, reason, attempts, lost, array_to_string(servers, ', ') as servers "
      "from parked where $1::text is null or strpos(reason, $1) > 0 order by reason, recording",
      {reason});
  const host::Collection collection = MakeCollection(answer, "parked recordings");
  host::ResultOutput output(options.result.output, console);
  output.Write([&](const host::Screen& screen, std::ostream& out) {
    format.write(collection, screen, out);
  });
  host::TellWritten(format.resultName, options.result.output, console);
  return host::kExitDone;
}

host::CommandRun Define(host::OptionSet& set) {
  const auto options = std::make_shared<ParkedOptions>();
  set.AddTexts("--reason", "WORDS", options->reasons,
               "Only those with these words in their reason");
  set.AddFlag("--retry", options->isRetry, "Make them ready again");
  AddFormat(set, options->result, "list", host::FormatsFor::kAnswer);
  AddOutput(set, options->result, "list");
  AddDatabaseOptions(set, options->settings);
  return [options](const host::Console& console) { return RunParked(*options, console); };
}

}  // namespace

const host::Command kParkedCommand = {"parked", "List what cannot be parsed, and why", kFooter,
                                      &Define};

}  // namespace fleet
