// pqhost health: whether a machine is well, as a verdict with its findings. The exit code is that
// of Nagios' plug-ins.

#include <fmt/format.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/answers/health/health.h"
#include "host/answers/health/wall_time.h"
#include "host/answers/parts/read_parts.h"
#include "host/files/whole_file.h"
#include "host/formats/health_formats.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/commands/shared_options.h"
#include "host/pqhost/gather.h"
#include "host/program/interruption.h"
#include "host/program/result_output.h"
#include "host/text/decoder.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

constexpr char kFooter[] = R"(Examples:
  pqhost health
  pqhost health --replay RECORDING --brief
  pqhost health --replay RECORDING --format json --set recent_days=7
  pqhost health --rules house.sql --suppress known.txt --require lsi,sensors

Exit codes: 0 OK; 1 warning; 2 critical; 3 unknown, also wrong use, unreadable
input and an interruption.
)";

struct HealthCommandOptions {
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

/// What `read` makes of a file's text, which has to be UTF-8.
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
  for (const std::string& names : given.required) TakeRequired(names, options.required);
  if (!given.asOf.empty()) {
    if (!ReadWallTime(given.asOf.back())) {
      throw UsageError("--as-of needs a day or a time, as in 2026-11-18 or 2026-11-18T09:41:07");
    }
    options.asOf = given.asOf.back();
  }
  return options;
}

void WriteHealth(const Health& health, const HealthCommandOptions& options, const Screen& screen,
                 std::ostream& out) {
  if (options.format == "json") {
    WriteHealthJson(health, out);
  } else if (options.format == "nagios") {
    WriteHealthNagios(health, out);
  } else {
    WriteHealthTable(health, options.isBrief, screen, out);
  }
}

int RunHealth(HealthCommandOptions& given, const Console& console) {
  if (given.listsRules) {
    console.out << WriteHealthDocument();
    return kExitDone;
  }
  const HealthOptions options = SettleOptions(given);
  if (!given.source.replay) given.output.MakeAbsolute();
  RefuseMisuseOfReplay(given.source);
  RefuseInRecording(given.source, "--output", given.output);
  std::optional<ResultOutput> output;
  const Gathered gathered = Gather(given.source, {}, console, KeepLog::kYes,
                                   [&](auto&) { output.emplace(given.output, console); });
  const Health health =
      JudgeCollection(gathered.collection, ReadParts(gathered.collection), options);
  output->Write(
      [&](const Screen& screen, std::ostream& out) { WriteHealth(health, given, screen, out); });
  TellWritten("Verdict", given.output, console);
  return IsInterruptionRequested() ? kExitUnknown : GetExitCode(health);
}

CommandRun Define(OptionSet& set) {
  const auto options = std::make_shared<HealthCommandOptions>();
  options->source.asksNobody = true;  // What watches over a machine has nobody to ask.
  AddReplay(set, options->source);
  set.AddChoice("--format", {"table", "json", "nagios"}, options->format,
                "Format of the verdict: table, json or nagios");
  set.AddDestination("--output", options->output, "Write the verdict to this file");
  set.AddFlag("--brief", options->isBrief, "Only the verdict and a line for each finding");
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
                                "Tell whether a machine is well, and what to do",
                                kFooter,
                                &Define,
                                Command::TimeLimit::kOfProgram,
                                Command::ExitCodes::kOfNagios};

}  // namespace host
