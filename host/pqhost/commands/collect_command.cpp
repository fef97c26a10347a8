// pqhost collect: the tables of this machine, or of a recorded one.

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "host/check/dry_machine.h"
#include "host/collect/recorded_source.h"
#include "host/files/places.h"
#include "host/files/whole_file.h"
#include "host/formats/csv_folder.h"
#include "host/formats/formats.h"
#include "host/live/live.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/commands/shared_options.h"
#include "host/pqhost/gather.h"
#include "host/pqhost/trace_output.h"
#include "host/program/deadline.h"
#include "host/program/result_output.h"
#include "host/recording/recording_reader.h"
#include "host/text/decoder.h"
#include "host/text/screen_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

constexpr char kFooter[] = R"(Examples:
  pqhost collect --module BMC_Info --module Windows_Related_Info
  pqhost collect --replay RECORDING --format json --output server.json
  pqhost collect --replay RECORDING --log-folder logs --format none
  pqhost collect --record server.zip --tool-limit 120
  pqhost collect --module BMC_Info --dry-run

Exit codes: 0 done; 1 something could not be collected, with a line for each on
standard error; 2 wrong use or unreadable input.
)";

/// A day; a tool that needs longer needs no limit.
constexpr unsigned kLongestToolLimit = 86400;
/// A tebibyte, more than a machine has.
constexpr unsigned kLargestToolMemory = 1U << 20;

constexpr char kCsvFormat[] = "csv";

struct CollectOptions {
  Selection selection;
  SourceOptions source;
  ResultOptions result;
  std::optional<Destination> trace;
  bool leavesAttachmentsOut = false;
  bool showsAll = false;  ///< also old lines of logs on a screen
  bool dryRun = false;    ///< show the commands instead of running them
};

/// Keeps the trace and the results from going to one place.
void SeparateTrace(CollectOptions& options, bool isFormatGiven) {
  const Destination& trace = *options.trace;
  ResultOptions& result = options.result;
  if (!trace.IsStandardOutput() || !result.output.IsStandardOutput()) {
    if (trace.IsStandardOutput() || result.output.IsStandardOutput() ||
        !AreSameFile(trace.path, result.output.path)) {
      return;
    }
    throw UsageError("--trace and --output name the same file: give each its own");
  }
  // A trace on standard output is alone there, unless a format is asked for.
  if (!isFormatGiven) result.format = "none";
  if (result.format == "none") return;
  throw UsageError(
      fmt::format("--trace - and --format {} both want standard output: send "
                  "one of them to a file (--output FILE or --trace FILE)",
                  result.format));
}

/// Keeps results and trace from taking the place of the recording.
void KeepRecordingApart(const CollectOptions& options) {
  if (!options.source.record) return;
  const auto refuse = [&](const char* option, const Destination& place) {
    if (place.IsStandardOutput() || !AreSameFile(place.path, *options.source.record)) return;
    throw UsageError(fmt::format("{} and --record name the same place: give each its own", option));
  };
  refuse("--output", options.result.output);
  if (options.trace) refuse("--trace", *options.trace);
}

void RefuseWithReplay(const SourceOptions& source) {
  if (source.record) {
    throw UsageError(
        "--record has no use with --replay, which is a recording already: leave one of them "
        "away");
  }
  const char* limit = source.toolLimits.seconds     ? "--tool-limit"
                      : source.toolLimits.mebibytes ? "--tool-memory"
                                                    : nullptr;
  if (limit != nullptr) {
    throw UsageError(fmt::format(
        "{} has no use with --replay, which runs no tools: leave one of them away", limit));
  }
  if (source.amtLogin) {
    throw UsageError(
        "--amt-login has no use with --replay, which knows what the operator typed: leave one of "
        "them away");
  }
  RefuseMisuseOfReplay(source);
}

void RefuseWithDryRun(const OptionSet& set) {
  for (const char* option :
       {"--record", "--format", "--output", "--all", "--tool-limit", "--tool-memory", "--trace",
        "--plugin", "--unsafe-folder", "--amt-login", "--no-input"}) {
    if (!set.IsGiven(option)) continue;
    throw UsageError(fmt::format(
        "{} has no use with --dry-run, which collects nothing: leave one of them away", option));
  }
}

/// Whether the results go into a folder, a file for each table.
bool IsFolder(const Destination& output) {
  if (output.IsStandardOutput()) return false;
  std::error_code error;
  return !output.path.has_filename() || std::filesystem::is_directory(output.path, error);
}

/// Whether rows of the format can tell their machine.
bool TakesIdentity(const std::string& format) {
  return format == kCsvFormat || format == "ndjson" || format == "prometheus";
}

/// Throws UsageError for options that contradict each other.
void SettleOptions(CollectOptions& options, const OptionSet& set) {
  if (options.result.identifiesRows && !TakesIdentity(options.result.format)) {
    throw UsageError(
        fmt::format("--identify is for csv and prometheus: {} tells the machine in its own place; "
                    "leave it away",
                    options.result.format));
  }
  if (options.trace) SeparateTrace(options, set.IsGiven("--format"));
  KeepRecordingApart(options);
  if (options.source.replay) RefuseWithReplay(options.source);
  RefuseInRecording(options.source, "--output", options.result.output);
  if (options.trace) RefuseInRecording(options.source, "--trace", *options.trace);
  if (options.dryRun) RefuseWithDryRun(set);
  if (options.source.replay) return;
  if (options.source.asksNobody && options.source.amtLogin == kStandardStream) {
    throw UsageError(
        "--no-input and --amt-login - contradict each other: leave one of them away, or put the "
        "login into a file");
  }
  // The tools of this machine run in the log folder.
  options.result.output.MakeAbsolute();
  if (options.trace) options.trace->MakeAbsolute();
}

/// Whether problems and statuses are on the terminal already that standard error leads to.
bool IsOnScreen(const Format& format, const Destination& output, const Console& console) {
  return format.tellsStatus && output.IsStandardOutput() && console.outIsTerminal &&
         console.errorIsTerminal;
}

/// A line on standard error for every problem and for every table: its rows, or why there are none.
void ReportStatus(const Collection& collection, const Console& console) {
  for (const std::string& problem : collection.problems) Complain(console, problem);
  std::size_t width = 0;
  for (const CollectedTable& table : collection.tables) {
    width = std::max(width, table.className.size());
  }
  for (const CollectedTable& table : collection.tables) {
    console.error << fmt::format("{:<{}}  {}\n", EscapeControls(table.className), width,
                                 EscapeControls(DescribeStatus(table.status)));
  }
}

int RunCollect(const CollectOptions& options, const Console& console) {
  const Format& format = ChooseFormat(options.result, console);
  // Anything that can be refused is refused before a tool runs.
  std::optional<ResultOutput> output;
  std::optional<TraceOutput> trace;
  const bool isFolder = options.result.format == kCsvFormat && IsFolder(options.result.output);
  const auto openOutputs = [&](CollectionListeners& listeners) {
    if (isFolder) {
      CreateEmptyFolder(options.result.output.path, "--output");
    } else {
      output.emplace(options.result.output, console);
    }
    if (!options.trace) return;
    trace.emplace(*options.trace, console);
    listeners.Add(trace->Writer());
  };
  auto [interruption, source, collection] =
      Gather(options.source, options.selection, console,
             format.wantsLog ? KeepLog::kYes : KeepLog::kNo, openOutputs);

  // The results are shown even when the recording cannot be written.
  try {
    source->KeepRecording(collection);
  } catch (const std::runtime_error& error) {
    collection.problems.emplace_back(error.what());
  }
  for (std::string& problem : source->KeepLogFiles(collection)) {
    collection.problems.push_back(std::move(problem));
  }
  if (format.describeCuts != nullptr) {
    for (std::string& cut : format.describeCuts(collection)) {
      collection.problems.push_back(std::move(cut));
    }
  }
  if (isFolder) {
    WriteCsvFolder(collection,
                   {.identifiesRows = options.result.identifiesRows,
                    .leavesAttachmentsOut = options.leavesAttachmentsOut},
                   options.result.output.path);
  } else {
    output->Write([&, &results = collection](Screen screen, std::ostream& out) {
      screen.showsAll = options.showsAll;
      screen.leavesAttachmentsOut = options.leavesAttachmentsOut;
      screen.identifiesRows = options.result.identifiesRows;
      format.write(results, screen, out);
    });
  }
  if (trace) trace->Close();
  if (!IsOnScreen(format, options.result.output, console)) ReportStatus(collection, console);
  source->TellKept(console);
  if (options.trace) TellWritten("Trace", *options.trace, console);
  if (options.result.format != "none") {
    TellWritten(format.resultName, options.result.output, console);
  }
  const bool isWhole = collection.problems.empty() && !IsInterruptionRequested();
  return isWhole ? kExitDone : kExitIncomplete;
}

/// Shows the command lines of a collection without running them.
int ShowCommands(const CollectOptions& options, const Console& console) {
  const SourceOptions& source = options.source;
  const MachineFacts facts = source.replay
                                 ? DescribeRecording(LoadRecording(*source.replay, source.rules))
                                 : DescribeThisMachine(ChooseLogFolder(source));
  const TextDecoder decode(facts.codePage);
  std::string module;
  for (const DryCommand& command :
       ListCommands({facts.hostExecutable, facts.logFolder, facts.languageId},
                    options.selection.modules, options.selection.tables)) {
    if (command.module != module) {
      console.out << (module.empty() ? "" : "\n") << EscapeControls(command.module) << '\n';
    }
    module = command.module;
    console.out << "  " << EscapeControls(decode(command.commandLine)) << '\n';
  }
  return kExitDone;
}

CommandRun Define(OptionSet& set) {
  const auto options = std::make_shared<CollectOptions>();
  SourceOptions& source = options->source;
  AddModules(set, options->selection.modules, "Use this module; may be repeated");
  set.AddNames("--table", OptionValue::kTable, options->selection.tables,
               "Enumerate this table; may be repeated");
  AddReplay(set, source);
  set.AddPath("--record", OptionValue::kRecording, source.record,
              "Keep what the tools print in this new folder, or ZIP file with a name that ends in "
              ".zip, to be replayed (Windows)");
  AddLogFolder(set, source);
  AddPlugin(set, source);
  AddUnsafeFolder(set, source);
  AddFormat(set, options->result, "results", FormatsFor::kMachine);
  AddOutput(set, options->result, "results");
  AddIdentify(set, options->result);
  set.AddFlag("--no-attachments", options->leavesAttachmentsOut,
              "Leave the whole files out of the results, such as the tools' reports");
  set.AddFlag("--all", options->showsAll,
              "Show all of each log; without it, --format table shows its newest lines");
  set.AddSeconds("--tool-limit", source.toolLimits.seconds, kLongestToolLimit,
                 "End a tool that runs for more than so many seconds (Windows)");
  set.AddMebibytes("--tool-memory", source.toolLimits.mebibytes, kLargestToolMemory,
                   "Give a tool, with all that it starts, so much memory and no more (Windows)");
  set.AddPath("--amt-login", OptionValue::kFile, source.amtLogin,
              "Answer the AMT module with the line ADDRESS USER PASSWORD in this file, or - for "
              "standard input (Windows)");
  set.AddFlag("--no-input", source.asksNobody,
              "Ask nobody: what needs an answer is not collected, and that is told");
  AddTimeLimit(set, source.seconds,
               "End the collection after so many seconds, and the program after twice as many");
  set.AddFlag("--dry-run", options->dryRun, "Show the command lines in order, and run nothing");
  set.AddDestination("--trace", options->trace, "Write all that the modules do to this file, or -");
  return [options, &source, &set](const Console& console) {
    SettleOptions(*options, set);
    const std::unique_ptr<Deadline> deadline = EndProgramAfter(
        source.seconds ? std::optional(2 * *source.seconds) : std::nullopt, console);
    return options->dryRun ? ShowCommands(*options, console) : RunCollect(*options, console);
  };
}

}  // namespace

const Command kCollectCommand = {"collect", "Run the modules and show what they collect", kFooter,
                                 &Define, Command::TimeLimit::kItsOwn};

}  // namespace host
