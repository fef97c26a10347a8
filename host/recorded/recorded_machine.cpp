#include "host/recorded/recorded_machine.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <set>
#include <utility>
#include <vector>

#include "host/recorded/handed_out.h"
#include "host/recorded/interpreter.h"
#include "host/recorded/machine_files.h"
#include "host/recorded/own_commands.h"
#include "host/recorded/stored_text.h"
#include "host/text/ascii.h"

namespace host {
namespace {

/// The longest path that GetModuleFileNameA stores in a 260-byte buffer.
constexpr std::size_t kExecutablePathLimit = 259;

[[noreturn]] void EndProcess(const char* why) {
  std::fflush(stdout);
  std::fprintf(stderr, "%s\n", why);
  std::fflush(stderr);
  std::abort();
}

/// One answer of a tool, its texts shared with whoever still reads them.
struct Answer {
  CommandOutcome outcome;
  std::uint32_t startError = 0;
  std::uint32_t pipeError = 0;
  std::uint32_t exitCodeError = 0;
};

/// The answers to one command, given in turn; the last one stays.
struct AnswerQueue {
  std::vector<Answer> answers;
  std::size_t next = 0;

  const Answer& Peek() const { return answers[next]; }
  void UseUp() {
    if (next + 1 < answers.size()) ++next;
  }
};

/// Tool and arguments tell commands apart.
using CommandKey = std::pair<std::string, std::string>;

CommandKey MakeKey(std::string_view tool, std::string_view arguments) {
  constexpr std::string_view kBlanks = " \t";
  const std::size_t first = std::min(arguments.find_first_not_of(kBlanks), arguments.size());
  const std::size_t end = arguments.find_last_not_of(kBlanks) + 1;
  return {ToolName(tool), std::string(arguments.substr(first, first < end ? end - first : 0))};
}

bool IsNullDevice(std::string_view path) { return LowerCase(FileNameOf(path)) == "nul"; }

/// The output of a pipeline: its last command's standard output, everyone's standard error.
struct PipelineOutcome {
  Bytes standardOutput;
  std::vector<Bytes> standardError;
  std::uint32_t exitCode = 0;
  bool wasEnded = false;  ///< a host had ended one of the commands when it was recorded
  Bytes unfiltered = {};  ///< the input of the last command; empty when it was the only one
};

/// Counts one open thing of the machine for as long as it lives.
class OpenHandle {
 public:
  explicit OpenHandle(std::shared_ptr<int> count) : count(std::move(count)) { ++*this->count; }
  OpenHandle(const OpenHandle&) = delete;
  OpenHandle& operator=(const OpenHandle&) = delete;
  ~OpenHandle() { --*count; }

 private:
  std::shared_ptr<int> count;
};

class RecordedPipe final : public pq::Pipe {
 public:
  explicit RecordedPipe(std::shared_ptr<int> openHandles) : handle(std::move(openHandles)) {}

  void Write(const Bytes& bytes) {
    if (!bytes.empty()) pieces.push_back(bytes);
  }

  void CloseWriteEnd() override { isWriteEndOpen = false; }

  bool Read(char* buffer, std::size_t size, std::size_t& count) override {
    if (pieces.empty() && isWriteEndOpen) {
      EndProcess("A pipe was read to its end while its own write end was open: that never ends.");
    }
    const bool hasMore = !pieces.empty();
    count = 0;
    while (count < size && !pieces.empty()) {
      const std::size_t taken = pieces.front().Text().copy(buffer + count, size - count, at);
      count += taken;
      at += taken;
      if (at == pieces.front().size()) {
        pieces.pop_front();
        at = 0;
      }
    }
    return hasMore;
  }

 private:
  OpenHandle handle;
  std::deque<Bytes> pieces;
  std::size_t at = 0;  ///< in the first piece
  bool isWriteEndOpen = true;
};

class RecordedProcess final : public pq::Process, private HandedOut {
 public:
  RecordedProcess(std::uint32_t exitCode, std::uint32_t exitCodeError, MachineObserver* observer,
                  std::shared_ptr<int> openHandles, HandedOutList& open)
      : HandedOut(open),
        exitCode(exitCode),
        exitCodeError(exitCodeError),
        observer(observer),
        handle(std::move(openHandles)) {}

  void Wait() override {
    if (observer != nullptr) observer->OnProcessEnd(exitCode);
  }

  std::uint32_t ReadExitCode(std::uint32_t& code) override {
    if (exitCodeError == 0) code = exitCode;
    return exitCodeError;
  }

 private:
  std::uint32_t exitCode;
  std::uint32_t exitCodeError;
  MachineObserver* observer;
  OpenHandle handle;
};

class OpenedText final : public pq::TextFile, private HandedOut {
 public:
  OpenedText(Bytes bytes, std::shared_ptr<int> openHandles, HandedOutList& open)
      : HandedOut(open), text(std::move(bytes)), handle(std::move(openHandles)) {}
  bool ReadLine(char* buffer, std::size_t size) override { return text.ReadLine(buffer, size); }
  void Rewind() override { text.Rewind(); }
  std::uint64_t SizeAndRewind() override { return text.SizeAndRewind(); }

 private:
  StoredText text;
  OpenHandle handle;
};

}  // namespace

struct RecordedMachine::State {
  State(const Recording& recording, MachineObserver* observer)
      : hostExecutable(recording.hostExecutable.substr(0, kExecutablePathLimit)),
        languageId(recording.languageId),
        console(recording.console),
        observer(observer),
        files(recording) {
    for (const RecordedCommand& command : recording.commands) {
      tools.insert(ToolName(command.tool));
      commands[MakeKey(command.tool, command.arguments)].answers.push_back(
          {{command.standardOutput, command.standardError, command.exitCode},
           command.startError,
           command.pipeError,
           command.exitCodeError});
    }
  }
  Pipeline Parse(std::string_view commandLine) const {
    return ParseCommandLine(
        commandLine, [this](std::string_view path) { return tools.contains(ToolName(path)); });
  }

  AnswerQueue* FindAnswers(const Stage& stage) {
    const auto found = commands.find(MakeKey(stage.program, stage.arguments));
    return found == commands.end() ? nullptr : &found->second;
  }

  /// The first error of that kind that an answer to one of the commands carries now; 0 without.
  std::uint32_t FindError(const Pipeline& pipeline, std::uint32_t Answer::*kind) {
    for (const Stage& stage : pipeline.stages) {
      const AnswerQueue* queue = FindAnswers(stage);
      if (queue != nullptr && queue->Peek().*kind != 0) return queue->Peek().*kind;
    }
    return 0;
  }

  void UseUpAnswers(const Pipeline& pipeline) {
    for (const Stage& stage : pipeline.stages) {
      if (AnswerQueue* queue = FindAnswers(stage)) queue->UseUp();
    }
  }

  PipelineOutcome Run(const Pipeline& pipeline) {
    PipelineOutcome outcome;
    if (pipeline.isMalformed) {
      CommandOutcome failed = FailWith(kBadSyntax);
      return {{}, {failed.standardError}, failed.exitCode};
    }
    for (const Stage& stage : pipeline.stages) RunStage(stage, outcome);
    return outcome;
  }

  /// Runs one command on the output of the one before.
  void RunStage(const Stage& stage, PipelineOutcome& outcome) {
    Bytes input = std::exchange(outcome.standardOutput, {});
    if (!input.empty()) outcome.unfiltered = input;
    for (const Redirection& redirection : stage.redirections) {
      const CommandOutcome opened = OpenRedirection(redirection, input);
      if (opened.exitCode == 0) continue;
      outcome.standardError.push_back(opened.standardError);
      outcome.exitCode = opened.exitCode;
      return;
    }
    const CommandOutcome ran = RunProgram(stage, input);
    outcome.exitCode = ran.exitCode;
    if (ran.exitCode == kEndedExitCode) {
      outcome.wasEnded = true;
      ended.insert(ToolName(stage.program));
    }
    if (const Redirection* to = FindRedirection(stage, 1)) {
      Deliver(*to, ran.standardOutput);
    } else {
      outcome.standardOutput = ran.standardOutput;
    }
    if (const Redirection* to = FindRedirection(stage, 2)) {
      Deliver(*to, ran.standardError);
    } else if (!ran.standardError.empty()) {
      outcome.standardError.push_back(ran.standardError);
    }
  }

  /// Creates the file of an output, or takes `input` from a file. A failure has an exit code.
  CommandOutcome OpenRedirection(const Redirection& redirection, Bytes& input) {
    if (redirection.kind == Redirection::Kind::kRead) {
      const std::optional<Bytes> source =
          IsNullDevice(redirection.target) ? Bytes() : files.Find(redirection.target);
      if (!source) return FailWith(kNoSuchFile);
      input = *source;
      return {};
    }
    if (IsNullDevice(redirection.target)) return {};
    const std::optional<Bytes> before = redirection.kind == Redirection::Kind::kAppend
                                            ? files.Find(redirection.target)
                                            : std::nullopt;
    const FileResult created = files.Create(redirection.target);
    if (created != FileResult::kDone) return FailWith(created);
    if (before) files.Store(redirection.target, *before);
    return {};
  }

  CommandOutcome RunProgram(const Stage& stage, const Bytes& input) {
    if (stage.program.empty()) return {};
    if (IsOwnCommand(stage.program)) return RunOwnCommand(stage, input, files);
    if (const AnswerQueue* queue = FindAnswers(stage)) return queue->Peek().outcome;
    return {{}, NotRecognized(stage.program), 1};
  }

  /// The redirection that holds for a handle: the last one.
  static const Redirection* FindRedirection(const Stage& stage, int handle) {
    const auto found = std::find_if(
        stage.redirections.rbegin(), stage.redirections.rend(), [&](const Redirection& candidate) {
          return candidate.handle == handle && candidate.kind != Redirection::Kind::kRead;
        });
    return found == stage.redirections.rend() ? nullptr : &*found;
  }

  void Deliver(const Redirection& to, const Bytes& bytes) {
    if (IsNullDevice(to.target) || bytes.empty()) return;
    Bytes written = files.Find(to.target).value_or(Bytes());
    if (written.empty()) {
      written = bytes;
    } else {
      written += bytes;
    }
    files.Store(to.target, std::move(written));
  }

  void ShowOnConsole(const Bytes& bytes) {
    if (observer != nullptr && !bytes.empty()) {
      observer->OnToolConsole(bytes);
    }
  }

  /// Tells a start that was refused because its tool had been ended before.
  void TellRefusal(const Pipeline& pipeline, std::uint32_t startError) {
    if (observer == nullptr || startError != kErrorCancelled) return;
    const bool wasEnded =
        std::any_of(pipeline.stages.begin(), pipeline.stages.end(),
                    [this](const Stage& stage) { return ended.contains(ToolName(stage.program)); });
    if (wasEnded) observer->OnToolRefused(0);
  }

  /// Tells the output of a pipeline that was run, and whether it is not all.
  void TellAnswer(const Pipeline& pipeline, const PipelineOutcome& outcome) {
    if (observer == nullptr) return;
    ToolAnswer answer{outcome.standardOutput, FindOutputFile(pipeline), {}, outcome.unfiltered};
    for (const Bytes& piece : outcome.standardError) {
      if (answer.output.empty()) {
        answer.output = piece;
      } else {
        answer.output += piece;
      }
    }
    if (!answer.file.empty()) answer.fileText = files.Find(answer.file).value_or(Bytes());
    observer->OnAnswer(answer);
    if (outcome.wasEnded) observer->OnToolEnded(0);
  }

  void ShowOnConsole(const PipelineOutcome& outcome) {
    ShowOnConsole(outcome.standardOutput);
    for (const Bytes& piece : outcome.standardError) ShowOnConsole(piece);
  }

  /// Whether no command may run any more; says so.
  bool IsEnding() const {
    if (!isEnding || !isEnding()) return false;
    if (observer != nullptr) observer->OnRefused();
    return true;
  }

  std::function<bool()> isEnding;
  std::string hostExecutable;
  std::uint32_t languageId;
  std::string console;  ///< the operator's input
  MachineObserver* observer;
  MachineFiles files;
  std::map<CommandKey, AnswerQueue> commands;
  std::set<std::string> tools;
  std::set<std::string> ended;  ///< the tools that a host had ended, so far
  std::size_t consoleAt = 0;
  std::shared_ptr<int> openHandles = std::make_shared<int>(0);
  HandedOutList handedOut;
};

RecordedMachine::RecordedMachine(const Recording& recording, MachineObserver* observer)
    : state(std::make_unique<State>(recording, observer)) {}

RecordedMachine::~RecordedMachine() = default;

void RecordedMachine::EndWhen(std::function<bool()> isEnding) {
  state->isEnding = std::move(isEnding);
}

std::string RecordedMachine::HostExecutable() { return state->hostExecutable; }

std::uint32_t RecordedMachine::SystemLanguage() { return state->languageId; }

bool RecordedMachine::PathExists(const std::string& path) {
  if (path.empty()) return false;
  if (state->files.FolderExists(path)) return true;
  return !path.ends_with('\\') && state->files.Find(path).has_value();
}

pq::Acquired<pq::Pipe> RecordedMachine::CreatePipe(const std::string& commandLine) {
  if (state->IsEnding()) return {nullptr, kErrorCancelled};
  const Pipeline pipeline = state->Parse(commandLine);
  const std::uint32_t error = state->FindError(pipeline, &Answer::pipeError);
  if (error != 0) {
    state->UseUpAnswers(pipeline);
    return {nullptr, error};
  }
  return {std::make_unique<RecordedPipe>(state->openHandles)};
}

pq::Acquired<pq::Process> RecordedMachine::StartInterpreter(const std::string& commandLine,
                                                            bool inheritHandles, pq::Pipe* output) {
  if (state->observer != nullptr) {
    state->observer->OnProcess(pq::kInterpreter, commandLine, inheritHandles, output != nullptr);
  }
  if (state->IsEnding()) return {nullptr, kErrorCancelled};
  const Pipeline pipeline = state->Parse(commandLine);
  const std::uint32_t startError = state->FindError(pipeline, &Answer::startError);
  if (startError != 0) {
    state->UseUpAnswers(pipeline);
    state->TellRefusal(pipeline, startError);
    return {nullptr, startError};
  }
  const std::uint32_t exitCodeError = state->FindError(pipeline, &Answer::exitCodeError);
  const PipelineOutcome outcome = state->Run(pipeline);
  state->UseUpAnswers(pipeline);
  state->TellAnswer(pipeline, outcome);
  if (output != nullptr) {
    auto& pipe = static_cast<RecordedPipe&>(*output);
    pipe.Write(outcome.standardOutput);
    for (const Bytes& piece : outcome.standardError) pipe.Write(piece);
  } else {
    state->ShowOnConsole(outcome);
  }
  return {std::make_unique<RecordedProcess>(outcome.exitCode, exitCodeError, state->observer,
                                            state->openHandles, state->handedOut)};
}

void RecordedMachine::RunSystem(const std::string& command) {
  if (state->observer != nullptr) state->observer->OnSystem(command);
  if (state->IsEnding()) return;
  const Pipeline pipeline = state->Parse("/c " + command);
  const std::uint32_t startError = state->FindError(pipeline, &Answer::startError);
  state->TellRefusal(pipeline, startError);
  if (startError == 0) {
    const PipelineOutcome outcome = state->Run(pipeline);
    state->TellAnswer(pipeline, outcome);
    state->ShowOnConsole(outcome);
  }
  state->UseUpAnswers(pipeline);
}

std::unique_ptr<pq::TextFile> RecordedMachine::OpenText(const std::string& path) {
  if (state->observer != nullptr) state->observer->OnOpen(path, "r");
  std::optional<Bytes> bytes = state->files.Find(path);
  if (!bytes || path.ends_with('\\')) return nullptr;
  return std::make_unique<OpenedText>(std::move(*bytes), state->openHandles, state->handedOut);
}

void RecordedMachine::WriteConsole(std::string_view text) {
  if (state->observer != nullptr) state->observer->OnConsole(text);
}

pq::ConsoleLine RecordedMachine::ReadConsoleLine(char* buffer, std::size_t size) {
  const std::string& typed = state->console;
  const std::size_t end = std::min(typed.find('\n', state->consoleAt), typed.size());
  std::string_view line(typed.data() + state->consoleAt, end - state->consoleAt);
  state->consoleAt = std::min(end + 1, typed.size());
  if (line.ends_with('\r')) line.remove_suffix(1);
  const bool fits = line.size() < size;
  if (!fits) line = line.substr(0, size > 0 ? size - 1 : 0);
  line.copy(buffer, line.size());
  if (size > 0) buffer[line.size()] = '\0';
  return fits ? pq::ConsoleLine::kRead : pq::ConsoleLine::kTooLong;
}

void RecordedMachine::FailRangeCheck() {
  EndProcess("A path does not fit its buffer; the process ends here.");
}

bool RecordedMachine::HasPrograms(const std::string& commandLine) const {
  const std::vector<Stage> stages = state->Parse(commandLine).stages;
  return std::all_of(stages.begin(), stages.end(), [this](const Stage& stage) {
    return IsOwnCommand(ToolName(stage.program)) || state->FindAnswers(stage) != nullptr;
  });
}

std::map<std::string, Bytes> RecordedMachine::Files() const { return state->files.All(); }

std::optional<std::uint64_t> RecordedMachine::FileSize(const std::string& path) const {
  const std::optional<Bytes> bytes = state->files.Find(path);
  if (!bytes) return std::nullopt;
  return bytes->size();
}

bool RecordedMachine::HasFileFromBefore(const std::string& path) const {
  return state->files.IsFromBefore(path);
}

int RecordedMachine::OpenHandles() const { return *state->openHandles; }

}  // namespace host
