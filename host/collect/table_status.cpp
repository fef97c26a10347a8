#include "host/collect/table_status.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/catalogue/table_sources.h"
#include "host/collect/command_text.h"
#include "host/recorded/interpreter.h"
#include "host/text/ascii.h"

namespace host {
namespace {

constexpr std::string_view kPrefix = "[repo] ";

/// How a log line begins that belongs to the run before it.
constexpr std::string_view kStartFailure = "CreateProcess failed";
constexpr std::string_view kExitCodeFailure = "GetExitCodeProcess() failed";
constexpr std::string_view kOpenFailure = "Failed to open ";
constexpr std::string_view kByteCount = "dw:";
constexpr std::string_view kWholeOutput = "se:";
/// What ipmiutil's error texts begin with.
constexpr std::string_view kErrorText = "Error";

/// A line that explains why steps of a module did not run, and what it means for a table.
struct Explanation {
  std::string_view line;
  std::string_view outcome;
  std::string_view text;
  std::string_view tables;  ///< blank-separated classes; empty: all of the module
};
constexpr Explanation kExplanations[] = {
    {"has no BMC, return 4", "no such device", "this machine has no BMC", ""},
    {"check_amt_bmc bmc command meets error", "tool reported an error",
     "the BMC could not be looked for: check_amt_bmc reported an error", ""},
    {"Marl(ZM310), has BMC, return 7", "not this platform family",
     "this platform family (7) is not asked for it", "LEDINFO"},
    {"ZK140,ZP480 or ZW430E, has BMC, return 9", "not this platform family",
     "this platform family (9) is not asked for it", "VERINFO PSUINFO LEDINFO SDRINFO"},
    {"IVB 2B3C,has BMC, return 11", "not this platform family",
     "this platform family (11) is not asked for it", "VERINFO PSUINFO LEDINFO SDRINFO"},
    {"Has no AMT, return 1", "no such device", "this machine has no AMT", ""},
    {"AMT module, no parameter inputed!", "declined", "no AMT address and credentials were given",
     ""},
    {"Get AMT IP failed", "declined", "no AMT address was given", ""},
    {"Failed to create pipe for arp info", "could not start", "its pipe could not be created",
     "ARPINFO"},
    {"Failed to create pipe for netstat info", "could not start", "its pipe could not be created",
     "NETSTATINFO"},
    {"Failed to create pipe for MC info", "could not start", "its pipe could not be created",
     "MCINFO"},
    {"Failed to create pipe for PQM selftest", "could not start", "its pipe could not be created",
     "SELFINFO"},
    {"Failed to create pipe for version info", "could not start", "its pipe could not be created",
     "VERINFO"},
    {"Failed to create pipe for PSU info", "could not start", "its pipe could not be created",
     "PSUINFO"},
    {"Failed to create pipe for LAN info", "could not start", "its pipe could not be created",
     "LANINFO"},
    {"Failed to create pipe for LED info", "could not start", "its pipe could not be created",
     "LEDINFO"},
    {"Failed to create pipe for sensor info", "could not start", "its pipe could not be created",
     "SENSORINFO"},
    {"Create Pipe failed", "could not start", "its pipe could not be created", "SDRINFO"},
};

const TableStatus kInterrupted{"interrupted", "the collection was interrupted before"};

constexpr std::string_view kLanguage = "Get OS language, lcid=";
constexpr std::string_view kEnglish = "1033";
/// Tables that only fixed rows or nothing at all fills.
constexpr std::string_view kUnfilled = "JUNADDTABLE";

bool Names(std::string_view tables, std::string_view className) {
  if (tables.empty()) return true;
  const std::vector<std::string> words = SplitWords(tables);
  return std::find(words.begin(), words.end(), className) != words.end();
}

std::string_view WithoutPrefix(std::string_view text) {
  return text.starts_with(kPrefix) ? text.substr(kPrefix.size()) : text;
}

/// The program's file name, for people.
std::string NameOf(std::string_view program) {
  return std::string(program.substr(program.rfind('\\') + 1));
}

std::string NamesOf(const std::vector<const ToolRun*>& runs) {
  std::vector<std::string> names;
  for (const ToolRun* run : runs) {
    std::string name = NameOf(run->program);
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      names.push_back(std::move(name));
    }
  }
  return fmt::format("{}", fmt::join(names, " and "));
}

bool EndsWithoutCase(std::string_view text, std::string_view end) {
  return LowerCase(text).ends_with(LowerCase(end));
}

bool IsToolOf(const ToolRun& run, const pq::TableSource& source) {
  return std::any_of(source.commands.begin(), source.commands.end(),
                     [&](const pq::ToolCommand& command) {
                       return EndsWithoutCase(run.program, command.program);
                     });
}

/// Other than a program that ended well and said so.
bool Failed(const ToolRun& run) {
  return !run.isThere || run.refused || !run.startFailure.empty() || run.exitCode.value_or(0) != 0;
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

void StatusTracker::OnSystem(const std::string& command) { BeginRun("/c " + command, false); }

void StatusTracker::OnProcessEnd(std::uint32_t exitCode) {
  if (!runs.empty()) runs.back().exitCode = exitCode;
  runJustBegan = false;
}

void StatusTracker::OnToolEnded(unsigned seconds) {
  if (!runs.empty()) runs.back().endedAfterSeconds = seconds;
}

void StatusTracker::OnRefused() {
  interrupted = true;
  // What the module says from here on tells of the refusal, not of the machine.
  if (runJustBegan) runs.back().refused = true;
  runIsOpen = false;
}

void StatusTracker::Log(const LogLine& line) {
  const std::string_view text = WithoutPrefix(line.text);
  runJustBegan = false;
  if (runIsOpen) {
    ToolRun& run = runs.back();
    if (text.starts_with(kStartFailure) || text.starts_with(kExitCodeFailure)) {
      run.startFailure = text;
    } else if (text.starts_with(kOpenFailure)) {
      run.openFailure = text;
    } else if (text.starts_with(kByteCount)) {
      run.printed = true;
      run.reportedError = true;  // Until the whole output is taken.
    } else if (text.starts_with(kWholeOutput)) {
      run.reportedError = text.find(kErrorText) != std::string_view::npos;
    }
  }
  const bool isTelling =
      !interrupted &&
      (text.starts_with(kLanguage) ||
       std::any_of(std::begin(kExplanations), std::end(kExplanations),
                   [&](const Explanation& explanation) { return text == explanation.line; }));
  if (isTelling) log[module].emplace_back(text);
}

std::vector<const ToolRun*> StatusTracker::RunsOf(const std::string& name,
                                                  const pq::TableSource& source) const {
  std::vector<const ToolRun*> found;
  for (const pq::ToolCommand& command : source.commands) {
    for (const ToolRun& run : runs) {
      if (run.module != name || !EndsWithoutCase(run.program, command.program)) continue;
      if (!command.argumentsFromOperator && run.arguments != command.arguments) continue;
      if (run.readThroughPipe && !command.file.empty()) continue;
      found.push_back(&run);
    }
  }
  return found;
}

TableStatus StatusTracker::StatusOfRuns(const std::vector<const ToolRun*>& found,
                                        const pq::TableSource& source) const {
  // The tool that ended well tells; otherwise the first that is there at all.
  const auto well =
      std::find_if(found.rbegin(), found.rend(), [](const ToolRun* r) { return !Failed(*r); });
  const auto there =
      std::find_if(found.begin(), found.end(), [](const ToolRun* r) { return r->isThere; });
  if (there == found.end()) {
    return {
        "tool missing",
        fmt::format(
            "{} {} not on this machine", NamesOf(found),
            found.size() > 1 && NamesOf(found).find(" and ") != std::string::npos ? "are" : "is")};
  }
  const ToolRun& run = well == found.rend() ? **there : **well;
  const std::string name = NameOf(run.program);
  if (run.endedAfterSeconds > 0) {
    return {"ended", fmt::format("{} was ended after {} s", name, run.endedAfterSeconds)};
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
  for (const pq::ToolCommand& command : source.commands) {
    if (command.file.empty() || !logFileSize) continue;
    printed = printed || logFileSize(command.file).value_or(0) > 0;
  }
  if (!printed) return {"nothing printed", fmt::format("{} printed nothing", name)};
  return {"no rows in output", fmt::format("{} printed nothing that belongs here", name)};
}

TableStatus StatusTracker::StatusWithoutRun(const std::string& name,
                                            const pq::TableSource& source) const {
  const auto lines = log.find(name);
  if (lines != log.end()) {
    for (auto line = lines->second.rbegin(); line != lines->second.rend(); ++line) {
      if (line->starts_with(kLanguage) && !line->ends_with(kEnglish)) {
        return {"not this language",
                "the table is made on US English systems only; elsewhere the tool's output stays "
                "as a file in the log folder"};
      }
      for (const Explanation& explanation : kExplanations) {
        if (*line != explanation.line || !Names(explanation.tables, source.className)) continue;
        return {std::string(explanation.outcome), std::string(explanation.text)};
      }
    }
  }
  if (interrupted) return kInterrupted;
  // Of the table's own tools, and of the one that the module asks first, since that can end it all.
  std::vector<const ToolRun*> deciding;
  for (const ToolRun& run : runs) {
    if (run.module != name) continue;
    if (deciding.empty() || IsToolOf(run, source)) deciding.push_back(&run);
  }
  for (const ToolRun* decided : deciding) {
    const ToolRun& run = *decided;
    if (!Failed(run)) continue;
    if (!run.isThere) {
      return {"tool missing", fmt::format("{} is not on this machine", NameOf(run.program))};
    }
    if (run.startFailure.empty()) continue;
    return {"could not start", fmt::format("{}: {}", NameOf(run.program), run.startFailure)};
  }
  for (const ToolRun* run : deciding) {
    if (run->openFailure.empty()) continue;
    return {"output could not be opened",
            fmt::format("{}: {}", NameOf(run->program), run->openFailure)};
  }
  return {"not reached", "no step of the collection asked for it"};
}

TableStatus StatusTracker::StatusOf(const std::string& name, const std::string& className,
                                    std::size_t rowCount) const {
  if (rowCount > 0) return {"rows", fmt::format("{} row{}", rowCount, rowCount == 1 ? "" : "s")};
  if (className == kUnfilled) return {"always empty", "nothing fills this table so far"};
  const pq::TableSource* source = FindTableSource(className);
  if (source == nullptr) return {"not reached", "no step of the collection asked for it"};
  const std::vector<const ToolRun*> found = RunsOf(name, *source);
  return found.empty() ? StatusWithoutRun(name, *source) : StatusOfRuns(found, *source);
}

}  // namespace host
