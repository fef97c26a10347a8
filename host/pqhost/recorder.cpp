#include "host/pqhost/recorder.h"

#include <algorithm>
#include <utility>

#include "frame/tokens.h"
#include "host/pqhost/command_text.h"
#include "host/recorded/machine_files.h"
#include "host/recorded/own_commands.h"

namespace host {
namespace {

/// A word that the AMT module takes for a password, and that the replayed tool is asked with.
constexpr char kPlaceholder[] = "***";
constexpr std::size_t kPasswordWord = 2;
constexpr std::string_view kBlanks = " \r\n";

std::string FullPath(const std::string& path) {
  Recording nothing;
  return MachineFiles(nothing).FullPath(path);
}

/// As recorded paths are told apart.
std::string KeyOf(const std::string& path) { return LowerCase(FullPath(path)); }

std::string WithoutQuotes(std::string text) {
  std::erase(text, '"');
  return text;
}

void ReplaceAll(std::string& text, const std::string& search, std::string_view replacement) {
  for (std::size_t at = text.find(search); at != std::string::npos;
       at = text.find(search, at + replacement.size())) {
    text.replace(at, search.size(), replacement);
  }
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

/// The file that standard output goes to; empty when it goes to none, or to the null device.
std::string OutputFileOf(const Stage& stage) {
  std::string target;
  for (const Redirection& redirection : stage.redirections) {
    if (redirection.kind != Redirection::Kind::kRead && redirection.handle == 1) {
      target = redirection.target;
    }
  }
  return LowerCase(FileNameOf(target)) == "nul" ? "" : target;
}

}  // namespace

Recorder::Recorder(Recording facts, MachineView& machine)
    : recording(std::move(facts)), machine(machine) {}

void Recorder::BeginRun(const std::string& commandLine, bool isPiped) {
  CloseRun();
  // A password may hold what the interpreter would take for a redirection, so it goes first.
  const std::string hidden = HidePassword(commandLine);
  const Pipeline pipeline = ParseCommandLine(
      hidden, [&](std::string_view path) { return machine.HasProgram(std::string(path)); });
  if (pipeline.stages.empty() || pipeline.isMalformed) return;
  run.emplace();
  run->stage = pipeline.stages.front();
  run->isPiped = isPiped;
  if (hidden != commandLine) run->password = TakeLogin();
  for (auto stage = pipeline.stages.begin() + 1; stage != pipeline.stages.end(); ++stage) {
    run->filters.push_back(FindstrTexts(stage->arguments));
  }
  const std::string program = WithoutQuotes(run->stage.program);
  run->command.tool = FileNameOf(program);
  run->command.arguments = run->stage.arguments;
  if (ToolName(program) == "copy") KeepCopied(run->stage.arguments);
}

std::string Recorder::TakeLogin() {
  const std::vector<std::string_view> lines = SplitLines(typed);
  if (lines.empty()) return {};
  loginLines.insert(lines.size() - 1);
  const std::vector<std::string_view> words = pq::SplitTokens(lines.back(), kBlanks);
  return words.size() > kPasswordWord ? std::string(words[kPasswordWord]) : std::string();
}

void Recorder::KeepCopied(const std::string& arguments) {
  const std::vector<std::string> paths = SplitWords(arguments);
  if (paths.empty()) return;
  KeepFile(paths.front());
  for (const std::string& path : machine.ListFiles(paths.front())) KeepFile(path);
}

void Recorder::KeepOpened(const std::string& path) {
  // What lies in the log folder was written there by a command that is recorded itself.
  if (!KeyOf(path).starts_with(LowerCase(recording.logFolder))) KeepFile(path);
}

void Recorder::KeepFile(const std::string& path) {
  if (knownFiles.contains(KeyOf(path))) return;
  std::optional<std::string> bytes = machine.ReadFile(path);
  if (!bytes) return;
  knownFiles.insert(KeyOf(path));
  recording.files[FullPath(path)] = std::move(*bytes);
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
  // The exit code of a pipeline is that of its last filter, which works it out again.
  if (run && run->filters.empty()) run->command.exitCode = exitCode;
  CloseRun();
}

/// The recorded answer to the run, unless it goes without saying.
void Recorder::CloseRun() {
  if (!run) return;
  TakeOutput();
  if (IsForeignProgram()) {
    RecordedCommand& command = run->command;
    const auto before = std::find_if(recording.commands.rbegin(), recording.commands.rend(),
                                     [&](const RecordedCommand& known) {
                                       return ToolName(known.tool) == ToolName(command.tool) &&
                                              known.arguments == command.arguments;
                                     });
    // The last answer is repeated for ever.
    const bool isRepeated = before != recording.commands.rend() && *before == command;
    if (!isRepeated) recording.commands.push_back(std::move(command));
  }
  run.reset();
}

/// Moves what the tool wrote to the place that it came from.
void Recorder::TakeOutput() {
  std::string& output = run->command.standardOutput;
  if (const std::string target = OutputFileOf(run->stage); !target.empty()) {
    const bool isOwn = IsOwnCommand(run->stage.program);
    std::optional<std::string> written = isOwn ? std::string() : machine.ReadFile(target);
    knownFiles.insert(KeyOf(target));
    if (written) {
      output = std::move(*written);
    } else {
      recording.readOnly.push_back(target);
    }
  }
  if (!run->filters.empty()) {
    // Only what a filter lets through comes from standard output; the rest went past it.
    std::string passed;
    for (const std::string_view line : SplitLines(output)) {
      const bool passes = std::all_of(
          run->filters.begin(), run->filters.end(),
          [&](const std::vector<std::string>& texts) { return !FilterLines(line, texts).empty(); });
      (passes ? passed : run->command.standardError) += line;
    }
    output = std::move(passed);
  }
  if (!run->password.empty()) ReplaceAll(output, run->password, kPlaceholder);
}

/// Whether an entry has to answer for the run: not for the interpreter's own commands, nor for a
/// program that is missing, unless the interpreter says so in words of another language.
bool Recorder::IsForeignProgram() const {
  const std::string& program = run->stage.program;
  if (IsOwnCommand(program) || ToolName(program).empty()) return false;
  if (machine.HasProgram(WithoutQuotes(program))) return true;
  const RecordedCommand& command = run->command;
  const std::string written = command.standardOutput + command.standardError;
  return run->isPiped && written != NotRecognized(program);
}

/// What the operator typed. A line that was refused may hold a password at any place, and only its
/// length and its blanks matter.
std::string Recorder::HideLines() const {
  std::string hidden;
  const std::vector<std::string_view> lines = SplitLines(typed);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (loginLines.contains(i)) {
      const std::vector<std::string_view> words = pq::SplitTokens(lines[i], kBlanks);
      for (std::size_t word = 0; word < kPasswordWord && word < words.size(); ++word) {
        hidden.append(words[word]).append(" ");
      }
      hidden.append(kPlaceholder).append("\n");
      continue;
    }
    for (const char c : lines[i]) hidden += kBlanks.find(c) == std::string_view::npos ? '*' : c;
  }
  return hidden;
}

Recording Recorder::Take() {
  CloseRun();
  recording.console = HideLines();
  return std::exchange(recording, {});
}

}  // namespace host
