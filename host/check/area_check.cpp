#include "host/check/area_check.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "frame/platform.h"
#include "host/catalogue/areas.h"
#include "host/catalogue/table_sources.h"
#include "host/check/served_tables.h"
#include "host/collect/command_text.h"
#include "host/recorded/own_commands.h"
#include "host/recorded/program_search.h"
#include "host/text/ascii.h"
#include "host/text/decoder.h"

namespace host {
namespace {

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

CheckedArea::Rating Rate(const CheckedArea& area, const Lacks& lacks) {
  if (area.hasDevice == false) return CheckedArea::Rating::kNotNeeded;
  if (!lacks.files && area.emptyTables.empty()) return CheckedArea::Rating::kFull;
  // In another language the tools still leave their files.
  const bool hasFiles = lacks.language && lacks.programs.empty();
  return lacks.fullTables == 0 && !hasFiles ? CheckedArea::Rating::kNothing
                                            : CheckedArea::Rating::kPartly;
}

std::string SayWhy(const CheckedArea& area, const Lacks& lacks) {
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

std::string SayWhatIsMissing(const CheckedArea& area, const std::string& path,
                             const pq::ToolDescription& tool) {
  const std::set<std::string> classes(area.tables.begin(), area.tables.end());
  const std::string condition = area.device.empty() || area.hasDevice
                                    ? std::string()
                                    : fmt::format("if this machine has {}, ", area.device);
  return fmt::format("{} is not there; {}put it in its place ({}){}", path, condition,
                     SayOrigin(tool),
                     SayWhatStaysEmpty(", or", FindServedTables(classes, tool.program)));
}

/// A program that a module would start.
struct Program {
  std::string module;
  std::string path;  ///< as on the command line
  std::optional<std::string> found;
};

/// Those that there would be, and which of them are there.
class Programs {
 public:
  Programs(const CheckedMachine& machine, const std::vector<DryCommand>& commands) {
    for (const DryCommand& command : commands) Add(machine, command);
  }

  /// Each once a module, in the order of use.
  const std::vector<Program>& List() const { return programs; }

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

 private:
  void Add(const CheckedMachine& machine, const DryCommand& command) {
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

  std::vector<Program> programs;
};

class AreaChecker {
 public:
  AreaChecker(const CheckedMachine& machine, const std::vector<DryCommand>& commands)
      : machine(machine), decode(machine.facts.codePage), programs(machine, commands) {}

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

 private:
  void CheckTables(CheckedArea& area, const pq::ModuleDescription& module, Lacks& lacks) const {
    for (const pq::TableDescription& table : module.tables) {
      if (table.area != area.area || !table.whyAlwaysEmpty.empty()) continue;
      area.tables.push_back(table.className);
      const std::vector<std::string> missing = programs.ListLacks(module, table);
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

  void CheckTools(CheckedArea& area, const pq::ModuleDescription& module) {
    for (const Program& program : programs.List()) {
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
    } else if (const std::string other = programs.FindReplacement(known); !other.empty()) {
      tool.text = fmt::format("{} is not there, and not needed: {} is there in its place",
                              tool.path, other);
    } else {
      tool.state = CheckedTool::State::kMissing;
      tool.text = SayWhatIsMissing(area, tool.path, known);
    }
    return tool;
  }

  const CheckedMachine& machine;
  TextDecoder decode;
  Programs programs;
};

}  // namespace

std::vector<CheckedArea> CheckAreas(const CheckedMachine& machine,
                                    const std::vector<DryCommand>& commands,
                                    const std::vector<const pq::ModuleDescription*>& modules) {
  AreaChecker checker(machine, commands);
  std::vector<CheckedArea> areas;
  for (const std::string& name : ListAreas()) {
    CheckedArea area;
    area.area = name;
    area.device = FindDevice(name);
    const auto known = machine.devices.find(name);
    if (known != machine.devices.end()) area.hasDevice = known->second;
    checker.CheckArea(area, modules);
    if (!area.tools.empty()) areas.push_back(std::move(area));
  }
  return areas;
}

}  // namespace host
