// pqfleet forget: removes all that is known of a server, or of a site.

#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/removal.h"
#include "fleet/row_tables.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "fleet/store.h"
#include "host/text/count_text.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kForgetFooter[] = R"(Examples:
  pqfleet forget NODE31
  pqfleet forget --site berlin NODE31
  pqfleet forget --whole-site berlin

Rows, verdicts, submissions and the recordings themselves go, but for recordings
that another server submitted as well. Backups of the database and the store are
not touched.
Exit codes: 0 done; 1 the database refuses; 2 wrong use, or there is no such
server, or the database or the store is not there.
)";

struct ForgetOptions {
  GivenSettings settings;
  std::vector<std::string> words;
  std::vector<std::string> sites;
  std::vector<std::string> wholeSites;
};

/// The servers to forget. Throws UsageError when there is none, or several have the name.
std::vector<std::int64_t> FindServers(Connection& connection, const ForgetOptions& options) {
  const Value name = options.words.empty() ? Value() : Value(options.words.back());
  const std::vector<std::string>& given = name ? options.sites : options.wholeSites;
  const Value site = given.empty() ? Value() : Value(given.back());
  const Answer answer = connection.Ask(
      "select v.id, t.name from server v join site t on t.id = v.site "
      "where v.name = coalesce($1, v.name) and t.name = coalesce($2, t.name) order by t.name",
      {name, site});
  if (answer.RowCount() == 0) {
    throw host::UsageError(name ? fmt::format("there is no server {}", *name)
                                : fmt::format("there is no server of {}", *site));
  }
  if (name && answer.RowCount() > 1) {
    throw host::UsageError(fmt::format("there is a {} in {} and in {}: name its --site", *name,
                                       answer.At(0, 1), answer.At(1, 1)));
  }
  std::vector<std::int64_t> servers;
  for (std::size_t row = 0; row < answer.RowCount(); ++row) {
    servers.push_back(answer.NumberAt(row, 0));
  }
  return servers;
}

int RunForget(const ForgetOptions& options, const host::Console& console) {
  if (options.words.empty() == options.wholeSites.empty()) {
    throw host::UsageError("name a server, or a --whole-site, one of them");
  }
  const Settings settings = ReadSettings(options.settings);
  const std::unique_ptr<Store> store = OpenStore(RequireStore(settings));
  Connection connection(settings.database, "pqfleet forget");
  RequireSchema(connection);
  // What a run before was interrupted at.
  EmptyStore(connection, *store);
  const std::vector<std::int64_t> servers = FindServers(connection, options);
  const RemovedCounts removed = ForgetServers(connection, RowTables(), servers);
  EmptyStore(connection, *store);
  console.out << fmt::format("forgot {}, {}, {}\n", host::FormatCount(servers.size(), "server"),
                             host::FormatCount(removed.submissions, "submission"),
                             host::FormatCount(removed.recordings, "recording"));
  return host::kExitDone;
}

host::CommandRun DefineForget(host::OptionSet& set) {
  const auto options = std::make_shared<ForgetOptions>();
  set.AddArguments("SERVER", "[SERVER]", host::OptionValue::kAny, 1, options->words,
                   "The server's name");
  set.AddTexts("--site", "NAME", options->sites, "Whose server it is, where several have the name");
  set.AddTexts("--whole-site", "NAME", options->wholeSites, "All servers of this site");
  AddSettingsOptions(set, options->settings);
  return [options](const host::Console& console) { return RunForget(*options, console); };
}

}  // namespace

const host::Command kForgetCommand = {"forget", "Remove all that is known of a server",
                                      kForgetFooter, &DefineForget};

}  // namespace fleet
