#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/raid_tools.h"

namespace {

using test::Collected;
using test::RaidTools;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

/// The controllers whose links were published, in order.
std::vector<std::string> LinkedControllers(const RaidTools& tools) {
  std::vector<std::string> indexes;
  for (const auto& row : tools.Collect().Rows("LSILINK")) indexes.push_back(row.front());
  return indexes;
}

std::vector<std::string> LinkedControllers(const std::string& countReport) {
  return LinkedControllers(RaidTools(countReport));
}

std::size_t CountOf(const std::vector<std::string>& texts, const std::string& text) {
  return static_cast<std::size_t>(std::count(texts.begin(), texts.end(), text));
}

TEST(RaidLogsDriver, GivesTheSampleReadingsRisingIntegers) {
  const auto rows = RaidTools().Collect().Rows("S2TABLE1");
  ASSERT_THAT(rows, SizeIs(6));
  EXPECT_THAT(rows[0],
              ElementsAre("item1=0", "item2=1", "item3=2", "item4=3", "item5=4", "item6=5"));
  EXPECT_THAT(rows[3],
              ElementsAre("item1=3", "item2=4", "item3=5", "item4=6", "item5=7", "item6=8"));
  EXPECT_THAT(rows[5],
              ElementsAre("item1=5", "item2=6", "item3=7", "item4=8", "item5=9", "item6=10"));
}

TEST(RaidLogsDriver, GivesTheSampleReadingsIntegerProperties) {
  const Collected collected = RaidTools().Collect();
  const auto& columns = collected.Tables().at("S2TABLE1").columns;
  ASSERT_THAT(columns, SizeIs(6));
  for (const auto& column : columns) EXPECT_EQ(column.kind, host::CellKind::kInteger) << column.key;
}

TEST(RaidLogsDriver, GivesAllFourSampleTextsTheSameValue) {
  EXPECT_THAT(RaidTools().Collect().Rows("S2TABLE2"),
              ElementsAre(ElementsAre("S2T2PRO1=VALUE1", "S2T2PRO2=VALUE1", "S2T2PRO3=VALUE1",
                                      "S2T2PRO4=VALUE1")));
}

TEST(RaidLogsDriver, LinksEveryControllerThatIsCounted) {
  EXPECT_THAT(LinkedControllers("CLI Version = 1\n\nController Count = 2\n"),
              ElementsAre("index=Controller0", "index=Controller1"));
}

TEST(RaidLogsDriver, ReadsTheFirstDigitOfACount) {
  EXPECT_THAT(LinkedControllers("Controller Count = 12\n"), ElementsAre("index=Controller0"));
}

TEST(RaidLogsDriver, LinksControllerZeroWithoutACount) {
  EXPECT_THAT(LinkedControllers("Status = Failure\n"), ElementsAre("index=Controller0"));
}

TEST(RaidLogsDriver, LinksControllerZeroWithAnEmptyCountReport) {
  EXPECT_THAT(LinkedControllers(""), ElementsAre("index=Controller0"));
}

TEST(RaidLogsDriver, LinksControllerZeroWithoutStorcli) {
  RaidTools tools;
  tools.recording.commands.clear();
  EXPECT_THAT(LinkedControllers(tools), ElementsAre("index=Controller0"));
}

TEST(RaidLogsDriver, LinksNothingWhenTheCountIsZero) {
  EXPECT_THAT(LinkedControllers("Controller Count = 0\n"), IsEmpty());
}

TEST(RaidLogsDriver, LinksNothingWhenTheCountLineEndsEarly) {
  const Collected collected = RaidTools("Controller Count =\n").Collect();
  EXPECT_THAT(collected.Rows("LSILINK"), IsEmpty());
  EXPECT_THAT(collected.commandLines, Contains(HasSubstr("/c0 show termlog")));
  EXPECT_THAT(collected.LogTexts(), Contains("3 Exit CollectData"));
}

TEST(RaidLogsDriver, LinksNothingWhenTheFileEndsBehindTheLabel) {
  EXPECT_THAT(LinkedControllers("Controller Count ="), IsEmpty());
}

TEST(RaidLogsDriver, LinksNothingWhenTheCountIsAByteAbove127) {
  EXPECT_THAT(LinkedControllers("Controller Count = \xE9\n"), IsEmpty());
}

TEST(RaidLogsDriver, TakesACharacterBehindTheDigitsAsItsDistanceFromZero) {
  EXPECT_THAT(LinkedControllers("Controller Count = :\n"), SizeIs(10));
}

TEST(RaidLogsDriver, FindsTheCountInsideALine) {
  EXPECT_THAT(LinkedControllers("## Controller Count = 3\n"), SizeIs(3));
}

TEST(RaidLogsDriver, TakesTheLastOfSeveralCounts) {
  EXPECT_THAT(LinkedControllers("Controller Count = 5\nController Count = 2\n"), SizeIs(2));
}

TEST(RaidLogsDriver, ReadsTheCountAcrossCrLf) {
  EXPECT_THAT(LinkedControllers("x\r\nController Count = 2\r\n"), SizeIs(2));
}

TEST(RaidLogsDriver, RunsTheCollectorsInTheirOrder) {
  const Collected collected = RaidTools("Controller Count = 1\n").Collect();
  EXPECT_THAT(
      collected.commandLines,
      ElementsAre(
          R"(/c ""C:\Halyard\utilities\lsi\storcli.exe" show ctrlcount > "C:\Halyard\logs\ctrlcount.txt"")",
          R"(/c ""C:\Halyard\utilities\lsi\storcli.exe" /c0 show > "C:\Halyard\logs\c0_showall.txt"")",
          R"(/c ""C:\Halyard\utilities\lsi\storcli.exe" /c0 show events > "C:\Halyard\logs\c0_raidevents.txt"")",
          R"(/c ""C:\Halyard\utilities\lsi\storcli.exe" /c0 show termlog > "C:\Halyard\logs\c0_fwtermlog.txt"")",
          R"(/c ""C:\Halyard\utilities\lsi\storcli.exe" /c0/eall/sall show all > "C:\Halyard\logs\c0_pdlist.txt"")",
          R"(/c ""C:\Halyard\utilities\lsi\storcli.exe" /c0 show events > "C:\Halyard\logs\raidevents.txt"")",
          R"(/c ""C:\Halyard\utilities\lsi\storcli.exe" /c0 show termlog > "C:\Halyard\logs\fwtermlog.txt"")",
          R"(/c ""C:\Halyard\utilities\lsi\storcli.exe" /c0/eall/sall show all > "C:\Halyard\logs\pdlist.txt"")",
          R"(/c ""C:\Halyard\utilities\lsi\storcli.exe" /c0 show > "C:\Halyard\logs\c0_showall.txt"")",
          R"(/c ""C:\Halyard\pq_tools\SAS2IR_windows_x64.exe" logir.log > "C:\Halyard\logs\ir.txt"")",
          R"(/c ""C:\Halyard\pq_tools\rstcli64_5.exe" -I > "C:\Halyard\logs\rstcli64.txt"")",
          R"(/c ""C:\Halyard\utilities\vroc\IntelVROCCli.exe" -I > "C:\Halyard\logs\rstcli64.txt"")"));
}

TEST(RaidLogsDriver, LogsTheFolderTheCommandAndTheDoubledPathOfTheCount) {
  const auto texts = RaidTools().Collect().LogTexts();
  EXPECT_THAT(
      std::vector<std::string>(texts.begin(), texts.begin() + 5),
      ElementsAre(
          "3 Enter EnumPQ2Instances", "3 Enter CollectData", R"(3 the exepath:C:\Halyard)",
          R"(4 ctrlcout path:/c ""C:\Halyard\utilities\lsi\storcli.exe" show ctrlcount > "C:\Halyard\logs\ctrlcount.txt"")",
          R"(4 ctrlcout path:C:\\Halyard\\logs\\ctrlcount.txt)"));
}

TEST(RaidLogsDriver, EndsAtOnceWhenTheCountToolCannotStart) {
  RaidTools tools;
  tools.recording.commands.clear();
  tools.RefuseStart("storcli.exe", "show ctrlcount", 5);
  const Collected collected = tools.Collect();
  EXPECT_THAT(collected.commandLines, SizeIs(1));
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (5)"));
  EXPECT_THAT(collected.LogTexts(), Not(Contains("3 Exit CollectData")));
  EXPECT_EQ(collected.LogTexts().back(), "3 Exit EnumPQ2Instances");
  EXPECT_THAT(collected.Rows("S2TABLE1"), SizeIs(6));
}

TEST(RaidLogsDriver, EndsSilentlyWhenTheCountReportCannotBeOpened) {
  const Collected collected = RaidTools().RefuseReport("ctrlcount.txt").Collect();
  EXPECT_THAT(collected.commandLines, SizeIs(1));
  EXPECT_THAT(collected.opened, ElementsAre(R"(C:\\Halyard\\logs\\ctrlcount.txt)"));
  EXPECT_THAT(collected.LogTexts(),
              ElementsAre("3 Enter EnumPQ2Instances", "3 Enter CollectData",
                          R"(3 the exepath:C:\Halyard)", StartsWith("4 ctrlcout path:/c "),
                          R"(4 ctrlcout path:C:\\Halyard\\logs\\ctrlcount.txt)",
                          "3 Exit EnumPQ2Instances"));
  EXPECT_THAT(collected.Rows("S2TABLE2"), SizeIs(1));
}

TEST(RaidLogsDriver, DoesNotRetryACollectionThatEndedEarly) {
  RaidTools tools;
  tools.RefuseReport("ctrlcount.txt");
  const Collected collected =
      test::Collect(tools.recording, "sampleModule2", {"LSILINK", "S2TABLE1"});
  EXPECT_THAT(collected.commandLines, SizeIs(1));
}

TEST(RaidLogsDriver, CollectsOnceForAllTables) {
  const Collected collected =
      test::Collect(RaidTools().recording, "sampleModule2", {"LSILINK", "S2TABLE1"});
  const auto texts = collected.LogTexts();
  EXPECT_EQ(CountOf(texts, "3 Enter EnumPQ2Instances"), 2U);
  EXPECT_EQ(CountOf(texts, "3 Enter CollectData"), 1U);
  EXPECT_THAT(collected.Rows("S2TABLE1"), SizeIs(6));
}

TEST(RaidLogsDriver, EnumeratesEveryTableOfItsRegistry) {
  const Collected collected = test::Collect(RaidTools().recording, "sampleModule2");
  EXPECT_EQ(CountOf(collected.LogTexts(), "3 Enter EnumPQ2Instances"), 17U);
}

TEST(RaidLogsDriver, LaysEveryTableOutAsRows) {
  const std::string trace = test::Collect(RaidTools().recording, "sampleModule2").trace;
  const std::string events = "4,5,5,4,4,12,12";
  const std::vector<std::pair<std::string, std::string>> layouts = {
      {"S2TABLE1", "20,16,16,16,16,16"},
      {"S2TABLE2", "20,30,30,20"},
      {"EVENTLOG1", events},
      {"EVENTLOG2", events},
      {"EVENTLOG3", events},
      {"EVENTLOG4", events},
      {"EVENTLOG5", events},
      {"FWTERMLOG", ""},
      {"PDLIST", ""},
      {"TINFO", ""},
      {"VINFO", ""},
      {"PINFO", ""},
      {"SAS2IRLOG", ""},
      {"ENDDEVICEINFO", ""},
      {"ARRAY", ""},
      {"VOLUME", ""},
      {"LSILINK", "2,5,5,5,5"}};
  for (const auto& [table, widths] : layouts) {
    EXPECT_THAT(trace, HasSubstr(R"({"event":"layout","table":")" + table +
                                 R"(","call":"SetRowHeaders","names":[],"widths":[)" + widths +
                                 R"(],"flag":false})"));
  }
}

TEST(RaidLogsDriver, LeavesNothingOpen) {
  EXPECT_EQ(RaidTools("Controller Count = 1\n").Collect().openHandles, 0);
}

TEST(RaidLogsDriver, FailsAToolWhoseCommandLineDoesNotFit) {
  RaidTools tools;
  tools.recording.logFolder = "C:\\" + std::string(240, 'l') + "\\";
  tools.recording.hostExecutable = "C:\\" + std::string(240, 'h') + "\\halyard.exe";
  const Collected collected = tools.Collect();
  EXPECT_THAT(collected.commandLines, IsEmpty());
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (206)"));
}

TEST(RaidLogsDriver, InheritsNoHandles) {
  const std::string trace = RaidTools("Controller Count = 1\n").Collect().trace;
  EXPECT_THAT(trace, HasSubstr("\"inheritHandles\":false"));
  EXPECT_THAT(trace, Not(HasSubstr("\"inheritHandles\":true")));
}

}  // namespace
