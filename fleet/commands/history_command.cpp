// pqfleet history: what a server's recordings, the old ones too, say of a part or class.

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fleet/commands/commands.h"
#include "fleet/copy_text.h"
#include "fleet/database.h"
#include "fleet/parser.h"
#include "fleet/row_tables.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "fleet/store.h"
#include "host/commands/common_options.h"
#include "host/formats/answer_builder.h"
#include "host/program/result_output.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kHistoryFooter[] = R"(Examples:
  pqfleet history NODE31 --part drives
  pqfleet history NODE31 --class PDLIST --since 2026-10-01 --format csv

Rows of old recordings are not kept: each recording is parsed again, one row of
the answer for each of its rows, after the time at which it was made (UTC).
Exit codes: 0 done; 1 a recording is not in the store any more, or cannot be
parsed; 2 wrong use, or there is no recording of that server, or the database or
the store is not there.
)";

struct HistoryOptions {
  GivenSettings settings;
  std::vector<std::string> words;
  std::vector<std::string> sites;
  std::vector<std::string> parts;
  std::vector<std::string> classes;
  std::vector<std::string> times;
  host::ResultOptions result;
};

std::size_t ChooseTable(const HistoryOptions& options, const RowTables& tables) {
  if (options.parts.empty() == options.classes.empty()) {
    throw host::UsageError("say of what: --part drives or --class PDLIST, one of them");
  }
  const std::string& name = options.parts.empty() ? options.classes.back() : options.parts.back();
  const auto table =
      tables.Find(options.parts.empty() ? NameClassTable(name) : NamePartTable(name));
  if (!table) throw host::UsageError(fmt::format("there is no part or class {}", name));
  return *table;
}

Answer FindRecordings(Connection& connection, const HistoryOptions& options) {
  const Value site = options.sites.empty() ? Value() : Value(options.sites.back());
  const Value since = options.times.empty() ? Value() : Value(options.times.back());
  try {
    Answer answer = connection.Ask(
        "select encode(o.key, 'hex'), extract(epoch from s.taken)::bigint, s.taken_offset, "
        "  to_char(s.taken at time zone 'UTC', 'YYYY-MM-DD HH24:MI:SS'), s.note is null, t.name "
        "from server v join site t on t.id = v.site join submission s on s.server = v.id "
        "join object o on o.id = s.object "
        "where v.name = $1 and t.name = coalesce($2, t.name) "
        "and s.taken >= coalesce($3::timestamptz, '-infinity') order by t.name, s.taken, o.key",
        {options.words.back(), site, since});
    if (answer.RowCount() == 0) {
      throw host::UsageError(fmt::format("there is no recording of {}{}", options.words.back(),
                                         since ? " since then" : ""));
    }
    const std::size_t last = answer.RowCount() - 1;
    if (answer.At(0, 5) != answer.At(last, 5)) {
      throw host::UsageError(fmt::format("there is a {} in {} and in {}: name its --site",
                                         options.words.back(), answer.At(0, 5),
                                         answer.At(last, 5)));
    }
    return answer;
  } catch (const DatabaseFailure& failure) {
    if (!failure.IsOfValues()) throw;
    throw host::UsageError("--since needs a day or a time, as in 2026-11-18");
  }
}

/// A cell as a value of its column's type.
host::Database::Value MakeValue(std::optional<std::string> cell, const RowColumn& column) {
  if (!cell) return {};
  host::CellKind kind = host::CellKind::kText;
  if (column.type == "bigint") kind = host::CellKind::kInteger;
  if (column.type == "double precision") kind = host::CellKind::kReal;
  return {kind, std::move(*cell)};
}

/// Adds the rows of `table`, each after the time `taken`.
void AddRows(const Parsed& parsed, std::size_t table, const std::vector<RowColumn>& columns,
             const std::string& taken, host::AnswerBuilder& answer) {
  for (const ParsedTable& parsedTable : parsed.tables) {
    if (parsedTable.table != table) continue;
    for (const std::string_view row : SplitCopyRows(parsedTable.rows, columns.size())) {
      host::Database::Values values = {{host::CellKind::kText, taken}};
      std::vector<std::optional<std::string>> cells = ReadCopyCells(row);
      for (std::size_t column = 0; column < columns.size(); ++column) {
        values.push_back(MakeValue(std::move(cells[column]), columns[column]));
      }
      answer.AddRow(values);
    }
  }
}

int RunHistory(const HistoryOptions& options, const host::Console& console) {
  if (options.words.empty()) {
    throw host::UsageError("there is no server: name one, as in pqfleet history NODE31");
  }
  const host::Format& format = host::ChooseFormat(options.result, console);
  const RowTables tables;
  const std::size_t table = ChooseTable(options, tables);
  const std::vector<RowColumn>& columns = tables.At(table).columns;
  const Settings settings = ReadSettings(options.settings);
  const std::unique_ptr<Store> store = OpenStore(RequireStore(settings));
  Connection connection(settings.database, "pqfleet history");
  RequireSchema(connection);
  const Answer recordings = FindRecordings(connection, options);
  host::ResultOutput output(options.result.output, console);
  Parser parser(tables);
  host::AnswerBuilder answer(fmt::format("{} of {}", tables.At(table).name, options.words.back()));
  host::Database::Names names = {"taken"};
  for (const RowColumn& column : columns) names.push_back(column.name);
  answer.NameColumns(names);
  int exitCode = host::kExitDone;
  for (std::size_t i = 0; i < recordings.RowCount(); ++i) {
    const std::string key(recordings.At(i, 0));
    std::optional<std::string> zip = store->Read(key);
    std::optional<host::LocalTime> taken;
    if (recordings.At(i, 4) == "t") {
      const std::chrono::seconds time(recordings.NumberAt(i, 1));
      taken = {std::chrono::system_clock::time_point(time),
               std::chrono::minutes(recordings.NumberAt(i, 2))};
    }
    std::string reason = "it is not in the store";
    if (zip) {
      const Parsed parsed = parser.Parse(std::move(*zip), key, taken);
      reason = parsed.refusal;
      AddRows(parsed, table, columns, std::string(recordings.At(i, 3)), answer);
    }
    if (reason.empty()) continue;
    host::Complain(console, fmt::format("{}: {}", recordings.At(i, 3), reason));
    exitCode = host::kExitIncomplete;
  }
  const host::Collection collection = answer.Take();
  output.Write([&](const host::Screen& screen, std::ostream& out) {
    format.write(collection, screen, out);
  });
  host::TellWritten(format.resultName, options.result.output, console);
  return exitCode;
}

host::CommandRun DefineHistory(host::OptionSet& set) {
  const auto options = std::make_shared<HistoryOptions>();
  set.AddArguments("SERVER", "SERVER", host::OptionValue::kAny, 1, options->words,
                   "The server's name");
  set.AddTexts("--site", "NAME", options->sites, "Whose server it is, where several have the name");
  set.AddTexts("--part", "NAME", options->parts, "Rows of this kind of part, or of findings");
  set.AddTexts("--class", "CLASS", options->classes, "Rows of this table class");
  set.AddTexts("--since", "TIME", options->times, "Only recordings that were made since");
  AddFormat(set, options->result, "answer", host::FormatsFor::kAnswer);
  AddOutput(set, options->result, "answer");
  AddSettingsOptions(set, options->settings);
  return [options](const host::Console& console) { return RunHistory(*options, console); };
}

}  // namespace

const host::Command kHistoryCommand = {"history", "Tell a part of a server over the nights",
                                       kHistoryFooter, &DefineHistory};

}  // namespace fleet
