#include "host/check/machine_check.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <map>
#include <set>

#include "frame/platform.h"
#include "host/catalogue/table_sources.h"
#include "host/check/dry_machine.h"
#include "host/collect/command_text.h"
#include "host/collect/selection.h"
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
      if (serves && classes.contains(table.className)) served.push_back(table.className);
    }
  }
  return served;
}

std::string SayWhatIsMissing(const std::string& program, const std::vector<std::string>& served) {
  std::string text = program + " is not there; put it in its place";
  if (served.size() == 1) text += fmt::format(", or {} stays empty", served.front());
  if (served.size() > 1) text += fmt::format(", or these stay empty: {}", fmt::join(served, ", "));
  return text;
}

/// A program of the system that another one is taken for. A recorded machine tells no folder.
bool IsPlanted(const std::string& program, const std::string& path) {
  const std::string_view interpreter = pq::kInterpreter;
  const std::string_view systemFolder = interpreter.substr(0, interpreter.rfind('\\') + 1);
  return !NamesFolder(program) && NamesFolder(path) &&
         LowerCase(path.substr(0, path.rfind('\\') + 1)) != LowerCase(systemFolder);
}

void CheckTools(const CheckedMachine& machine, const std::vector<DryCommand>& commands,
                Findings& findings) {
  const TextDecoder decode(machine.facts.codePage);
  std::map<std::string, std::set<std::string>> classes = ListClasses();
  std::set<std::pair<std::string, std::string>> seen;
  for (const DryCommand& command : commands) {
    const std::string program = FindProgram(command.commandLine);
    if (IsOwnCommand(program) || !seen.insert({command.module, program}).second) continue;
    const std::optional<std::string> path = machine.locate(program);
    if (path && IsPlanted(program, *path)) {
      findings.Missing(command.module,
                       fmt::format("{} would be run for the system's {}; remove it, or take its "
                                   "folder out of PATH",
                                   decode(*path), decode(program)));
    } else if (path) {
      findings.Good(command.module, decode(*path));
    } else {
      findings.Missing(
          command.module,
          SayWhatIsMissing(decode(program), FindServed(classes[command.module], program)));
    }
  }
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
    findings.Note("rights",
                  "not elevated: tools for the BMC and for RAID controllers may refuse; start this "
                  "program as administrator");
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

void CheckHostFolder(const MachineFacts& facts, const TextDecoder& decode, Findings& findings) {
  const std::string folder = facts.hostExecutable.substr(0, facts.hostExecutable.rfind('\\'));
  if (const std::optional<char> split = FindSplit(folder)) {
    findings.Missing(
        "host folder",
        fmt::format("{} is cut at {} where a tool's path alone stands in quotes, and "
                    "the tool is not found; move the program to another folder",
                    decode(folder),
                    *split == ' ' ? "its first blank" : fmt::format("its first {}", *split)));
  } else {
    findings.Good("host folder", decode(folder));
  }
}

}  // namespace

std::optional<char> FindSplit(std::string_view folder) {
  const bool hasBlank = folder.find(' ') != std::string_view::npos;
  const bool quotesStay = hasBlank && folder.find_first_of("&()@^") == std::string_view::npos;
  // Without quotes these end a word, or are taken out of it.
  const std::size_t split = folder.find_first_of(" &^,;=");
  if (quotesStay || split == std::string_view::npos) return std::nullopt;
  return folder[split];
}

std::vector<Finding> CheckMachine(const CheckedMachine& machine,
                                  const std::vector<std::string>& moduleNames) {
  const MachineFacts& facts = machine.facts;
  const TextDecoder decode(facts.codePage);
  Findings findings;
  CheckTools(
      machine,
      ListCommands({facts.hostExecutable, facts.logFolder, facts.languageId}, moduleNames, {}),
      findings);
  if (machine.surroundings) {
    CheckSurroundings(*machine.surroundings, decode(facts.logFolder), findings);
  }
  CheckLanguage(facts.languageId, findings);
  CheckHostFolder(facts, decode, findings);
  return findings.Take();
}

}  // namespace host
