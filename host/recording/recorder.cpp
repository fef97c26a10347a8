#include "host/recording/recorder.h"

#include <algorithm>
#include <map>
#include <utility>

#include "frame/tokens.h"
#include "host/files/text_store.h"
#include "host/recorded/machine_files.h"
#include "host/recorded/machine_observer.h"
#include "host/recorded/own_commands.h"
#include "host/text/ascii.h"

namespace host {
namespace {

/// The words of a login before its password: address and user.
constexpr std::size_t kWordsBeforePassword = 2;
constexpr std::string_view kBlanks = " \r\n";

std::string MakeFullPath(const std::string& path) {
  Recording nothing;
  return MachineFiles(nothing).FullPath(path);
}

/// Equal for two paths of one file.
std::string MakeKey(const std::string& path) { return LowerCase(MakeFullPath(path)); }

std::string RemoveQuotes(std::string text) {
  std::erase(text, '"');
  return text;
}

std::vector<std::string_view> SplitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.push_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  return lines;
}

}  // namespace

Recorder::Recorder(Recording facts, MachineView& machine)
    : recording(std::move(facts)), machine(machine), filesBefore(machine, recording.logFolder) {}

void Recorder::BeginRun(std::string_view commandLine, bool isPiped) {
  CloseRun();
  std::optional<AmtLogin> login = FindAmtLogin(commandLine);
  if (login) MarkLoginLine();
  // A password may contain signs that the interpreter takes for a redirection. Hide it first.
  const Pipeline pipeline = ParseCommandLine(HidePassword(commandLine), [&](std::string_view path) {
    return machine.HasProgram(std::string(path));
  });
  if (pipeline.stages.empty() || pipeline.isMalformed) return;
  run.emplace();
  run->stage = pipeline.stages.front();
  run->isPiped = isPiped;
  run->login = std::move(login);
  for (auto stage = pipeline.stages.begin() + 1; stage != pipeline.stages.end(); ++stage) {
    run->filters.push_back(FindstrTexts(stage->arguments));
  }
  const std::string program = RemoveQuotes(run->stage.program);
  run->command.tool = FileNameOf(program);
  run->command.arguments = run->stage.arguments;
  if (ToolName(program) == "copy") KeepCopied(run->stage.arguments);
}

/// A login comes from the line that was typed last.
void Recorder::MarkLoginLine() {
  const std::vector<std::string_view> lines = SplitLines(typed.View());
  if (!lines.empty()) loginLines.insert(lines.size() - 1);
}

void Recorder::KeepCopied(const std::string& arguments) {
  const std::vector<std::string> paths = SplitWords(arguments);
  if (paths.empty()) return;
  KeepFile(paths.front());
  for (const std::string& path : machine.ListFiles(paths.front())) KeepFile(path);
}

void Recorder::KeepOpened(const std::string& path) {
  // A file in the log folder comes from a command, and that is recorded itself.
  if (!MakeKey(path).starts_with(LowerCase(recording.logFolder))) KeepFile(path);
}

void Recorder::KeepFile(const std::string& path) {
  if (knownFiles.contains(MakeKey(path))) return;
  std::optional<std::string> bytes = machine.ReadFile(path);
  if (!bytes) return;
  knownFiles.insert(MakeKey(path));
  recording.files[MakeFullPath(path)] = GetTextStore().Keep(std::move(*bytes));
}

void Recorder::FailRun(std::uint32_t error) {
  if (!run) return;
  run->command.startError = error;
  recording.commands.push_back(std::move(run->command));
  run.reset();
}

void Recorder::AddOutput(std::string_view bytes) {
  if (run && run->isPiped) run->command.standardOutput += bytes;
}

void Recorder::EndRun(std::uint32_t exitCode) {
  // A pipeline ends with the exit code of its last filter. A replay runs the filter again.
  if (run && run->filters.empty()) run->command.exitCode = exitCode;
  CloseRun();
}

void Recorder::MarkEnded() {
  if (run) run->command.exitCode = kEndedExitCode;
}

/// Keeps the answer, unless a replay would give it without an entry.
void Recorder::CloseRun() {
  if (!run) return;
  TakeOutput();
  if (NeedsEntry()) {
    RecordedCommand& command = run->command;
    command.standardOutput = GetTextStore().Keep(std::move(command.standardOutput));
    command.standardError = GetTextStore().Keep(std::move(command.standardError));
    recording.commands.push_back(std::move(command));
  }
  run.reset();
}

/// Undoes redirection and filters: the entry has to say what the tool itself wrote.
void Recorder::TakeOutput() {
  Bytes& output = run->command.standardOutput;
  if (const std::string target = FindOutputFile(run->stage); !target.empty()) {
    const bool isOwn = IsOwnCommand(run->stage.program);
    std::optional<std::string> written = isOwn ? std::string() : machine.ReadFile(target);
    if (written && filesBefore.IsUnchanged(target)) {
      // The interpreter could not write it, so the tool did not run.
      KeepFile(target);
      written.reset();
    }
    knownFiles.insert(MakeKey(target));
    if (written) {
      output = std::move(*written);
    } else if (readOnly.insert(MakeKey(target)).second) {
      recording.readOnly.push_back(target);
    }
  }
  if (!run->filters.empty()) {
    // A line that the filters drop was still read here, so it came from standard error.
    Bytes passed;
    for (const std::string_view line : SplitLines(output)) {
      const bool passes = std::all_of(
          run->filters.begin(), run->filters.end(),
          [&](const std::vector<std::string>& texts) { return !FilterLines(line, texts).empty(); });
      (passes ? passed : run->command.standardError) += line;
    }
    output = std::move(passed);
  }
  if (run->login) output = HidePassword(output.Text(), *run->login);
}

/// Whether the run needs an entry. The interpreter's own commands need none. A missing program
/// needs one only if this interpreter says so in other words than a replay would.
bool Recorder::NeedsEntry() const {
  const std::string& program = run->stage.program;
  if (IsOwnCommand(program) || ToolName(program).empty()) return false;
  if (machine.HasProgram(RemoveQuotes(program))) return true;
  const RecordedCommand& command = run->command;
  const std::string written =
      std::string(command.standardOutput.Text()).append(command.standardError.Text());
  return run->isPiped && written != NotRecognized(program);
}

/// What the operator typed, without passwords. A refused line may contain one anywhere, so only its
/// length and its blanks are kept.
std::string Recorder::HideLines() const {
  std::string hidden;
  const std::vector<std::string_view> lines = SplitLines(typed.View());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (loginLines.contains(i)) {
      const std::vector<std::string_view> words = pq::SplitTokens(lines[i], kBlanks);
      for (std::size_t word = 0; word < kWordsBeforePassword && word < words.size(); ++word) {
        hidden.append(words[word]).append(" ");
      }
      hidden.append(kHiddenPassword).append("\n");
      continue;
    }
    for (const char c : lines[i]) hidden += kBlanks.find(c) == std::string_view::npos ? '*' : c;
  }
  return hidden;
}

/// A replay repeats the last answer, so trailing duplicates go; earlier ones count turns.
void Recorder::DropRepeatedEnds() {
  std::vector<RecordedCommand>& commands = recording.commands;
  std::map<std::pair<std::string, std::string>, std::vector<std::size_t>> answers;
  for (std::size_t i = 0; i < commands.size(); ++i) {
    answers[{ToolName(commands[i].tool), commands[i].arguments}].push_back(i);
  }
  std::set<std::size_t> dropped;
  for (const auto& [command, places] : answers) {
    for (std::size_t i = places.size() - 1; i > 0; --i) {
      if (commands[places[i]] != commands[places[i - 1]]) break;
      dropped.insert(places[i]);
    }
  }
  for (auto place = dropped.rbegin(); place != dropped.rend(); ++place) {
    commands.erase(commands.begin() + static_cast<std::ptrdiff_t>(*place));
  }
}

Recording Recorder::Take() {
  CloseRun();
  DropRepeatedEnds();
  recording.console = HideLines();
  typed.Clear();
  loginLines.clear();
  knownFiles.clear();
  readOnly.clear();
  return std::exchange(recording, {});
}

}  // namespace host
