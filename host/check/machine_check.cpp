#include "host/check/machine_check.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <map>
#include <set>

#include "frame/description.h"
#include "frame/platform.h"
#include "host/catalogue/areas.h"
#include "host/catalogue/table_sources.h"
#include "host/check/dry_machine.h"
#include "host/collect/command_text.h"
#include "host/collect/selection.h"
#include "host/collect/unsafe_folders.h"
#include "host/recorded/interpreter.h"
#include "host/recorded/own_commands.h"
#include "host/recorded/program_search.h"
#include "host/text/ascii.h"
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

/// Those of `classes` that a program of this name serves.
std::vector<std::string> FindServed(const std::set<std::string>& classes,
                                    const std::string& program) {
  std::vector<std::string> served;
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::TableDescription& table : module.tables) {
      const bool serves = std::ranges::any_of(table.commands, [&](const pq::ToolCommand& command) {
        return ToolName(command.program) == ToolName(program);
      });
      if (serves && !table.hasHollowRows && classes.contains(table.className)) {
        served.push_back(table.className);
      }
    }
  }
  return served;
}

/// `before`, if there is a table to follow it.
std::string SayWhatStaysEmpty(const char* before, const std::vector<std::string>& served) {
  if (served.empty()) return {};
  if (served.size() == 1) return fmt::format("{} {} stays empty", before, served.front());
  return fmt::format("{} these stay empty: {}", before, fmt::join(served, ", "));
}

/// A program of the system that another one is taken for. A recorded machine tells no folder.
bool IsPlanted(const std::string& program, const std::string& path) {
  const std::string_view interpreter = pq::kInterpreter;
  const std::string_view systemFolder = interpreter.substr(0, interpreter.rfind('\\') + 1);
  return !NamesFolder(program) && NamesFolder(path) &&
         LowerCase(path.substr(0, path.rfind('\\') + 1)) != LowerCase(systemFolder);
}

/// The file name of a program, as the modules describe it.
std::string GetFileName(std::string_view program) {
  return std::string(program.substr(program.rfind('\\') + 1));
}

/// "StorCLI, from Broadcom, formerly LSI"; tools of unknown origin come with the production host.
std::string SayOrigin(const pq::ToolDescription& tool) {
  if (tool.vendor.empty()) return "from the production host";
  return fmt::format("{}, from {}", tool.product, tool.vendor);
}

/// "a.exe is" and "a.exe, b.exe and c.exe are"
std::string SayWhichAre(const std::vector<std::string>& programs) {
  if (programs.size() == 1) return programs.front() + " is";
  const auto last = programs.end() - 1;
  return fmt::format("{} and {} are", fmt::join(programs.begin(), last, ", "), *last);
}

/// Rates the areas by the tools that are there.
class AreaChecker {
 public:
  AreaChecker(const CheckedMachine& machine, const std::vector<DryCommand>& commands)
      : machine(machine), decode(machine.facts.codePage) {
    for (const DryCommand& command : commands) Add(command);
  }

  std::vector<CheckedArea> Check(const std::vector<const pq::ModuleDescription*>& modules) {
    std::vector<CheckedArea> areas;
    for (const std::string& name : ListAreas()) {
      CheckedArea area;
      area.area = name;
      area.device = FindDevice(name);
      const auto known = machine.devices.find(name);
      if (known != machine.devices.end()) area.hasDevice = known->second;
      CheckArea(area, modules);
      if (!area.tools.empty()) areas.push_back(std::move(area));
    }
    return areas;
  }

 private:
  struct Program {
    std::string module;
    std::string path;  ///< as on the command line
    std::optional<std::string> found;
  };

  void Add(const DryCommand& command) {
    const std::string path = FindProgram(command.commandLine);
    if (IsOwnCommand(path)) return;
    const bool isKnown = std::ranges::any_of(programs, [&](const Program& program) {
      return program.module == command.module && program.path == path;
    });
    if (!isKnown) programs.push_back({command.module, path, machine.locate(path)});
  }

  const Program* FindProgramOf(std::string_view program) const {
    const auto found = std::ranges::find_if(programs, [&](const Program& candidate) {
      return ToolName(candidate.path) == ToolName(program);
    });
    return found == programs.end() ? nullptr : &*found;
  }

  bool IsThere(std::string_view program) const {
    const Program* found = FindProgramOf(program);
    return found == nullptr || found->found.has_value();
  }

  /// Programs that the table would have to have, by file name; none when it can be filled.
  std::vector<std::string> ListLacks(const pq::ModuleDescription& module,
                                     const pq::TableDescription& table) const {
    std::vector<std::string> lacks;
    for (const pq::PresenceTest& test : module.presenceTests) {
      const std::string program = pq::ParseToolCommand(test.commandEnd).program;
      if (!IsThere(program)) lacks.push_back(GetFileName(program));
    }
    std::vector<std::string> missing;
    for (const pq::ToolCommand& command : table.commands) {
      if (!IsThere(command.program)) missing.push_back(GetFileName(command.program));
    }
    const bool isReplaced = table.commandsAreAlternatives && missing.size() < table.commands.size();
    if (!isReplaced) lacks.insert(lacks.end(), missing.begin(), missing.end());
    return lacks;
  }

  /// What keeps an area from being found out.
  struct Lacks {
    std::vector<std::string> programs;  ///< by file name
    bool files = false;                 ///< some file of the log folder would not be there
    bool language = false;
    bool family = false;  ///< some table is not asked of this machine's BMC
    /// Tables that would have what they are for.
    std::size_t fullTables = 0;

    void Add(const std::string& program) {
      if (std::ranges::find(programs, program) == programs.end()) programs.push_back(program);
    }
  };

  void CheckArea(CheckedArea& area, const std::vector<const pq::ModuleDescription*>& modules) {
    Lacks lacks;
    for (const pq::ModuleDescription* module : modules) {
      const bool looksAtIt = std::ranges::any_of(
          module->areas, [&](const pq::Area& known) { return area.area == known.name; });
      if (!looksAtIt) continue;
      area.modules.push_back(module->name);
      CheckTables(area, *module, lacks);
    }
    for (const pq::ModuleDescription* module : modules) CheckTools(area, *module);
    for (const CheckedTool& tool : area.tools) {
      if (tool.state != CheckedTool::State::kMissing) continue;
      lacks.files = true;
      lacks.Add(tool.program);
    }
    area.rating = Rate(area, lacks);
    area.text = SayWhy(area, lacks);
  }

  void CheckTables(CheckedArea& area, const pq::ModuleDescription& module, Lacks& lacks) const {
    for (const pq::TableDescription& table : module.tables) {
      if (table.area != area.area || !table.whyAlwaysEmpty.empty()) continue;
      area.tables.push_back(table.className);
      const std::vector<std::string> missing = ListLacks(module, table);
      const bool isForeign = table.needsUsEnglish && machine.facts.languageId != pq::kUsEnglish;
      const bool isNeverAsked = machine.neverAsked.contains(table.className);
      if (missing.empty() && !isForeign && !isNeverAsked) {
        ++lacks.fullTables;
        continue;
      }
      if (!table.hasHollowRows) area.emptyTables.push_back(table.className);
      lacks.family = lacks.family || isNeverAsked;
      for (const std::string& program : missing) lacks.Add(program);
      lacks.language = lacks.language || isForeign;
    }
  }

  static CheckedArea::Rating Rate(const CheckedArea& area, const Lacks& lacks) {
    if (area.hasDevice == false) return CheckedArea::Rating::kNotNeeded;
    if (!lacks.files && area.emptyTables.empty()) return CheckedArea::Rating::kFull;
    // In another language the tools still leave their files.
    const bool hasFiles = lacks.language && lacks.programs.empty();
    return lacks.fullTables == 0 && !hasFiles ? CheckedArea::Rating::kNothing
                                              : CheckedArea::Rating::kPartly;
  }

  static std::string SayWhy(const CheckedArea& area, const Lacks& lacks) {
    using Rating = CheckedArea::Rating;
    if (area.rating == Rating::kFull) return {};
    if (area.rating == Rating::kNotNeeded) {
      return fmt::format("this machine does not have {}", area.device);
    }
    std::vector<std::string> reasons;
    if (lacks.language) reasons.emplace_back("the tables are made on US English systems only");
    if (lacks.family) reasons.emplace_back("this platform family is not asked for them");
    if (!lacks.programs.empty()) reasons.push_back(SayWhichAre(lacks.programs) + " not there");
    if (!area.device.empty() && !area.hasDevice) {
      reasons.push_back("it is not known whether this machine has " + area.device);
    }
    std::string why = fmt::format("{}", fmt::join(reasons, "; "));
    if (area.rating == Rating::kNothing) return why;
    if (area.emptyTables.empty()) return "all tables, but not all files of the log folder: " + why;
    return fmt::format("{} {} empty: {}", fmt::join(area.emptyTables, ", "),
                       area.emptyTables.size() == 1 ? "stays" : "stay", why);
  }

  void CheckTools(CheckedArea& area, const pq::ModuleDescription& module) {
    for (const Program& program : programs) {
      if (program.module != module.name) continue;
      const auto known = std::ranges::find_if(module.tools, [&](const pq::ToolDescription& tool) {
        return tool.area == area.area && ToolName(tool.program) == ToolName(program.path);
      });
      if (known == module.tools.end()) continue;
      const std::string name = GetFileName(known->program);
      if (std::ranges::find(area.tools, name, &CheckedTool::program) != area.tools.end()) continue;
      area.tools.push_back(CheckTool(area, program, *known));
    }
  }

  CheckedTool CheckTool(const CheckedArea& area, const Program& program,
                        const pq::ToolDescription& known) const {
    CheckedTool tool{.program = GetFileName(known.program),
                     .path = decode(program.found.value_or(program.path)),
                     .vendor = known.vendor,
                     .product = known.product,
                     .text = {}};
    if (program.found && !IsPlanted(program.path, *program.found)) return tool;
    if (program.found) {
      tool.state = CheckedTool::State::kPlanted;
      tool.text = fmt::format(
          "{} would be run for the system's {}; remove it, or take its folder out of PATH",
          tool.path, decode(program.path));
      return tool;
    }
    tool.state = CheckedTool::State::kNotNeeded;
    if (area.hasDevice == false) {
      tool.text = fmt::format("{} is not there, and not needed: this machine does not have {}",
                              tool.path, area.device);
    } else if (const std::string other = FindReplacement(known); !other.empty()) {
      tool.text = fmt::format("{} is not there, and not needed: {} is there in its place",
                              tool.path, other);
    } else {
      tool.state = CheckedTool::State::kMissing;
      tool.text = SayWhatIsMissing(area, tool.path, known);
    }
    return tool;
  }

  /// Another program that is there and can do for each of the tool's tables; empty: there is none.
  std::string FindReplacement(const pq::ToolDescription& tool) const {
    std::string replacement;
    for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
      for (const pq::TableDescription& table : module.tables) {
        const auto isOfTool = [&](const pq::ToolCommand& command) {
          return command.program == tool.program;
        };
        if (std::ranges::none_of(table.commands, isOfTool)) continue;
        const auto other =
            std::ranges::find_if(table.commands, [&](const pq::ToolCommand& command) {
              return !isOfTool(command) && IsThere(command.program);
            });
        if (!table.commandsAreAlternatives || other == table.commands.end()) return {};
        replacement = GetFileName(other->program);
      }
    }
    return replacement;
  }

  static std::string SayWhatIsMissing(const CheckedArea& area, const std::string& path,
                                      const pq::ToolDescription& tool) {
    const std::set<std::string> classes(area.tables.begin(), area.tables.end());
    const std::string condition = area.device.empty() || area.hasDevice
                                      ? std::string()
                                      : fmt::format("if this machine has {}, ", area.device);
    return fmt::format("{} is not there; {}put it in its place ({}){}", path, condition,
                       SayOrigin(tool),
                       SayWhatStaysEmpty(", or", FindServed(classes, tool.program)));
  }

  const CheckedMachine& machine;
  TextDecoder decode;
  std::vector<Program> programs;  ///< each once a module, in the order of use
};

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
    const std::vector<std::string> served = FindServed(classes[command.module], program);
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
  check.areas = AreaChecker(machine, commands).Check(modules);
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
