// pqhost collect: from options to results. The machine is a recording, or this one.

#include <fmt/format.h>

#include <cerrno>
#include <fstream>
#include <optional>
#include <system_error>

#include "frame/add_modules.h"
#include "host/pqhost/collection.h"
#include "host/pqhost/command_text.h"
#include "host/pqhost/commands.h"
#include "host/pqhost/failures.h"
#include "host/pqhost/formats.h"
#include "host/pqhost/json_text.h"
#include "host/pqhost/left_files.h"
#include "host/pqhost/live.h"
#include "host/pqhost/output_file.h"
#include "host/pqhost/progress.h"
#include "host/pqhost/recording_file.h"
#include "host/pqhost/text.h"
#include "host/pqhost/trace.h"
#include "host/pqhost/usage_error.h"
#include "host/recorded/recorded_machine.h"

namespace host {
namespace {

using ModuleList = std::vector<boost::shared_ptr<halyard::repository::RModule>>;

constexpr char kLiveLogFolder[] = "logs";

/// Where the modules come from and what they collect from.
class Source {
 public:
  virtual ~Source() = default;
  virtual void AddModules(ModuleList& modules) = 0;
  virtual MachineFacts Facts() = 0;
  /// Whether the machine has what a command line runs.
  virtual bool HasPrograms(const std::string& commandLine) = 0;
  /// Sees to the files that the collection left in the log folder; says where they are. Returns
  /// what went wrong.
  virtual std::vector<std::string> KeepLogFiles(const Console& console) = 0;
};

class ReplaySource final : public Source {
 public:
  ReplaySource(const Options& options, MachineObserver& observer)
      : recording(LoadRecording(*options.replay)),
        machine(recording, &observer),
        inUse(machine),
        logFolder(options.logFolder) {
    if (logFolder) CreateFolder(*logFolder);
    SetLogFolder(recording.logFolder);
  }

  void AddModules(ModuleList& modules) override { ::AddModules(modules); }

  MachineFacts Facts() override {
    MachineFacts facts;
    facts.recorded = true;
    facts.description = TextDecoder(kUtf8CodePage)(recording.description);
    facts.languageId = recording.languageId;
    facts.codePage = recording.codePage;
    facts.hostExecutable = recording.hostExecutable;
    facts.logFolder = recording.logFolder;
    return facts;
  }

  bool HasPrograms(const std::string& commandLine) override {
    return machine.HasPrograms(commandLine);
  }

  std::vector<std::string> KeepLogFiles(const Console& console) override {
    if (!logFolder) return {};
    const LeftFiles left = WriteLeftFiles(machine.Files(), recording.logFolder,
                                          TextDecoder(recording.codePage), *logFolder);
    console.error << fmt::format("Log files: {} in {}\n", left.written, PathText(*logFolder));
    return left.problems;
  }

 private:
  Recording recording;
  RecordedMachine machine;
  MachineInUse inUse;
  std::optional<std::filesystem::path> logFolder;
};

class LiveSource final : public Source {
 public:
  LiveSource(const Options& options, const Console& console, MachineObserver& observer)
      : library(LoadLiveLibrary(options.plugin.value_or(console.programFolder / kPluginFileName),
                                &observer)),
        logFolder(std::filesystem::absolute(options.logFolder.value_or(kLiveLogFolder))),
        facts(PrepareLiveMachine(logFolder)) {}

  void AddModules(ModuleList& modules) override { library->AddModules(modules); }
  MachineFacts Facts() override { return facts; }
  bool HasPrograms(const std::string& commandLine) override {
    // The path is in the machine's code page, as the C library takes it.
    return std::ifstream(FindProgram(commandLine), std::ios::binary).is_open();
  }

  std::vector<std::string> KeepLogFiles(const Console& console) override {
    console.error << fmt::format("Log files: {}\n", PathText(logFolder));
    return {};
  }

 private:
  std::unique_ptr<LiveLibrary> library;
  std::filesystem::path logFolder;
  MachineFacts facts;
};

std::unique_ptr<Source> OpenSource(const Options& options, const Console& console,
                                   MachineObserver& observer) {
  if (options.replay) return std::make_unique<ReplaySource>(options, observer);
  return std::make_unique<LiveSource>(options, console, observer);
}

/// The trace while it is written. It is not put aside until complete: it must tell what happened
/// also when the collection ends the process.
class TraceOutput {
 public:
  TraceOutput(const Destination& destination, const Console& console, Passwords passwords)
      : path(destination.path),
        forTerminal(console.out),
        writer(destination.IsStandardOutput() ? StandardOutput(console) : Open(destination.path),
               passwords) {
    SetRepositoryObserver(&writer);
  }
  TraceOutput(const TraceOutput&) = delete;
  TraceOutput& operator=(const TraceOutput&) = delete;
  ~TraceOutput() { SetRepositoryObserver(nullptr); }

  TraceWriter& Writer() { return writer; }

  /// Throws std::runtime_error when the file could not be written.
  void Close() {
    if (!file.is_open()) return;
    errno = 0;
    file.close();
    if (file) return;
    const std::string why = ExplainUnwritable(path);
    throw std::runtime_error(fmt::format("cannot write {}: {}", PathText(path), why));
  }

 private:
  std::ostream& Open(const std::filesystem::path& target) {
    errno = 0;
    file.open(target, std::ios::binary);
    if (!file.is_open()) {
      const std::string why = ExplainUnwritable(target);
      throw UsageError(fmt::format("cannot write {}: {}", PathText(target), why));
    }
    return file;
  }

  std::ostream& StandardOutput(const Console& console) {
    return console.outIsTerminal ? forTerminal.Stream() : console.out;
  }

  std::ofstream file;
  std::filesystem::path path;
  JsonForTerminal forTerminal;
  TraceWriter writer;
};

void WriteResults(const Options& options, const Console& console, const Collection& collection,
                  std::optional<OutputFile>& output) {
  const Format& format = *FindFormat(options.format);
  if (output) {
    format.write(collection, Screen{false, false, console.width}, output->Stream());
    output->Complete();
  } else {
    const Screen screen{console.outIsTerminal, console.colors, console.width};
    format.write(collection, screen, console.out);
  }
}

/// One line of UTF-8 for each failure.
std::vector<std::string> DescribeFailures(const FailureList& failures, const TextDecoder& decode) {
  std::vector<std::string> lines;
  for (const Failure& failure : failures.Failures()) {
    std::string where = decode(failure.module);
    if (!failure.tool.empty()) where += ", " + decode(failure.tool);
    lines.push_back(fmt::format("not collected: {}: {}", where, decode(failure.text)));
  }
  return lines;
}

}  // namespace

int RunCollectCommand(const Options& options, const Console& console) {
  CollectionListeners listeners;
  FailureList failures;
  listeners.Add(failures);

  const std::unique_ptr<Source> source = OpenSource(options, console, listeners);
  failures.FindMissingPrograms(
      [&](const std::string& commandLine) { return source->HasPrograms(commandLine); });
  ModuleList added;
  source->AddModules(added);
  const std::vector<LoadedModule> modules = RegisterModules(added);
  const std::vector<ModuleSelection> selection =
      SelectTables(modules, options.modules, options.tables);

  // All that can be refused is refused before a tool runs.
  std::optional<OutputFile> output;
  if (!options.output.IsStandardOutput()) output.emplace(options.output.path);
  std::optional<TraceOutput> trace;
  if (options.trace) {
    const Passwords passwords = options.replay ? Passwords::kShown : Passwords::kHidden;
    trace.emplace(*options.trace, console, passwords);
    listeners.Add(trace->Writer());
  }
  std::optional<ProgressLine> progress;
  if (console.errorIsTerminal) {
    progress.emplace(console.error, console.width);
    listeners.Add(*progress);
  }

  Collection collection = RunCollection(selection, !options.tables.empty(), listeners);
  collection.machine = source->Facts();
  collection.problems = DescribeFailures(failures, TextDecoder(collection.machine.codePage));
  progress.reset();

  WriteResults(options, console, collection, output);
  if (trace) trace->Close();
  for (const std::string& problem : source->KeepLogFiles(console)) {
    collection.problems.push_back(problem);
  }
  for (const std::string& problem : collection.problems) Complain(console, problem);
  return collection.problems.empty() ? kExitDone : kExitIncomplete;
}

}  // namespace host
