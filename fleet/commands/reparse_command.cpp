// pqfleet reparse: parses again what was parsed.

#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/end_request.h"
#include "fleet/parser.h"
#include "fleet/row_tables.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "fleet/shadow.h"
#include "fleet/store.h"
#include "host/text/count_text.h"
#include "host/text/screen_text.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kReparseFooter[] = R"(Examples:
  pqfleet init --upgrade && pqfleet reparse     after an update of this program
  pqfleet reparse --all
  pqfleet reparse --current                           each server's newest recording
  pqfleet reparse --server NODE31

  pqfleet reparse --shadow                            what would an update change?

It makes recordings ready; pqfleet work parses them and writes what changed.
Without an option these are the ones that other readers parsed than those that
the database is made for now.
With --shadow nothing is made ready or written: this program, which need not be
the one that the database is made for, parses each server's newest recording, and
tells what the database has otherwise: of each table how many rows, with ten
examples; verdicts; and what would be parked.
Exit codes: 0 done, and --shadow found nothing; 1 the database refuses, or
--shadow found something; 2 wrong use, or the database or the store is not there.
)";

struct ReparseOptions {
  GivenSettings settings;
  bool all = false;
  bool current = false;
  bool isShadow = false;
  std::vector<std::string> servers;
};

int RunShadow(const ReparseOptions& options, const host::Console& console) {
  const Settings settings = ReadSettings(options.settings);
  const std::unique_ptr<Store> store = OpenStore(RequireStore(settings));
  Connection connection(settings.database, "pqfleet reparse --shadow");
  // Before an upgrade is when it is asked.
  RequireSchema(connection, Older::kAccepted);
  connection.Run("begin read only");
  const RowTables tables;
  Parser parser(tables);
  EndRequest endRequest;
  const ShadowResult found = Shadow(connection, *store, tables, parser).Look(options.servers, [&] {
    return endRequest.IsMade();
  });
  for (const auto& [what, changes] : found.changes) {
    console.out << fmt::format("{}: {} of {}\n", what, host::FormatCount(changes.rows, "change"),
                               host::FormatCount(changes.servers, "server"));
    for (const std::string& example : changes.examples) {
      console.out << "  " << host::EscapeControls(example) << '\n';
    }
  }
  console.out << fmt::format("{} looked at{}\n", host::FormatCount(found.servers, "server"),
                             endRequest.IsMade() ? ", then ended" : "");
  return found.changes.empty() ? host::kExitDone : host::kExitIncomplete;
}

int RunReparse(const ReparseOptions& options, const host::Console& console) {
  if (options.isShadow) {
    if (options.all || options.current) {
      throw host::UsageError("--shadow looks at each server's newest recording: leave --all away");
    }
    return RunShadow(options, console);
  }
  const int asked =
      (options.all ? 1 : 0) + (options.current ? 1 : 0) + (options.servers.empty() ? 0 : 1);
  if (asked > 1) {
    throw host::UsageError("say which recordings: --all, --current or --server NAME, one of them");
  }
  const Settings settings = ReadSettings(options.settings);
  Connection connection(settings.database, "pqfleet reparse");
  RequireSchema(connection);
  // Builds of another version may have the same readers.
  const char* which =
      "not exists (select from result r join parser q on q.id = r.parser "
      "where r.object = j.object and q.readers = p.readers)";
  if (options.all) which = "true";
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

host::CommandRun DefineReparse(host::OptionSet& set) {
  const auto options = std::make_shared<ReparseOptions>();
  set.AddFlag("--all", options->all, "All recordings, also those that these readers parsed");
  set.AddFlag("--current", options->current, "Those whose rows are in the database");
  set.AddTexts("--server", "NAME", options->servers, "Those of this server; may be repeated");
  set.AddFlag("--shadow", options->isShadow, "Tell what would change, and change nothing");
  AddSettingsOptions(set, options->settings);
  return [options](const host::Console& console) { return RunReparse(*options, console); };
}

}  // namespace

const host::Command kReparseCommand = {"reparse", "Parse again what was parsed", kReparseFooter,
                                       &DefineReparse};

}  // namespace fleet
