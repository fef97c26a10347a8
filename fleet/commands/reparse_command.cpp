// pqfleet reparse: parses again what was parsed.

#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "host/text/count_text.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kFooter[] = R"(Examples:
  pqfleet init --upgrade && pqfleet reparse --all     after an update of this program
  pqfleet reparse --current                           each server's newest recording
  pqfleet reparse --server NODE31

It makes recordings ready; pqfleet work parses them and writes what changed.
Exit codes: 0 done; 1 the database refuses; 2 wrong use, or the database is not
there.
)";

struct ReparseOptions {
  GivenSettings settings;
  bool all = false;
  bool current = false;
  std::vector<std::string> servers;
};

int RunReparse(const ReparseOptions& options, const host::Console& console) {
  const int asked =
      (options.all ? 1 : 0) + (options.current ? 1 : 0) + (options.servers.empty() ? 0 : 1);
  if (asked != 1) {
    throw host::UsageError("say which recordings: --all, --current or --server NAME, one of them");
  }
  const Settings settings = ReadSettings(options.settings);
  Connection connection(settings.database, "pqfleet reparse");
  RequireSchema(connection);
  const char* which = "true";
  if (options.current) which = "j.object in (select object from server_state)";
  if (!options.servers.empty()) {
    which =
        "j.object in (select s.object from submission s join server v on v.id = s.server "
        "where v.name = any($1::text[]))";
  }
  const Answer answer = connection.Ask(
      fmt::format("update job j set state = 0 from parser p where p.id = j.parser "
                  "and p.state = 'current' and j.state = 2 and {} and $1::text[] is not null",
                  which),
      {WriteTexts(options.servers)});
  console.out << host::FormatCount(answer.Changed(), "recording") << " ready\n";
  return host::kExitDone;
}

host::CommandRun Define(host::OptionSet& set) {
  const auto options = std::make_shared<ReparseOptions>();
  set.AddFlag("--all", options->all, "All recordings");
  set.AddFlag("--current", options->current, "Those whose rows are in the database");
  set.AddTexts("--server", "NAME", options->servers, "Those of this server; may be repeated");
  AddDatabaseOptions(set, options->settings);
  return [options](const host::Console& console) { return RunReparse(*options, console); };
}

}  // namespace

const host::Command kReparseCommand = {"reparse", "Parse again what was parsed", kFooter, &Define};

}  // namespace fleet
