#include <gmock/gmock.h>

#include <sstream>
#include <string>

#include "host/text/screen_text.h"
#include "tests/support/program/made_collection.h"

namespace host {
namespace {

using test::MadeCollection;
using testing::HasSubstr;
using testing::Not;

Screen Wide(unsigned width) { return {false, false, width}; }

TEST(TableFormat, AlignsColumnsUnderTheirLabels) {
  MadeCollection made;
  made.Table("ARPINFO")
      .Row({{"Internet Address", "10.0.0.1"}, {"Type", "dynamic"}})
      .Row({{"Internet Address", "10.0.0.254"}, {"Type", "static"}});
  EXPECT_EQ(made.As("table"),
            "For tests · Example\n"
            "\n"
            "ARP table · ARPINFO · 2 rows\n"
            "Internet Address  Type\n"
            "────────────────  ───────\n"
            "10.0.0.1          dynamic\n"
            "10.0.0.254        static\n");
}

TEST(TableFormat, ShowsNotesBelowTheTitleAlsoOfAnEmptyTable) {
  MadeCollection made;
  made.Table("ARPINFO").Row({{"Type", "dynamic"}}).Table("T");
  for (CollectedTable& table : made.Get().tables) table.status.notes = {"one is left out"};
  EXPECT_EQ(made.As("table"),
            "For tests · Example\n"
            "\n"
            "ARP table · ARPINFO · 1 row\n"
            "Note: one is left out\n"
            "Type\n"
            "───────\n"
            "dynamic\n"
            "\n"
            "T · 0 rows\n"
            "Note: one is left out\n");
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
  EXPECT_EQ(made.As("table"),
            "For tests · Example\n"
            "\n"
            "BMC LAN settings · LANINFO · 1 row\n"
            "IP address: 10.0.0.9\n"
            "MAC:        3c:ec\n");
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

TEST(TableFormat, NamesTheTablesWithoutRows) {
  MadeCollection made;
  made.Table("AAA").Table("BBB");
  EXPECT_EQ(made.As("table"), "For tests · Example\n\nNo rows: AAA BBB\n");
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
