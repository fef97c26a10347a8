#include <gmock/gmock.h>

#include <sstream>
#include <string>

#include "host/text/screen_text.h"
#include "tests/support/program/made_collection.h"

namespace host {
namespace {

using test::MadeCollection;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

Screen Wide(unsigned width) { return {false, false, width}; }

constexpr char kNothingJudged[] =
    "\n"
    "UNKNOWN   0 critical, 0 warning, 1 unknown, 0 notice; checked nothing\n"
    "unknown   Find out why nothing of this machine could be judged\n"
    "\n";

TEST(TableFormat, TellsTheVerdictAfterTheMachineAndBeforeProblems) {
  MadeCollection made;
  made.Table("ARPINFO").Row({{"Type", "dynamic"}});
  made.Get().problems = {"storcli failed"};
  EXPECT_THAT(made.As("table"), StartsWith(std::string("unnamed machine\n"
                                                       "Recorded: at an unknown time\n") +
                                           kNothingJudged +
                                           "1 of 1 table with 1 row\n"
                                           "\n"
                                           "1 problem\n"));
}

TEST(TableFormat, TellsNoVerdictOnTablesThatSayNothingOfTheMachine) {
  MadeCollection made;
  made.Table("ARPINFO").Row({{"Type", "dynamic"}});
  made.Get().isSelection = true;
  EXPECT_THAT(made.As("table"), Not(HasSubstr("UNKNOWN")));
  made.Get().machineIsKnown = false;
  EXPECT_THAT(made.As("table"), Not(HasSubstr("UNKNOWN")));
}

TEST(TableFormat, AlignsColumnsUnderTheirLabels) {
  MadeCollection made;
  made.Table("ARPINFO")
      .Row({{"Internet Address", "10.0.0.1"}, {"Type", "dynamic"}})
      .Row({{"Internet Address", "10.0.0.254"}, {"Type", "static"}});
  EXPECT_EQ(made.As("table"), std::string("unnamed machine\n"
                                          "Recorded: at an unknown time\n") +
                                  kNothingJudged +
                                  "1 of 1 table with 2 rows\n"
                                  "\n"
                                  "Network\n"
                                  "  ARPINFO  ARP table\n"
                                  "\n"
                                  "Network\n"
                                  "\n"
                                  "ARP table · ARPINFO · 2 rows\n"
                                  "Internet Address  Type\n"
                                  "────────────────  ───────\n"
                                  "10.0.0.1          dynamic\n"
                                  "10.0.0.254        static\n");
}

TEST(TableFormat, ShowsNotesBelowTheTitleAndOfAnEmptyTableInTheOverview) {
  MadeCollection made;
  made.Table("ARPINFO").Row({{"Type", "dynamic"}}).Table("T");
  for (CollectedTable& table : made.Get().tables) {
    table.status = {"", table.RowCount() > 0 ? "1 row" : "none", {"one is left out"}};
  }
  const std::string text = made.As("table");
  EXPECT_THAT(text, HasSubstr("  ARPINFO  ARP table  1 row (see its note)\n"));
  EXPECT_THAT(text, HasSubstr("  T        T          none; one is left out\n"));
  EXPECT_THAT(text, EndsWith("ARP table · ARPINFO · 1 row\n"
                             "Note: one is left out\n"
                             "Type\n"
                             "───────\n"
                             "dynamic\n"));
}

// Whoever reads no further than the first screen takes no row for what it is not.
TEST(TableFormat, TellsInTheOverviewWhichRowsAreNotAsTheySeem) {
  MadeCollection made;
  made.Table("PINFO").Row({{"Model", "KORVA"}}).Table("VINFO").Row({{"Name", "Backup"}});
  std::vector<CollectedTable>& tables = made.Get().tables;
  tables[0].status = {.outcome = "rows",
                      .text = "1 row",
                      .notes = {"of controller 0 alone", "columns do not fit this report: Model"},
                      .unfitLabels = {"Model"}};
  tables[1].status = {.outcome = "rows",
                      .text = "1 row",
                      .notes = {"from files of yesterday"},
                      .oldFiles = "from files of yesterday"};
  const std::string text = made.As("table", {.width = 120});
  EXPECT_THAT(text, HasSubstr("  1 row; columns do not fit\n"));
  EXPECT_THAT(text, HasSubstr("  1 row; from files of yesterday\n"));
}

TEST(TableFormat, AlignsWideCharacters) {
  MadeCollection made;
  made.Get().machine.codePage = 65001;
  made.Table("T").Row({{"状态", "连接"}, {"N", "1"}}).Row({{"状态", "abcdef"}, {"N", "2"}});
  EXPECT_THAT(made.As("table"), HasSubstr("状态    N\n"
                                          "──────  ─\n"
                                          "连接    1\n"
                                          "abcdef  2\n"));
}

TEST(TableFormat, ShowsAPropertyTableAsAList) {
  MadeCollection made;
  made.Table("LANINFO", /*byRow=*/false).Row({{"IP address", "10.0.0.9"}, {"MAC", "3c:ec"}});
  EXPECT_THAT(made.As("table"), EndsWith("BMC LAN settings · LANINFO · 1 row\n"
                                         "IP address: 10.0.0.9\n"
                                         "MAC:        3c:ec\n"));
}

TEST(TableFormat, NumbersTheRowsOfAList) {
  MadeCollection made;
  made.Table("T", /*byRow=*/false).Row({{"A", "1"}}).Row({{"A", "2"}});
  EXPECT_THAT(made.As("table"), HasSubstr("── 1 of 2\nA: 1\n\n── 2 of 2\nA: 2\n"));
}

TEST(TableFormat, WrapsTheWidestColumnToFitTheScreen) {
  MadeCollection made;
  made.Table("T").Row({{"Code", "0x60"}, {"Event", "Predictive failure on drive nine"}});
  EXPECT_THAT(made.As("table", Wide(26)), HasSubstr("Code  Event\n"
                                                    "────  ────────────────────\n"
                                                    "0x60  Predictive failure\n"
                                                    "      on drive nine\n"));
}

TEST(TableFormat, TurnsRowsIntoListsWhenWordsWouldBreak) {
  MadeCollection made;
  made.Table("T").Row({{"SerialNumber", "KV0341P7K2"}, {"FirmwareRevision", "A3F2"}});
  EXPECT_THAT(made.As("table", Wide(29)), HasSubstr("SerialNumber:   KV0341P7K2\n"));
  EXPECT_THAT(made.As("table", Wide(30)), HasSubstr("SerialNumber  FirmwareRevision\n"));
}

TEST(TableFormat, NeverExceedsTheScreen) {
  MadeCollection made;
  made.Get().machine.codePage = 65001;
  MadeCollection::Pairs many;
  for (int i = 0; i < 40; ++i) {
    many.emplace_back("A label of column number " + std::to_string(i), std::string(90, 'x'));
  }
  made.Table("A_CLASS_WITH_QUITE_A_LONG_NAME").Row(many).Row(many).Table("EMPTY_ONE");
  made.Table("ONE").Row({{"Line", std::string(300, 'y') + " 连接连接连接"}});
  for (const unsigned width : {20U, 37U, 80U, 200U}) {
    std::istringstream lines(made.As("table", Wide(width)));
    std::string line;
    while (std::getline(lines, line)) {
      // Titles stay whole: they are what people search for.
      if (line.find(" · ") != std::string::npos) continue;
      EXPECT_LE(MeasureWidth(line), width) << line;
    }
  }
}

TEST(TableFormat, TrimsBlanksAndLineEndsOfValues) {
  MadeCollection made;
  made.Table("T").Row({{"A", " Optimal \r\n"}, {"B", "x"}});
  EXPECT_THAT(made.As("table"), HasSubstr("\nOptimal  x\n"));
}

TEST(TableFormat, KeepsTheLinesOfAValue) {
  MadeCollection made;
  made.Table("T").Row({{"A", "one\r\ntwo"}, {"B", "x"}});
  EXPECT_THAT(made.As("table"), HasSubstr("\none  x\ntwo\n"));
}

TEST(TableFormat, CutsAValueOfManyLines) {
  MadeCollection made;
  std::string lines;
  for (int i = 1; i <= 40; ++i) lines += "line " + std::to_string(i) + "\n";
  made.Table("T").Row({{"A", lines}});
  const std::string text = made.As("table");
  EXPECT_THAT(text, HasSubstr("line 11\n… [29"));
  EXPECT_THAT(text, Not(HasSubstr("line 12\n")));
}

TEST(TableFormat, CutsAVeryLongValueAndSaysHowLongItIs) {
  MadeCollection made;
  made.Table("T", /*byRow=*/false).Row({{"A", std::string(2500, 'x')}});
  const std::string text = made.As("table", Wide(400));
  EXPECT_THAT(text, HasSubstr("x… [2.4 KiB in all]"));
  EXPECT_LT(text.size(), 1900U);
}

TEST(TableFormat, ShowsAnAttachmentAsANote) {
  MadeCollection made;
  made.Table("PMCLINK").FileRow(std::string(7066, '#'), "Controller_1_Config");
  EXPECT_THAT(made.As("table"), HasSubstr("\nFile: [file Controller_1_Config, 6.9 KiB]\n"));
}

TEST(TableFormat, BeginsWithMachineProblemsAndALineForEachTable) {
  MadeCollection made;
  made.Table("S1TABLE1").Table("AAA").Table("ARPINFO").Row({{"Type", "dynamic"}}).Table("RAIDINFO");
  made.Get().machine.name = "SRV7";
  made.Get().machine.system = "Windows Server, build 20348";
  made.Get().machine.recorded = false;
  made.Get().problems = {"not collected: one thing after another, for reasons of many words",
                         "two"};
  const char* statuses[] = {"2 rows\t", "nothing printed", "1 row", "storcli.exe is not there"};
  for (std::size_t i = 0; i < 4; ++i) made.Get().tables[i].status.text = statuses[i];
  EXPECT_THAT(made.As("table", Wide(62)),
              StartsWith("SRV7\n"
                         "System:    Windows Server, build 20348\n"
                         "Collected: 2026-11-18 09:41:07 UTC\n"
                         "\n"
                         "UNKNOWN   0 critical, 0 warning, 2 unknown, 0 notice; checked\n"
                         "          nothing\n"
                         "unknown   Find out why nothing of this machine could be judged\n"
                         "unknown   Find out why the MegaRAID controllers could not be\n"
                         "          read: storcli.exe is not there\n"
                         "\n"
                         "1 of 4 tables with 1 row\n"
                         "\n"
                         "2 problems\n"
                         "  not collected: one thing after another, for reasons of\n"
                         "    many words\n"
                         "  two\n"
                         "\n"
                         "LSI RAID\n"
                         "  RAIDINFO  LSI controller summary  storcli.exe is not there\n"
                         "Network\n"
                         "  ARPINFO   ARP table               1 row\n"
                         "For tests\n"
                         "  AAA       AAA                     nothing printed\n"
                         "Samples\n"
                         "  S1TABLE1  Sample 1, table 1       2 rows\\t\n"
                         "\n"
                         "Network\n"
                         "\n"
                         "ARP table · ARPINFO · 1 row\n"));
}

TEST(TableFormat, LeavesTitlesOutOfTheOverviewOfANarrowScreen) {
  MadeCollection made;
  made.Table("RAIDINFO");
  made.Get().tables[0].status.text = "storcli.exe is not on this machine";
  EXPECT_THAT(made.As("table", Wide(40)), HasSubstr("\n  RAIDINFO  storcli.exe is not on this\n"
                                                    "            machine\n"));
  EXPECT_THAT(made.As("table", Wide(30)), HasSubstr("\n  RAIDINFO\n"
                                                    "    storcli.exe is not on this\n"
                                                    "    machine\n"));
}

/// A log of as many lines as `count`.
MadeCollection MakeLog(int count, const std::string& className, std::size_t columns = 1) {
  MadeCollection made;
  made.Table(className);
  for (int i = 1; i <= count; ++i) {
    const std::string value = "line " + std::to_string(i) + ".";
    made.Row(MadeCollection::Pairs(columns, {"Log", value}));
  }
  return made;
}

TEST(TableFormat, ShowsTheNewestLinesOfALog) {
  MadeCollection made = MakeLog(25, "FWTERMLOG");
  const std::string text = made.As("table");
  EXPECT_THAT(text,
              HasSubstr("LSI firmware term log · FWTERMLOG · 25 rows · the newest 20; 5 before "
                        "them are not shown (--all shows them)\nLog\n────────\nline 6.\n"));
  EXPECT_THAT(text, EndsWith("line 25.\n"));
  const std::string all = made.As("table", {.showsAll = true});
  EXPECT_THAT(all, HasSubstr("FWTERMLOG · 25 rows\nLog\n────────\nline 1.\n"));
}

TEST(TableFormat, ShowsFewerEntriesOfALogThatTakeManyLinesEach) {
  MadeCollection made = MakeLog(6, "SAS2IRLOG", 10);
  EXPECT_THAT(made.As("table", Wide(40)),
              HasSubstr("· 6 rows · the newest 3; 3 before them are not shown (--all shows them)\n"
                        "── 4 of 6\nLog: line 4.\n"));
}

TEST(TableFormat, ShowsAllOfALogThatIsShort) {
  EXPECT_THAT(MakeLog(20, "SELINFO").As("table"), HasSubstr("SELINFO · 20 rows\n"));
}

TEST(TableFormat, ShowsAllRowsOfOtherTables) {
  EXPECT_THAT(MakeLog(100, "SENSORINFO").As("table"), HasSubstr("SENSORINFO · 100 rows\n"));
}

TEST(TableFormat, ShowsAnAnswerWithoutAMachine) {
  MadeCollection made;
  made.Table("ANSWER");
  made.Get().machineIsKnown = false;
  EXPECT_EQ(made.As("table"), "For tests\n\nANSWER · 0 rows\n");
  made.Row({{"n", "1"}});
  EXPECT_EQ(made.As("table"), "For tests\n\nANSWER · 1 row\nn\n─\n1\n");
}

TEST(TableFormat, LeavesACellEmptyWhereARowHasNoSuchProperty) {
  MadeCollection made;
  made.Table("T").Row({{"A", "1"}, {"B", "2"}, {"C", "3"}}).Row({{"A", "4"}});
  EXPECT_THAT(made.As("table"), HasSubstr("\n1  2  3\n4\n"));
}

TEST(TableFormat, SaysOfARowThatItHasNoProperties) {
  MadeCollection made;
  made.Table("T").Row({});
  EXPECT_THAT(made.As("table"), HasSubstr("T · 1 row\n(no properties)\n"));
}

TEST(TableFormat, TitlesAPropertyWithoutLabelByItsKey) {
  MadeCollection made;
  made.Table("T").Row({{"", "1"}});
  EXPECT_THAT(made.As("table"), HasSubstr("\nk1\n──\n1\n"));
}

TEST(TableFormat, NeverLetsAControlCharacterThrough) {
  MadeCollection made;
  made.Get().modules.front() = {"Example", "\x1b]0;title\x07"};
  std::string all;
  for (int c = 1; c < 256; ++c) all += static_cast<char>(c);
  made.Table("C\x1b[2J").Row({{"L\x1b[31m", all}, {"B", "\x1b[5m"}}).FileRow("x", "f\x1b[0m");
  made.Table("LIST\x08", false).Row({{all, all}});
  made.Table("EMPTY\x0c");
  for (const std::uint32_t codePage : {1252U, 437U, 932U, 65001U}) {
    made.Get().machine.codePage = codePage;
    for (const char c : made.As("table")) {
      EXPECT_TRUE(c == '\n' || static_cast<unsigned char>(c) >= 0x20) << static_cast<int>(c);
      EXPECT_NE(c, 0x7F);
    }
  }
}

TEST(TableFormat, ReadsValuesAndLabelsInTheMachinesCodePage) {
  MadeCollection made;
  made.Get().machine.codePage = 850;
  made.Table("T").Row(
      {{"Gr\x94\xe1"
        "e",
        "\x81"
        "brig"}});
  EXPECT_THAT(made.As("table"), HasSubstr("\nGröße\n─────\nübrig\n"));
}

TEST(TableFormat, ColoursOnlyWhenAsked) {
  MadeCollection made;
  made.Table("T").Row({{"A", "1"}}).Table("U");
  EXPECT_THAT(made.As("table"), Not(HasSubstr("\x1b")));
  EXPECT_THAT(made.As("table", {true, true, 80}), HasSubstr("\x1b[1mT\x1b[0m · 1 row\n"));
}

TEST(TableFormat, ShowsARowsOwnLabelInAList) {
  MadeCollection made;
  made.Table("T", false).Row({{"First", "1"}}).Row({{"Second", "2"}});
  EXPECT_THAT(made.As("table"), HasSubstr("First: 1\n\n── 2 of 2\nSecond: 2\n"));
}

}  // namespace
}  // namespace host
