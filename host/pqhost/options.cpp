#include "host/pqhost/options.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "host/formats/formats.h"
#include "host/text/nearest_name.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"
#include "host/text/version.h"

namespace host {
namespace {

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

constexpr char kCollectExamples[] = R"(Examples:
  pqhost collect --module BMC_Info --module Windows_Related_Info
  pqhost collect --replay RECORDING --format json --output server.json
  pqhost collect --replay RECORDING --log-folder logs --format none
  pqhost collect --record RECORDING --tool-limit 120
  pqhost collect --module BMC_Info --dry-run

Exit codes: 0 done; 1 something could not be collected, with a line for each on
standard error; 2 wrong use or unreadable input.
)";

constexpr char kModulesExamples[] = R"(Examples:
  pqhost modules
  pqhost modules --format json
)";

constexpr char kCheckExamples[] = R"(Examples:
  pqhost check
  pqhost check --module BMC_Info --log-folder D:\logs
  pqhost check --replay RECORDING

Exit codes: 0 everything is there; 1 something is missing; 2 wrong use or
unreadable input.
)";

constexpr char kQueryExamples[] = R"(Examples:
  pqhost query --replay RECORDING "SELECT item1, item2 FROM SENSORINFO WHERE trim(item4) <> 'ok'"
  pqhost collect --format sqlite --output server.db
  pqhost query server.db "SELECT class, rows, status FROM tables" --format csv
)";

/// A day; a tool that needs longer needs no limit.
constexpr unsigned kLongestToolLimit = 86400;

/// What CLI11 fills in.
struct Given {
  std::string replay;
  std::string record;
  std::string logFolder;
  std::string plugin;
  std::string format;
  std::string output;
  std::string trace;
  unsigned toolLimit = 0;
  std::vector<std::string> query;
};

std::optional<std::filesystem::path> OptionalPath(const CLI::App& app, const std::string& option,
                                                  const std::string& value) {
  if (app.count(option) == 0) return std::nullopt;
  if (value.empty()) throw UsageError(option + " is empty: give a path");
  return PathFromText(value);
}

Destination DestinationOf(const std::string& option, const std::string& value) {
  if (value.empty()) throw UsageError(option + " is empty: give a file, or - for standard output");
  return {PathFromText(value)};
}

std::vector<std::string> OptionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

std::vector<std::string> CommandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  return names;
}

/// Words that belong to nothing: a mistyped command or option.
void RefuseExtras(const CLI::App& app, const CLI::App* command) {
  const CLI::App& where = command == nullptr ? app : *command;
  const std::vector<std::string> extras = app.remaining(/*recurse=*/true);
  if (extras.empty()) return;
  const std::string& word = extras.front();
  if (word.starts_with("-")) {
    const std::string name = word.substr(0, word.find('='));
    throw UsageError(fmt::format("there is no option {}{} (see pqhost{}{} --help)", name,
                                 SuggestName(name, OptionNames(where)),
                                 command == nullptr ? "" : " ",
                                 command == nullptr ? "" : command->get_name()));
  }
  if (command != nullptr) {
    throw UsageError(fmt::format("{} takes no argument {} (see pqhost {} --help)",
                                 command->get_name(), word, command->get_name()));
  }
  throw UsageError(fmt::format("there is no command {}{} (commands: {}; see pqhost --help)", word,
                               SuggestName(word, CommandNames(app)),
                               fmt::join(CommandNames(app), ", ")));
}

std::vector<std::string> FormatNames() {
  std::vector<std::string> names;
  for (const Format& format : Formats()) names.emplace_back(format.name);
  return names;
}

void CheckFormat(const std::string& format, const std::vector<std::string>& names) {
  if (std::find(names.begin(), names.end(), format) != names.end()) return;
  throw UsageError(fmt::format("there is no format {}{} (formats: {})", format,
                               SuggestName(format, names), fmt::join(names, ", ")));
}

/// CLI11's complaint as one line.
std::string OneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

class Parser {
 public:
  Parser() {
    app.name("pqhost");
    app.description("Collects what a server knows about itself and shows it as tables.");
    app.footer(kExamples);
    app.set_version_flag("--version", fmt::format("pqhost {}", kVersion), "Show the version");
    app.require_subcommand(0, 1);
    Prepare(app);
    DefineCollect();
    DefineModules();
    DefineQuery();
    DefineCheck();
  }

  Options Parse(std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end());
    try {
      app.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
      return ShowText(HelpText());
    } catch (const CLI::CallForVersion& version) {
      return ShowText(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError& error) {
      throw UsageError(fmt::format("{} (see pqhost --help)", OneLine(error.what())));
    }
    const CLI::App* command = ParsedCommand();
    RefuseExtras(app, command);
    if (command == nullptr) {
      throw UsageError(fmt::format("nothing to do: give a command ({}; see pqhost --help)",
                                   fmt::join(CommandNames(app), ", ")));
    }
    options.command = command == collect ? Command::kCollect
                      : command == query ? Command::kQuery
                      : command == check ? Command::kCheck
                                         : Command::kModules;
    return Finish(*command);
  }

 private:
  static void Prepare(CLI::App& command) {
    command.allow_extras();
    command.allow_windows_style_options(false);
    command.set_help_flag("-h,--help", "Show this help");
    command.get_formatter()->column_width(30);
  }

  void DefineCollect() {
    collect = app.add_subcommand("collect", "Run the modules and show what they collect");
    Prepare(*collect);
    collect->footer(kCollectExamples);
    AddNames(*collect, "--module", options.modules, "NAME", "Use this module; may be repeated");
    AddNames(*collect, "--table", options.tables, "CLASS", "Enumerate this table; may be repeated");
    AddReplay(*collect);
    Add(*collect, "--record", given.record, "FOLDER",
        "Keep what the tools print in this new folder, to be replayed (Windows)");
    AddLogFolder(*collect);
    AddPlugin(*collect);
    Add(*collect, "--format", given.format, "NAME", "Format of the results: " + FormatList());
    Add(*collect, "--output", given.output, "FILE", "Write the results to this file");
    collect
        ->add_option("--tool-limit", given.toolLimit,
                     "End a tool that runs for more than so many seconds (Windows)")
        ->type_name("SECONDS")
        ->check(CLI::Range(1U, kLongestToolLimit));
    collect->add_flag("--dry-run", options.dryRun,
                      "Show the command lines in order, and run nothing");
    Add(*collect, "--trace", given.trace, "FILE",
        "Write all that the modules do to this file, or -");
  }

  void DefineModules() {
    modules = app.add_subcommand("modules", "List the modules and their tables");
    Prepare(*modules);
    modules->footer(kModulesExamples);
    Add(*modules, "--plugin", given.plugin, "FILE", "Ask this library (Windows)");
    Add(*modules, "--format", given.format, "NAME", "Format: table, json or markdown");
  }

  void DefineQuery() {
    query = app.add_subcommand("query", "Ask a collection, or the database of one, in SQL");
    Prepare(*query);
    query->footer(kQueryExamples);
    query->add_option("QUERY", given.query, "The database, if any, then one SELECT statement")
        ->type_name("[FILE.db] SQL")
        ->expected(1, 2);
    AddReplay(*query);
    AddPlugin(*query);
    AddLogFolder(*query);
    Add(*query, "--format", given.format, "NAME", "Format of the answer: " + FormatList());
    Add(*query, "--output", given.output, "FILE", "Write the answer to this file");
  }

  void DefineCheck() {
    check = app.add_subcommand("check", "Tell what a collection would find, running nothing");
    Prepare(*check);
    check->footer(kCheckExamples);
    AddNames(*check, "--module", options.modules, "NAME",
             "Look at this module's tools; may be repeated");
    AddReplay(*check);
    AddLogFolder(*check);
    AddPlugin(*check);
  }

  static void Add(CLI::App& command, const char* name, std::string& value, const char* type,
                  const std::string& help) {
    command.add_option(name, value, help)->type_name(type);
  }
  static void AddNames(CLI::App& command, const char* name, std::vector<std::string>& values,
                       const char* type, const char* help) {
    command.add_option(name, values, help)->type_name(type)->allow_extra_args(false);
  }
  void AddReplay(CLI::App& command) {
    Add(command, "--replay", given.replay, "FOLDER", "Take this recording for the machine");
  }
  void AddLogFolder(CLI::App& command) {
    Add(command, "--log-folder", given.logFolder, "FOLDER",
        "Folder for the files that the tools leave; live: logs, unless given");
  }
  void AddPlugin(CLI::App& command) {
    Add(command, "--plugin", given.plugin, "FILE",
        "The library; repository_pqmodule.dll beside this program, unless given");
  }

  static std::string FormatList() {
    return fmt::format("{}; {} unless given", fmt::join(FormatNames(), ", "),
                       Formats().front().name);
  }

  static Options ShowText(std::string text) {
    Options options;
    options.text = std::move(text);
    return options;
  }

  const CLI::App* ParsedCommand() const {
    for (const CLI::App* command : {collect, modules, query, check}) {
      if (command->parsed()) return command;
    }
    return nullptr;
  }

  std::string HelpText() const {
    const CLI::App* command = ParsedCommand();
    if (command == nullptr) return app.help();
    return command->help("pqhost");
  }

  Options Finish(const CLI::App& command) {
    options.plugin = OptionalPath(command, "--plugin", given.plugin);
    if (options.command == Command::kCheck) {
      options.replay = OptionalPath(command, "--replay", given.replay);
      options.logFolder = OptionalPath(command, "--log-folder", given.logFolder);
      RefusePluginWithReplay();
      return options;
    }
    const bool formatGiven = command.count("--format") > 0;
    options.format = formatGiven ? given.format : Formats().front().name;
    if (options.command == Command::kModules) {
      CheckFormat(options.format, {"table", "json", "markdown"});
      return options;
    }
    CheckFormat(options.format, FormatNames());
    options.replay = OptionalPath(command, "--replay", given.replay);
    options.logFolder = OptionalPath(command, "--log-folder", given.logFolder);
    if (command.count("--output") > 0) options.output = DestinationOf("--output", given.output);
    if (options.command == Command::kQuery) return FinishQuery();
    if (command.count("--trace") > 0) {
      options.trace = DestinationOf("--trace", given.trace);
      // A trace on standard output stands alone there, unless a format is asked for.
      const bool outputFree =
          options.trace->IsStandardOutput() && options.output.IsStandardOutput();
      if (outputFree && !formatGiven) options.format = "none";
      if (outputFree && options.format != "none") {
        throw UsageError(
            fmt::format("--trace - and --format {} both want standard output: send "
                        "one of them to a file (--output FILE or --trace FILE)",
                        options.format));
      }
      if (!outputFree && options.trace->path == options.output.path) {
        throw UsageError("--trace and --output name the same file: give each its own");
      }
    }
    options.record = OptionalPath(command, "--record", given.record);
    if (command.count("--tool-limit") > 0) options.toolLimit = given.toolLimit;
    if (options.replay && options.record) {
      throw UsageError(
          "--record has no use with --replay, which is a recording already: leave one of them "
          "away");
    }
    if (options.replay && options.toolLimit) {
      throw UsageError(
          "--tool-limit has no use with --replay, which runs no tools: leave one of them away");
    }
    RefusePluginWithReplay();
    if (options.dryRun) RefuseWithDryRun(command);
    return options;
  }

  void RefusePluginWithReplay() const {
    if (options.replay && options.plugin) {
      throw UsageError(
          "--plugin has no use with --replay, which runs the built-in modules: leave "
          "one of them away");
    }
  }

  static void RefuseWithDryRun(const CLI::App& command) {
    for (const char* option :
         {"--record", "--format", "--output", "--tool-limit", "--trace", "--plugin"}) {
      if (command.count(option) == 0) continue;
      throw UsageError(fmt::format(
          "{} has no use with --dry-run, which collects nothing: leave one of them away", option));
    }
  }

  Options FinishQuery() {
    if (given.query.empty()) {
      throw UsageError(
          "there is no query: give one, as in pqhost query --replay FOLDER \"SELECT * "
          "FROM SENSORINFO\"");
    }
    options.sql = given.query.back();
    if (given.query.size() > 1) options.database = PathFromText(given.query.front());
    if (options.database && options.replay) {
      throw UsageError("a database and --replay are both there to be asked: give one of them");
    }
    return options;
  }

  CLI::App app;
  CLI::App* collect = nullptr;
  CLI::App* query = nullptr;
  CLI::App* modules = nullptr;
  CLI::App* check = nullptr;
  Given given;
  Options options;
};

}  // namespace

Options ParseOptions(const std::vector<std::string>& arguments) {
  return Parser().Parse(arguments);
}

}  // namespace host
