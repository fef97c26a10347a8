#include "tests/support/fault_table.h"

#include <algorithm>
#include <memory>
#include <set>
#include <string_view>
#include <utility>

#include "host/collect/collection_run.h"
#include "host/collect/recorded_source.h"
#include "host/logger/logger.h"
#include "host/recorded/interpreter.h"
#include "host/recorded/recorded_machine.h"
#include "host/repository/observer.h"
#include "host/text/ascii.h"
#include "tests/support/collected.h"
#include "tests/support/sanitizers.h"

namespace test {
namespace {

constexpr std::uint32_t kStartError = 5;
constexpr std::uint32_t kPipeError = 1450;
constexpr std::uint32_t kExitCodeError = 6;
constexpr std::size_t kHugeSize = PQ_HAS_ADDRESS_SANITIZER ? 10'000'000 : 100'000'000;

std::vector<FaultScenario>& GetRegistered() {
  static std::vector<FaultScenario> scenarios;
  return scenarios;
}

/// Follows one run. Log lines are cut at `lineLimit` characters, without their prefix.
class RunWatcher final : public host::CollectionListener, public host::RepositoryObserver {
 public:
  explicit RunWatcher(std::size_t lineLimit) : lineLimit(lineLimit) {}

  host::RepositoryObserver* Calls() override { return this; }
  bool WantsLog() const override { return true; }
  void Log(const host::LogLine& line) override {
    constexpr std::string_view kPrefix = "[repo] ";
    const std::string_view text = line.text;
    run.lines.push_back(
        std::to_string(line.level) + ' ' +
        std::string(text.substr(text.starts_with(kPrefix) ? kPrefix.size() : 0, lineLimit)));
  }
  void OnProcess(const std::string& /*application*/, const std::string& commandLine,
                 bool /*inheritHandles*/, bool /*pipe*/) override {
    run.steps.push_back(commandLine);
  }
  void OnSystem(const std::string& command) override { run.steps.push_back(command); }
  void OnInstance(std::uint64_t /*id*/, const std::string& /*className*/,
                  const std::string& /*key*/, int /*number*/) override {
    ++run.instancesBuilt;
  }
  void OnRelease(std::uint64_t /*id*/) override { ++run.instancesReleased; }

  FaultRun run;

 private:
  std::size_t lineLimit;
};

/// Enumerates the scenario's tables on `source`.
void Enumerate(const FaultScenario& scenario, host::Source& source, RunWatcher& watcher) {
  halyard::repository::RRepository repository;
  host::Collection ignored;
  host::CollectionRun run(source, {{scenario.module}, scenario.tables}, watcher);
  run.Enumerate(repository, ignored);
}

FaultRun Run(const FaultScenario& scenario, const host::Recording& recording) {
  RunWatcher watcher(std::string::npos);
  host::RecordedSource source(recording);
  Enumerate(scenario, source, watcher);
  watcher.run.openHandles = source.CountOpenHandles();
  return std::move(watcher.run);
}

host::Pipeline Parse(const host::Recording& recording, const std::string& step) {
  const auto isTool = [&](std::string_view path) {
    return std::any_of(recording.commands.begin(), recording.commands.end(),
                       [&](const host::RecordedCommand& command) {
                         return host::ToolName(command.tool) == host::ToolName(path);
                       });
  };
  return host::ParseCommandLine(step.starts_with("/c ") ? step : "/c " + step, isTool);
}

/// Where the step's output goes; empty without such a file.
std::string FindReport(const host::Recording& recording, const std::string& step, StepKind kind) {
  const host::Pipeline pipeline = Parse(recording, step);
  if (kind == StepKind::kCopy) {
    return host::SplitWords(pipeline.stages.front().arguments).back();
  }
  for (const host::Redirection& redirection : pipeline.stages.back().redirections) {
    if (redirection.handle == 1) return redirection.target;
  }
  return {};
}

/// Tool and arguments, by which a recording tells commands apart.
using CommandKey = std::pair<std::string, std::string>;

CommandKey MakeKey(const host::RecordedCommand& command) {
  return {host::ToolName(command.tool), command.arguments};
}

CommandKey MakeKey(const host::Stage& stage) {
  return {host::ToolName(stage.program), stage.arguments};
}

host::RecordedCommand MakeMissingTool(const host::Stage& stage) {
  host::RecordedCommand answer;
  answer.standardError = "'" + stage.program +
                         "' is not recognized as an internal or external command,\r\n"
                         "operable program or batch file.\r\n";
  answer.exitCode = 1;
  return answer;
}

/// Bytes of every value in no order that a text has.
std::string MakeBinaryOutput() {
  std::string bytes;
  std::uint32_t state = 12345;
  for (int i = 0; i < 40000; ++i) {
    state = state * 1664525 + 1013904223;
    bytes += static_cast<char>(state >> 24);
  }
  return bytes;
}

void Apply(Fault fault, const host::Stage& stage, host::RecordedCommand& answer) {
  switch (fault) {
    case Fault::kStartFails:
      answer.startError = kStartError;
      break;
    case Fault::kPipeFails:
      answer.pipeError = kPipeError;
      break;
    case Fault::kExitCodeUnreadable:
      answer.exitCodeError = kExitCodeError;
      break;
    case Fault::kToolMissing:
      answer = MakeMissingTool(stage);
      break;
    case Fault::kNothingPrinted:
      answer.standardOutput.clear();
      answer.standardError.clear();
      break;
    case Fault::kBinaryPrinted:
      answer.standardOutput = MakeBinaryOutput();
      break;
    case Fault::kHugePrinted:
    case Fault::kReportNotCreated:
      break;
  }
}

/// How often the steps before `end` run the command `key`.
std::size_t CountUses(const host::Recording& recording, const std::vector<std::string>& steps,
                      std::size_t end, const CommandKey& key) {
  std::size_t uses = 0;
  for (std::size_t i = 0; i < end; ++i) {
    for (const host::Stage& stage : Parse(recording, steps[i]).stages)
      uses += MakeKey(stage) == key;
  }
  return uses;
}

/// Has the command of the step `row`, and no other use of the same command, meet `fault`.
void Inject(host::Recording& recording, const FaultRun& whole, std::size_t row, Fault fault) {
  const host::Stage stage = Parse(recording, whole.steps[row]).stages.front();
  const CommandKey key = MakeKey(stage);
  std::vector<host::RecordedCommand> answers;
  for (const host::RecordedCommand& command : recording.commands) {
    if (MakeKey(command) == key) answers.push_back(command);
  }
  const std::size_t faulty = CountUses(recording, whole.steps, row, key);
  const std::size_t uses = CountUses(recording, whole.steps, whole.steps.size(), key);
  std::erase_if(recording.commands,
                [&](const host::RecordedCommand& command) { return MakeKey(command) == key; });
  if (fault == Fault::kToolMissing && uses == 1) return;
  for (std::size_t use = 0; use < uses; ++use) {
    host::RecordedCommand answer =
        answers.empty() ? MakeMissingTool(stage) : answers[std::min(use, answers.size() - 1)];
    if (use == faulty) Apply(fault, stage, answer);
    answer.tool = key.first;
    answer.arguments = key.second;
    recording.commands.push_back(std::move(answer));
  }
}

constexpr std::size_t kFloodLineLength = 200;

/// Lines of four words each, shared by everything that prints too much. Longer ones keep the heap
/// of Wine searching for minutes.
const std::string& GetFloodBlock() {
  static const std::string block = [] {
    std::string line = std::string(kFloodLineLength - 1, 'x') + '\n';
    for (std::size_t column = 0; column < line.size(); column += 50) line[column] = ' ';
    std::string lines;
    for (int i = 0; i < 5000; ++i) lines += line;
    return lines;
  }();
  return block;
}

/// A flood that nobody has to hold: one block, over and over.
class FloodText {
 public:
  /// The next bytes, at most `size` of them.
  std::size_t Read(char* buffer, std::size_t size) {
    const std::string& block = GetFloodBlock();
    std::size_t count = 0;
    while (count < size && at < kHugeSize) {
      const std::size_t wanted = std::min(size - count, kHugeSize - at);
      const std::size_t copied = block.copy(buffer + count, wanted, at % block.size());
      count += copied;
      at += copied;
    }
    return count;
  }
  /// As fgets.
  bool ReadLine(char* buffer, std::size_t size) {
    const std::size_t lineRest = kFloodLineLength - at % kFloodLineLength;
    const std::size_t count = Read(buffer, std::min(size - 1, lineRest));
    if (count > 0) buffer[count] = '\0';
    return count > 0;
  }
  void Rewind() { at = 0; }

 private:
  std::size_t at = 0;
};

class FloodPipe final : public pq::Pipe {
 public:
  explicit FloodPipe(std::unique_ptr<pq::Pipe> pipe) : pipe(std::move(pipe)) {}
  void CloseWriteEnd() override { pipe->CloseWriteEnd(); }
  bool Read(char* buffer, std::size_t size, std::size_t& count) override {
    count = text.Read(buffer, size);
    return count > 0;
  }
  pq::Pipe& Inner() { return *pipe; }

 private:
  std::unique_ptr<pq::Pipe> pipe;
  FloodText text;
};

class FloodFile final : public pq::TextFile {
 public:
  FloodFile(std::unique_ptr<pq::TextFile> file, std::set<FloodFile*>& open)
      : file(std::move(file)), open(open) {
    open.insert(this);
  }
  FloodFile(const FloodFile&) = delete;
  FloodFile& operator=(const FloodFile&) = delete;
  ~FloodFile() override { open.erase(this); }
  bool ReadLine(char* buffer, std::size_t size) override { return text.ReadLine(buffer, size); }
  void Rewind() override { text.Rewind(); }
  std::uint64_t SizeAndRewind() override {
    text.Rewind();
    return kHugeSize;
  }

 private:
  std::unique_ptr<pq::TextFile> file;  // Counts as the open file.
  std::set<FloodFile*>& open;
  FloodText text;
};

/// A recorded machine on which some steps print a flood, which nobody has to hold.
class FloodedMachine final : public pq::Platform {
 public:
  FloodedMachine(const host::Recording& recording, host::MachineObserver& observer,
                 const std::vector<std::string>& flooded)
      : recording(recording),
        machine(recording, &observer),
        flooded(flooded.begin(), flooded.end()) {}
  FloodedMachine(const FloodedMachine&) = delete;
  FloodedMachine& operator=(const FloodedMachine&) = delete;
  /// Takes back the files that a module let go, as the recorded machine does.
  ~FloodedMachine() override {
    while (!openFiles.empty()) delete *openFiles.begin();
  }

  int OpenHandles() const { return machine.OpenHandles(); }

  std::string HostExecutable() override { return machine.HostExecutable(); }
  std::uint32_t SystemLanguage() override { return machine.SystemLanguage(); }
  bool PathExists(const std::string& path) override { return machine.PathExists(path); }

  pq::Acquired<pq::Pipe> CreatePipe(const std::string& commandLine) override {
    pq::Acquired<pq::Pipe> pipe = machine.CreatePipe(commandLine);
    if (!pipe || !flooded.contains(commandLine)) return pipe;
    return {std::make_unique<FloodPipe>(std::move(pipe.object)), 0};
  }
  pq::Acquired<pq::Process> StartInterpreter(const std::string& commandLine, bool inheritHandles,
                                             pq::Pipe* output) override {
    NoteReport(commandLine);
    auto* flood = dynamic_cast<FloodPipe*>(output);
    return machine.StartInterpreter(commandLine, inheritHandles,
                                    flood != nullptr ? &flood->Inner() : output);
  }
  void RunSystem(const std::string& command) override {
    NoteReport(command);
    machine.RunSystem(command);
  }
  std::unique_ptr<pq::TextFile> OpenText(const std::string& path) override {
    std::unique_ptr<pq::TextFile> file = machine.OpenText(path);
    if (file == nullptr || !reports.contains(MakeFileKey(path))) return file;
    return std::make_unique<FloodFile>(std::move(file), openFiles);
  }
  void WriteConsole(std::string_view text) override { machine.WriteConsole(text); }
  pq::ConsoleLine ReadConsoleLine(char* buffer, std::size_t size) override {
    return machine.ReadConsoleLine(buffer, size);
  }
  [[noreturn]] void FailRangeCheck() override { machine.FailRangeCheck(); }

 private:
  static std::string MakeFileKey(std::string_view path) {
    return host::LowerCase(path.substr(path.rfind('\\') + 1));
  }
  void NoteReport(const std::string& step) {
    if (!flooded.contains(step)) return;
    const std::string report = FindReport(recording, step, StepKind::kReport);
    if (!report.empty()) reports.insert(MakeFileKey(report));
  }

  host::Recording recording;
  host::RecordedMachine machine;
  std::set<std::string> flooded;
  std::set<std::string> reports;
  std::set<FloodFile*> openFiles;
};

}  // namespace

const std::vector<FaultScenario>& GetFaultScenarios() { return GetRegistered(); }

FaultScenarioEntry::FaultScenarioEntry(FaultScenario scenario) {
  GetRegistered().push_back(std::move(scenario));
}

bool CanMeet(StepKind kind, Fault fault) {
  switch (fault) {
    case Fault::kStartFails:
      return true;
    case Fault::kPipeFails:
      return kind == StepKind::kPipe;
    case Fault::kExitCodeUnreadable:
      return kind == StepKind::kExitCode || kind == StepKind::kCheckedReport;
    case Fault::kReportNotCreated:
      return kind == StepKind::kReport || kind == StepKind::kCheckedReport ||
             kind == StepKind::kCopy || kind == StepKind::kSystem;
    case Fault::kToolMissing:
    case Fault::kNothingPrinted:
    case Fault::kBinaryPrinted:
    case Fault::kHugePrinted:
      return kind != StepKind::kCopy && kind != StepKind::kOther;
  }
  return false;
}

FaultRun RunWhole(const FaultScenario& scenario) { return Run(scenario, scenario.recording()); }

FaultRun RunWithFault(const FaultScenario& scenario, const FaultRun& whole, std::size_t row,
                      Fault fault) {
  host::Recording recording = scenario.recording();
  if (fault == Fault::kReportNotCreated) {
    const StepKind kind = scenario.rows[row].kind;
    recording.readOnly.push_back(FindReport(recording, whole.steps[row], kind));
  } else {
    Inject(recording, whole, row, fault);
  }
  return Run(scenario, recording);
}

FaultRun RunWithoutLogFolder(const FaultScenario& scenario) {
  host::Recording recording = scenario.recording();
  recording.readOnly.push_back(recording.logFolder);
  return Run(scenario, recording);
}

FaultRun RunFlooded(const FaultScenario& scenario, const std::vector<std::string>& flooded) {
  const host::Recording recording = scenario.recording();
  RunWatcher watcher(80);
  FloodedMachine machine(recording, watcher, flooded);
  host::MachineFacts facts;
  facts.logFolder = recording.logFolder;
  host::PlatformSource source(machine, facts);
  Enumerate(scenario, source, watcher);
  watcher.run.openHandles = machine.OpenHandles();
  return std::move(watcher.run);
}

std::vector<std::string> FindAddedLines(const FaultRun& whole, const FaultRun& run) {
  std::multiset<std::string> known(whole.lines.begin(), whole.lines.end());
  std::vector<std::string> added;
  for (const std::string& line : run.lines) {
    const auto found = known.find(line);
    if (found == known.end()) {
      added.push_back(line);
    } else {
      known.erase(found);
    }
  }
  return added;
}

}  // namespace test
