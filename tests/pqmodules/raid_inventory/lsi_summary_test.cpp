#include "pqmodules/rsamplemodule1/lsi_summary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/bound/machine_in_use.h"
#include "tests/support/collected.h"
#include "tests/support/fake_platform.h"
#include "tests/support/raid_tools.h"

namespace {

using test::Collected;
using test::RaidTools;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

Collected CollectSummary(const RaidTools& tools) {
  return test::Collect(tools.recording, "sampleModule1", {"RAIDINFO"});
}

/// The rows that come of what storcli prints about controller 0.
std::vector<std::vector<std::string>> SummaryRowsOf(const std::string& summary) {
  return CollectSummary(RaidTools().Storcli("/c0 show", summary)).Rows("RAIDINFO");
}

/// "key=value" of the fact in one line; empty when there is none.
std::string SummaryFactIn(const std::string& line) {
  const pq::LabelledFact fact = pq::GetLsiSummaryFacts().FindIn(line);
  return fact ? std::string(fact.source->column.key) + "=" + std::string(fact.value) : "";
}

TEST(LsiSummary, KeepsTheBlankAndTheLineEndOfAValue) {
  EXPECT_EQ(SummaryFactIn("Serial Number = SK12345\n"), "SerialNumber= SK12345\n");
}

TEST(LsiSummary, TakesTheEarlierOfTwoLabelsInOneLine) {
  EXPECT_EQ(SummaryFactIn("FW Version = 5.1, FW Package Build = 52.2\n"), "FWPackageBuild= 52.2\n");
}

TEST(LsiSummary, FindsALabelInsideALongerOne) {
  EXPECT_EQ(SummaryFactIn("PSOC FW Version = 0x006E\n"), "FWVersion= 0x006E\n");
}

TEST(LsiSummary, HasAnEmptyValueWhereTheLineEndsBehindTheLabel) {
  EXPECT_EQ(SummaryFactIn("Serial Number ="), "SerialNumber=");
}

TEST(LsiSummary, DistinguishesCapitals) {
  EXPECT_EQ(SummaryFactIn("Vendor Id = 0x1000, bus number = 3\n"), "");
}

TEST(LsiSummary, KeepsBytesAbove127) {
  EXPECT_EQ(SummaryFactIn("Product Name = Gr\xfc"
                          "n\n"),
            "ProductName= Gr\xfc"
            "n\n");
}

TEST(LsiSummary, GivesOneRowWithAllFacts) {
  EXPECT_THAT(SummaryRowsOf("Product Name = A\r\nSerial Number = B\r\nSAS Address =  C\r\n"
                            "System Time = E\r\nMfg. Date = D\r\nController Time = F\r\n"
                            "FW Package Build = G\r\nBIOS Version = H\r\nFW Version = I\r\n"
                            "Driver Name = J\r\nDriver Version = K\r\nBus Number = L\r\n"
                            "Device Number = M\r\nFunction Number = N\r\n"),
              ElementsAre(ElementsAre("ProductName= A\n", "SerialNumber= B\n", "SASAddress=  C\n",
                                      "SystemTime= E\n", "MfgDate= D\n", "ControllerTime= F\n",
                                      "FWPackageBuild= G\n", "BIOSVersion= H\n", "FWVersion= I\n",
                                      "DriverName= J\n", "DriverVersion= K\n", "BusNumber= L\n",
                                      "DeviceNumber= M\n", "FunctionNumber= N\n")));
}

TEST(LsiSummary, ShowsTheLabelsWithoutTheirEqualsSigns) {
  const Collected collected =
      CollectSummary(RaidTools().Storcli("/c0 show", "Mfg. Date = 1\nFunction Number = 0\n"));
  const auto& columns = collected.Tables().at("RAIDINFO").columns;
  ASSERT_THAT(columns, SizeIs(2));
  EXPECT_EQ(columns[0].label, "Mfg. Date");
  EXPECT_EQ(columns[1].label, "Function Number");
}

TEST(LsiSummary, GivesNoRowWithoutAFunctionNumber) {
  EXPECT_THAT(SummaryRowsOf("Product Name = A\nBus Number = 1\nDevice Number = 0\n"), IsEmpty());
}

TEST(LsiSummary, GivesNoRowForAnEmptyReport) { EXPECT_THAT(SummaryRowsOf(""), IsEmpty()); }

TEST(LsiSummary, GivesTheSameRowAgainAtASecondFunctionNumber) {
  EXPECT_THAT(SummaryRowsOf("Function Number = 0\nBus Number = 4\nFunction Number = 1\n"),
              ElementsAre(ElementsAre("FunctionNumber= 0\n"),
                          ElementsAre("FunctionNumber= 1\n", "BusNumber= 4\n")));
}

TEST(LsiSummary, LosesWhatFollowsTheFunctionNumber) {
  EXPECT_THAT(SummaryRowsOf("Function Number = 0\nBIOS Version = 7\n"),
              ElementsAre(ElementsAre("FunctionNumber= 0\n")));
}

TEST(LsiSummary, TakesTheLastLineWithoutALineEnd) {
  EXPECT_THAT(SummaryRowsOf("Function Number = 0"), ElementsAre(ElementsAre("FunctionNumber= 0")));
}

TEST(LsiSummary, EndsAValueAtANul) {
  using std::string_literals::operator""s;
  EXPECT_THAT(SummaryRowsOf("Bus Number = 1\0 2\nFunction Number = 0\n"s),
              ElementsAre(ElementsAre("BusNumber= 1", "FunctionNumber= 0\n")));
}

// A line of more than 511 characters arrives in pieces, and so does its value.
TEST(LsiSummary, CutsAValueAtTheRoomOfALine) {
  const std::string name(600, 'x');
  EXPECT_THAT(
      SummaryRowsOf("Product Name = " + name + "\nFunction Number = 0\n"),
      ElementsAre(ElementsAre("ProductName= " + name.substr(0, 511 - 15), "FunctionNumber= 0\n")));
}

TEST(LsiSummary, SaysWhenStorcliCannotBeStarted) {
  const Collected collected = CollectSummary(RaidTools().RefuseStart("storcli.exe", "/c0 show", 8));
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (8)"));
  EXPECT_THAT(collected.opened, Not(Contains(HasSubstr("c0_showall.txt"))));
  EXPECT_THAT(collected.Rows("RAIDINFO"), IsEmpty());
  EXPECT_THAT(collected.commandLines, Contains(HasSubstr("rstcli64_5.exe")));
}

TEST(LsiSummary, SaysWhenTheReportCannotBeOpened) {
  const Collected collected = CollectSummary(RaidTools().RefuseReport("c0_showall.txt"));
  EXPECT_THAT(collected.LogTexts(), Contains("4 Failed to open raid log file").Times(1));
  EXPECT_THAT(collected.trace, Not(HasSubstr("RAIDINFO\",\"key\"")));
  EXPECT_THAT(collected.commandLines, Contains(HasSubstr("rstcli64_5.exe")));
}

// The probe of the controllers ends such a process already; the step does not count on it.
TEST(LsiSummary, EndsTheProcessWhenTheHostsFolderFillsTheCommand) {
  test::FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  constexpr pq::ModuleLog kLog{"pqmodules/rsamplemodule1"};
  halyard::repository::RRepository repository;
  EXPECT_NO_THROW(pq::CollectLsiSummary({repository, kLog, std::string(506, 'h')}));
  EXPECT_THROW(pq::CollectLsiSummary({repository, kLog, std::string(507, 'h')}),
               test::RangeCheckFailed);
  EXPECT_THAT(machine.calls, IsEmpty());
}

}  // namespace
