// pqfleet export: parts and findings of all servers as lines of JSON, for other programs.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "fleet/commands/commands.h"
#include "fleet/copy_text.h"
#include "fleet/database.h"
#include "fleet/row_tables.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "host/program/destination.h"
#include "host/program/result_output.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kExportFooter[] = R"(Examples:
  pqfleet export --part drives
  pqfleet export --part drives --part volumes --since 2026-11-01 --output parts.ndjson
  pqfleet export --all | clickhouse-client --query "INSERT INTO parts FORMAT JSONEachRow"

A line for each row of a view: an object with "view", the view's name, "taken",
when the server's newest recording was made, and the view's columns.
Exit codes: 0 done; 1 the database refuses; 2 wrong use, or the database is not
there.
)";

struct ExportOptions {
  GivenSettings settings;
  std::vector<std::string> parts;
  bool all = false;
  std::vector<std::string> times;
  host::Destination output;
};

std::vector<std::string> ChooseViews(const ExportOptions& options) {
  if (options.parts.empty() != options.all) {
    throw host::UsageError("say what: --part NAME, as in --part drives, or --all, one of them");
  }
  std::vector<std::string> views;
  const RowTables tables;
  for (const RowTable& table : tables.All()) {
    if (!table.view.empty()) views.push_back(table.view);
  }
  if (options.all) return views;
  for (const std::string& part : options.parts) {
    if (std::find(views.begin(), views.end(), part) != views.end()) continue;
    throw host::UsageError(
        fmt::format("there is no part {}; there are {}", part, fmt::join(views, ", ")));
  }
  return options.parts;
}

int RunExport(const ExportOptions& options, const host::Console& console) {
  const std::vector<std::string> views = ChooseViews(options);
  const Settings settings = ReadSettings(options.settings);
  Connection connection(settings.database, "pqfleet export");
  RequireSchema(connection);
  connection.Run("begin isolation level repeatable read, read only; set local role fleet_reader");
  std::string since = "-infinity";
  if (!options.times.empty()) {
    try {
      since = connection.Ask("select $1::timestamptz", {options.times.back()}).At(0, 0);
    } catch (const DatabaseFailure& failure) {
      if (!failure.IsOfValues()) throw;
      throw host::UsageError("--since needs a day or a time, as in 2026-11-18");
    }
  }
  host::ResultOutput output(options.output, console);
  output.Write([&](const host::Screen& /*screen*/, std::ostream& out) {
    for (const std::string& view : views) {
      connection.CopyOut(
          fmt::format("copy (select row_to_json(x) from (select {} as view, n.taken, v.* from {} v "
                      "join verdict_now n on n.server = v.server and n.site = v.site "
                      "where n.taken >= {}) x) to stdout",
                      QuoteLiteral(view), QuoteName(view), QuoteLiteral(since)),
          [&](std::string_view row) { out << ReadCopyCell(row) << '\n'; });
    }
  });
  connection.RollBack();
  return host::kExitDone;
}

host::CommandRun DefineExport(host::OptionSet& set) {
  const auto options = std::make_shared<ExportOptions>();
  set.AddTexts("--part", "NAME", options->parts,
               "Rows of this view of parts or findings; may be repeated");
  set.AddFlag("--all", options->all, "Rows of all of them");
  set.AddTexts("--since", "TIME", options->times,
               "Only of servers whose newest recording was made since");
  set.AddDestination("--output", options->output, "Write the lines to this file");
  AddDatabaseOptions(set, options->settings);
  return [options](const host::Console& console) { return RunExport(*options, console); };
}

}  // namespace

const host::Command kExportCommand = {"export", "Hand parts on to other programs", kExportFooter,
                                      &DefineExport};

}  // namespace fleet
