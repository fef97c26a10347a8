// pqfleet submit: takes recordings in.

#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/intake.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "fleet/store.h"
#include "host/recording/find_recordings.h"
#include "host/recording/recording_reader.h"
#include "host/text/path_text.h"
#include "host/text/screen_text.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kFooter[] = R"(Examples:
  pqfleet submit server.zip
  pqfleet submit --site berlin /srv/incoming
  pqfleet submit --server node31 FOLDER_OF_A_RECORDING

One line for each: stored, known (it was here before) or refused, with server,
time, the key of its content, and its file. A recording tells its server and its
time in submission.json, as pqhost collect --record writes it.
Exit codes: 0 all were taken; 1 something was refused; 2 wrong use, or the
database or the store is not there.
)";

/// More than anybody names one by one.
constexpr int kMostRecordings = 10'000;
/// Registered as one transaction, and held in memory.
constexpr std::size_t kMostTogether = 64;
constexpr std::size_t kMostBytesTogether = std::size_t{64} << 20;

struct SubmitOptions {
  GivenSettings settings;
  std::vector<std::string> words;
  std::vector<std::string> sites;
  std::vector<std::string> servers;
  bool namesByFile = false;
};

/// Takes them in, and says so.
void TakeAndTell(std::vector<IncomingRecording>& recordings, const IntakeRules& rules,
                 const Store& store, Connection& connection, const host::Console& console) {
  if (recordings.empty()) return;
  const std::vector<std::string> outcomes = TakeIn(recordings, rules, store, connection);
  for (std::size_t i = 0; i < recordings.size(); ++i) {
    const IncomingRecording& one = recordings[i];
    constexpr std::size_t kShownDigits = 12;
    console.out << fmt::format(
        "{:7}  {}  {}  {}  {}\n", outcomes[i], host::EscapeControls(one.server),
        one.taken ? host::FormatIsoTime(*one.taken) : "-", one.key.substr(0, kShownDigits),
        host::EscapeControls(host::PathText(one.path)));
  }
  console.out.flush();
  recordings.clear();
}

int RunSubmit(const SubmitOptions& options, const host::Console& console) {
  if (options.words.empty()) {
    throw host::UsageError("there is no recording: name one, as in pqfleet submit server.zip");
  }
  const Settings settings = ReadSettings(options.settings);
  const Store store(RequireStore(settings));
  IntakeRules rules;
  if (!options.sites.empty()) rules.site = options.sites.back();
  if (!options.servers.empty()) rules.server = options.servers.back();
  rules.namesByFile = options.namesByFile;
  if (rules.site.empty() || (rules.server && rules.server->empty())) {
    throw host::UsageError("--site and --server need a name");
  }
  Connection connection(settings.database, "pqfleet submit");
  RequireSchema(connection);
  std::vector<std::filesystem::path> paths;
  for (const std::string& word : options.words) paths.push_back(host::PathFromText(word));
  std::vector<IncomingRecording> incoming;
  std::size_t bytes = 0;
  std::size_t refused = 0;
  for (const std::filesystem::path& path : host::FindRecordings(paths)) {
    try {
      incoming.push_back(ReadIncoming(path, rules));
      bytes += incoming.back().zip.size();
    } catch (const host::RecordingError& error) {
      ++refused;
      console.out << fmt::format("refused  {}\n", host::EscapeControls(error.what()));
    }
    if (incoming.size() < kMostTogether && bytes < kMostBytesTogether) continue;
    TakeAndTell(incoming, rules, store, connection, console);
    bytes = 0;
  }
  TakeAndTell(incoming, rules, store, connection, console);
  return refused == 0 ? host::kExitDone : host::kExitIncomplete;
}

host::CommandRun Define(host::OptionSet& set) {
  const auto options = std::make_shared<SubmitOptions>();
  set.AddArguments("RECORDING", "RECORDING...", host::OptionValue::kRecording, kMostRecordings,
                   options->words, "Folders or ZIP files, or folders of them");
  set.AddTexts("--site", "NAME", options->sites,
               "Whose servers they are; names of servers differ within a site; default unless "
               "given");
  set.AddTexts("--server", "NAME", options->servers, "The server that they are of");
  set.AddFlag("--server-by-file", options->namesByFile,
              "A recording that does not tell its server is of the one that its file is called by");
  AddSettingsOptions(set, options->settings);
  return [options](const host::Console& console) { return RunSubmit(*options, console); };
}

}  // namespace

const host::Command kSubmitCommand = {"submit", "Take recordings in", kFooter, &Define};

}  // namespace fleet
