#include "host/collect/tool_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

#include "host/catalogue/table_sources.h"
#include "host/collect/failures.h"
#include "host/text/ascii.h"

namespace host {
namespace {

std::string DescribeUnwritable(const std::string& file) {
  return fmt::format("did not run, because {} could not be written", file);
}

}  // namespace

bool IsOfProgram(const ToolRun& run, std::string_view program) {
  const std::string_view path = run.program;
  return path.size() >= program.size() &&
         std::equal(program.begin(), program.end(),
                    path.end() - static_cast<std::ptrdiff_t>(program.size()),
                    [](char a, char b) { return LowerCase(a) == LowerCase(b); });
}

bool IsRunOf(const ToolRun& run, const pq::ToolCommand& command) {
  if (!IsOfProgram(run, command.program)) return false;
  if (!command.argumentsFromOperator && run.arguments != command.arguments) return false;
  if (run.readThroughPipe && !command.file.empty()) return false;
  return run.file.empty() || LowerCase(run.file) == LowerCase(command.file);
}

std::vector<const pq::TableDescription*> FindTablesOf(const ToolRun& run) {
  std::vector<const pq::TableDescription*> found;
  const pq::ModuleDescription* module = FindModuleDescription(run.module);
  if (module == nullptr) return found;
  for (const pq::TableDescription& table : module->tables) {
    const bool isServed = std::ranges::any_of(
        table.commands, [&](const pq::ToolCommand& command) { return IsRunOf(run, command); });
    if (isServed) found.push_back(&table);
  }
  return found;
}

bool HasFailed(const ToolRun& run) {
  return !run.isThere || run.refused || !run.startFailure.empty() || run.exitCode.value_or(0) != 0;
}

bool HasEndedStep(const ToolRun& run) {
  return run.refused || !run.startFailure.empty() || !run.openFailure.empty();
}

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

}  // namespace host
