// pqfleet init: the database's schema, and the folder of the recordings.

#include <fmt/format.h>

#include <memory>
#include <string>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/parser.h"
#include "fleet/row_tables.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "fleet/store.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kInitFooter[] = R"(Examples:
  createdb fleet
  PGDATABASE=fleet pqfleet init --store /srv/fleet
  pqfleet init --upgrade         after an update of this program

It makes the schema "fleet" and the roles fleet_door, fleet_worker and
fleet_reader, which the users of submit, work and query get with GRANT.
Exit codes: 0 done; 1 the database refuses; 2 wrong use, or there is a fleet
already and --upgrade was not given.
)";

struct InitOptions {
  GivenSettings settings;
  bool isUpgrade = false;
};

int RunInit(const InitOptions& options, const host::Console& console) {
  const Settings settings = ReadSettings(options.settings);
  Connection connection(settings.database, "pqfleet init");
  const SchemaState state = FindSchema(connection);
  if (state == SchemaState::kNone && options.isUpgrade) {
    throw host::UsageError("there is no fleet in this database to upgrade: leave --upgrade away");
  }
  if (state != SchemaState::kNone && !options.isUpgrade) {
    throw host::UsageError(
        "there is a fleet in this database already: --upgrade fits it to this program");
  }
  if (!settings.store.address.empty()) CreateStore(settings.store);
  const RowTables tables;
  for (const std::string& change : InstallSchema(connection, tables)) {
    if (state != SchemaState::kNone) console.out << change << '\n';
  }
  console.out << fmt::format("{} tables of rows, readers {}\n", tables.All().size(),
                             DescribeParser());
  if (!settings.store.address.empty()) {
    console.out << fmt::format("recordings are kept in {}\n", settings.store.address);
  }
  if (state == SchemaState::kOther || state == SchemaState::kOlder) {
    console.error << "what was parsed before stays as it is until pqfleet reparse\n";
  }
  return host::kExitDone;
}

host::CommandRun DefineInit(host::OptionSet& set) {
  const auto options = std::make_shared<InitOptions>();
  AddSettingsOptions(set, options->settings);
  set.AddFlag("--upgrade", options->isUpgrade,
              "Fit the tables that are there to this program; rows stay");
  return [options](const host::Console& console) { return RunInit(*options, console); };
}

}  // namespace

const host::Command kInitCommand = {"init", "Make the database's tables and the store", kInitFooter,
                                    &DefineInit};

}  // namespace fleet
