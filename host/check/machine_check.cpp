#include "host/check/machine_check.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <map>
#include <set>

#include "frame/description.h"
#include "frame/platform.h"
#include "host/catalogue/table_sources.h"
#include "host/check/area_check.h"
#include "host/check/dry_machine.h"
#include "host/check/served_tables.h"
#include "host/collect/command_text.h"
#include "host/collect/selection.h"
#include "host/collect/unsafe_folders.h"
#include "host/recorded/interpreter.h"
#include "host/recorded/own_commands.h"
#include "host/text/decoder.h"

namespace host {
namespace {

/// The support archive and the controllers' logs of a large machine.
constexpr std::uint64_t kEnoughBytes = std::uint64_t{1} << 30;
constexpr double kBytesPerGiB = 1 << 30;

class Findings {
 public:
  void Good(std::string_view subject, std::string text) {
    Add(Finding::Kind::kGood, subject, std::move(text));
  }
  void Note(std::string_view subject, std::string text) {
    Add(Finding::Kind::kNote, subject, std::move(text));
  }
  void Missing(std::string_view subject, std::string text) {
    Add(Finding::Kind::kMissing, subject, std::move(text));
  }
  std::vector<Finding> Take() { return std::move(all); }

 private:
  void Add(Finding::Kind kind, std::string_view subject, std::string text) {
    all.push_back({kind, std::string(subject), std::move(text)});
  }

  std::vector<Finding> all;
};

/// The classes of each module's tables.
std::map<std::string, std::set<std::string>> ListClasses() {
  std::map<std::string, std::set<std::string>> classes;
  for (const LoadedModule& module : LoadLinkedModules()) {
    for (const auto& [name, handlers] : module.module->Tables()) classes[module.name].insert(name);
  }
  return classes;
}

void CheckSurroundings(const Surroundings& found, const std::string& logFolder,
                       Findings& findings) {
  if (found.libraryProblem.empty()) {
    findings.Good("library", "can be used");
  } else {
    findings.Missing("library", found.libraryProblem);
  }
  if (found.hasInterpreter) {
    findings.Good("interpreter", pq::kInterpreter);
  } else {
    findings.Missing("interpreter",
                     fmt::format("{} is not there; no tool can be run", pq::kInterpreter));
  }
  if (found.canWriteLogFolder) {
    findings.Good("log folder", logFolder + " can be written");
  } else {
    findings.Missing("log folder",
                     logFolder + " cannot be written; choose another with --log-folder");
  }
  const std::string room = fmt::format("{:.1f} GiB free for the log folder",
                                       static_cast<double>(found.freeBytes) / kBytesPerGiB);
  if (found.freeBytes >= kEnoughBytes) {
    findings.Good("disk", room);
  } else {
    findings.Note("disk", room +
                              "; logs of large controllers may not fit: make room, or choose "
                              "another folder with --log-folder");
  }
  if (found.isElevated) {
    findings.Good("rights", "elevated");
  } else {
    findings.Note("rights", fmt::format("{}; start this program as administrator", kNotElevated));
  }
}

void CheckLanguage(std::uint32_t languageId, Findings& findings) {
  if (languageId == pq::kUsEnglish) {
    findings.Good("language", fmt::format("{}, English (United States)", languageId));
    return;
  }
  std::vector<std::string> classes;
  std::vector<std::string> tools;
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::TableDescription& table : module.tables) {
      if (!table.needsUsEnglish) continue;
      classes.push_back(table.className);
      for (const pq::ToolCommand& command : table.commands) {
        tools.push_back(ToolName(command.program));
      }
    }
  }
  findings.Note("language", fmt::format("{}, not {} (English, United States): {} stay empty; read "
                                        "what {} print in the log folder",
                                        languageId, pq::kUsEnglish, fmt::join(classes, " and "),
                                        fmt::join(tools, " and ")));
}

/// Whether the interpreter ends the program's name within its path.
bool IsCut(const std::string& commandLine, const std::string& program) {
  const Pipeline pipeline =
      ParseCommandLine(commandLine, [&](std::string_view path) { return path == program; });
  std::string taken = pipeline.stages.empty() ? "" : pipeline.stages.front().program;
  std::erase(taken, '"');
  return taken != program;
}

/// A host folder with a blank is read as it is, but not on lines that have no quotes for the
/// program's path of its own.
void CheckCutTools(const std::string& folder, const std::vector<DryCommand>& commands,
                   Findings& findings) {
  std::map<std::string, std::set<std::string>> classes = ListClasses();
  std::set<std::string> tools;
  for (const DryCommand& command : commands) {
    const std::string program = FindProgram(command.commandLine);
    if (IsOwnCommand(program) || !IsCut(command.commandLine, program)) continue;
    if (!tools.insert(FindTool(command.commandLine)).second) continue;
    const std::vector<std::string> served = FindServedTables(classes[command.module], program);
    findings.Missing(
        "host folder",
        fmt::format("{} is cut at its first blank on the line of {}: another program "
                    "may be started{}; move the program to a folder without blanks",
                    folder, FindTool(command.commandLine), SayWhatStaysEmpty(", and", served)));
  }
  if (tools.empty()) findings.Good("host folder", folder);
}

/// What a collection would refuse is missing, or to be noted by whoever runs it all the same.
void Object(const CheckedMachine& machine, std::string_view subject, const std::string& objection,
            Findings& findings) {
  if (machine.allowsUnsafeFolders) {
    findings.Note(subject, objection);
  } else {
    findings.Missing(subject, objection);
  }
}

void CheckFolders(const CheckedMachine& machine, const std::vector<DryCommand>& commands,
                  Findings& findings) {
  const TextDecoder decode(machine.facts.codePage);
  if (const auto objection = ObjectToLogFolder(decode(machine.facts.logFolder))) {
    Object(machine, "log folder", *objection, findings);
  }
  const std::string& executable = machine.facts.hostExecutable;
  const std::string folder = decode(executable.substr(0, executable.rfind('\\')));
  if (const auto objection = ObjectToHostFolder(folder)) {
    Object(machine, "host folder", *objection, findings);
  } else {
    CheckCutTools(folder, commands, findings);
  }
}

}  // namespace

MachineCheck CheckMachine(const CheckedMachine& machine,
                          const std::vector<std::string>& moduleNames) {
  const MachineFacts& facts = machine.facts;
  const TextDecoder decode(facts.codePage);
  const std::vector<DryCommand> commands =
      ListCommands({facts.hostExecutable, facts.logFolder, facts.languageId}, moduleNames, {});
  const std::vector<LoadedModule> loaded = LoadLinkedModules();
  std::vector<const pq::ModuleDescription*> modules;
  for (const ModuleSelection& selected : SelectTables(loaded, {moduleNames, {}})) {
    modules.push_back(FindModuleDescription(selected.module->name));
  }
  MachineCheck check;
  check.areas = CheckAreas(machine, commands, modules);
  Findings findings;
  if (machine.surroundings) {
    CheckSurroundings(*machine.surroundings, decode(facts.logFolder), findings);
  }
  CheckLanguage(facts.languageId, findings);
  CheckFolders(machine, commands, findings);
  check.findings = findings.Take();
  for (const CheckedArea& area : check.areas) {
    for (const CheckedTool& tool : area.tools) {
      using State = CheckedTool::State;
      if (tool.state == State::kMissing || tool.state == State::kPlanted) check.isComplete = false;
    }
  }
  for (const Finding& finding : check.findings) {
    if (finding.kind == Finding::Kind::kMissing) check.isComplete = false;
  }
  return check;
}

}  // namespace host
