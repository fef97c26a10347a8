#include "host/collect/table_status.h"

#include <fmt/format.h>

#include <algorithm>

#include "frame/sentences.h"
#include "frame/tool_runner.h"
#include "host/catalogue/table_sources.h"
#include "host/collect/command_text.h"
#include "host/collect/failures.h"
#include "host/recorded/own_commands.h"
#include "host/text/ascii.h"

namespace host {
namespace {

const TableStatus kInterrupted{"interrupted", "the collection was interrupted before"};
constexpr char kNoSuchDevice[] = "no such device";
constexpr char kToolError[] = "tool reported an error";

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
  return LowerCase(text).ends_with(LowerCase(end));
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

/// Why the program's answer is not to be trusted; empty when there is no reason.
std::string DescribeError(const ToolRun& run) {
  if (run.endedBefore) {
    return fmt::format("had been ended after {} s and was not started again",
                       run.endedAfterSeconds);
  }
  if (run.endedAfterSeconds > 0) {
    return fmt::format("was ended after {} s", run.endedAfterSeconds);
  }
  if (run.memoryLimit > 0) {
    return fmt::format("wanted more than its {} MiB of memory", run.memoryLimit);
  }
  if (run.exitCode.value_or(0) != 0) return fmt::format("ended with code {}", *run.exitCode);
  if (run.reportedError) return "printed an error text";
  return {};
}

/// The outcome of a program with such an error.
const char* FindErrorOutcome(const ToolRun& run) {
  if (run.endedAfterSeconds > 0) return "ended";
  return run.memoryLimit > 0 ? "out of memory" : kToolError;
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
  if (!file.empty()) return fmt::format("did not run, because {} could not be written", file);
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
  return !run.isThere || HasEndedStep(run) || run.endedAfterSeconds > 0 || run.memoryLimit > 0;
}

/// Whether the exit code is an answer, or of a command that says nothing by it: a folder may be
/// there already, and a file to copy may not.
bool HasOrdinaryExitCode(const ToolRun& run) {
  return FindPresenceTest(run.commandLine) == nullptr && !IsOwnCommand(run.program);
}

/// What the program printed, in `answer`, that explains something.
const pq::AnswerExplanation* FindExplanation(const ToolRun& run, const ToolAnswer& answer) {
  const pq::ModuleDescription* module = FindModuleDescription(run.module);
  if (module == nullptr) return nullptr;
  const std::string_view printed = answer.file.empty() ? answer.output : answer.fileText;
  const auto found = std::ranges::find_if(module->answers, [&](const pq::AnswerExplanation& known) {
    return EndsWithoutCase(run.program, known.command.program) &&
           run.arguments == known.command.arguments &&
           printed.find(known.words) != std::string_view::npos;
  });
  return found == module->answers.end() ? nullptr : &*found;
}

/// Why nobody knows whether the device is there that `run` looked for; none when it is known, or
/// the run looked for none.
std::optional<TableStatus> ExplainPresenceTest(const ToolRun& run) {
  const pq::PresenceTest* test = FindPresenceTest(run.commandLine);
  if (test == nullptr || run.refused) return std::nullopt;
  const char* outcome = "tool missing";
  std::string reason = "is not on this machine";
  if (run.isThere) {
    if (run.endedAfterSeconds == 0 && run.memoryLimit == 0) return std::nullopt;
    outcome = FindErrorOutcome(run);
    reason = DescribeError(run);
  }
  return TableStatus{outcome, fmt::format("{} {}, so it is not known whether this machine has {}",
                                          GetFileName(run.program), reason, test->device)};
}

/// Notes the facts that a log line tells of the run that it is about.
void NoteRun(ToolRun& run, std::string_view text, const pq::ModuleDescription* module) {
  if (const pq::FailureSentence* known = FindFailureSentence(text)) {
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
  runIsOpen = false;
  starts.Module(name);
}

void StatusTracker::Enumerate(const std::string& name, const std::string& /*table*/) {
  module = name;
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
  run.explanation = FindExplanation(run, answer);
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

void StatusTracker::OnProcessEnd(std::uint32_t exitCode) {
  if (!runs.empty() && !runs.back().isFiltered) runs.back().exitCode = exitCode;
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
  const pq::ModuleDescription* description = FindModuleDescription(module);
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
  if (run != runs.rend()) NoteRun(*run, text, FindModuleDescription(module));
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

TableStatus StatusTracker::ExplainRuns(const std::vector<const ToolRun*>& found,
                                       const pq::TableDescription& table) const {
  if (std::ranges::none_of(found, &ToolRun::isThere)) return ExplainMissing(found);
  const ToolRun& run = ChooseRun(found, table);
  if (!run.isThere) return ExplainMissing({&run});
  const std::string name = GetFileName(run.program);
  const std::string error = DescribeError(run);
  if (run.endedAfterSeconds > 0 || run.memoryLimit > 0) {
    return {FindErrorOutcome(run), fmt::format("{} {}", name, error)};
  }
  if (run.refused) return kInterrupted;
  if (!run.startFailure.empty()) {
    return {"could not start", fmt::format("{}: {}", name, run.startFailure)};
  }
  if (run.hadNothingToReport) {
    return {"output could not be opened",
            fmt::format("{}{}{}: {}", name, error.empty() ? "" : " ", error, run.openFailure)};
  }
  if (!error.empty()) return {FindErrorOutcome(run), fmt::format("{} {}", name, error)};
  if (!run.openFailure.empty()) {
    return {"output could not be opened", fmt::format("{}: {}", name, run.openFailure)};
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
    if (explained->outcome != kNoSuchDevice && explained->outcome != kToolError) return *explained;
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
    if (run.endedBefore) {
      return {FindErrorOutcome(run),
              fmt::format("{} {}", GetFileName(run.program), DescribeError(run))};
    }
    if (run.startFailure.empty()) continue;
    return {"could not start", fmt::format("{}: {}", GetFileName(run.program), run.startFailure)};
  }
  for (const ToolRun* run : deciding) {
    if (run->openFailure.empty()) continue;
    return {"output could not be opened",
            fmt::format("{}: {}", GetFileName(run->program), run->openFailure)};
  }
  // Not every module says that it cannot open the output of its first tool, but it ends there.
  if (last != nullptr && last == deciding.front() && !last->file.empty() && logFileSize &&
      !logFileSize(last->file)) {
    return {"output could not be opened",
            fmt::format("{}: {} is not there", GetFileName(last->program), last->file)};
  }
  return {"not reached", "no step of the collection asked for it"};
}

TableStatus StatusTracker::DescribeRows(const std::string& name, const pq::TableDescription* table,
                                        std::size_t rowCount) const {
  std::string text = fmt::format("{} row{}", rowCount, rowCount == 1 ? "" : "s");
  if (table != nullptr) {
    std::string error;
    for (const ToolRun* run : FindRuns(name, *table)) {
      if (run->wasCut) {
        text += fmt::format(", of the first {} MiB that {} printed", pq::kPipeOutputLimit >> 20,
                            GetFileName(run->program));
      }
      // Rows show that an error text, if there is one, was none.
      if (!error.empty() || !run->isThere || run->oldFile || run->reportedError ||
          IsMadeUpFor(*run, *table)) {
        continue;
      }
      error = DescribeError(*run);
      if (!error.empty()) text += fmt::format(", but {} {}", GetFileName(run->program), error);
    }
  }
  return {"rows", std::move(text)};
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
             (run.exitCode.value_or(0) == 0 && hasRows(table->className));
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
