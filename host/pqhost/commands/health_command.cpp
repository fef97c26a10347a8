// pqhost health: whether machines are well, each as a verdict with its findings. The exit code is
// that of Nagios' plug-ins.

#include <fmt/format.h>

#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/answers/assessment.h"
#include "host/answers/collection_database.h"
#include "host/answers/health/unjudged.h"
#include "host/answers/health/wall_time.h"
#include "host/database/database_writer.h"
#include "host/files/whole_file.h"
#include "host/formats/database_file.h"
#include "host/formats/health_formats.h"
#include "host/formats/machine_summary.h"
#include "host/formats/row_identity.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/commands/shared_options.h"
#include "host/pqhost/gather.h"
#include "host/pqhost/recordings.h"
#include "host/program/interruption.h"
#include "host/program/result_output.h"
#include "host/text/decoder.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

constexpr char kHealthFooter[] = R"(Examples:
  pqhost health
  pqhost health --replay RECORDING --brief
  pqhost health --replay FOLDER_OF_RECORDINGS --format nagios
  pqhost health --replay RECORDING --format json --set recent_days=7
  pqhost health --rules house.sql --suppress known.txt --require lsi,sensors

Exit codes: 0 OK; 1 warning; 2 critical; 3 unknown, also wrong use, unreadable
input and an interruption. Of several machines that of the one that is worst
off: critical, then warning, then unknown.
)";

constexpr char kDatabaseFormat[] = "sqlite";

struct HealthCommandOptions {
  std::vector<std::filesystem::path> replays;  ///< recordings, or folders of recordings
  SourceOptions source;
  std::string format = "table";
  bool isBrief = false;
  bool listsRules = false;
  Destination output;
  std::vector<std::filesystem::path> rules;
  std::vector<std::string> settings;
  std::vector<std::filesystem::path> settingsFiles;
  std::vector<std::filesystem::path> suppressions;
  std::vector<std::string> required;
  std::vector<std::string> asOf;
};

/// What `read` makes of a file's text, which has to be UTF-8 without NUL.
template <typename Read>
auto ReadOptionFile(const std::filesystem::path& path, const Read& read) {
  const std::string name = PathText(path);
  std::string text;
  try {
    text = ReadWholeFile(path);
  } catch (const std::runtime_error& error) {
    throw UsageError(fmt::format("{}: {}", name, error.what()));
  }
  if (CleanUtf8(text) != text) throw UsageError(fmt::format("{}: it is not UTF-8", name));
  // It would end the message that quotes it.
  if (text.find('\0') != std::string::npos) {
    throw UsageError(fmt::format("{}: it has a NUL character, so it is no text", name));
  }
  return read(text, name);
}

HealthOptions SettleOptions(const HealthCommandOptions& given) {
  HealthOptions options;
  for (const std::filesystem::path& path : given.rules) {
    AddRules(options.rules, ReadOptionFile(path, ReadOwnRules));
  }
  for (const std::filesystem::path& path : given.settingsFiles) {
    ReadOptionFile(path, [&](const std::string& text, const std::string& name) {
      TakeSettings(text, name, options.settings);
      return 0;
    });
  }
  // What is on the command line is nearer than a file.
  for (const std::string& setting : given.settings) TakeSetting(setting, options.settings);
  for (const std::filesystem::path& path : given.suppressions) {
    for (Suppression& one : ReadOptionFile(path, ReadSuppressions)) {
      options.suppressions.push_back(std::move(one));
    }
  }
  RefuseUnknownRules(options);
  for (const std::string& names : given.required) TakeRequired(names, options.required);
  if (!given.asOf.empty()) {
    if (!ReadWallTime(given.asOf.back())) {
      throw UsageError("--as-of needs a day or a time, as in 2026-11-18 or 2026-11-18T09:41:07");
    }
    options.asOf = given.asOf.back();
  }
  return options;
}

/// Ctrl-C leaves a part of a machine, which may look well.
class JudgingInterrupted final : public std::exception {
 public:
  const char* what() const noexcept override { return "interrupted: nothing is judged"; }
};

/// One machine, collected and judged.
struct Judged {
  std::unique_ptr<CommandSource> source;
  Collection collection;
  Assessment assessment;
};

/// Throws JudgingInterrupted, and what Gather and Assess throw.
Judged JudgeMachine(const SourceOptions& source, HealthJudge& judge, const Console& console,
                    const std::function<void()>& beforeRun) {
  Gathered gathered = Gather(source, {}, console, KeepLog::kYes, [&](auto&) { beforeRun(); });
  if (IsInterruptionRequested()) throw JudgingInterrupted();
  // From now on Ctrl-C may end the program at once.
  gathered.interruption.reset();
  Assessment assessment = Assess(gathered.collection, judge);
  return {std::move(gathered.source), std::move(gathered.collection), std::move(assessment)};
}

void Identify(const Collection& collection, JudgedMachine& machine) {
  const RowIdentity identity = MakeRowIdentity(collection);
  machine.name = collection.machine.name;
  machine.serial = identity.serial;
  machine.recordedAt = identity.recordedAt;
}

/// Several recordings, one after the other: of each only the verdict is kept, and all that was
/// collected goes into `database`, if there is one.
std::vector<JudgedMachine> JudgeRecordings(const std::vector<std::filesystem::path>& recordings,
                                           const SourceOptions& source,
                                           const HealthOptions& options, const Console& console,
                                           DatabaseWriter* database) {
  std::vector<JudgedMachine> machines;
  SourceNames names;
  HealthJudge judge(options);
  for (const std::filesystem::path& recording : recordings) {
    JudgedMachine& machine = machines.emplace_back();
    machine.machine = names.Take(recording);
    SourceOptions one = source;
    one.replay = recording;
    try {
      Judged judged = JudgeMachine(one, judge, console, [] {});
      for (const std::string& doubt : judged.collection.doubts) {
        Complain(console, machine.machine + ": " + doubt);
      }
      Identify(judged.collection, machine);
      if (database != nullptr) {
        AddCollection(*database, judged.collection, judged.assessment, machine.machine);
      }
      machine.health = std::move(judged.assessment.health);
    } catch (const HealthFileError&) {
      throw;  // A rule of the user's that no machine can be judged by.
    } catch (const std::runtime_error& error) {
      machine.health = MakeUnjudged(error.what());
      if (database == nullptr) continue;
      database->Remove(machine.machine);
      AddVerdict(*database, machine.health, machine.machine);
    }
  }
  return machines;
}

/// For programs, which read no standard error: why there is no verdict, in the form of one.
void WriteUnjudged(const std::string& reason, const HealthCommandOptions& given,
                   ResultOutput& output) {
  const Health health = MakeUnjudged(reason);
  output.Write([&](const Screen& screen, std::ostream& out) {
    if (given.format == "json") {
      WriteHealthJson(health, out);
    } else if (given.format == "csv") {
      const std::string name =
          given.source.replay ? SourceNames().Take(*given.source.replay) : std::string();
      WriteHealthCsv({JudgedMachine{.machine = name, .health = health}}, screen, out);
    } else {
      WriteHealthNagios(health, out);
    }
  });
}

/// As JudgeMachine; what could not be judged is told in the format that was asked for as well.
Judged JudgeOrTellWhyNot(const HealthCommandOptions& given, HealthJudge& judge,
                         const Console& console, std::optional<ResultOutput>& output) {
  try {
    return JudgeMachine(given.source, judge, console,
                        [&] { output.emplace(given.output, console); });
  } catch (const UsageError&) {
    throw;
  } catch (const HealthFileError&) {
    throw;
  } catch (const std::runtime_error& error) {
    if (given.format == "table" || given.format == kDatabaseFormat) throw;
    if (!output) output.emplace(given.output, console);
    WriteUnjudged(error.what(), given, *output);
    throw;
  }
}

/// The exit code.
int JudgeOne(const HealthCommandOptions& given, const HealthOptions& options,
             const Console& console) {
  std::optional<ResultOutput> output;
  HealthJudge judge(options);
  Judged judged = JudgeOrTellWhyNot(given, judge, console, output);
  for (const std::string& doubt : judged.collection.doubts) Complain(console, doubt);
  const Health& health = judged.assessment.health;
  output->Write([&](const Screen& screen, std::ostream& out) {
    if (given.format == kDatabaseFormat) {
      WriteDatabase(out, [&](Database& database) {
        FillDatabase(database, judged.collection, judged.assessment);
      });
    } else if (given.format == "json") {
      WriteHealthJson(health, out);
    } else if (given.format == "csv") {
      JudgedMachine machine{.machine = given.source.replay
                                           ? SourceNames().Take(*given.source.replay)
                                           : NameMachine(judged.collection),
                            .health = health};
      Identify(judged.collection, machine);
      WriteHealthCsv({machine}, screen, out);
    } else if (given.format == "nagios") {
      WriteHealthNagios(health, out);
    } else {
      WriteHealthTable(health, given.isBrief, screen, out);
    }
  });
  return GetExitCode(health);
}

/// The same of all, that of the worst.
int JudgeSeveral(const std::vector<std::filesystem::path>& recordings,
                 const HealthCommandOptions& given, const HealthOptions& options,
                 const Console& console) {
  ResultOutput output(given.output, console);
  std::vector<JudgedMachine> machines;
  const auto judge = [&](DatabaseWriter* database) {
    machines = JudgeRecordings(recordings, given.source, options, console, database);
  };
  if (given.format != kDatabaseFormat) judge(nullptr);
  output.Write([&](const Screen& screen, std::ostream& out) {
    if (given.format == kDatabaseFormat) {
      WriteDatabase(out, [&](Database& database) {
        DatabaseWriter writer(database, Machines::kSeveral);
        judge(&writer);
        writer.Complete();
      });
    } else if (given.format == "json") {
      WriteHealthJson(machines, out);
    } else if (given.format == "csv") {
      WriteHealthCsv(machines, screen, out);
    } else if (given.format == "nagios") {
      WriteHealthNagios(machines, out);
    } else {
      WriteHealthTable(machines, given.isBrief, screen, out);
    }
  });
  return GetExitCode(FindWorst(machines));
}

int RunHealth(HealthCommandOptions& given, const Console& console) {
  if (given.listsRules) {
    console.out << WriteHealthDocument();
    return kExitDone;
  }
  if (given.format == kDatabaseFormat) RefuseBytesOnTerminal(given.format, given.output, console);
  const HealthOptions options = SettleOptions(given);
  const std::vector<std::filesystem::path> recordings = FindRecordingsAndRests(given.replays);
  if (recordings.empty()) given.output.MakeAbsolute();
  for (const std::filesystem::path& recording : recordings) {
    given.source.replay = recording;
    RefuseMisuseOfReplay(given.source);
    RefuseInRecording(given.source, "--output", given.output);
  }
  // What the answer looks like follows from what was asked, not from what is in a folder.
  const bool isSeveral = given.replays.size() > 1 || recordings != given.replays;
  if (!recordings.empty()) RefuseLogFolder(given.source);
  const int exitCode = isSeveral ? JudgeSeveral(recordings, given, options, console)
                                 : JudgeOne(given, options, console);
  TellWritten(given.format == kDatabaseFormat ? "Database" : "Verdict", given.output, console);
  return exitCode;
}

CommandRun DefineHealth(OptionSet& set) {
  const auto options = std::make_shared<HealthCommandOptions>();
  options->source.asksNobody = true;  // What watches over a machine has nobody to ask.
  set.AddPaths(
      "--replay", OptionValue::kRecording, options->replays,
      "Judge this recording, a folder or a ZIP file, or all in this folder; may be repeated");
  AddReadingRules(set, options->source);
  set.AddChoice("--format", {"table", "json", "nagios", "csv", kDatabaseFormat}, options->format,
                "Format of the verdict: table, json, nagios, csv or sqlite; table unless given");
  set.AddDestination("--output", options->output, "Write the verdict to this file");
  set.AddFlag("--brief", options->isBrief,
              "Of the table only verdicts and a line for each finding");
  set.AddPaths("--rules", OptionValue::kFile, options->rules,
               "Add the rules of this file, or replace others by them; may be repeated");
  set.AddTexts("--set", "NAME=VALUE", options->settings,
               "Change a setting, as in recent_days=7; may be repeated");
  set.AddPaths("--settings", OptionValue::kFile, options->settingsFiles,
               "Change settings by the lines of this file");
  set.AddPaths("--suppress", OptionValue::kFile, options->suppressions,
               "Do not alarm for what the lines of this file name");
  set.AddTexts("--require", "SOURCE,...", options->required,
               "It is unknown whether all is well without these, as in lsi,sensors");
  set.AddTexts("--as-of", "DATE", options->asOf, "Judge as if it were this day");
  set.AddFlag("--list-rules", options->listsRules,
              "Show all rules and settings in Markdown and judge nothing");
  AddLogFolder(set, options->source);
  AddPlugin(set, options->source);
  AddUnsafeFolder(set, options->source);
  return [options](const Console& console) { return RunHealth(*options, console); };
}

}  // namespace

const Command kHealthCommand = {"health",
                                "Tell whether machines are well, and what to do",
                                kHealthFooter,
                                &DefineHealth,
                                Command::TimeLimit::kOfProgram,
                                Command::ExitCodes::kOfNagios};

}  // namespace host
