// pqfleet status: how far the work is.

#include <fmt/format.h>

#include <chrono>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/end_request.h"
#include "fleet/patience.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "host/text/json_text.h"
#include "host/text/screen_text.h"

namespace fleet {
namespace {

constexpr char kStatusFooter[] = R"(Examples:
  pqfleet status
  pqfleet status --format json
  pqfleet status --watch               every two seconds, until Ctrl-C

The rate is that of the last minute. Silent are servers of which nothing came
for 36 hours: pqfleet query "SELECT * FROM silent". A line "trouble" says that
the database's disk is full: workers wait until there is room.
Exit codes: 0 done; 1 the database refuses; 2 wrong use, or the database is not
there.
)";

struct StatusOptions {
  GivenSettings settings;
  std::string format = "table";
  bool isWatching = false;
};

/// Names as JSON has them.
struct Status {
  std::string readers;
  std::vector<std::pair<std::string, std::int64_t>>
      numbers;  ///< in the order in which they are told
  std::vector<std::pair<std::string, std::int64_t>> reasons;  ///< why so many are parked
  std::vector<std::pair<std::string, std::int64_t>> parsers;  ///< which readers parsed so many
  std::string oldest;                                         ///< waiting; empty: none
  std::string trouble;  ///< why workers wait for the database; empty: none is known
};

/// What the database says when it is to write a megabyte for a moment, if its disk is full.
std::string FindFullDisk(Connection& connection) {
  try {
    RunTransaction(connection, [&] {
      connection.Run("set local work_mem = '64kB'");
      return connection.Ask("select count(*) from generate_series(1, 40000)");
    });
  } catch (const DatabaseFailure& failure) {
    if (failure.IsOfDisk()) return failure.what();
    if (!connection.IsAlive()) throw;
  }
  return {};
}

Status FindStatus(Connection& connection) {
  constexpr std::int64_t kMinute = 60;
  const Answer progress = connection.Ask(
      "select version, ready, running, done, parked, oldest_waiting,"
      "  (select count(*) from result where finished > now() - interval '1 minute'),"
      "  (select count(*) from server), (select count(*) from submission), recordings,"
      "  (select count(*) from silent) "
      "from progress where state = 'current'");
  Status status;
  status.trouble = FindFullDisk(connection);
  status.readers = progress.At(0, 0);
  status.oldest = progress.At(0, 5);
  const auto number = [&](std::size_t column) { return progress.NumberAt(0, column); };
  const std::int64_t rate = number(6);
  status.numbers = {{"ready", number(1)},
                    {"running", number(2)},
                    {"done", number(3)},
                    {"parked", number(4)},
                    {"servers", number(7)},
                    {"submissions", number(8)},
                    {"recordings", number(9)},
                    {"silent", number(10)},
                    {"perMinute", rate},
                    {"secondsLeft", rate == 0 ? 0 : (number(1) + number(2)) * kMinute / rate}};
  const Answer reasons =
      connection.Ask("select reason, count(*) from parked group by 1 order by 2 desc, 1 limit 20");
  for (std::size_t row = 0; row < reasons.RowCount(); ++row) {
    status.reasons.emplace_back(reasons.At(row, 0), reasons.NumberAt(row, 1));
  }
  const Answer parsers = connection.Ask(
      "select p.version, count(*) from result r join parser p on p.id = r.parser "
      "group by p.id order by p.id desc");
  for (std::size_t row = 0; row < parsers.RowCount(); ++row) {
    status.parsers.emplace_back(parsers.At(row, 0), parsers.NumberAt(row, 1));
  }
  return status;
}

void WriteJson(const Status& status, std::ostream& out) {
  host::JsonObject json;
  json.AddText("readers", status.readers);
  for (const auto& [name, number] : status.numbers) json.AddNumber(name, number);
  if (!status.oldest.empty()) json.AddText("oldestWaiting", status.oldest);
  if (!status.trouble.empty()) json.AddText("trouble", status.trouble);
  json.Add("parsedBy", [&](std::string& text) {
    host::AppendJsonList(text, status.parsers, [](std::string& list, const auto& one) {
      list +=
          host::JsonObject().AddText("readers", one.first).AddNumber("count", one.second).Take();
    });
  });
  json.Add("parkedBy", [&](std::string& text) {
    host::AppendJsonList(text, status.reasons, [](std::string& list, const auto& one) {
      list += host::JsonObject().AddText("reason", one.first).AddNumber("count", one.second).Take();
    });
  });
  out << json.Take() << '\n';
}

void WriteTable(const Status& status, std::ostream& out) {
  out << fmt::format("{:12} {}\n", "readers", status.readers);
  for (const auto& [name, number] : status.numbers) {
    const std::string label = name == "perMinute"     ? "per minute"
                              : name == "secondsLeft" ? "seconds left"
                                                      : name;
    out << fmt::format("{:12} {}\n", label, number);
  }
  if (!status.oldest.empty()) out << fmt::format("{:12} {}\n", "waiting from", status.oldest);
  if (!status.trouble.empty()) {
    out << fmt::format("{:12} {}\n", "trouble", host::EscapeControls(status.trouble));
  }
  for (const auto& [readers, count] : status.parsers) {
    out << fmt::format("{:12} {:>5} {}\n", "parsed by", count, readers);
  }
  for (const auto& [reason, count] : status.reasons) {
    out << fmt::format("parked {:>5} {}\n", count, host::EscapeControls(reason));
  }
}

void WriteStatus(const StatusOptions& options, Connection& connection, std::ostream& out) {
  const Status status = FindStatus(connection);
  if (options.format == "json") {
    WriteJson(status, out);
  } else {
    WriteTable(status, out);
  }
}

int WatchStatus(const StatusOptions& options, const ConnectionWords& database,
                const host::Console& console) {
  constexpr std::chrono::seconds kTurn{2};
  constexpr char kClear[] = "\x1b[H\x1b[J";
  EndRequest endRequest;
  WorkPatiently(
      database, "pqfleet status",
      [&](Connection& connection) {
        do {
          if (console.outIsTerminal) console.out << kClear;
          WriteStatus(options, connection, console.out);
          if (!console.outIsTerminal && options.format == "table") console.out << '\n';
          console.out.flush();
        } while (console.out && !endRequest.Sleep(kTurn));
      },
      [&](std::chrono::milliseconds time) { return endRequest.Sleep(time); },
      [&](const std::string& line) { host::Complain(console, line); });
  return host::kExitDone;
}

int RunStatus(const StatusOptions& options, const host::Console& console) {
  const Settings settings = ReadSettings(options.settings);
  Connection connection(settings.database, "pqfleet status");
  RequireSchema(connection);
  if (options.isWatching) return WatchStatus(options, settings.database, console);
  WriteStatus(options, connection, console.out);
  return host::kExitDone;
}

host::CommandRun DefineStatus(host::OptionSet& set) {
  const auto options = std::make_shared<StatusOptions>();
  set.AddChoice("--format", {"table", "json"}, options->format,
                "Format of the answer: table, json; table unless given");
  set.AddFlag("--watch", options->isWatching, "Tell it again every two seconds");
  AddDatabaseOptions(set, options->settings);
  return [options](const host::Console& console) { return RunStatus(*options, console); };
}

}  // namespace

const host::Command kStatusCommand = {"status", "Tell how far the work is", kStatusFooter,
                                      &DefineStatus};

}  // namespace fleet
