#include "host/pqhost/commands/command_line.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <deque>
#include <memory>
#include <optional>
#include <utility>

#include "host/pqhost/commands/commands.h"
#include "host/pqhost/commands/shared_options.h"
#include "host/program/deadline.h"
#include "host/text/ascii.h"
#include "host/text/nearest_name.h"
#include "host/text/usage_error.h"
#include "host/text/version.h"

namespace host {
namespace {

constexpr char kDescription[] = "Collects what a server knows about itself and shows it as tables.";

constexpr char kExamples[] = R"(Examples:
  pqhost collect                                 this machine's tables (Windows)
  pqhost collect --replay samples/two-socket-server
                                                 the tables of a recorded machine
  pqhost collect --table ARPINFO --format csv --output arp.csv
                                                 one table as a file
  pqhost collect --replay RECORDING --trace -    all that the modules did, in order
  pqhost check                                   what a collection would find here
  pqhost modules                                 which modules and tables there are
)";

/// A command, its options defined.
struct DefinedCommand {
  DefinedCommand(const Command& row, CLI::App& app)
      : row(row), app(app), options(app), run(row.define(options)) {
    if (row.timeLimit == Command::TimeLimit::kItsOwn) return;
    AddTimeLimit(options, timeLimit, "End the program after so many seconds");
  }

  const Command& row;
  CLI::App& app;
  OptionSet options;
  CommandRun run;
  std::optional<unsigned> timeLimit;  ///< seconds, unless the command keeps it itself
};

struct DefinedProgram {
  CLI::App app;
  std::deque<DefinedCommand> commands;  // which refer to their own members
};

/// The parts that the program and its commands have in common.
void DefineCommonParts(CLI::App& app, const char* footer) {
  app.footer(footer);
  app.allow_extras();
  app.allow_windows_style_options(false);
  app.set_help_flag("-h,--help", "Show this help");
  app.get_formatter()->column_width(30);
}

void DefineProgram(DefinedProgram& program) {
  program.app.name("pqhost");
  program.app.description(kDescription);
  program.app.set_version_flag("--version", fmt::format("pqhost {}", kVersion), "Show the version");
  program.app.require_subcommand(0, 1);
  DefineCommonParts(program.app, kExamples);
  for (const Command* row : GetCommands()) {
    CLI::App& app = *program.app.add_subcommand(row->name, row->summary);
    DefineCommonParts(app, row->footer);
    if (row->isHidden) app.group("");
    program.commands.emplace_back(*row, app);
  }
}

/// The command that was named; null without one.
const DefinedCommand* FindParsed(const DefinedProgram& program) {
  for (const DefinedCommand& command : program.commands) {
    if (command.app.parsed()) return &command;
  }
  return nullptr;
}

std::string WriteHelp(const DefinedProgram& program) {
  const DefinedCommand* command = FindParsed(program);
  return command == nullptr ? program.app.help() : command->app.help("pqhost");
}

std::string JoinLines(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

/// Asks for help as programs of Windows are asked for it: the only word, or the only one
/// after the command's name. Elsewhere such a word may be a path.
void TranslateHelp(std::vector<std::string>& arguments) {
  if (arguments.empty() || arguments.size() > 2) return;
  const std::string word = LowerCase(arguments.back());
  for (const char* asked : {"/?", "-?", "/h", "/help"}) {
    if (word == asked) arguments.back() = "--help";
  }
}

/// Reads the arguments into the options. Returns the text to show instead of doing anything, if
/// they ask for one.
std::optional<std::string> ParseArguments(DefinedProgram& program,
                                          std::vector<std::string> arguments) {
  TranslateHelp(arguments);
  std::reverse(arguments.begin(), arguments.end());
  try {
    program.app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    return WriteHelp(program);
  } catch (const CLI::CallForVersion& version) {
    return std::string(version.what()) + "\n";
  } catch (const CLI::ParseError& error) {
    throw UsageError(fmt::format("{} (see pqhost --help)", JoinLines(error.what())));
  }
  return std::nullopt;
}

std::vector<std::string> ListCommandNames() {
  std::vector<std::string> names;
  for (const Command* command : GetCommands()) {
    if (!command->isHidden) names.emplace_back(command->name);
  }
  return names;
}

std::vector<std::string> ListOptionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

[[noreturn]] void RefuseOption(const std::string& word, const CLI::App& app,
                               const std::string& help) {
  const std::string name = word.substr(0, word.find('='));
  throw UsageError(fmt::format("there is no option {}{} (see {})", name,
                               SuggestName(name, ListOptionNames(app)), help));
}

/// Refuses words that belong to nothing: a mistyped command or option.
void RefuseExtras(const DefinedProgram& program, const DefinedCommand* command) {
  const std::vector<std::string> extras = program.app.remaining(/*recurse=*/true);
  if (extras.empty()) return;
  const std::string& word = extras.front();
  const bool isOption = word.starts_with("-");
  if (command != nullptr) {
    const std::string help = fmt::format("pqhost {} --help", command->row.name);
    if (isOption) RefuseOption(word, command->app, help);
    throw UsageError(
        fmt::format("{} takes no argument {} (see {})", command->row.name, word, help));
  }
  if (isOption) RefuseOption(word, program.app, "pqhost --help");
  const std::vector<std::string> names = ListCommandNames();
  throw UsageError(fmt::format("there is no command {}{} (commands: {}; see pqhost --help)", word,
                               SuggestName(word, names), fmt::join(names, ", ")));
}

}  // namespace

int RunCommandLine(const std::vector<std::string>& arguments, const Console& console) {
  DefinedProgram program;
  DefineProgram(program);
  if (const std::optional<std::string> text = ParseArguments(program, arguments)) {
    console.out << *text;
    return kExitDone;
  }
  const DefinedCommand* command = FindParsed(program);
  RefuseExtras(program, command);
  if (command == nullptr) {
    throw UsageError(fmt::format("nothing to do: give a command ({}; see pqhost --help)",
                                 fmt::join(ListCommandNames(), ", ")));
  }
  command->options.CheckValues();
  const std::unique_ptr<Deadline> deadline =
      EndProgramAfter(command->timeLimit, console, ChooseFailureExit(arguments, kExitIncomplete));
  return command->run(console);
}

std::vector<CommandDescription> DescribeCommandLine() {
  DefinedProgram program;
  DefineProgram(program);
  const OptionDescription help = {"--help", OptionValue::kNone, {}};
  std::vector<CommandDescription> descriptions;
  for (const DefinedCommand& command : program.commands) {
    if (command.row.isHidden) continue;
    descriptions.push_back({command.row.name, command.options.Describe()});
    descriptions.back().options.push_back(help);
  }
  descriptions.push_back({"", {{"--version", OptionValue::kNone, {}}, help}});
  return descriptions;
}

int ChooseFailureExit(const std::vector<std::string>& arguments, int usual) {
  const std::vector<const Command*>& commands = GetCommands();
  const bool isOfNagios =
      std::any_of(commands.begin(), commands.end(), [&](const Command* command) {
        return !arguments.empty() && arguments.front() == command->name &&
               command->exitCodes == Command::ExitCodes::kOfNagios;
      });
  return isOfNagios ? kExitUnknown : usual;
}

}  // namespace host
