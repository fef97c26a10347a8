// pqfleet parked: recordings that cannot be parsed, and why.

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/fleet_answer.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "fleet/store.h"
#include "host/commands/common_options.h"
#include "host/program/result_output.h"
#include "host/text/count_text.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kParkedFooter[] = R"(Examples:
  pqfleet parked
  pqfleet parked --reason "not in the store" --format csv
  pqfleet parked --reason "not in the store" --retry
  pqfleet parked --show 3f786850e387
  pqfleet parked --fetch 3f786850e387 --output parked.zip

What is fetched is as its sender made it: open it with care.

Exit codes: 0 done; 1 the database refuses; 2 wrong use, or there is no such
recording, or the database or the store is not there.
)";

struct ParkedOptions {
  GivenSettings settings;
  std::vector<std::string> reasons;
  bool isRetry = false;
  std::vector<std::string> shown;
  std::vector<std::string> fetched;
  host::ResultOptions result;
};

/// The key of the parked recording that begins so. Throws UsageError when there is none, or
/// several.
std::string FindParked(Connection& connection, const std::string& beginning) {
  const Answer answer = connection.Ask(
      "select recording from parked where starts_with(recording, lower($1)) limit 2", {beginning});
  if (answer.RowCount() == 1) return std::string(answer.At(0, 0));
  throw host::UsageError(fmt::format("{} is parked whose key begins with {}",
                                     answer.RowCount() == 0 ? "nothing" : "more than one recording",
                                     beginning));
}

/// All that is known of one, a line for each thing.
int ShowParked(const ParkedOptions& options, const Settings& settings, Connection& connection,
               const host::Console& console) {
  const host::Format& format = host::ChooseFormat(options.result, console);
  const std::string key = FindParked(connection, options.shown.back());
  const std::unique_ptr<Store> store = OpenStore(RequireStore(settings));
  const Answer answer = connection.Ask(
      "select w.thing, w.value from parked p join object o on o.key = decode($1, 'hex'),"
      "  lateral (select string_agg(format('%s of %s at %s', v.name, t.name, s.taken), '; '"
      "    order by s.taken) as all_of_them from submission s join server v on v.id = s.server"
      "    join site t on t.id = v.site where s.object = o.id) s,"
      "  lateral (values ('recording', recording), ('reason', reason),"
      "    ('attempts', attempts::text), ('lost', lost::text), ('bytes', p.bytes::text),"
      "    ('stored', p.stored::text), ('submitted', s.all_of_them), ('file', $2)) w (thing, "
      "value) "
      "where p.recording = $1",
      {key, store->Read(key) ? store->DescribePlace(key) : "not in the store"});
  const host::Collection collection = MakeCollection(answer, "a parked recording");
  host::ResultOutput output(options.result.output, console);
  output.Write([&](const host::Screen& screen, std::ostream& out) {
    format.write(collection, screen, out);
  });
  return host::kExitDone;
}

int FetchParked(const ParkedOptions& options, const Settings& settings, Connection& connection,
                const host::Console& console) {
  const std::string key = FindParked(connection, options.fetched.back());
  const std::optional<std::string> zip = OpenStore(RequireStore(settings))->Read(key);
  if (!zip) throw host::UsageError(fmt::format("{} is not in the store", key));
  host::ResultOutput output(options.result.output, console);
  output.Write([&](const host::Screen& /*screen*/, std::ostream& out) { out << *zip; });
  return host::kExitDone;
}

int RunParked(const ParkedOptions& options, const host::Console& console) {
  const bool takesOne = !options.shown.empty() || !options.fetched.empty();
  if ((takesOne && (options.isRetry || !options.reasons.empty())) ||
      (!options.shown.empty() && !options.fetched.empty())) {
    throw host::UsageError("--show and --fetch take one recording: leave the other options away");
  }
  const Settings settings = ReadSettings(options.settings);
  Connection connection(settings.database, "pqfleet parked");
  RequireSchema(connection);
  if (!options.shown.empty()) return ShowParked(options, settings, connection, console);
  if (!options.fetched.empty()) return FetchParked(options, settings, connection, console);
  const host::Format& format = host::ChooseFormat(options.result, console);
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

host::CommandRun DefineParked(host::OptionSet& set) {
  const auto options = std::make_shared<ParkedOptions>();
  set.AddTexts("--reason", "WORDS", options->reasons,
               "Only those with these words in their reason");
  set.AddFlag("--retry", options->isRetry, "Make them ready again");
  set.AddTexts("--show", "KEY", options->shown, "All that is known of the one whose key begins so");
  set.AddTexts("--fetch", "KEY", options->fetched, "Its ZIP file, for --output");
  AddFormat(set, options->result, "list", host::FormatsFor::kAnswer);
  AddOutput(set, options->result, "list");
  AddSettingsOptions(set, options->settings);
  return [options](const host::Console& console) { return RunParked(*options, console); };
}

}  // namespace

const host::Command kParkedCommand = {"parked", "List what cannot be parsed, and why",
                                      kParkedFooter, &DefineParked};

}  // namespace fleet
