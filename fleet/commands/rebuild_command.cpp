// pqfleet rebuild: makes all that is known anew, from the store and what was submitted.

#include <memory>
#include <string>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/row_tables.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "host/text/count_text.h"

namespace fleet {
namespace {

constexpr char kRebuildFooter[] = R"(Examples:
  pqfleet rebuild && pqfleet work --workers 4 --once

It empties the tables of rows, facts and verdicts and makes every recording
ready; until they are parsed, views show less. Where rows are right,
pqfleet reparse finds that out without emptying anything.
Exit codes: 0 done; 1 the database refuses; 2 wrong use, or the database is not
there, or is made for other readers.
)";

int RunRebuild(const GivenSettings& given, const host::Console& console) {
  const Settings settings = ReadSettings(given);
  Connection connection(settings.database, "pqfleet rebuild");
  const RowTables tables;
  const Schema schema = OpenSchema(connection, tables);
  const std::size_t ready = RunTransaction(connection, [&] {
    std::string names = "server_state, result, drive_error, drive_growth";
    for (const RowTable& table : tables.All()) names += ", " + QuoteName(table.stored);
    connection.Run("truncate " + names + "; update server set severity = default");
    connection.Ask(
        "insert into job (parser, object) select $1, id from object "
        "on conflict (parser, object) do update set state = 0, attempts = 0, lost = 0, "
        "claim = null, worker = null, lease = null, reason = null",
        {schema.parser});
    return static_cast<std::size_t>(
        connection.Ask("select count(*) from job where parser = $1", {schema.parser})
            .NumberAt(0, 0));
  });
  console.out << host::FormatCount(ready, "recording") << " ready\n";
  return host::kExitDone;
}

host::CommandRun DefineRebuild(host::OptionSet& set) {
  const auto given = std::make_shared<GivenSettings>();
  AddDatabaseOptions(set, *given);
  return [given](const host::Console& console) { return RunRebuild(*given, console); };
}

}  // namespace

const host::Command kRebuildCommand = {"rebuild", "Make anew what is known, from the store",
                                       kRebuildFooter, &DefineRebuild};

}  // namespace fleet
