#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/raid_tools.h"
#include "tests/support/refused_allocation.h"

namespace {

using test::Collected;
using test::RaidTools;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

/// One controller with four short reports.
RaidTools OneController() {
  RaidTools tools("Controller Count = 1\n");
  tools.Storcli("/c0 show", "summary\n")
      .Storcli("/c0 show events", "events\n")
      .Storcli("/c0 show termlog", "term log\n")
      .Storcli("/c0/eall/sall show all", "drives\n");
  return tools;
}

std::vector<std::string> LogOf(const Collected& collected, const std::string& start) {
  std::vector<std::string> texts;
  for (const std::string& text : collected.LogTexts()) {
    if (text.starts_with(start)) texts.push_back(text);
  }
  return texts;
}

TEST(LogLinks, CarryTheFourReportsWhole) {
  EXPECT_THAT(
      OneController().Collect().Rows("LSILINK"),
      ElementsAre(ElementsAre("index=Controller0", "lsishowall=summary\n", "lsieventlog=events\n",
                              "lsifwtermlog=term log\n", "pdlist=drives\n")));
}

TEST(LogLinks, MarkEveryReportAsARawFileUnderItsTag) {
  const Collected collected = OneController().Collect();
  const auto& row = collected.Tables().at("LSILINK").rows[0];
  std::vector<std::string> attributes;
  for (const auto& a : row.shape->attributes) {
    attributes.push_back(a.propertyKey + " " + a.name + " " + a.value);
  }
  EXPECT_THAT(attributes, ElementsAre("lsishowall raw true", "lsishowall filename c0_showall",
                                      "lsieventlog raw true", "lsieventlog filename c0_raidevents",
                                      "lsifwtermlog raw true", "lsifwtermlog filename c0_fwtermlog",
                                      "pdlist raw true", "pdlist filename c0_pdlist"));
}

TEST(LogLinks, TellControllersApartByTheirIndex) {
  RaidTools tools("Controller Count = 2\n");
  tools.Storcli("/c1 show", "second\n");
  const Collected collected = tools.Collect();
  const auto rows = collected.Rows("LSILINK");
  ASSERT_THAT(rows, SizeIs(2));
  EXPECT_EQ(rows[0][0], "index=Controller0");
  EXPECT_THAT(rows[1], AllOf(Contains("index=Controller1"), Contains("lsishowall=second\n")));
  for (const auto& row : collected.Tables().at("LSILINK").rows) {
    EXPECT_EQ(row.shape->instanceKey, "LSI Controller info link");
  }
}

TEST(LogLinks, NameTheFilesAfterTheController) {
  const Collected collected = RaidTools("Controller Count = 2\n").Collect();
  for (const char* name :
       {"c1_showall.txt", "c1_raidevents.txt", "c1_fwtermlog.txt", "c1_pdlist.txt"}) {
    EXPECT_EQ(collected.files.count(std::string("C:\\Halyard\\logs\\") + name), 1U) << name;
  }
  EXPECT_THAT(collected.commandLines,
              Contains(HasSubstr(R"(storcli.exe" /c1/eall/sall show all > )")));
}

TEST(LogLinks, OpenTheReportsByTheirPathsAsTheyAre) {
  EXPECT_THAT(OneController().Collect().opened,
              AllOf(Contains(R"(C:\Halyard\logs\c0_showall.txt)"),
                    Contains(R"(C:\Halyard\logs\c0_raidevents.txt)"),
                    Contains(R"(C:\Halyard\logs\c0_fwtermlog.txt)"),
                    Contains(R"(C:\Halyard\logs\c0_pdlist.txt)")));
}

TEST(LogLinks, LogPathsSizesAndTheSummarysText) {
  const auto texts = OneController().Collect().LogTexts();
  // Behind the enter lines, the folder and the count.
  EXPECT_THAT(
      std::vector<std::string>(texts.begin() + 5, texts.begin() + 15),
      ElementsAre(R"(4 Lsi show all log path: C:\Halyard\logs\c0_showall.txt)", "4 Size:8",
                  "4 Lsi show all log content: ", "4 summary\n",
                  R"(4 Lsi show event log path: C:\Halyard\logs\c0_raidevents.txt)", "4 Size:7",
                  R"(4 Lsi show FWterm log path: C:\Halyard\logs\c0_fwtermlog.txt)", "4 Size:9",
                  R"(4 Lsi show pdlist log path: C:\Halyard\logs\c0_pdlist.txt)", "4 Size:7"));
}

TEST(LogLinks, CountTheBytesAsStoredAndReadLineFeeds) {
  RaidTools tools("Controller Count = 1\n");
  tools.Storcli("/c0 show", "a\r\nb\r\n");
  const Collected collected = tools.Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 Size:6"));
  EXPECT_THAT(collected.Rows("LSILINK")[0], Contains("lsishowall=a\nb\n"));
}

TEST(LogLinks, GiveAnEmptyValueForAnEmptyReport) {
  RaidTools tools("Controller Count = 1\n");
  const Collected collected = tools.Collect();
  EXPECT_THAT(collected.Rows("LSILINK"),
              ElementsAre(ElementsAre("index=Controller0",
                                      "lsishowall=", "lsieventlog=", "lsifwtermlog=", "pdlist=")));
  EXPECT_THAT(LogOf(collected, "4 Size:"),
              ElementsAre("4 Size:0", "4 Size:0", "4 Size:0", "4 Size:0"));
}

TEST(LogLinks, KeepLinesOfAnyLength) {
  RaidTools tools("Controller Count = 1\n");
  const std::string text = std::string(5000, 'x') + "\n" + std::string(511, 'y') + "end";
  tools.Storcli("/c0 show events", text);
  EXPECT_THAT(tools.Collect().Rows("LSILINK")[0], Contains("lsieventlog=" + text));
}

struct LinkFailure {
  const char* arguments;
  const char* file;
  const char* openFailure;
  int reportsWritten;
};
class FailingLink : public ::testing::TestWithParam<LinkFailure> {};

TEST_P(FailingLink, GivesNoRowWhenItsToolCannotStart) {
  RaidTools tools("Controller Count = 1\n");
  tools.RefuseStart("storcli.exe", GetParam().arguments, 5);
  const Collected collected = tools.Collect();
  EXPECT_THAT(collected.Rows("LSILINK"), IsEmpty());
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (5)"));
  EXPECT_THAT(LogOf(collected, "4 Size:"), SizeIs(GetParam().reportsWritten));
  EXPECT_THAT(collected.LogTexts(), Contains("3 Exit CollectData"));
}

TEST_P(FailingLink, GivesNoRowWhenItsReportCannotBeOpened) {
  const Collected collected =
      RaidTools("Controller Count = 1\n").RefuseReport(GetParam().file).Collect();
  EXPECT_THAT(collected.Rows("LSILINK"), IsEmpty());
  EXPECT_THAT(collected.LogTexts(), Contains(std::string("4 ") + GetParam().openFailure));
  EXPECT_THAT(LogOf(collected, "4 Size:"), SizeIs(GetParam().reportsWritten));
}

TEST_P(FailingLink, GivesNoRowWithoutMemory) {
  RaidTools tools("Controller Count = 1\n");
  tools.Storcli(GetParam().arguments, std::string(77777, 'x'));
  const test::RefusedAllocation refused(77778);
  const Collected collected = tools.Collect();
  EXPECT_THAT(collected.Rows("LSILINK"), IsEmpty());
  EXPECT_THAT(collected.LogTexts(), Contains("4 Malloc failed!"));
  EXPECT_THAT(LogOf(collected, "4 Size:"), SizeIs(GetParam().reportsWritten + 1));
}

TEST_P(FailingLink, StillLinksTheNextController) {
  RaidTools tools("Controller Count = 2\n");
  tools.RefuseStart("storcli.exe", GetParam().arguments, 5);
  EXPECT_THAT(tools.Collect().Rows("LSILINK"), SizeIs(1));
}

INSTANTIATE_TEST_SUITE_P(LogLinks, FailingLink,
                         ::testing::Values(LinkFailure{"/c0 show", "c0_showall.txt",
                                                       "Failed to open file!", 0},
                                           LinkFailure{"/c0 show events", "c0_raidevents.txt",
                                                       "Failed to open event log file!", 1},
                                           LinkFailure{"/c0 show termlog", "c0_fwtermlog.txt",
                                                       "Failed to open FWterm log file!", 2},
                                           LinkFailure{"/c0/eall/sall show all", "c0_pdlist.txt",
                                                       "Failed to open pdlist log file!", 3}));

}  // namespace
