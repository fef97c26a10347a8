// The manual page and the shells' completions know every command and option.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "tests/support/collected.h"
#include "tests/support/host_run.h"

namespace {

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

const std::vector<std::string> kCommands = {"collect", "modules", "query", "check"};

std::set<std::string> OptionsOf(const std::string& command) {
  return FindAll(test::RunHost({command, "--help"}).out, "\n  (?:-h,)?(--[a-z-]+)");
}

/// What bash offers when `words` have been typed.
std::set<std::string> CompleteInBash(const std::vector<std::string>& words) {
  std::string command = "source " + kRoot + "/completions/pqhost.bash; COMP_WORDS=(pqhost";
  for (const std::string& word : words) command += " '" + word + "'";
  command += "); COMP_CWORD=" + std::to_string(words.size()) +
             "; _pqhost_complete; printf '%s\\n' \"${COMPREPLY[@]}\"";
  const std::string line =
      "bash -c \"" + std::regex_replace(command, std::regex("([\"$\\\\])"), "\\$1") + "\"";
  std::FILE* pipe = popen(line.c_str(), "r");
  std::string out;
  std::array<char, 256> chunk{};
  while (const std::size_t count = std::fread(chunk.data(), 1, chunk.size(), pipe)) {
    out.append(chunk.data(), count);
  }
  EXPECT_EQ(pclose(pipe), 0);
  return FindAll(out, "([^\n]+)\n");
}

TEST(CommandLineHelp, FindsOptionsOfEveryCommand) {
  for (const std::string& command : kCommands) {
    EXPECT_TRUE(OptionsOf(command).contains("--help")) << command;
    EXPECT_GE(OptionsOf(command).size(), 3U) << command;
  }
  EXPECT_EQ(FindAll(test::RunHost({"--help"}).out, "\n  ([a-z]+)  "),
            std::set<std::string>(kCommands.begin(), kCommands.end()));
}

TEST(ManualPage, KnowsEveryCommandAndOption) {
  const std::string page = std::regex_replace(Read("docs/pqhost.1"), std::regex("\\\\-"), "-");
  for (const std::string& command : kCommands) {
    const std::size_t section = page.find("\n.SS " + command + "\n");
    ASSERT_NE(section, std::string::npos) << command;
    const std::string text = page.substr(section, page.find("\n.S", section + 1) - section);
    for (const std::string& option : OptionsOf(command)) {
      if (option == "--help") continue;
      EXPECT_NE(text.find(option), std::string::npos) << command << " " << option;
    }
  }
}

TEST(BashCompletion, OffersTheCommands) {
  const std::set<std::string> offered = CompleteInBash({""});
  for (const std::string& command : kCommands) EXPECT_TRUE(offered.contains(command)) << command;
}

TEST(BashCompletion, OffersTheOptionsOfEveryCommand) {
  for (const std::string& command : kCommands) {
    EXPECT_EQ(CompleteInBash({command, "--"}), OptionsOf(command)) << command;
  }
}

TEST(BashCompletion, OffersTheFormatsOfACommand) {
  EXPECT_EQ(CompleteInBash({"modules", "--format", ""}),
            (std::set<std::string>{"table", "json", "markdown"}));
  EXPECT_TRUE(CompleteInBash({"collect", "--format", "s"}).contains("sqlite"));
  EXPECT_TRUE(CompleteInBash({"query", "--format", "s"}).contains("sqlite"));
}

TEST(BashCompletion, OffersTheModules) {
  const std::set<std::string> modules = CompleteInBash({"check", "--module", ""});
  EXPECT_EQ(modules, FindAll("\n" + test::RunHost({"modules"}).out, "\n([A-Za-z0-9_]+)  "));
}

TEST(PowerShellCompletion, KnowsEveryCommandAndOption) {
  const std::string script = Read("completions/pqhost.ps1");
  for (const std::string& command : kCommands) {
    // Each command's list ends with --help.
    const std::size_t begin = script.find("\n        " + command + " ");
    const std::string last = "'--help'";
    const std::string found = script.substr(begin, script.find(last, begin) + last.size() - begin);
    EXPECT_EQ(FindAll(found, "'(--[a-z-]+)'"), OptionsOf(command)) << command;
  }
}

}  // namespace
