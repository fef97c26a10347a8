// pqfleet show: one server's recording in pqhost's formats.

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "fleet/store.h"
#include "host/answers/columns_fit.h"
#include "host/collect/collect.h"
#include "host/commands/common_options.h"
#include "host/program/result_output.h"
#include "host/recording/recording_reader.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kShowFooter[] = R"(Examples:
  pqfleet show NODE31
  pqfleet show NODE31 --format html --output node31.html
  pqfleet show NODE31 --at 2026-11-01 --format json

It is what pqhost collect --replay shows of the recording.
Exit codes: 0 done; 1 the recording is not in the store any more; 2 wrong use,
or there is no recording of that server, or the database or the store is not
there.
)";

struct ShowOptions {
  GivenSettings settings;
  std::vector<std::string> words;
  std::vector<std::string> servers;
  std::vector<std::string> sites;
  std::vector<std::string> times;
  host::ResultOptions result;
};

struct Found {
  std::string key;
  host::Submission submission;
};

Found FindRecording(Connection& connection, const ShowOptions& options) {
  const std::string& server = (options.words.empty() ? options.servers : options.words).back();
  const Value site = options.sites.empty() ? Value() : Value(options.sites.back());
  const Value time = options.times.empty() ? Value() : Value(options.times.back());
  const Answer answer = [&] {
    try {
      return connection.Ask(
          "select distinct on (v.id) encode(o.key, 'hex'), extract(epoch from s.taken)::bigint,"
          "  s.taken_offset, t.name "
          "from server v join site t on t.id = v.site join submission s on s.server = v.id "
          "join object o on o.id = s.object "
          "where v.name = $1 and t.name = coalesce($2, t.name) "
          "and s.taken <= coalesce($3::timestamptz, 'infinity') "
          "order by v.id, s.taken desc, o.key desc",
          {server, site, time});
    } catch (const DatabaseFailure& failure) {
      if (!failure.IsOfValues()) throw;
      throw host::UsageError("--at needs a day or a time, as in 2026-11-18 or 2026-11-18T09:41Z");
    }
  }();
  if (answer.RowCount() == 0) {
    throw host::UsageError(
        fmt::format("there is no recording of {}{}", server, time ? " as old as that" : ""));
  }
  if (answer.RowCount() > 1) {
    throw host::UsageError(fmt::format("there is a {} in {} and in {}: name its --site", server,
                                       answer.At(0, 3), answer.At(1, 3)));
  }
  const std::chrono::seconds taken(answer.NumberAt(0, 1));
  return {std::string(answer.At(0, 0)),
          {.name = server,
           .recordedAt = host::LocalTime{std::chrono::system_clock::time_point(taken),
                                         std::chrono::minutes(answer.NumberAt(0, 2))}}};
}

int RunShow(const ShowOptions& options, const host::Console& console) {
  if (options.words.empty() == options.servers.empty()) {
    throw host::UsageError("there is no server: name one, as in pqfleet show NODE31");
  }
  const host::Format& format = host::ChooseFormat(options.result, console);
  const Settings settings = ReadSettings(options.settings);
  const std::unique_ptr<Store> store = OpenStore(RequireStore(settings));
  Connection connection(settings.database, "pqfleet show");
  RequireSchema(connection);
  const Found found = FindRecording(connection, options);
  std::optional<std::string> zip = store->Read(found.key);
  if (!zip) throw std::runtime_error(fmt::format("{} is not in the store", found.key));
  host::Recording recording = host::LoadZippedRecording(std::move(*zip), found.key + ".zip");
  // Of several servers with the same content, the one that was asked for.
  if (!recording.submission) recording.submission.emplace();
  recording.submission->name = found.submission.name;
  recording.submission->recordedAt = found.submission.recordedAt;
  host::ResultOutput output(options.result.output, console);
  host::CollectionListeners listeners;
  host::Collection collection = host::Collect(
      recording, {}, listeners, format.wantsLog ? host::KeepLog::kYes : host::KeepLog::kNo);
  host::NoteUnfitColumns(collection);
  output.Write([&](const host::Screen& screen, std::ostream& out) {
    host::Screen asked = screen;
    asked.identifiesRows = options.result.identifiesRows;
    format.write(collection, asked, out);
  });
  host::TellWritten(format.resultName, options.result.output, console);
  return host::kExitDone;
}

host::CommandRun DefineShow(host::OptionSet& set) {
  const auto options = std::make_shared<ShowOptions>();
  set.AddArguments("SERVER", "[SERVER]", host::OptionValue::kAny, 1, options->words,
                   "The server's name");
  set.AddTexts("--server", "NAME", options->servers,
               "The same, for a name that begins with a hyphen: --server=-x");
  set.AddTexts("--site", "NAME", options->sites, "Whose server it is, where several have the name");
  set.AddTexts("--at", "TIME", options->times,
               "The newest recording up to this time, in UTC unless it says otherwise; the newest "
               "of all unless given");
  AddFormat(set, options->result, "recording", host::FormatsFor::kMachine);
  AddIdentify(set, options->result);
  AddOutput(set, options->result, "recording");
  AddSettingsOptions(set, options->settings);
  return [options](const host::Console& console) { return RunShow(*options, console); };
}

}  // namespace

const host::Command kShowCommand = {"show", "Show one server's recording", kShowFooter,
                                    &DefineShow};

}  // namespace fleet
