#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/bound/machine_in_use.h"
#include "host/recorded/recorded_machine.h"
#include "host/recording/recording_reader.h"
#include "pqmodules/rsamplemodule1.h"
#include "tests/support/collected.h"
#include "tests/support/fake_platform.h"
#include "tests/support/log_lines.h"
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

constexpr char kExit[] = "3 Exit EnumXFirmwareInstancesCallback";
constexpr char kOpenFailure[] = "4 Failed to open raid log file";

Collected Collect(const RaidTools& tools, const std::vector<std::string>& tables = {"RAIDINFO"}) {
  return test::Collect(tools.recording, "sampleModule1", tables);
}

Collected CollectSample(const std::string& name) {
  return test::Collect(host::LoadRecording(test::SamplesFolder() + "/" + name), "sampleModule1");
}

TEST(RaidInventory, LeavesTheExpectedTraceOfTheTwoSocketServer) {
  EXPECT_EQ(CollectSample("two-socket-server").trace,
            test::TestData("raid_inventory_two_socket_server.trace"));
}

TEST(RaidInventory, LeavesTheExpectedTraceOfHostBusAdapters) {
  EXPECT_EQ(CollectSample("hba-only").trace, test::TestData("raid_inventory_hba_only.trace"));
}

TEST(RaidInventory, LeavesTheExpectedTraceWhereVrocAnswersInRstsPlace) {
  EXPECT_EQ(CollectSample("vroc").trace, test::TestData("raid_inventory_vroc.trace"));
}

TEST(RaidInventory, LeavesTheExpectedTraceWithoutAnyController) {
  EXPECT_EQ(CollectSample("no-controller").trace,
            test::TestData("raid_inventory_no_controller.trace"));
}

TEST(RaidInventory, CollectsOnceForAllTables) {
  const Collected once = Collect(RaidTools(), {"S1TABLE1"});
  const Collected twice = Collect(RaidTools(), {"S1TABLE1", "PMCLINK", "S1TABLE1"});
  EXPECT_EQ(twice.commandLines, once.commandLines);
  EXPECT_EQ(twice.Rows("S1TABLE1"), once.Rows("S1TABLE1"));
  EXPECT_EQ(twice.log.size(), once.log.size() + 4);
}

TEST(RaidInventory, GivesTheFirstDemonstrationTableTwoRowsUnderOneKey) {
  const Collected collected = Collect(RaidTools());
  EXPECT_THAT(
      collected.Rows("S1TABLE1"),
      ElementsAre(
          ElementsAre("S1T1PRO1=VALUE1", "S1T1PRO2=VALUE1", "S1T1PRO3=VALUE1", "S1T1PRO4=VALUE1"),
          ElementsAre("S1T1PRO1=VALUE2", "S1T1PRO2=VALUE2", "S1T1PRO3=VALUE2", "S1T1PRO4=VALUE2")));
  for (const host::Row& row : collected.Tables().at("S1TABLE1").rows) {
    EXPECT_EQ(row.shape->instanceKey, "sample 1 - table 1");
  }
}

TEST(RaidInventory, GivesTheSecondDemonstrationTableOneRow) {
  EXPECT_THAT(Collect(RaidTools()).Rows("S1TABLE2"),
              ElementsAre(ElementsAre("S1T2PRO1=VALUE1", "S1T2PRO2=VALUE1", "S1T2PRO3=VALUE1",
                                      "S1T2PRO4=VALUE1")));
}

TEST(RaidInventory, RegistersATableThatStaysEmpty) {
  const Collected collected = Collect(RaidTools(), {"JUNADDTABLE"});
  EXPECT_THAT(collected.trace, HasSubstr("\"table\":\"JUNADDTABLE\""));
  EXPECT_THAT(collected.Rows("JUNADDTABLE"), IsEmpty());
}

TEST(RaidInventory, AsksAllCollectorsWhenTheCountIsZero) {
  const Collected collected = Collect(RaidTools("Controller Count = 0\n"));
  EXPECT_THAT(collected.commandLines, Contains(HasSubstr("/c0 show >")));
  EXPECT_THAT(collected.commandLines, Contains(HasSubstr("rstcli64_5.exe")));
  EXPECT_THAT(collected.commandLines, Contains(HasSubstr("arcconf.exe")));
}

TEST(RaidInventory, AsksAllCollectorsWithoutStorcli) {
  RaidTools tools;
  tools.recording.commands.clear();
  const Collected collected = Collect(tools);
  EXPECT_THAT(collected.commandLines, SizeIs(6));
  EXPECT_THAT(collected.LogTexts(), Contains(kExit));
}

TEST(RaidInventory, EndsEarlyWhenTheCountCannotBeAskedFor) {
  RaidTools tools;
  tools.recording.commands.clear();
  const Collected collected = Collect(tools.RefuseStart("storcli.exe", "show ctrlcount", 5));
  EXPECT_THAT(collected.LogTexts(),
              ElementsAre("3 Enter EnumPQ1Instances", "3 Enter EnumXFirmwareInstancesCallback",
                          "3 the exepath:C:\\Halyard", "4 CreateProcess failed (5)",
                          "3 Exit EnumPQ1Instances"));
  EXPECT_THAT(collected.commandLines, SizeIs(1));
  EXPECT_THAT(collected.Rows("S1TABLE1"), SizeIs(2));
}

TEST(RaidInventory, EndsEarlyWhenTheCountCannotBeRead) {
  const Collected collected = Collect(RaidTools().RefuseReport("ctrlcount.txt"));
  EXPECT_THAT(collected.LogTexts(),
              ElementsAre("3 Enter EnumPQ1Instances", "3 Enter EnumXFirmwareInstancesCallback",
                          "3 the exepath:C:\\Halyard", kOpenFailure, "3 Exit EnumPQ1Instances"));
  EXPECT_THAT(collected.commandLines, SizeIs(1));
  EXPECT_THAT(collected.Rows("S1TABLE2"), SizeIs(1));
}

TEST(RaidInventory, DoesNotTryAgainAfterAnEarlyEnd) {
  RaidTools tools;
  tools.recording.commands.clear();
  const Collected collected =
      Collect(tools.RefuseStart("storcli.exe", "show ctrlcount", 5), {"RAIDINFO", "PMCINFO"});
  EXPECT_THAT(collected.commandLines, SizeIs(1));
}

TEST(RaidInventory, LeavesTheCountReportOpenAndNothingElse) {
  EXPECT_EQ(CollectSample("two-socket-server").openHandles, 1);
}

TEST(RaidInventory, LeavesNothingOpenWhenTheCountCannotBeRead) {
  EXPECT_EQ(Collect(RaidTools().RefuseReport("ctrlcount.txt")).openHandles, 0);
}

/// Runs the module in a host whose folder's path has `length` characters.
void CollectInFolder(test::FakePlatform& machine, std::size_t length) {
  const pq::MachineInUse inUse(machine);
  machine.hostExecutable = "C:\\" + std::string(length - 3, 'h') + "\\halyard.exe";
  halyard::repository::RRepository repository;
  pq::RSampleModule1().EnumPQ1Instances(repository);
}

TEST(RaidInventory, EndsTheProcessWhenTheHostsFolderFillsTheCommand) {
  test::FakePlatform machine;
  EXPECT_THROW(CollectInFolder(machine, 507), test::RangeCheckFailed);
  EXPECT_THAT(machine.calls, IsEmpty());
}

TEST(RaidInventory, StartsNothingWhenTheCommandDoesNotFit) {
  test::FakePlatform machine;
  const test::LogLines log;
  CollectInFolder(machine, 506);
  EXPECT_THAT(log.texts, Contains("4 [repo] CreateProcess failed (206)"));
  EXPECT_THAT(machine.calls, IsEmpty());
}

}  // namespace
