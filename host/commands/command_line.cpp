#include "host/commands/command_line.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <deque>
#include <memory>
#include <optional>
#include <utility>

#include "host/commands/common_options.h"
#include "host/program/deadline.h"
#include "host/text/ascii.h"
#include "host/text/nearest_name.h"
#include "host/text/usage_error.h"
#include "host/text/version.h"

namespace host {
namespace {

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
  explicit DefinedProgram(const Program& row);

  const Program& row;
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

DefinedProgram::DefinedProgram(const Program& row) : row(row) {
  app.name(row.name);
  app.description(row.description);
  app.set_version_flag("--version", fmt::format("{} {}", row.name, kVersion), "Show the version");
  app.require_subcommand(0, 1);
  DefineCommonParts(app, row.examples);
  for (const Command* command : row.commands) {
    CLI::App& own = *app.add_subcommand(command->name, command->summary);
    DefineCommonParts(own, command->footer);
    if (command->isHidden) own.group("");
    commands.emplace_back(*command, own);
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
  return command == nullptr ? program.app.help() : command->app.help(program.row.name);
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

/// "--output: 1 required FILE missing" and "brief was given a disallowed flag override" say which
/// option it is, and little else.
[[noreturn]] void RefuseMismatch(const DefinedProgram& program,
                                 const CLI::ArgumentMismatch& error) {
  const DefinedCommand* command = FindParsed(program);
  const CLI::App& app = command == nullptr ? program.app : command->app;
  const std::string_view message = error.what();
  std::string name(message.substr(0, message.find_first_of(": ")));
  if (app.get_option_no_throw("--" + name) != nullptr) name.insert(0, "--");
  const std::string help = command == nullptr
                               ? fmt::format("{} --help", program.row.name)
                               : fmt::format("{} {} --help", program.row.name, command->row.name);
  const CLI::Option* option = app.get_option_no_throw(name);
  if (option == nullptr)
    throw UsageError(fmt::format("{} (see {})", JoinLines(error.what()), help));
  if (option->get_positional()) {
    throw UsageError(fmt::format("there are too many arguments: {} takes {} at most (see {})",
                                 app.get_name(), option->get_items_expected_max(), help));
  }
  if (option->get_items_expected_max() == 0) {
    throw UsageError(fmt::format("{} takes no value (see {})", name, help));
  }
  if (option->count() > 1) throw UsageError(fmt::format("{} is given twice (see {})", name, help));
  throw UsageError(
      fmt::format("{0} needs a value: {0} {1} (see {2})", name, option->get_type_name(), help));
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
  } catch (const CLI::ArgumentMismatch& error) {
    RefuseMismatch(program, error);
  } catch (const CLI::ParseError& error) {
    throw UsageError(fmt::format("{} (see {} --help)", JoinLines(error.what()), program.row.name));
  }
  return std::nullopt;
}

std::vector<std::string> ListCommandNames(const Program& program) {
  std::vector<std::string> names;
  for (const Command* command : program.commands) {
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
    const std::string help = fmt::format("{} {} --help", program.row.name, command->row.name);
    if (isOption) RefuseOption(word, command->app, help);
    throw UsageError(
        fmt::format("{} takes no argument {} (see {})", command->row.name, word, help));
  }
  if (isOption) RefuseOption(word, program.app, fmt::format("{} --help", program.row.name));
  const std::vector<std::string> names = ListCommandNames(program.row);
  throw UsageError(fmt::format("there is no command {}{} (commands: {}; see {} --help)", word,
                               SuggestName(word, names), fmt::join(names, ", "), program.row.name));
}

}  // namespace

int RunCommandLine(const Program& row, const std::vector<std::string>& arguments,
                   const Console& console) {
  DefinedProgram program(row);
  if (const std::optional<std::string> text = ParseArguments(program, arguments)) {
    console.out << *text;
    return kExitDone;
  }
  const DefinedCommand* command = FindParsed(program);
  RefuseExtras(program, command);
  if (command == nullptr) {
    throw UsageError(fmt::format("nothing to do: give a command ({}; see {} --help)",
                                 fmt::join(ListCommandNames(row), ", "), row.name));
  }
  command->options.CheckValues();
  const std::unique_ptr<Deadline> deadline = EndProgramAfter(
      command->timeLimit, console, ChooseFailureExit(row, arguments, kExitIncomplete));
  return command->run(console);
}

std::vector<CommandDescription> DescribeCommandLine(const Program& row) {
  const DefinedProgram program(row);
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

int ChooseFailureExit(const Program& program, const std::vector<std::string>& arguments,
                      int usual) {
  for (const Command* command : program.commands) {
    if (arguments.empty() || arguments.front() != command->name) continue;
    switch (command->exitCodes) {
      case Command::ExitCodes::kOfNagios:
        return kExitUnknown;
      case Command::ExitCodes::kOfDiff:
        return kExitMisused;
      case Command::ExitCodes::kOfProgram:
        return usual;
    }
  }
  return usual;
}

}  // namespace host
