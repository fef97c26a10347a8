// Help, manual page and the shells' completions know every command, option and format.
#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "host/pqhost/commands/command_line.h"
#include "host/pqhost/commands/completions.h"
#include "tests/support/collected.h"
#include "tests/support/posix/shell_command.h"
#include "tests/support/program/host_run.h"

namespace {
using host::CommandDescription;
using host::OptionDescription;
using testing::Contains;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

const std::string kRoot = test::SamplesFolder() + "/..";

std::string Read(const std::string& path) {
  std::ifstream file(kRoot + "/" + path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::set<std::string> FindAll(const std::string& text, const std::string& expression) {
  const std::regex pattern(expression);
  std::set<std::string> found;
  for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match) {
    found.insert((*match)[1]);
  }
  return found;
}

/// All commands, without the program itself.
std::vector<CommandDescription> ListCommands() {
  std::vector<CommandDescription> commands = host::DescribeCommandLine();
  std::erase_if(commands, [](const CommandDescription& command) { return command.name.empty(); });
  return commands;
}

std::set<std::string> NamesOf(const std::vector<CommandDescription>& commands) {
  std::set<std::string> names;
  for (const CommandDescription& command : commands) names.insert(command.name);
  return names;
}

std::set<std::string> OptionsOf(const CommandDescription& command) {
  std::set<std::string> names;
  for (const OptionDescription& option : command.options) {
    if (!option.name.empty()) names.insert(option.name);
  }
  return names;
}

std::set<std::string> FormatsOf(const CommandDescription& command) {
  for (const OptionDescription& option : command.options) {
    if (option.name == "--format") return {option.choices.begin(), option.choices.end()};
  }
  return {};
}

/// What bash offers when `words` have been typed.
std::set<std::string> CompleteInBash(const std::vector<std::string>& words) {
  std::string command = "source " + kRoot + "/completions/pqhost.bash; COMP_WORDS=(pqhost";
  for (const std::string& word : words) command += " '" + word + "'";
  command += "); COMP_CWORD=" + std::to_string(words.size()) +
             "; _pqhost_complete; printf '%s\\n' \"${COMPREPLY[@]}\"";
  const std::string line =
      "bash -c \"" + std::regex_replace(command, std::regex("([\"$\\\\])"), "\\$1") + "\"";
  return FindAll(test::RunShellCommand(line), "([^\n]+)\n");
}

TEST(CommandLineHelp, ShowsEveryCommandAndOption) {
  const std::string help = test::RunHost({"--help"}).out;
  EXPECT_EQ(FindAll(help, "\n  ([a-z]+)  "), NamesOf(ListCommands()));
  EXPECT_EQ(FindAll(help, "\n  (?:-h,)?(--[a-z-]+)"),
            OptionsOf(host::DescribeCommandLine().back()));
  for (const CommandDescription& command : ListCommands()) {
    const std::string text = test::RunHost({command.name, "--help"}).out;
    EXPECT_EQ(FindAll(text, "\n  (?:-h,)?(--[a-z-]+)"), OptionsOf(command)) << command.name;
  }
}

/// The page's section on a command; empty when there is none.
std::string FindSection(const std::string& page, const std::string& command) {
  const std::size_t begin = page.find("\n.SS " + command + "\n");
  if (begin == std::string::npos) return {};
  return page.substr(begin, page.find("\n.S", begin + 1) - begin);
}

class ManualPage : public testing::Test {
 protected:
  const std::string page = std::regex_replace(Read("docs/pqhost.1"), std::regex("\\\\-"), "-");
};

TEST_F(ManualPage, HasASectionForEveryCommand) {
  EXPECT_EQ(FindAll(page, "\n\\.SS ([a-z]+)"), NamesOf(ListCommands()));
  EXPECT_EQ(FindAll(page, "\n\\.B pqhost ([a-z]+)"), NamesOf(ListCommands()));
}

TEST_F(ManualPage, ExplainsTheOptionsOfEveryCommand) {
  for (const CommandDescription& command : ListCommands()) {
    std::set<std::string> options = OptionsOf(command);
    options.erase("--help");
    EXPECT_EQ(FindAll(FindSection(page, command.name), "(--[a-z-]+)"), options) << command.name;
  }
}

TEST_F(ManualPage, NamesTheFormatsOfEveryCommand) {
  for (const CommandDescription& command : ListCommands()) {
    if (FormatsOf(command).empty()) continue;
    const std::string section = FindSection(page, command.name);
    const std::size_t begin = section.find("--format");
    const std::string text = section.substr(begin, section.find(".TP", begin) - begin);
    const std::set<std::string> likewise = FindAll(text, "As for\n\\.BR ([a-z]+)");
    if (likewise.empty()) {
      EXPECT_THAT(FindAll(text, "\\b([a-z]+)\\b"), IsSupersetOf(FormatsOf(command)))
          << command.name;
    }
    for (const CommandDescription& other : ListCommands()) {
      if (!likewise.contains(other.name)) continue;
      EXPECT_EQ(FormatsOf(command), FormatsOf(other)) << command.name;
    }
  }
}

TEST(BashCompletion, OffersTheCommands) {
  const std::set<std::string> offered = CompleteInBash({""});
  EXPECT_THAT(offered, IsSupersetOf(NamesOf(ListCommands())));
  EXPECT_THAT(offered, Contains("--version"));
}

TEST(BashCompletion, OffersTheOptionsOfEveryCommand) {
  for (const CommandDescription& command : ListCommands()) {
    EXPECT_EQ(CompleteInBash({command.name, "--"}), OptionsOf(command)) << command.name;
  }
}

TEST(BashCompletion, OffersTheFormatsOfEveryCommand) {
  for (const CommandDescription& command : ListCommands()) {
    const std::set<std::string> formats = FormatsOf(command);
    if (formats.empty()) continue;
    EXPECT_EQ(CompleteInBash({command.name, "--format", ""}), formats) << command.name;
  }
}

TEST(BashCompletion, OffersTheModules) {
  const std::set<std::string> modules = CompleteInBash({"check", "--module", ""});
  EXPECT_EQ(modules, FindAll(test::RunHost({"modules", "--format", "json"}).out,
                             "\"name\": \"([A-Za-z0-9_]+)\""));
}

TEST(BashCompletion, OffersTheCommandsThatHelpKnows) {
  EXPECT_THAT(CompleteInBash({"help", ""}), IsSupersetOf(NamesOf(ListCommands())));
}

TEST(BashCompletion, OffersFoldersForARecording) {
  const std::set<std::string> offered = CompleteInBash({"collect", "--replay", kRoot + "/sa"});
  EXPECT_EQ(offered, std::set<std::string>{kRoot + "/samples"});
}

TEST(PowerShellCompletion, KnowsEveryCommandAndOption) {
  const std::string script = Read("completions/pqhost.ps1");
  for (const CommandDescription& command : ListCommands()) {
    const std::size_t begin = script.find("\n        '" + command.name + "' = ");
    ASSERT_NE(begin, std::string::npos) << command.name;
    const std::string line = script.substr(begin, script.find('\n', begin + 1) - begin);
    EXPECT_EQ(FindAll(line, "'(--[a-z-]+)'"), OptionsOf(command)) << command.name;
  }
}

// To be renewed with `pqhost completion --shell bash > completions/pqhost.bash`.
TEST(BashCompletion, IsAsTheProgramWritesIt) {
  EXPECT_EQ(Read("completions/pqhost.bash"), host::WriteBashCompletion());
}

// To be renewed with `pqhost completion --shell powershell > completions/pqhost.ps1`.
TEST(PowerShellCompletion, IsAsTheProgramWritesIt) {
  EXPECT_EQ(Read("completions/pqhost.ps1"), host::WritePowerShellCompletion());
}

TEST(CompletionCommand, WritesTheCompletionOfAShell) {
  EXPECT_EQ(test::RunHost({"completion", "--shell", "bash"}).out, host::WriteBashCompletion());
  EXPECT_EQ(test::RunHost({"completion", "--shell", "powershell"}).out,
            host::WritePowerShellCompletion());
}

TEST(CompletionCommand, IsNotShownToUsers) {
  EXPECT_THAT(test::RunHost({"--help"}).out, Not(HasSubstr("completion")));
  EXPECT_THAT(test::RunHost({}).error, Not(HasSubstr("completion")));
}

TEST(SetupCommand, SaysWhereItWorks) {
  EXPECT_EQ(test::RunHost({"setup"}).error,
            "pqhost: setup looks for programs on this very machine and needs Windows\n");
}

}  // namespace
