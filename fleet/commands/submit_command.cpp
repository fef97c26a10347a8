// pqfleet submit: takes recordings in.

#include <fmt/format.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/end_request.h"
#include "fleet/intake.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "fleet/spool.h"
#include "fleet/spool_watch.h"
#include "fleet/store.h"
#include "host/recording/find_recordings.h"
#include "host/recording/recording_reader.h"
#include "host/text/path_text.h"
#include "host/text/screen_text.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kSubmitFooter[] = R"(Examples:
  pqfleet submit server.zip
  pqfleet submit --site berlin /srv/incoming
  pqfleet submit --server node31 FOLDER_OF_A_RECORDING
  pqfleet submit --watch /var/spool/pqfleet --day-recordings 5000

One line for each: stored, known (it was here before) or refused, with server,
time, the key of its content, and its file. A recording tells its server and its
time in submission.json, as pqhost collect --record writes it.
Of a folder that is watched, each folder in it is a site: its files are taken in
and removed, or, refused, moved to FOLDER/.refused. While the file .closed is
there, or in a site's folder, a door should let nothing in.
Exit codes: 0 all were taken; 1 something was refused; 2 wrong use, or the
database or the store is not there.
)";

/// More than anybody names one by one.
constexpr int kMostRecordings = 10'000;
constexpr unsigned kLongestPatience = 86'400;
constexpr unsigned kMostQuota = 100'000'000;

struct SubmitOptions {
  GivenSettings settings;
  std::vector<std::string> words;
  std::vector<std::string> sites;
  std::vector<std::string> servers;
  bool namesByFile = false;
  std::optional<std::filesystem::path> watched;
  std::optional<unsigned> patience;
  std::optional<unsigned> mostReady;
  std::optional<unsigned> dayRecordings;
  std::optional<unsigned> dayMebibytes;
};

/// Takes them in, and says so.
void TakeAndTell(std::vector<IncomingRecording>& recordings, const IntakeRules& rules,
                 const Store& store, Connection& connection, const host::Console& console) {
  if (recordings.empty()) return;
  const std::vector<std::string> outcomes = TakeIn(recordings, rules, store, connection);
  for (std::size_t i = 0; i < recordings.size(); ++i) {
    console.out << DescribeIncoming(recordings[i], outcomes[i]) << '\n';
  }
  console.out.flush();
  recordings.clear();
}

IntakeRules MakeIntakeRules(const SubmitOptions& options) {
  IntakeRules rules;
  if (!options.sites.empty()) rules.site = options.sites.back();
  if (!options.servers.empty()) rules.server = options.servers.back();
  rules.namesByFile = options.namesByFile;
  if (rules.site.empty() || (rules.server && rules.server->empty())) {
    throw host::UsageError("--site and --server need a name");
  }
  return rules;
}

int RunWatch(const SubmitOptions& options, const host::Console& console) {
  if (!options.words.empty() || !options.sites.empty() || !options.servers.empty()) {
    throw host::UsageError(
        "--watch takes what is in FOLDER/SITE: name no recording, --site or --server beside it");
  }
  const Settings settings = ReadSettings(options.settings);
  const std::unique_ptr<Store> store = OpenStore(RequireStore(settings));
  const Spool spool(*options.watched);
  {
    // What is wrong from the beginning on is told at once; later it waits for what may pass.
    Connection connection(settings.database, "pqfleet submit");
    RequireSchema(connection);
  }
  WatchRules rules;
  if (options.patience) rules.patience = std::chrono::seconds(*options.patience);
  if (options.mostReady) rules.mostReady = *options.mostReady;
  rules.mostRecordings = options.dayRecordings;
  rules.mostMebibytes = options.dayMebibytes;
  EndRequest endRequest;
  SpoolWatch watch(
      spool, *store, MakeIntakeRules(options), rules,
      [&](const std::string& line) { console.out << line << std::endl; },
      [&](const std::string& line) { host::Complain(console, line); });
  watch.Watch(settings.database, endRequest);
  return host::kExitDone;
}

int RunSubmit(const SubmitOptions& options, const host::Console& console) {
  if (options.watched) return RunWatch(options, console);
  if (options.words.empty()) {
    throw host::UsageError("there is no recording: name one, as in pqfleet submit server.zip");
  }
  const Settings settings = ReadSettings(options.settings);
  const std::unique_ptr<Store> store = OpenStore(RequireStore(settings));
  const IntakeRules rules = MakeIntakeRules(options);
  Connection connection(settings.database, "pqfleet submit");
  RequireSchema(connection);
  std::vector<std::filesystem::path> paths;
  for (const std::string& word : options.words) paths.push_back(host::PathFromText(word));
  std::vector<IncomingRecording> incoming;
  std::size_t refused = 0;
  for (const std::filesystem::path& path : host::FindRecordings(paths)) {
    try {
      incoming.push_back(ReadIncoming(path, rules));
    } catch (const host::RecordingError& error) {
      ++refused;
      console.out << fmt::format("refused  {}\n", host::EscapeControls(error.what()));
    }
    if (IsBatch(incoming)) TakeAndTell(incoming, rules, *store, connection, console);
  }
  TakeAndTell(incoming, rules, *store, connection, console);
  return refused == 0 ? host::kExitDone : host::kExitIncomplete;
}

host::CommandRun DefineSubmit(host::OptionSet& set) {
  const auto options = std::make_shared<SubmitOptions>();
  set.AddArguments("RECORDING", "RECORDING...", host::OptionValue::kRecording, kMostRecordings,
                   options->words, "Folders or ZIP files, or folders of them");
  set.AddTexts("--site", "NAME", options->sites,
               "Whose servers they are; names of servers differ within a site; default unless "
               "given");
  set.AddTexts("--server", "NAME", options->servers, "The server that they are of");
  set.AddFlag("--server-by-file", options->namesByFile,
              "A recording that does not tell its server is of the one that its file is called by");
  set.AddPath("--watch", host::OptionValue::kFolder, options->watched,
              "Take what comes into FOLDER/SITE/*.zip, and remove it there, until Ctrl-C");
  set.AddSeconds("--patience", options->patience, kLongestPatience,
                 "Refuse what cannot be read and has not changed for so long; 60 unless given");
  set.AddCount("--most-ready", "COUNT", options->mostReady, kMostQuota,
               "Close the door while so many wait to be parsed; 100000 unless given");
  set.AddCount("--day-recordings", "COUNT", options->dayRecordings, kMostQuota,
               "Close it to a site that sent so many recordings today; unlimited unless given");
  set.AddMebibytes("--day-mib", options->dayMebibytes, kMostQuota,
                   "The same, of so many MiB; unlimited unless given");
  AddSettingsOptions(set, options->settings);
  return [options](const host::Console& console) { return RunSubmit(*options, console); };
}

}  // namespace

const host::Command kSubmitCommand = {"submit", "Take recordings in", kSubmitFooter, &DefineSubmit};

}  // namespace fleet
