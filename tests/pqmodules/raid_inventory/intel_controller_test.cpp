#include "pqmodules/rsamplemodule1/intel_controller.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/bound/machine_in_use.h"
#include "frame/tool_runner.h"
#include "host/recorded/recorded_machine.h"
#include "tests/support/collected.h"
#include "tests/support/fake_platform.h"
#include "tests/support/log_lines.h"
#include "tests/support/raid_tools.h"

namespace {

constexpr pq::ModuleLog kIntelLog{"pqmodules/rsamplemodule1"};

using test::Collected;
using test::RaidTools;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr char kRst[] = "rstcli64_5.exe";
constexpr char kVroc[] = "IntelVROCCli.exe";

Collected CollectIntel(const RaidTools& tools) {
  return test::Collect(tools.recording, "sampleModule1", {"CONTROLLER"});
}

/// The log lines about Intel's tools.
std::vector<std::string> IntelLines(const Collected& collected) {
  std::vector<std::string> lines;
  for (const std::string& line : collected.LogTexts()) {
    if (line.find("rstcli") != std::string::npos || line.starts_with("4 ")) lines.push_back(line);
  }
  return lines;
}

/// "key=value" of every fact in `lines`; the last one of a row ends with " |".
std::vector<std::string> FactsIn(const std::vector<std::string>& lines) {
  std::vector<std::string> facts;
  pq::IntelControllerScan scan;
  for (const std::string& line : lines) {
    const auto fact = scan.Take(line);
    if (!fact) continue;
    facts.push_back(std::string(fact->column->key) + "=" + std::string(fact->value) +
                    (fact->endsRow ? " |" : ""));
  }
  return facts;
}

TEST(IntelController, TakesTheFactsByTheirLines) {
  EXPECT_THAT(FactsIn({"--CONTROLLER INFORMATION--", "", "ID:  0", "Name:  N", "Type:  T",
                       "Supported RAID:  R", "Max Disks/Array:  8", "HW Information:  I",
                       "Vendor ID:  V", "Device ID:  D", "HW Revision:  11", "Other:  x"}),
              ElementsAre("Name=TROLLER INFORMATION--", "Name=", "Name=0", "Name=  N", "Type=  T",
                          "SupportedRAID=  R", "Max=  8", "HWInformation=  I", "VendorID=  V",
                          "DeviceID=  D", "HWRevision=  11 |"));
}

TEST(IntelController, SkipsAPlaceBehindANameInTheThirdLine) {
  EXPECT_THAT(FactsIn({"--CONTROLLER INFORMATION--", "", "Name:  N", "Type:  T"}),
              ElementsAre("Name=TROLLER INFORMATION--", "Name=", "Name=  N", "Type=  T"));
}

TEST(IntelController, MovesAllUpBehindANameInTheSecondLine) {
  EXPECT_THAT(FactsIn({"line 0", "Name:  N", "Type:  T", "Supported RAID:  R", "Max Disks:  8",
                       "HW Information:  I", "Vendor ID:  V", "Device ID:  D", "HW Revision:  1",
                       "the tenth line"}),
              ElementsAre("Name=0", "Name=  N", "Name=  T", "Type=rted RAID:  R",
                          "SupportedRAID=", "Max= I", "HWInformation=", "VendorID=  D",
                          "DeviceID=n:  1", "HWRevision=ne |"));
}

TEST(IntelController, SkipsAPlaceBehindEachNameInTheFirstLines) {
  EXPECT_THAT(FactsIn({"Name: A", "Name: B", "Type: T", "Supported RAID: R"}),
              ElementsAre("Name= A", "Name= B", "Type= T", "SupportedRAID= R"));
}

TEST(IntelController, FindsTheNameAnywhereInAnEarlyLine) {
  EXPECT_THAT(FactsIn({"x", "the Name", "one", "two"}),
              ElementsAre("Name=", "Name=ame", "Name=", "Type="));
}

TEST(IntelController, SkipsNothingBehindANameInTheFourthLine) {
  EXPECT_THAT(FactsIn({"", "", "", "Name: N", "Type: T"}),
              ElementsAre("Name=", "Name=", "Name=", "Name= N", "Type= T"));
}

TEST(IntelController, HasEmptyValuesWhereLinesEndEarly) {
  EXPECT_THAT(
      FactsIn({"a\n", "b\n", "c\n", "d\n", "e\n", "f\n", "g\n", "h\n", "i\n", "j\n", "k\n"}),
      ElementsAre("Name=", "Name=", "Name=", "Name=", "Type=", "SupportedRAID=", "Max=",
                  "HWInformation=", "VendorID=", "DeviceID=", "HWRevision= |"));
}

constexpr char kReport[] =
    "--CONTROLLER INFORMATION--\r\n"
    "\r\n"
    "ID: 0\r\n"
    "Name: N\r\n"
    "Type: T\r\n"
    "Supported RAID: R\r\n"
    "Max Disks/Array: 8\r\n"
    "HW Information: I\r\n"
    "Vendor ID: 0x8086\r\n"
    "Device ID: D\r\n"
    "HW Revision: 11\r\n"
    "License: none\r\n";

TEST(IntelController, KeepsTheBlankAndTheLineEndOfAValue) {
  EXPECT_THAT(CollectIntel(RaidTools().Answer(kRst, "-I", kReport)).Rows("CONTROLLER").at(0),
              Contains("VendorID= 0x8086\n"));
}

TEST(IntelController, GivesOneRow) {
  EXPECT_THAT(CollectIntel(RaidTools().Answer(kRst, "-I", kReport)).Rows("CONTROLLER"),
              ElementsAre(ElementsAre("Name= N\n", "Type= T\n", "SupportedRAID= R\n", "Max= 8\n",
                                      "HWInformation= I\n", "VendorID= 0x8086\n", "DeviceID= D\n",
                                      "HWRevision= 11\n")));
}

TEST(IntelController, SetsTheNameOncePerEarlyLine) {
  EXPECT_THAT(
      CollectIntel(RaidTools().Answer(kRst, "-I", kReport)).trace,
      HasSubstr("\"key\":\"Name\",\"label\":\"Name\",\"value\":\"TROLLER INFORMATION--\\n\""));
}

TEST(IntelController, ShowsTheDiskCountUnderItsLongName) {
  const Collected collected = CollectIntel(RaidTools().Answer(kRst, "-I", kReport));
  const host::Column& column = collected.Tables().at("CONTROLLER").columns.at(3);
  EXPECT_EQ(column.key, "Max");
  EXPECT_EQ(column.label, "Max Disks/Array");
}

TEST(IntelController, GivesNoRowForAReportOfTenLines) {
  std::string report;
  for (int i = 0; i < 10; ++i) report += "line\n";
  EXPECT_THAT(CollectIntel(RaidTools().Answer(kRst, "-I", report)).Rows("CONTROLLER"), IsEmpty());
}

TEST(IntelController, LeavesVrocAloneWhenRstAnswers) {
  const Collected collected = CollectIntel(RaidTools().Answer(kRst, "-I", kReport));
  EXPECT_THAT(collected.commandLines, Not(Contains(HasSubstr(kVroc))));
  EXPECT_THAT(
      IntelLines(collected),
      ElementsAre("3 rstcli raw path:/c \"\"C:\\Halyard\\pq_tools\\rstcli64_5.exe\" -I > "
                  "\"C:\\Halyard\\logs\\rstcli64.txt\"\"",
                  "4 rstcli64 -I command error level: 0", "4 Failed to open PMC Controller file"));
}

TEST(IntelController, AsksVrocWhenRstFails) {
  const Collected collected =
      CollectIntel(RaidTools().Answer(kRst, "-I", "no", 4294967295).Answer(kVroc, "-I", kReport));
  EXPECT_THAT(
      IntelLines(collected),
      ElementsAre(HasSubstr(kRst), "4 rstcli64 -I command error level: 4294967295",
                  "3 rstcli raw path:/c \"\"C:\\Halyard\\utilities\\vroc\\IntelVROCCli.exe\""
                  " -I > \"C:\\Halyard\\logs\\rstcli64.txt\"\"",
                  "4 rstcli64 -I command error level: 0", "4 Failed to open PMC Controller file"));
  EXPECT_THAT(collected.Rows("CONTROLLER").at(0), Contains("Name= N\n"));
}

TEST(IntelController, ReadsNothingWhenBothFail) {
  const Collected collected =
      CollectIntel(RaidTools().Answer(kRst, "-I", kReport, 4).Answer(kVroc, "-I", kReport, 2));
  EXPECT_THAT(
      IntelLines(collected),
      ElementsAre(HasSubstr(kRst), "4 rstcli64 -I command error level: 4", HasSubstr(kVroc),
                  "4 rstcli64 -I command error level: 2", "4 Failed to open PMC Controller file"));
  EXPECT_THAT(collected.opened, Not(Contains(HasSubstr("rstcli64"))));
  EXPECT_THAT(collected.Rows("CONTROLLER"), IsEmpty());
}

TEST(IntelController, TriesVrocWhenRstIsMissing) {
  const Collected collected = CollectIntel(RaidTools());
  EXPECT_THAT(collected.LogTexts(), Contains("4 rstcli64 -I command error level: 1").Times(2));
  EXPECT_THAT(collected.Rows("CONTROLLER"), IsEmpty());
}

TEST(IntelController, EndsWhenRstCannotBeStarted) {
  const Collected collected =
      CollectIntel(RaidTools().RefuseStart(kRst, "-I", 5).Answer(kVroc, "-I", kReport));
  EXPECT_THAT(IntelLines(collected), ElementsAre(HasSubstr(kRst), "4 CreateProcess failed (5)",
                                                 "4 Failed to open PMC Controller file"));
  EXPECT_THAT(collected.commandLines, Not(Contains(HasSubstr(kVroc))));
}

TEST(IntelController, EndsWhenVrocCannotBeStarted) {
  const Collected collected =
      CollectIntel(RaidTools().Answer(kRst, "-I", "", 1).RefuseStart(kVroc, "-I", 8));
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (8)"));
  EXPECT_THAT(collected.Rows("CONTROLLER"), IsEmpty());
}

TEST(IntelController, EndsWhenTheExitCodeCannotBeRead) {
  const Collected collected =
      CollectIntel(RaidTools().HideExitCode(kRst, "-I", 6).Answer(kVroc, "-I", kReport));
  EXPECT_THAT(IntelLines(collected),
              ElementsAre(HasSubstr(kRst), "4 GetExitCodeProcess() failed: 6",
                          "4 Failed to open PMC Controller file"));
  EXPECT_THAT(collected.commandLines, Not(Contains(HasSubstr(kVroc))));
}

TEST(IntelController, SaysWhenTheReportCannotBeOpened) {
  test::FakePlatform machine;  // Every tool ends well, no file can be opened.
  const pq::MachineInUse inUse(machine);
  const test::LogLines log;
  halyard::repository::RRepository repository;
  pq::CollectIntelController({repository, kIntelLog, pq::GetExeFolder()});
  EXPECT_THAT(log.texts, ElementsAre(StartsWith("3 [repo] rstcli raw path:"),
                                     "4 [repo] rstcli64 -I command error level: 0",
                                     "4 [repo] Failed to open raid log file"));
}

// The probe of the controllers ends such a process already; the step does not count on it.
TEST(IntelController, EndsTheProcessWhenTheHostsFolderFillsTheCommand) {
  test::FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  halyard::repository::RRepository repository;
  EXPECT_NO_THROW(pq::CollectIntelController({repository, kIntelLog, std::string(506, 'h')}));
  EXPECT_THROW(pq::CollectIntelController({repository, kIntelLog, std::string(507, 'h')}),
               test::RangeCheckFailed);
  EXPECT_THAT(machine.calls, IsEmpty());
}

}  // namespace
