// pqhost query: a collection, or a database that one was written to, asked in SQL. The answer is
// one table, so that every format can show it.

#include <fmt/format.h>

#include <optional>

#include "host/formats/database.h"
#include "host/formats/formats.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/gather.h"
#include "host/program/result_output.h"
#include "host/text/decoder.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

using halyard::repository::RInstance;
using halyard::repository::RRepository;

constexpr char kAnswer[] = "ANSWER";
constexpr int kNoNumber = -1;

/// Column names may repeat in an answer; properties may not.
std::vector<std::string> MakeKeys(const Database::Names& names) {
  std::vector<std::string> keys;
  for (const std::string& name : names) {
    std::string key = name;
    for (int i = 2; std::find(keys.begin(), keys.end(), key) != keys.end(); ++i) {
      key = fmt::format("{}_{}", name, i);
    }
    keys.push_back(std::move(key));
  }
  return keys;
}

/// The answer as a collection of one table.
Collection Ask(Database& database, const std::string& sql) {
  Collection answer;
  answer.repository = std::make_unique<RRepository>();
  answer.machine.codePage = kUtf8CodePage;
  answer.collected = std::chrono::system_clock::now();
  answer.tablesNamed = true;  // One table, which formats show plainly.
  answer.modules.push_back({"query", sql});
  Database::Names names;
  std::vector<std::string> keys;
  database.Query(
      sql,
      [&](const Database::Names& columns) {
        names = columns;
        keys = MakeKeys(columns);
      },
      [&](const Database::Values& values) {
        RInstance row(kAnswer, "query", kNoNumber);
        for (std::size_t i = 0; i < values.size(); ++i) {
          if (values[i]) row.AddProperty(keys[i], names[i], *values[i], false);
        }
        row.AddToRepository(*answer.repository);
      });
  CollectedTable table{kAnswer, "query", {}, nullptr, {}};
  const auto& tables = TablesOf(*answer.repository);
  if (const auto rows = tables.find(kAnswer); rows != tables.end()) table.rows = &rows->second;
  table.status = {"rows", fmt::format("{} rows", table.RowCount())};
  answer.tables.push_back(std::move(table));
  return answer;
}

}  // namespace

int RunQueryCommand(const Options& options, const Console& console) {
  std::optional<ResultOutput> output;
  std::optional<Database> database;
  int exitCode = kExitDone;
  try {
    if (options.database) {
      database.emplace(*options.database);
      output.emplace(options.output, console);
    } else {
      const Gathered gathered = Gather(options, console, /*keepLog=*/true,
                                       [&](auto&) { output.emplace(options.output, console); });
      database.emplace();
      database->Fill(gathered.collection);
      for (const std::string& problem : gathered.collection.problems) Complain(console, problem);
      if (!gathered.collection.problems.empty()) exitCode = kExitIncomplete;
    }
    const Collection answer = Ask(*database, options.sql);
    const Format& format = *FindFormat(options.format);
    output->Write(
        [&](const Screen& screen, std::ostream& out) { format.write(answer, screen, out); });
  } catch (const DatabaseError& error) {
    throw UsageError(error.what());
  }
  return exitCode;
}

}  // namespace host
