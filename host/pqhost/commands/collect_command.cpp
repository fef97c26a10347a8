// pqhost collect: the tables of this machine, or of a recorded one.

#include <fmt/format.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "host/answers/columns_fit.h"
#include "host/check/dry_machine.h"
#include "host/files/places.h"
#include "host/live/live.h"
#include "host/pqhost/commands/collection_output.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/commands/shared_options.h"
#include "host/pqhost/elevation.h"
#include "host/pqhost/gather.h"
#include "host/pqhost/report_place.h"
#include "host/pqhost/trace_output.h"
#include "host/program/deadline.h"
#include "host/redact/kinds.h"
#include "host/text/decoder.h"
#include "host/text/path_text.h"
#include "host/text/screen_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

constexpr char kCollectFooter[] = R"(Examples:
  pqhost collect --module BMC_Info --module Windows_Related_Info
  pqhost collect --replay RECORDING --format json --output server.json
  pqhost collect --replay RECORDING --log-folder logs --format none
  pqhost collect --record server.zip --tool-limit 120
  pqhost collect --replay RECORDING --redact --format html --output to-send.html
  pqhost collect --report
  pqhost collect --report --compare november.zip
  pqhost collect --module BMC_Info --dry-run

Exit codes: 0 done; 1 something could not be collected, with a line for each on
standard error; 2 wrong use or unreadable input.
)";

/// A day; a tool that needs longer needs no limit.
constexpr unsigned kLongestToolLimit = 86400;
/// A tebibyte, more than a machine has.
constexpr unsigned kLargestToolMemory = 1U << 20;

constexpr char kReportFormat[] = "html";

struct CollectOptions {
  Selection selection;
  SourceOptions source;
  ResultOptions result;
  std::optional<Destination> trace;
  ShownMuch much;
  std::optional<std::filesystem::path> compared;  ///< an earlier collection
  bool dryRun = false;                            ///< show the commands instead of running them
  bool makesReport = false;  ///< --report: results are a report, with the recording beside it
  bool opensNothing = false;
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

void RefuseWithReport(const OptionSet& set) {
  if (set.IsGiven("--format") || set.IsGiven("--record")) {
    throw UsageError(
        "--report writes a report and a recording: leave --format and --record away, or give them "
        "without --report");
  }
  if (set.IsGiven("--unverified")) {
    throw UsageError(
        "--report would make a good recording of one that is not as it was made: leave "
        "--unverified or --report away");
  }
}

/// Names the files that are written, where the user did not.
void ChoosePlaces(CollectOptions& options) {
  SourceOptions& source = options.source;
  const auto makeName = [&] { return NameCollection(source); };
  if (options.makesReport) {
    const ReportPlace place = ChooseReportPlace(options.result.output, makeName);
    options.result.format = kReportFormat;
    options.result.output.path = place.report;
    source.record = place.recording;
  } else if (source.record && source.record->empty()) {
    source.record = ChooseRecordingPlace(makeName);
  }
}

void RefuseWithDryRun(const OptionSet& set) {
  for (const char* option :
       {"--report", "--no-open", "--compare", "--record", "--redact", "--key", "--format",
        "--output", "--all", "--tool-limit", "--tool-memory", "--trace", "--plugin",
        "--unsafe-folder", "--amt-login", "--no-input"}) {
    if (!set.IsGiven(option)) continue;
    throw UsageError(fmt::format(
        "{} has no use with --dry-run, which collects nothing: leave one of them away", option));
  }
}

void RefuseMisuseOfRedaction(const CollectOptions& options) {
  if (!options.source.redactProfile) {
    if (!options.source.redactionKey) return;
    throw UsageError("--key has no use without --redact: add that, or leave it away");
  }
  if (options.source.replay) return;
  if (!options.source.record) {
    throw UsageError(
        "--redact works on a recording: name a place for it with --record, or one that there is "
        "with --replay");
  }
  if (options.trace) {
    throw UsageError(
        "--trace tells all that --redact replaces: leave one of them away, or trace the replay of "
        "the recording");
  }
}

void RefuseMisuseOfComparison(const CollectOptions& options) {
  if (!options.compared) return;
  if (options.result.format != kReportFormat) {
    throw UsageError(
        "--compare is for the report: add --format html or --report, or compare two recordings "
        "with pqhost diff");
  }
  if (options.source.redactProfile) {
    throw UsageError(
        "--compare shows the older collection as it is, of which --redact replaces nothing: leave "
        "one of them away, or compare two recordings that pqhost redact made");
  }
}

/// Throws UsageError for options that contradict each other.
void SettleOptions(CollectOptions& options, const OptionSet& set) {
  if (options.dryRun) RefuseWithDryRun(set);
  if (options.makesReport) RefuseWithReport(set);
  if (options.source.replay) RefuseWithReplay(options.source);
  if (options.opensNothing && !options.makesReport) {
    throw UsageError("--no-open is for --report: leave it away");
  }
  ChoosePlaces(options);
  RefuseIdentityOfOthers(options.result);
  if (options.trace) SeparateTrace(options, set.IsGiven("--format"));
  KeepRecordingApart(options);
  RefuseMisuseOfRedaction(options);
  RefuseMisuseOfComparison(options);
  RefuseInRecording(options.source, "--output", options.result.output);
  if (options.trace) RefuseInRecording(options.source, "--trace", *options.trace);
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

/// The same tables of a recording that was just made.
Collection CollectAgain(const Recording& recording, const Selection& selection,
                        const Format& format) {
  CollectionListeners nobody;
  Collection collection =
      Collect(recording, selection, nobody, format.wantsLog ? KeepLog::kYes : KeepLog::kNo);
  NoteUnfitColumns(collection);
  return collection;
}

/// The last words of --report, for somebody who never used this program before.
void TellWhatToSend(const CollectOptions& options, const Console& console) {
  console.error << fmt::format(
      "Send {}: it holds what the tools of this machine printed, so that the report can be made "
      "from it again, {}.\n",
      EscapeControls(PathText(options.source.record->filename())),
      options.source.redactProfile
          ? "without what the profile " + *options.source.redactProfile + " replaces"
          : "with names, addresses and serial numbers, but not the AMT password");
  if (IsInterruptionRequested()) {
    console.error << "It is not complete, as the collection was interrupted.\n";
  }
}

/// Somebody who looks at a screen sees the report.
void OpenReport(const CollectOptions& options, const Console& console) {
  if (options.opensNothing || !console.openFile || !console.errorIsTerminal) return;
  console.openFile(options.result.output.path);
}

bool IsHandedOver(const CollectOptions& options, const Console& console) {
  if (!options.makesReport || options.source.replay || IsElevated()) return false;
  std::function<int()> read;
  if (!options.source.asksNobody) read = [] { return std::getc(stdin); };
  return OfferElevation(console, read);
}

/// What the report is compared with, if anything.
std::optional<ComparedFile> OpenEarlier(const CollectOptions& options, const Console& console) {
  if (!options.compared) return std::nullopt;
  SourceOptions source;
  source.replay = options.compared;
  source.rules = options.source.rules;
  return OpenComparedFile(source, console, [] {});
}

int RunCollect(const CollectOptions& options, const Console& console) {
  if (IsHandedOver(options, console)) return kExitDone;
  CollectionOutput output(options.result, options.much, console);
  const std::optional<ComparedFile> earlier = OpenEarlier(options, console);
  if (earlier) output.CompareWith(*earlier);
  // Anything that can be refused is refused before a tool runs.
  std::optional<TraceOutput> trace;
  const auto openOutputs = [&](CollectionListeners& listeners) {
    output.Open();
    if (!options.trace) return;
    trace.emplace(*options.trace, console);
    listeners.Add(trace->Writer());
  };
  auto [interruption, source, collection] =
      Gather(options.source, options.selection, console,
             output.GetFormat().wantsLog ? KeepLog::kYes : KeepLog::kNo, openOutputs);

  // The results are shown even when the recording cannot be written, but for those that would tell
  // what was to be redacted.
  bool isRecordingKept = false;
  try {
    const std::optional<Recording> redacted = source->KeepRecording(collection);
    isRecordingKept = true;
    if (redacted) {
      const bool wasWhole = collection.problems.empty();
      collection = CollectAgain(*redacted, options.selection, output.GetFormat());
      if (!wasWhole) collection.problems.emplace_back("the machine was not collected as a whole");
    }
  } catch (const std::runtime_error& error) {
    if (options.source.redactProfile) throw;
    collection.problems.emplace_back(error.what());
  }
  for (std::string& problem : source->KeepLogFiles(collection)) {
    collection.problems.push_back(std::move(problem));
  }
  output.Write(collection);
  if (trace) trace->Close();
  output.TellStatus(collection);
  source->TellKept(console);
  if (options.trace) TellWritten("Trace", *options.trace, console);
  output.TellPlace();
  if (options.makesReport) {
    if (isRecordingKept) TellWhatToSend(options, console);
    OpenReport(options, console);
  }
  const bool isWhole = collection.problems.empty() && !IsInterruptionRequested();
  return isWhole ? kExitDone : kExitIncomplete;
}

/// Shows the command lines of a collection without running them.
int ShowCommands(const CollectOptions& options, const Console& console) {
  const SourceOptions& source = options.source;
  const MachineFacts facts = DescribeMachine(source);
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

CommandRun DefineCollect(OptionSet& set) {
  const auto options = std::make_shared<CollectOptions>();
  SourceOptions& source = options->source;
  AddModuleOption(set, options->selection.modules, "Use this module; may be repeated");
  set.AddNames("--table", OptionValue::kTable, options->selection.tables,
               "Enumerate this table; may be repeated");
  AddReplay(set, source);
  set.AddFlag("--report", options->makesReport,
              "Write a report, and a recording to send, as NAME.html and NAME.zip; --output gives "
              "NAME or a folder, otherwise NAME is machine and time; opens the report (Windows)");
  set.AddFlag("--no-open", options->opensNothing, "Open no report");
  set.AddPath("--compare", OptionValue::kRecording, options->compared,
              "Tell in the report what has changed since this recording or result");
  set.AddPathOrNone(
      "--record", OptionValue::kRecording, source.record,
      "Keep what the tools print in this new folder, or ZIP file with a name that ends in .zip, to "
      "be replayed; without a name, a ZIP file named after machine and time (Windows)");
  set.AddOptionalChoice("--redact", {std::string(kPublicProfile), std::string(kSupportProfile)},
                        source.redactProfile,
                        "Replace what must not be passed on in the results and in the recording "
                        "that is made: public, unless given");
  AddRedactionKey(set, source);
  AddLogFolder(set, source);
  AddPlugin(set, source);
  AddUnsafeFolder(set, source);
  AddFormat(set, options->result, "results", FormatsFor::kMachine);
  AddOutput(set, options->result, "results");
  AddIdentify(set, options->result);
  AddShownMuch(set, options->much);
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

const Command kCollectCommand = {"collect", "Run the modules and show what they collect",
                                 kCollectFooter, &DefineCollect, Command::TimeLimit::kItsOwn};

}  // namespace host
