#include "host/collect/table_status.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

#include "frame/sentences.h"
#include "frame/tool_runner.h"
#include "host/catalogue/table_sources.h"
#include "host/collect/command_text.h"
#include "host/collect/failures.h"
#include "host/recorded/own_commands.h"
#include "host/text/ascii.h"
#include "host/text/screen_text.h"
#include "host/text/trim.h"

namespace host {
namespace {

const TableStatus kInterrupted{"interrupted", "the collection was interrupted before"};
constexpr char kNoSuchDevice[] = "no such device";
constexpr char kDeclined[] = "declined";
/// The interpreter's exit code where it could not make the file for the output, which it does
/// first.
constexpr std::uint32_t kNoOutputFile = 1;
constexpr char kToolError[] = "tool reported an error";
constexpr char kNotOpened[] = "output could not be opened";

/// Whether a log line, without its prefix, is the explanation's sentence and explains something.
bool Explains(const pq::Explanation& explanation, std::string_view text) {
  if (explanation.usualValue.empty()) return text == explanation.sentence;
  return text.starts_with(explanation.sentence) &&
         text.substr(explanation.sentence.size()) != explanation.usualValue;
}

bool Concerns(const pq::Explanation& explanation, const std::string& className) {
  return explanation.tables.empty() ||
         std::ranges::find(explanation.tables, className) != explanation.tables.end();
}

/// The program's file name, for people.
std::string GetFileName(std::string_view program) {
  return std::string(program.substr(program.rfind('\\') + 1));
}

std::string JoinNames(const std::vector<const ToolRun*>& runs) {
  std::vector<std::string> names;
  for (const ToolRun* run : runs) {
    std::string name = GetFileName(run->program);
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      names.push_back(std::move(name));
    }
  }
  return fmt::format("{}", fmt::join(names, " and "));
}

bool EndsWithoutCase(std::string_view text, std::string_view end) {
  return text.size() >= end.size() &&
         std::equal(end.begin(), end.end(), text.end() - static_cast<std::ptrdiff_t>(end.size()),
                    [](char a, char b) { return LowerCase(a) == LowerCase(b); });
}

bool IsToolOf(const ToolRun& run, const pq::TableDescription& table) {
  return std::any_of(table.commands.begin(), table.commands.end(),
                     [&](const pq::ToolCommand& command) {
                       return EndsWithoutCase(run.program, command.program);
                     });
}

/// Whether the command was run, for what it is for: the same program with the same arguments can
/// serve others with another file.
bool IsRunOf(const ToolRun& run, const pq::ToolCommand& command) {
  if (!EndsWithoutCase(run.program, command.program)) return false;
  if (!command.argumentsFromOperator && run.arguments != command.arguments) return false;
  if (run.readThroughPipe && !command.file.empty()) return false;
  return run.file.empty() || LowerCase(run.file) == LowerCase(command.file);
}

/// Other than a program that ended well and said so.
bool HasFailed(const ToolRun& run) {
  return !run.isThere || run.refused || !run.startFailure.empty() || run.exitCode.value_or(0) != 0;
}

/// Whether nothing that the program leaves can be had.
bool HasEndedStep(const ToolRun& run) {
  return run.refused || !run.startFailure.empty() || !run.openFailure.empty();
}

std::string DescribeUnwritable(const std::string& file) {
  return fmt::format("did not run, because {} could not be written", file);
}

/// Why the program's answer is not to be trusted; empty when there is no reason.
std::string DescribeError(const ToolRun& run) {
  if (run.endedAfterSeconds) {
    const std::string after = DescribeSeconds(*run.endedAfterSeconds);
    if (run.endedBefore) return fmt::format("had been ended{} and was not started again", after);
    if (after.empty()) return "did not end by itself and was ended";
    return "was ended" + after;
  }
  if (run.memoryLimit > 0) {
    return fmt::format("wanted more than its {} MiB of memory", run.memoryLimit);
  }
  if (run.isUnwritable) return DescribeUnwritable(run.file);
  if (run.exitCode.value_or(0) != 0) {
    return fmt::format("ended with code {}{}", *run.exitCode,
                       run.reason.empty() ? "" : " (" + run.reason + ")");
  }
  if (run.reportedError || run.printedErrorLine) return "printed an error text";
  return {};
}

/// The outcome of a program with such an error.
const char* FindErrorOutcome(const ToolRun& run) {
  if (run.endedAfterSeconds) return "ended";
  if (run.memoryLimit > 0) return "out of memory";
  return run.isUnwritable ? kNotOpened : kToolError;
}

/// The run that decides what there is for the table. At least one of `runs` is there.
const ToolRun& ChooseRun(const std::vector<const ToolRun*>& runs,
                         const pq::TableDescription& table) {
  const auto find = [&](auto test) { return std::ranges::find_if(runs, test); };
  if (table.commandsAreAlternatives) {
    const auto well = std::find_if(runs.rbegin(), runs.rend(),
                                   [](const ToolRun* run) { return !HasFailed(*run); });
    if (well != runs.rend()) return **well;
    const auto failed = find([](const ToolRun* run) { return run->isThere && !run->explanation; });
    if (failed != runs.end()) return **failed;
    return **find([](const ToolRun* run) { return run->isThere; });
  }
  const auto ending = find([](const ToolRun* run) { return HasEndedStep(*run); });
  if (ending != runs.end()) return **ending;
  const auto failed =
      find([](const ToolRun* run) { return HasFailed(*run) || !DescribeError(*run).empty(); });
  return failed != runs.end() ? **failed : *runs.back();
}

/// Why the program did not write the file that was read in its place, as words after its name.
std::string DescribeOldFile(const ToolRun& run) {
  if (!run.isThere) return "is not on this machine";
  if (run.endedBefore) return DescribeError(run);
  const std::string& file = run.file.empty() ? run.handedOn : run.file;
  // The interpreter opens the file for the output first.
  if (!file.empty()) return DescribeUnwritable(file);
  const std::string error = DescribeError(run);
  return error.empty() ? "left no newer ones" : error;
}

std::string FormatAge(const OldFile& file) {
  return file.written ? FormatTimeForPeople(*file.written) : "an unknown time";
}

/// The last component of the folder that the file `path` is in.
std::string GetFolderName(const std::string& path) {
  const std::size_t end = path.find_last_not_of('\\', path.rfind('\\'));
  return end == std::string::npos ? std::string() : GetFileName(path.substr(0, end + 1));
}

/// Whether the list of failures holds the run, or nothing failed.
bool IsTold(const ToolRun& run) {
  if (run.endedAfterSeconds || run.memoryLimit > 0) return true;
  return !run.isThere || (HasEndedStep(run) && !run.hadNothingToReport);
}

/// Whether the exit code is an answer, or of a command that says nothing by it: a folder may be
/// there already, and a file to copy may not.
bool HasOrdinaryExitCode(const ToolRun& run) {
  return FindPresenceTest(run.commandLine) == nullptr && !IsOwnCommand(run.program);
}

/// Whether `test` holds for a line of `text`, which may end with CR; the lines after that one are
/// not looked at.
template <typename Test>
bool AnyLine(std::string_view text, const Test& test) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    if (test(text.substr(0, end))) return true;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return false;
}

/// What the tool itself printed, wherever that went.
std::string_view GetPrinted(const ToolAnswer& answer) {
  if (!answer.unfiltered.empty()) return answer.unfiltered;
  return answer.file.empty() ? answer.output : answer.fileText;
}

bool HasErrorLine(const pq::ModuleDescription& module, std::string_view printed) {
  return !module.errorLines.empty() && AnyLine(printed, [&](std::string_view line) {
    return std::ranges::any_of(module.errorLines, [&](const pq::ErrorLine& error) {
      return line.starts_with(error.beginning) && line.find(error.part) != std::string_view::npos;
    });
  });
}

/// The tool's own words for why it failed; empty without, or if they are not plain.
std::string FindReason(const pq::ModuleDescription& module, const std::string& program,
                       std::string_view printed) {
  constexpr std::size_t kLongestReason = 80;  // columns
  // In bytes. Reports can be long, and their heads have the reason.
  constexpr std::size_t kLongestHead = 4096;
  for (const pq::ReasonLine& known : module.reasonLines) {
    if (!EndsWithoutCase(program, known.program)) continue;
    std::string reason;
    AnyLine(printed.substr(0, kLongestHead), [&](std::string_view line) {
      if (!line.starts_with(known.label)) return false;
      reason = Trim(line.substr(known.label.size()));
      return true;
    });
    const bool isPlain = std::ranges::all_of(reason, [](char c) { return c >= ' ' && c <= '~'; });
    return isPlain && reason != known.nothing ? CutText(reason, kLongestReason) : std::string();
  }
  return {};
}

/// What the program printed that explains something.
const pq::AnswerExplanation* FindExplanation(const ToolRun& run,
                                             const pq::ModuleDescription& module,
                                             std::string_view printed) {
  const auto found = std::ranges::find_if(module.answers, [&](const pq::AnswerExplanation& known) {
    return EndsWithoutCase(run.program, known.command.program) &&
           run.arguments == known.command.arguments &&
           printed.find(known.words) != std::string_view::npos;
  });
  return found == module.answers.end() ? nullptr : &*found;
}

/// Notes the facts that a log line tells of the run that it is about.
void NoteRun(ToolRun& run, std::string_view text, const pq::FailureSentence* known,
             const pq::ModuleDescription* module) {
  if (known != nullptr) {
    if (known->failure == pq::StepFailure::kToolNotRun) run.startFailure = text;
    if (known->failure == pq::StepFailure::kOutputNotOpened) run.openFailure = text;
    if (known->failure == pq::StepFailure::kNothingToReport) {
      run.openFailure = text;
      run.hadNothingToReport = true;
    }
  } else if (text.starts_with(pq::kChunkSize)) {
    run.printed = true;
    run.reportedError = true;  // Until the whole output is taken.
  } else if (text.starts_with(pq::kWholeOutput)) {
    const std::string_view error = module == nullptr ? "" : std::string_view(module->toolErrorText);
    run.reportedError = !error.empty() && text.find(error) != std::string_view::npos;
  }
}

}  // namespace

std::string DescribeStatus(const TableStatus& status) {
  std::string text = status.text;
  for (const std::string& note : status.notes) text += "; " + note;
  return text;
}

void StatusTracker::Module(const std::string& name, const std::string& /*description*/) {
  module = name;
  description = FindModuleDescription(name);
  runIsOpen = false;
  starts.Module(name);
}

void StatusTracker::Enumerate(const std::string& name, const std::string& /*table*/) {
  module = name;
  description = FindModuleDescription(name);
}

ToolRun& StatusTracker::BeginRun(const std::string& commandLine, bool pipe) {
  ToolRun run;
  run.module = module;
  run.commandLine = commandLine;
  run.program = FindProgram(commandLine);
  run.arguments = FindArguments(commandLine);
  const std::string target = FindTarget(commandLine);
  (target.find('\\') != std::string::npos ? run.file : run.handedOn) = GetFileName(target);
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

void StatusTracker::OnProcess(const std::string& /*application*/, const std::string& commandLine,
                              bool /*inheritHandles*/, bool pipe) {
  BeginRun(commandLine, pipe).isThere = !hasPrograms || hasPrograms(commandLine);
  starts.Start();
  runJustBegan = true;
}

void StatusTracker::OnAnswer(const ToolAnswer& answer) {
  if (runs.empty()) return;
  ToolRun& run = runs.back();
  if (run.readThroughPipe) run.wasCut = ExceedsPipe(answer);
  const pq::ModuleDescription* runsModule = FindModuleDescription(run.module);
  if (runsModule == nullptr) return;
  const std::string_view printed = GetPrinted(answer);
  run.explanation = FindExplanation(run, *runsModule, printed);
  run.printedErrorLine = HasErrorLine(*runsModule, printed);
  run.reason = FindReason(*runsModule, run.program, printed);
}

void StatusTracker::OnSystem(const std::string& command) {
  const std::string commandLine = "/c " + command;
  BeginRun(commandLine, false).isThere = !hasPrograms || hasPrograms(commandLine);
  starts.Start();
  starts.End();
  runJustBegan = true;
}

void StatusTracker::OnOpen(const std::string& path, const std::string& /*mode*/) {
  const std::string file = GetFileName(path);
  const std::string folder = GetFolderName(path);
  // A tool that leaves a folder of files is described by the folder's name.
  const auto leavesFolder = [&](const ToolRun& run) {
    return std::ranges::any_of(FindTables(run), [&](const pq::TableDescription* table) {
      return std::ranges::any_of(table->commands, [&](const pq::ToolCommand& command) {
        return command.file == folder && IsRunOf(run, command);
      });
    });
  };
  for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
    if (run->module != module) continue;
    if (run->file.empty() ? !leavesFolder(*run) : LowerCase(run->file) != LowerCase(file)) continue;
    NoteRead(*run, path);
    return;
  }
}

void StatusTracker::NoteRead(ToolRun& run, const std::string& path) {
  const std::optional<OldFile> old = findOldFile ? findOldFile(path) : std::nullopt;
  if (!old || interrupted) return;
  const bool mayBeNew = !old->written && run.file.empty() && run.handedOn.empty();
  if (mayBeNew && run.isThere && DescribeError(run).empty()) return;
  const bool isOlder = run.oldFile && old->written && run.oldFile->written &&
                       old->written->time < run.oldFile->written->time;
  if (!run.oldFile || isOlder) run.oldFile = old;
}

bool StatusTracker::LacksOutput(const ToolRun& run) const {
  if (run.file.empty() || interrupted) return false;
  if (logFileSize && !logFileSize(run.file)) return true;
  return findOldFile && findOldFile(FindTarget(run.commandLine)).has_value();
}

void StatusTracker::OnProcessEnd(std::uint32_t exitCode) {
  if (!runs.empty()) {
    ToolRun& run = runs.back();
    if (!run.isFiltered) run.exitCode = exitCode;
    run.isUnwritable = exitCode == kNoOutputFile && LacksOutput(run);
  }
  starts.End();
  runJustBegan = false;
}

void StatusTracker::OnToolEnded(unsigned seconds) {
  if (!runs.empty()) runs.back().endedAfterSeconds = seconds;
}

void StatusTracker::OnToolRefused(unsigned seconds) {
  if (runs.empty()) return;
  runs.back().endedAfterSeconds = seconds;
  runs.back().endedBefore = true;
}

void StatusTracker::OnToolOutOfMemory(unsigned mebibytes) {
  if (!runs.empty()) runs.back().memoryLimit = mebibytes;
}

void StatusTracker::OnRefused() {
  interrupted = true;
  // From here on the module's words tell of the refusal, not of the machine.
  if (runJustBegan) runs.back().refused = true;
  runIsOpen = false;
}

void StatusTracker::Log(const LogLine& line) {
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

void StatusTracker::NoteLog(std::string_view text) {
  if (!runIsOpen) return;
  const pq::FailureSentence* known = FindFailureSentence(text);
  auto run = runs.rbegin();
  if (known != nullptr && !known->program.empty()) {
    run = std::find_if(runs.rbegin(), runs.rend(), [&](const ToolRun& candidate) {
      return candidate.module == module && EndsWithoutCase(candidate.program, known->program);
    });
  }
  if (run != runs.rend()) NoteRun(*run, text, known, description);
}

std::vector<const ToolRun*> StatusTracker::FindRuns(const std::string& name,
                                                    const pq::TableDescription& table) const {
  std::vector<const ToolRun*> found;
  for (const pq::ToolCommand& command : table.commands) {
    for (const ToolRun& run : runs) {
      if (run.module == name && IsRunOf(run, command)) found.push_back(&run);
    }
  }
  return found;
}

std::vector<const pq::TableDescription*> StatusTracker::FindTables(const ToolRun& run) const {
  std::vector<const pq::TableDescription*> found;
  const pq::ModuleDescription* description = FindModuleDescription(run.module);
  if (description == nullptr) return found;
  for (const pq::TableDescription& table : description->tables) {
    const bool isServed = std::ranges::any_of(
        table.commands, [&](const pq::ToolCommand& command) { return IsRunOf(run, command); });
    if (isServed) found.push_back(&table);
  }
  return found;
}

TableStatus StatusTracker::ExplainMissing(const std::vector<const ToolRun*>& found) const {
  const std::string names = JoinNames(found);
  const bool hasOtherAnswers = std::ranges::any_of(runs, [&](const ToolRun& run) {
    return run.isThere && LowerCase(run.program) == LowerCase(found.front()->program);
  });
  if (hasOtherAnswers) {
    return {"tool missing", fmt::format("the recording has no such answer of {}", names)};
  }
  const bool areSeveral = names.find(" and ") != std::string::npos;
  return {"tool missing",
          fmt::format("{} {} not on this machine", names, areSeveral ? "are" : "is")};
}

std::optional<TableStatus> StatusTracker::ExplainPresenceTest(const ToolRun& run) const {
  const pq::PresenceTest* test = FindPresenceTest(run.commandLine);
  if (test == nullptr || run.refused) return std::nullopt;
  TableStatus status;
  if (!run.isThere) {
    status = ExplainMissing({&run});
  } else if (run.endedAfterSeconds || run.memoryLimit > 0) {
    status = {FindErrorOutcome(run),
              fmt::format("{} {}", GetFileName(run.program), DescribeError(run))};
  } else {
    return std::nullopt;
  }
  status.text += ", so it is not known whether this machine has " + test->device;
  return status;
}

TableStatus StatusTracker::ExplainRuns(const std::vector<const ToolRun*>& found,
                                       const pq::TableDescription& table) const {
  if (std::ranges::none_of(found, &ToolRun::isThere)) return ExplainMissing(found);
  const ToolRun& run = ChooseRun(found, table);
  if (!run.isThere) return ExplainMissing({&run});
  const std::string name = GetFileName(run.program);
  const std::string error = DescribeError(run);
  if (run.endedAfterSeconds || run.memoryLimit > 0) {
    return {FindErrorOutcome(run), fmt::format("{} {}", name, error)};
  }
  if (run.refused) return kInterrupted;
  if (!run.startFailure.empty()) {
    return {"could not start", fmt::format("{}: {}", name, run.startFailure)};
  }
  if (run.hadNothingToReport) {
    return {kNotOpened,
            fmt::format("{}{}{}: {}", name, error.empty() ? "" : " ", error, run.openFailure)};
  }
  if (!error.empty()) return {FindErrorOutcome(run), fmt::format("{} {}", name, error)};
  if (!run.openFailure.empty()) {
    return {kNotOpened, fmt::format("{}: {}", name, run.openFailure)};
  }
  for (const ToolRun& needed : runs) {
    if (&needed <= &run || needed.module != run.module || needed.startFailure.empty()) continue;
    if (std::ranges::find(table.neededCommands, needed.program) == table.neededCommands.end()) {
      continue;
    }
    return {"could not start", fmt::format("{}: {}", needed.program, needed.startFailure)};
  }
  bool printed = run.printed || run.isFiltered;
  for (const pq::ToolCommand& command : table.commands) {
    if (command.file.empty() || !logFileSize) continue;
    printed = printed || logFileSize(command.file).value_or(0) > 0;
  }
  if (!printed) return {"nothing printed", fmt::format("{} printed nothing", name)};
  if (!table.whyNoRow.empty()) return {"no rows in output", table.whyNoRow};
  return {"no rows in output", fmt::format("{} printed nothing that belongs here", name)};
}

std::optional<TableStatus> StatusTracker::ExplainByLog(const std::string& name,
                                                       const pq::TableDescription& table) const {
  const auto lines = log.find(name);
  if (lines == log.end()) return std::nullopt;
  const auto& explanations = FindModuleDescription(name)->explanations;
  for (auto line = lines->second.rbegin(); line != lines->second.rend(); ++line) {
    for (const pq::Explanation& explanation : explanations) {
      if (!Explains(explanation, *line) || !Concerns(explanation, table.className)) continue;
      return TableStatus{explanation.outcome, explanation.text};
    }
  }
  return std::nullopt;
}

std::optional<TableStatus> StatusTracker::ExplainByAnswers(
    const std::string& name, const pq::TableDescription& table) const {
  std::vector<std::string> texts;
  std::string outcome;
  for (const ToolRun& run : runs) {
    if (run.module != name || run.explanation == nullptr) continue;
    const auto& tables = run.explanation->tables;
    if (std::ranges::find(tables, table.className) == tables.end()) continue;
    outcome = run.explanation->outcome;
    texts.push_back(run.explanation->text);
  }
  if (texts.empty()) return std::nullopt;
  return TableStatus{outcome, fmt::format("{}", fmt::join(texts, "; "))};
}

TableStatus StatusTracker::ExplainWithoutRun(const std::string& name,
                                             const pq::TableDescription& table) const {
  if (const auto explained = ExplainByLog(name, table)) {
    const std::string& outcome = explained->outcome;
    if (outcome != kNoSuchDevice && outcome != kToolError && outcome != kDeclined) {
      return *explained;
    }
    for (const ToolRun& run : runs) {
      if (run.module != name) continue;
      if (const auto unknown = ExplainPresenceTest(run)) return *unknown;
    }
    return *explained;
  }
  if (interrupted) return kInterrupted;
  // Of the table's own tools, and of the one that the module asks first, since that can end it all.
  std::vector<const ToolRun*> deciding;
  const ToolRun* last = nullptr;
  for (const ToolRun& run : runs) {
    if (run.module != name) continue;
    if (deciding.empty() || IsToolOf(run, table)) deciding.push_back(&run);
    last = &run;
  }
  for (const ToolRun* decided : deciding) {
    const ToolRun& run = *decided;
    if (!HasFailed(run)) continue;
    if (!run.isThere) return ExplainMissing({&run});
    if (run.endedBefore || run.isUnwritable) {
      return {FindErrorOutcome(run),
              fmt::format("{} {}", GetFileName(run.program), DescribeError(run))};
    }
    if (run.startFailure.empty()) continue;
    return {"could not start", fmt::format("{}: {}", GetFileName(run.program), run.startFailure)};
  }
  for (const ToolRun* run : deciding) {
    if (run->openFailure.empty()) continue;
    return {kNotOpened, fmt::format("{}: {}", GetFileName(run->program), run->openFailure)};
  }
  // Not every module says that it cannot open the output of its first tool, but it ends there.
  if (last != nullptr && last == deciding.front() && !last->file.empty() && logFileSize &&
      !logFileSize(last->file)) {
    return {kNotOpened, fmt::format("{}: {} is not there", GetFileName(last->program), last->file)};
  }
  return {"not reached", "no step of the collection asked for it"};
}

TableStatus StatusTracker::DescribeRows(const std::string& name, const pq::TableDescription* table,
                                        std::size_t rowCount) const {
  TableStatus status{"rows", fmt::format("{} row{}", rowCount, rowCount == 1 ? "" : "s")};
  std::string& text = status.text;
  if (table != nullptr) {
    std::string error;
    const std::vector<const ToolRun*> found = FindRuns(name, *table);
    const bool areMissing = !found.empty() && std::ranges::none_of(found, [](const ToolRun* run) {
      return run->isThere || run->oldFile;
    });
    // The rows are the interpreter's own words then, or empty files.
    if (areMissing && !table->hasHollowRows) {
      status.missing = ExplainMissing(found).text;
      text += ", but " + status.missing;
    }
    for (const ToolRun* run : found) {
      if (run->wasCut) {
        text += fmt::format(", of the first {} MiB that {} printed", pq::kPipeOutputLimit >> 20,
                            GetFileName(run->program));
      }
      // Rows show that an error text, if there is one, was none; not so a whole line of it.
      const bool seemsToFail = run->reportedError && !run->printedErrorLine;
      if (!error.empty() || !run->isThere || run->oldFile || seemsToFail ||
          IsMadeUpFor(*run, *table)) {
        continue;
      }
      error = DescribeError(*run);
      if (!error.empty()) text += fmt::format(", but {} {}", GetFileName(run->program), error);
    }
  }
  return status;
}

TableStatus StatusTracker::FindStatus(const std::string& name, const std::string& className,
                                      std::size_t rowCount) const {
  const pq::TableDescription* table = FindTableDescription(className);
  if (rowCount > 0) return DescribeRows(name, table, rowCount);
  if (table == nullptr) return {"not reached", "no step of the collection asked for it"};
  if (!table->whyAlwaysEmpty.empty()) return {"always empty", table->whyAlwaysEmpty};
  const std::vector<const ToolRun*> found = FindRuns(name, *table);
  const bool isExplained =
      !table->commandsAreAlternatives || std::ranges::all_of(found, [](const ToolRun* run) {
        return !run->isThere || run->explanation != nullptr;
      });
  if (const auto explained = ExplainByAnswers(name, *table); explained && isExplained) {
    return *explained;
  }
  return found.empty() ? ExplainWithoutRun(name, *table) : ExplainRuns(found, *table);
}

std::vector<std::string> StatusTracker::DescribeEmptyFiles(
    const std::string& name, const std::vector<std::string>& fileNames) const {
  std::vector<std::string> reasons;
  std::vector<std::vector<std::string>> files;  // by their reason
  for (const std::string& fileName : fileNames) {
    const auto run = std::ranges::find_if(runs, [&](const ToolRun& candidate) {
      return candidate.module == name &&
             LowerCase(candidate.file).starts_with(LowerCase(fileName) + '.');
    });
    if (run == runs.end()) continue;
    const std::string error = DescribeError(*run);
    const std::string reason = !run->isThere
                                   ? ExplainMissing({&*run}).text
                                   : fmt::format("{} {}", GetFileName(run->program),
                                                 error.empty() ? "printed nothing" : error);
    const auto known = std::ranges::find(reasons, reason);
    if (known == reasons.end()) {
      reasons.push_back(reason);
      files.push_back({run->file});
    } else {
      files[static_cast<std::size_t>(known - reasons.begin())].push_back(run->file);
    }
  }
  std::vector<std::string> notes;
  for (std::size_t i = 0; i < reasons.size(); ++i) {
    notes.push_back(fmt::format("{} {} empty: {}", fmt::join(files[i], ", "),
                                files[i].size() == 1 ? "is" : "are", reasons[i]));
  }
  return notes;
}

std::vector<std::string> StatusTracker::FindNotes(const std::string& name,
                                                  const std::string& className) const {
  std::vector<std::string> notes;
  const pq::TableDescription* table = FindTableDescription(className);
  if (table == nullptr) return notes;
  for (const ToolRun* run : FindRuns(name, *table)) {
    if (!run->oldFile) continue;
    std::string note = fmt::format("from files of {}; {} {}", FormatAge(*run->oldFile),
                                   GetFileName(run->program), DescribeOldFile(*run));
    if (std::ranges::find(notes, note) == notes.end()) notes.push_back(std::move(note));
  }
  return notes;
}

bool StatusTracker::IsMadeUpFor(const ToolRun& run, const pq::TableDescription& table) const {
  if (!table.commandsAreAlternatives) return ExplainByAnswers(run.module, table).has_value();
  return std::ranges::any_of(FindRuns(run.module, table), [](const ToolRun* other) {
    return !HasFailed(*other) && other->openFailure.empty();
  });
}

std::vector<Failure> StatusTracker::FindFailedTools(
    const std::function<bool(const std::string& className)>& hasRows) const {
  std::vector<Failure> failures;
  for (const ToolRun& run : runs) {
    std::string error = DescribeError(run);
    if (run.oldFile) {
      error = fmt::format("{}; files of {} are used instead", DescribeOldFile(run),
                          FormatAge(*run.oldFile));
    } else if (error.empty() || IsTold(run) || run.explanation != nullptr ||
               !HasOrdinaryExitCode(run)) {
      continue;
    }
    const std::vector<const pq::TableDescription*> tables = FindTables(run);
    const auto leavesNothingOut = [&](const pq::TableDescription* table) {
      return IsMadeUpFor(run, *table) ||
             (run.exitCode.value_or(0) == 0 && !run.printedErrorLine && hasRows(table->className));
    };
    const bool needsNoWord =
        !run.oldFile && !tables.empty() && std::ranges::all_of(tables, leavesNothingOut);
    if (needsNoWord) continue;
    auto known = std::ranges::find_if(failures, [&](const Failure& failure) {
      return failure.module == run.module && failure.tool == GetFileName(run.program) &&
             failure.text == error;
    });
    if (known == failures.end()) {
      failures.push_back({run.module, GetFileName(run.program), error});
      known = std::prev(failures.end());
    }
    for (const pq::TableDescription* table : tables) {
      if (std::ranges::find(known->tables, table->className) == known->tables.end()) {
        known->tables.push_back(table->className);
      }
    }
  }
  return failures;
}

}  // namespace host
