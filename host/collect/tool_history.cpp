#include "host/collect/tool_history.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "host/catalogue/table_sources.h"
#include "host/collect/command_text.h"
#include "host/collect/failures.h"
#include "host/collect/known_words.h"
#include "host/recorded/machine_files.h"
#include "host/text/ascii.h"

namespace host {
namespace {

/// The interpreter's exit code where it could not make the file for the output, which it does
/// first.
constexpr std::uint32_t kNoOutputFile = 1;

/// The last component of the folder that the file `path` is in.
std::string GetFolderName(const std::string& path) {
  const std::size_t end = path.find_last_not_of('\\', path.rfind('\\'));
  if (end == std::string::npos) return {};
  return std::string(FileNameOf(std::string_view(path).substr(0, end + 1)));
}

/// Whether the run leaves a folder of files: its command is described by the folder's name then.
bool LeavesFolder(const ToolRun& run, const std::string& folder) {
  return std::ranges::any_of(FindTablesOf(run), [&](const pq::TableDescription* table) {
    return std::ranges::any_of(table->commands, [&](const pq::ToolCommand& command) {
      return command.file == folder && IsRunOf(run, command);
    });
  });
}

}  // namespace

void ToolHistory::Module(const std::string& name, const std::string& /*description*/) {
  module = name;
  description = FindModuleDescription(name);
  runIsOpen = false;
  starts.Module(name);
}

void ToolHistory::Enumerate(const std::string& name, const std::string& /*table*/) {
  module = name;
  description = FindModuleDescription(name);
}

ToolRun& ToolHistory::BeginRun(const std::string& commandLine, bool pipe) {
  ToolRun run;
  run.module = module;
  run.commandLine = commandLine;
  run.program = FindProgram(commandLine);
  run.arguments = FindArguments(commandLine);
  const std::string target = FindTarget(commandLine);
  (target.find('\\') != std::string::npos ? run.file : run.handedOn) = FileNameOf(target);
  run.readThroughPipe = pipe;
  run.isFiltered = commandLine.find('|') != std::string::npos;
  for (ToolRun& earlier : runs) {
    const bool isHandedOn = !earlier.handedOn.empty() && earlier.handedOn == run.arguments;
    if (isHandedOn && earlier.module == module) NoteRead(earlier, earlier.handedOn);
  }
  runs.push_back(std::move(run));
  runIsOpen = true;
  return runs.back();
}

void ToolHistory::OnProcess(const std::string& /*application*/, const std::string& commandLine,
                            bool /*inheritHandles*/, bool pipe) {
  BeginRun(commandLine, pipe).isThere = !hasPrograms || hasPrograms(commandLine);
  starts.Start();
  runJustBegan = true;
}

void ToolHistory::OnAnswer(const ToolAnswer& answer) {
  if (!runs.empty()) NoteAnswer(runs.back(), answer);
}

void ToolHistory::OnSystem(const std::string& command) {
  const std::string commandLine = "/c " + command;
  BeginRun(commandLine, false).isThere = !hasPrograms || hasPrograms(commandLine);
  starts.Start();
  starts.End();
  runJustBegan = true;
}

void ToolHistory::OnOpen(const std::string& path, const std::string& /*mode*/) {
  const std::string file(FileNameOf(path));
  const std::string folder = GetFolderName(path);
  for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
    if (run->module != module) continue;
    const bool leavesFile =
        run->file.empty() ? LeavesFolder(*run, folder) : LowerCase(run->file) == LowerCase(file);
    if (!leavesFile) continue;
    NoteRead(*run, path);
    return;
  }
}

void ToolHistory::NoteRead(ToolRun& run, const std::string& path) {
  const std::optional<OldFile> old = findOldFile ? findOldFile(path) : std::nullopt;
  if (!old || interrupted) return;
  const bool mayBeNew = !old->written && run.file.empty() && run.handedOn.empty();
  if (mayBeNew && run.isThere && DescribeError(run).empty()) return;
  const bool isOlder = run.oldFile && old->written && run.oldFile->written &&
                       old->written->time < run.oldFile->written->time;
  if (!run.oldFile || isOlder) run.oldFile = old;
}

bool ToolHistory::LacksOutput(const ToolRun& run) const {
  if (run.file.empty() || interrupted) return false;
  if (LacksLogFile(run.file)) return true;
  return findOldFile && findOldFile(FindTarget(run.commandLine)).has_value();
}

void ToolHistory::OnProcessEnd(std::uint32_t exitCode) {
  if (!runs.empty()) {
    ToolRun& run = runs.back();
    if (!run.isFiltered) run.exitCode = exitCode;
    run.isUnwritable = exitCode == kNoOutputFile && LacksOutput(run);
  }
  starts.End();
  runJustBegan = false;
}

void ToolHistory::OnToolEnded(unsigned seconds) {
  if (!runs.empty()) runs.back().endedAfterSeconds = seconds;
}

void ToolHistory::OnToolRefused(unsigned seconds) {
  if (runs.empty()) return;
  runs.back().endedAfterSeconds = seconds;
  runs.back().endedBefore = true;
}

void ToolHistory::OnToolOutOfMemory(unsigned mebibytes) {
  if (!runs.empty()) runs.back().memoryLimit = mebibytes;
}

void ToolHistory::OnRefused() {
  interrupted = true;
  // From here on the module's words tell of the refusal, not of the machine.
  if (runJustBegan) runs.back().refused = true;
  runIsOpen = false;
}

void ToolHistory::Log(const LogLine& line) {
  const std::string_view text = RemoveLogPrefix(line.text);
  runJustBegan = false;
  if (const auto commandLine = starts.Log(text); commandLine && !interrupted) {
    BeginRun(*commandLine, false);
  }
  NoteLog(text);
  const bool isTelling =
      !interrupted && description != nullptr &&
      std::ranges::any_of(description->explanations, [&](const pq::Explanation& explanation) {
        return Explains(explanation, text);
      });
  if (isTelling) log[module].emplace_back(text);
}

void ToolHistory::NoteLog(std::string_view text) {
  if (!runIsOpen) return;
  const pq::FailureSentence* known = FindFailureSentence(text);
  auto run = runs.rbegin();
  if (known != nullptr && !known->program.empty()) {
    run = std::find_if(runs.rbegin(), runs.rend(), [&](const ToolRun& candidate) {
      return candidate.module == module && IsOfProgram(candidate, known->program);
    });
  }
  if (run != runs.rend()) NoteLogLine(*run, text, known, description);
}

std::span<const std::string> ToolHistory::TellingLines(const std::string& name) const {
  const auto lines = log.find(name);
  return lines == log.end() ? std::span<const std::string>() : lines->second;
}

bool ToolHistory::HasLogText(const std::string& fileName) const {
  return logFileSize && logFileSize(fileName).value_or(0) > 0;
}

bool ToolHistory::LacksLogFile(const std::string& fileName) const {
  return logFileSize && !logFileSize(fileName);
}

std::vector<const ToolRun*> ToolHistory::FindRuns(const std::string& name,
                                                  const pq::TableDescription& table) const {
  std::vector<const ToolRun*> found;
  for (const pq::ToolCommand& command : table.commands) {
    for (const ToolRun& run : runs) {
      if (run.module == name && IsRunOf(run, command)) found.push_back(&run);
    }
  }
  return found;
}

}  // namespace host
