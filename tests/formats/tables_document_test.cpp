#include "host/formats/tables_document.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "host/check/dry_machine.h"
#include "tests/support/collected.h"

namespace {

TEST(TablesDocument, IsTheOneInDocs) {
  std::ifstream file(test::SamplesFolder() + "/../docs/tables.md", std::ios::binary);
  const std::string written{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(host::WriteTablesDocument(), written)
      << "docs/tables.md is stale: pqhost modules --format markdown > docs/tables.md";
}

constexpr char kFolder[] = "C:\\Halyard";
const host::DryFacts kFacts{std::string(kFolder) + "\\halyard.exe", "C:\\Halyard\\logs\\",
                            pq::kUsEnglish};

std::vector<std::string> CommandLines(const host::DryFacts& facts, const std::string& module) {
  std::vector<std::string> lines;
  for (const host::DryCommand& command : host::ListCommands(facts, {module}, {})) {
    EXPECT_EQ(command.module, module);
    lines.push_back(command.commandLine);
  }
  return lines;
}

TEST(DryRun, ListsTheCommandsOfAModuleInOrder) {
  const std::vector<std::string> lines = CommandLines(kFacts, "AMT_Info");
  EXPECT_EQ(lines, (std::vector<std::string>{
                       "/c \"C:\\Halyard\\pq_tools\\check_amt_bmc.exe\" amt",
                       "/c \"\"C:\\Halyard\\pq_tools\\amt_log.exe\" ADDRESS USER "
                       "PASSWORD>\"C:\\Halyard\\logs\\amtlog.txt\"\"",
                   }));
}

TEST(DryRun, AsksBothIntelToolsAndTheConverter) {
  std::string all;
  for (const std::string& line : CommandLines(kFacts, "sampleModule2")) all += line + "\n";
  for (const char* tool : {"rstcli64_5.exe", "IntelVROCCli.exe", "eventslog_convert.exe",
                           "sas2ircu.exe", "SAS2IR_windows_x64.exe"}) {
    EXPECT_NE(all.find(tool), std::string::npos) << tool;
  }
}

TEST(DryRun, FollowsTheLanguage) {
  host::DryFacts german = kFacts;
  german.languageId = 1031;
  EXPECT_EQ(CommandLines(german, "Windows_Related_Info")[1],
            "/c arp.exe -a >\"C:\\Halyard\\logs\\arp.txt\"");
  EXPECT_EQ(CommandLines(kFacts, "Windows_Related_Info")[1], "/c arp.exe -a");
}

}  // namespace
