#include "host/collect/table_status.h"

#include <fmt/format.h>

#include <algorithm>

#include "frame/sentences.h"
#include "frame/tool_runner.h"
#include "host/catalogue/table_sources.h"
#include "host/collect/command_text.h"
#include "host/collect/failures.h"
#include "host/recorded/interpreter.h"
#include "host/text/ascii.h"

namespace host {
namespace {

const TableStatus kInterrupted{"interrupted", "the collection was interrupted before"};

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

/// Other than a program that ended well and said so.
bool HasFailed(const ToolRun& run) {
  return !run.isThere || run.refused || !run.startFailure.empty() || run.exitCode.value_or(0) != 0;
}

/// Notes the facts that a log line tells of the run before it.
void NoteRun(ToolRun& run, std::string_view text, const pq::ModuleDescription* module) {
  if (const pq::FailureSentence* known = FindFailureSentence(text)) {
    if (known->failure == pq::StepFailure::kToolNotRun) run.startFailure = text;
    if (known->failure == pq::StepFailure::kOutputNotOpened ||
        known->failure == pq::StepFailure::kNothingToReport) {
      run.openFailure = text;
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

void StatusTracker::Module(const std::string& name, const std::string& /*description*/) {
  module = name;
  runIsOpen = false;
}

void StatusTracker::Enumerate(const std::string& name, const std::string& /*table*/) {
  module = name;
}

void StatusTracker::BeginRun(const std::string& commandLine, bool pipe) {
  ToolRun run;
  run.module = module;
  run.commandLine = commandLine;
  run.program = FindProgram(commandLine);
  run.arguments = FindArguments(commandLine);
  run.readThroughPipe = pipe;
  run.isThere = !hasPrograms || hasPrograms(commandLine);
  runs.push_back(std::move(run));
  runIsOpen = true;
  runJustBegan = true;
}

void StatusTracker::OnProcess(const std::string& /*application*/, const std::string& commandLine,
                              bool /*inheritHandles*/, bool pipe) {
  BeginRun(commandLine, pipe);
}

void StatusTracker::OnAnswer(const ToolAnswer& answer) {
  if (!runs.empty() && runs.back().readThroughPipe) runs.back().wasCut = ExceedsPipe(answer);
}

void StatusTracker::OnSystem(const std::string& command) { BeginRun("/c " + command, false); }

void StatusTracker::OnProcessEnd(std::uint32_t exitCode) {
  if (!runs.empty()) runs.back().exitCode = exitCode;
  runJustBegan = false;
}

void StatusTracker::OnToolEnded(unsigned seconds) {
  if (!runs.empty()) runs.back().endedAfterSeconds = seconds;
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
  if (runIsOpen) NoteRun(runs.back(), text, description);
  const bool isTelling =
      !interrupted && description != nullptr &&
      std::ranges::any_of(description->explanations, [&](const pq::Explanation& explanation) {
        return Explains(explanation, text);
      });
  if (isTelling) log[module].emplace_back(text);
}

std::vector<const ToolRun*> StatusTracker::FindRuns(const std::string& name,
                                                    const pq::TableDescription& table) const {
  std::vector<const ToolRun*> found;
  for (const pq::ToolCommand& command : table.commands) {
    for (const ToolRun& run : runs) {
      if (run.module != name || !EndsWithoutCase(run.program, command.program)) continue;
      if (!command.argumentsFromOperator && run.arguments != command.arguments) continue;
      if (run.readThroughPipe && !command.file.empty()) continue;
      found.push_back(&run);
    }
  }
  return found;
}

TableStatus StatusTracker::ExplainRuns(const std::vector<const ToolRun*>& found,
                                       const pq::TableDescription& table) const {
  // The tool that ended well tells; otherwise the first that is there at all.
  const auto well =
      std::find_if(found.rbegin(), found.rend(), [](const ToolRun* r) { return !HasFailed(*r); });
  const auto there =
      std::find_if(found.begin(), found.end(), [](const ToolRun* r) { return r->isThere; });
  if (there == found.end()) {
    return {"tool missing",
            fmt::format("{} {} not on this machine", JoinNames(found),
                        found.size() > 1 && JoinNames(found).find(" and ") != std::string::npos
                            ? "are"
                            : "is")};
  }
  const ToolRun& run = well == found.rend() ? **there : **well;
  const std::string name = GetFileName(run.program);
  if (run.endedAfterSeconds > 0) {
    return {"ended", fmt::format("{} was ended after {} s", name, run.endedAfterSeconds)};
  }
  if (run.memoryLimit > 0) {
    return {"out of memory",
            fmt::format("{} wanted more than its {} MiB of memory", name, run.memoryLimit)};
  }
  if (run.refused) return kInterrupted;
  if (!run.startFailure.empty()) {
    return {"could not start", fmt::format("{}: {}", name, run.startFailure)};
  }
  if (run.exitCode.value_or(0) != 0) {
    return {"tool reported an error", fmt::format("{} ended with code {}", name, *run.exitCode)};
  }
  if (run.reportedError) {
    return {"tool reported an error", fmt::format("{} printed an error text", name)};
  }
  if (!run.openFailure.empty()) {
    return {"output could not be opened", fmt::format("{}: {}", name, run.openFailure)};
  }
  bool printed = run.printed;
  for (const pq::ToolCommand& command : table.commands) {
    if (command.file.empty() || !logFileSize) continue;
    printed = printed || logFileSize(command.file).value_or(0) > 0;
  }
  if (!printed) return {"nothing printed", fmt::format("{} printed nothing", name)};
  return {"no rows in output", fmt::format("{} printed nothing that belongs here", name)};
}

TableStatus StatusTracker::ExplainWithoutRun(const std::string& name,
                                             const pq::TableDescription& table) const {
  const auto lines = log.find(name);
  if (lines != log.end()) {
    const auto& explanations = FindModuleDescription(name)->explanations;
    for (auto line = lines->second.rbegin(); line != lines->second.rend(); ++line) {
      for (const pq::Explanation& explanation : explanations) {
        if (!Explains(explanation, *line) || !Concerns(explanation, table.className)) continue;
        return {explanation.outcome, explanation.text};
      }
    }
  }
  if (interrupted) return kInterrupted;
  // Of the table's own tools, and of the one that the module asks first, since that can end it all.
  std::vector<const ToolRun*> deciding;
  for (const ToolRun& run : runs) {
    if (run.module != name) continue;
    if (deciding.empty() || IsToolOf(run, table)) deciding.push_back(&run);
  }
  for (const ToolRun* decided : deciding) {
    const ToolRun& run = *decided;
    if (!HasFailed(run)) continue;
    if (!run.isThere) {
      return {"tool missing", fmt::format("{} is not on this machine", GetFileName(run.program))};
    }
    if (run.startFailure.empty()) continue;
    return {"could not start", fmt::format("{}: {}", GetFileName(run.program), run.startFailure)};
  }
  for (const ToolRun* run : deciding) {
    if (run->openFailure.empty()) continue;
    return {"output could not be opened",
            fmt::format("{}: {}", GetFileName(run->program), run->openFailure)};
  }
  return {"not reached", "no step of the collection asked for it"};
}

TableStatus StatusTracker::DescribeRows(const std::string& name, const pq::TableDescription* table,
                                        std::size_t rowCount) const {
  std::string text = fmt::format("{} row{}", rowCount, rowCount == 1 ? "" : "s");
  if (table != nullptr) {
    for (const ToolRun* run : FindRuns(name, *table)) {
      if (!run->wasCut) continue;
      text += fmt::format(", of the first {} MiB that {} printed", pq::kPipeOutputLimit >> 20,
                          GetFileName(run->program));
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
  return found.empty() ? ExplainWithoutRun(name, *table) : ExplainRuns(found, *table);
}

}  // namespace host
