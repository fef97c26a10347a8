// pqfleet metrics: the state of the fleet in Prometheus' text format.

#include <fmt/format.h>

#include <memory>
#include <ostream>
#include <string>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "host/program/destination.h"
#include "host/program/result_output.h"

namespace fleet {
namespace {

constexpr char kMetricsFooter[] = R"(Examples:
  pqfleet metrics
  pqfleet metrics --output /var/lib/prometheus/node-exporter/pqfleet.prom

A timer that runs the second one every minute has node_exporter's textfile
collector hand it on; the file is replaced as a whole.
Exit codes: 0 done; 1 the database refuses; 2 wrong use, or the database is not
there.
)";

struct MetricsOptions {
  GivenSettings settings;
  host::Destination output;
};

/// A family of gauges: a query for label and value, or for the value alone.
struct Family {
  const char* name;
  const char* help;
  const char* label;  ///< null: without one
  const char* query;
};
constexpr Family kFamilies[] = {
    {"pqfleet_recordings", "Recordings by the state of their parsing.", "state",
     "select t.state, t.count from progress, lateral (values ('ready', ready), "
     "('running', running), ('done', done), ('parked', parked)) t (state, count) "
     "where progress.state = 'current'"},
    {"pqfleet_oldest_waiting_seconds", "How long the oldest recording waits that is not parsed.",
     nullptr,
     "select coalesce(round(extract(epoch from now() - oldest_waiting))::bigint, 0) from progress "
     "where state = 'current'"},
    {"pqfleet_servers", "Servers of which a recording came.", nullptr,
     "select count(*) from server"},
    {"pqfleet_silent_servers", "Servers of which nothing came for 36 hours.", nullptr,
     "select count(*) from silent"},
    {"pqfleet_verdicts", "Servers by the verdict on their newest recording.", "verdict",
     "select v.word, count(n.verdict) from (values ('ok'), ('warning'), ('critical'), "
     "('unknown')) v (word) left join verdict_now n on n.verdict = v.word group by 1 order by 1"},
};

void WriteFamily(const Family& family, Connection& connection, std::ostream& out) {
  out << fmt::format("# HELP {0} {1}\n# TYPE {0} gauge\n", family.name, family.help);
  const Answer answer = connection.Ask(family.query);
  for (std::size_t row = 0; row < answer.RowCount(); ++row) {
    if (family.label == nullptr) {
      out << fmt::format("{} {}\n", family.name, answer.At(row, 0));
    } else {
      out << fmt::format("{}{{{}=\"{}\"}} {}\n", family.name, family.label, answer.At(row, 0),
                         answer.At(row, 1));
    }
  }
}

int RunMetrics(const MetricsOptions& options, const host::Console& console) {
  const Settings settings = ReadSettings(options.settings);
  Connection connection(settings.database, "pqfleet metrics");
  RequireSchema(connection);
  host::ResultOutput output(options.output, console);
  output.Write([&](const host::Screen& /*screen*/, std::ostream& out) {
    for (const Family& family : kFamilies) WriteFamily(family, connection, out);
  });
  return host::kExitDone;
}

host::CommandRun DefineMetrics(host::OptionSet& set) {
  const auto options = std::make_shared<MetricsOptions>();
  set.AddDestination("--output", options->output, "Write the metrics to this file");
  AddDatabaseOptions(set, options->settings);
  return [options](const host::Console& console) { return RunMetrics(*options, console); };
}

}  // namespace

const host::Command kMetricsCommand = {"metrics", "Tell the state of the fleet to Prometheus",
                                       kMetricsFooter, &DefineMetrics};

}  // namespace fleet
