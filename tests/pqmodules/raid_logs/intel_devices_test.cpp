#include "pqmodules/rsamplemodule2/intel_devices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/bound/machine_in_use.h"
#include "host/logger/logger.h"
#include "host/recorded/recorded_machine.h"
#include "host/repository/store.h"
#include "tests/support/fake_platform.h"
#include "tests/support/log_lines.h"
#include "tests/support/raid_tools.h"

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

Collected Report(const std::string& text) {
  return RaidTools().Answer("rstcli64_5.exe", "-I", text).Collect();
}

/// The row of a device with `lines`, as far as the model that ends it.
std::vector<std::string> Device(const std::string& lines) {
  const auto rows =
      Report("--END DEVICE INFORMATION--\n" + lines + "Model:x\n").Rows("ENDDEVICEINFO");
  return rows.empty() ? std::vector<std::string>() : rows[0];
}

constexpr char kArray[] =
    "--ARRAY INFORMATION--\n"
    "\n"
    "Name:         Array_0000\n"
    "Size:         1863 GB\n"
    "Free:         0 GB\n"
    "Num Disks:    2\n"
    "Num Vols:     1\n"
    "Write Cache:  False\n";

constexpr char kVolume[] =
    "--VOLUME INFORMATION--\n"
    "\n"
    "Name:              Vol1\n"
    "Raid Level:        1\n"
    "Size:              932 GB\n"
    "StripeSize:        64 KB\n"
    "Num Disks:         2\n"
    "State:             Normal\n"
    "System:            True\n"
    "Initialized:       True\n"
    "Cache Policy:      Off\n";

TEST(IntelEndDevices, AreReadByLabel) {
  EXPECT_THAT(Report("--END DEVICE INFORMATION--\n\n"
                     "ID:                     0-4-0-0\n"
                     "Type:                   Disk\n"
                     "Disk Type:              PCIE SSD\n"
                     "State:                  Normal\n"
                     "Size:                   932 GB\n"
                     "System Disk:            False\n"
                     "Usage:                  Array member\n"
                     "Serial Number:          KV77\n"
                     "Model:                  KORVA 4600\n")
                  .Rows("ENDDEVICEINFO"),
              ElementsAre(ElementsAre(
                  "ID=                     0-4-0-0\n", "Type=                   Disk\n",
                  "DiskType=         PCIE SSD\n", "State=                  Normal\n",
                  "Size=                   932 GB\n", "SystemDisk=            False\n",
                  "Usage=                  Array member\n", "SerialNumber=          KV77\n",
                  "Model=                  KORVA 4600\n")));
}

TEST(IntelEndDevices, LoseFourLettersOfADiskTypeBehindOneBlank) {
  EXPECT_THAT(Device("Disk Type: SATA Disk\n"), Contains("DiskType= Disk\n"));
}

TEST(IntelEndDevices, ReadAnEmptyDiskTypeWhereTheLineIsShort) {
  EXPECT_THAT(Device("Disk Type: SSD\n"), Contains("DiskType="));
}

TEST(IntelEndDevices, CountTheDiskTypeFromItsOwnLabel) {
  EXPECT_THAT(Device("Type: a Disk Type:.....SATA\n"), Contains("DiskType=SATA\n"));
}

TEST(IntelEndDevices, TakeAFreeSizeAsTheSize) {
  EXPECT_THAT(Device("Size: 932 GB\nFree Size: 0 GB\n"), Contains("Size= 0 GB\n"));
}

TEST(IntelEndDevices, TestLabelsInTheirOrder) {
  EXPECT_THAT(Device("Type: ID: 7\n"), Contains("ID= 7\n"));
  EXPECT_THAT(Device("State: Type: 7\n"), Contains("Type= 7\n"));
  EXPECT_THAT(Device("Size: State: 7\n"), Contains("State= 7\n"));
  EXPECT_THAT(Device("Usage: System Disk: 7\n"), Contains("SystemDisk= 7\n"));
  EXPECT_THAT(Device("Model: Serial Number: 7\n"), Contains("SerialNumber= 7\n"));
}

TEST(IntelEndDevices, TakeTheSupportedRaidLevelsForAnId) {
  EXPECT_THAT(Device("Supported RAID:  0,1\n"), Contains("ID=  0,1\n"));
}

TEST(IntelEndDevices, AreIgnoredBeforeTheirSection) {
  EXPECT_THAT(
      Report("ID: 1\nModel: a\n--END DEVICE INFORMATION--\nModel: b\n").Rows("ENDDEVICEINFO"),
      ElementsAre(ElementsAre("Model= b\n")));
}

// A volume's lines behind the section are read too, its stripe size as a size.
TEST(IntelEndDevices, GoOnToTheEndOfTheReport) {
  EXPECT_THAT(
      Report(std::string("--END DEVICE INFORMATION--\nModel: a\n") + kVolume + "Model: b\n")
          .Rows("ENDDEVICEINFO"),
      ElementsAre(ElementsAre("Model= a\n"), ElementsAre("Model= b\n", "Size=        64 KB\n",
                                                         "State=             Normal\n")));
}

TEST(IntelEndDevices, CarryADeviceWithoutAModelIntoTheNext) {
  EXPECT_THAT(Report("END DEVICE\nID: 1\nUsage: Pass\nID: 2\nModel: b\n").Rows("ENDDEVICEINFO"),
              ElementsAre(ElementsAre("ID= 2\n", "Usage= Pass\n", "Model= b\n")));
}

TEST(IntelEndDevices, AreNoneWithoutTheirSection) {
  EXPECT_THAT(Report("ID: 1\nModel: a\n").Rows("ENDDEVICEINFO"), IsEmpty());
}

TEST(IntelArrays, AreReadByPosition) {
  EXPECT_THAT(Report(kArray).Rows("ARRAY"),
              ElementsAre(ElementsAre("Name=         Array_0000\n", "Size=         1863 GB\n",
                                      "Free=         0 GB\n", "NumDisks=    2\n",
                                      "NumVols=     1\n", "WriteCache=  False\n")));
}

TEST(IntelArrays, GiveOneRowPerBlock) {
  EXPECT_THAT(Report(std::string(kArray) + "\nID: 1\nmore\n" + kArray).Rows("ARRAY"), SizeIs(2));
}

TEST(IntelArrays, ShiftBehindAnExtraLine) {
  EXPECT_THAT(
      Report("ARRAY INFORMATION\n\n\nName: a\nSize: 1\nFree: 2\nNum Disks: 3\nNum Vols: 4\n")
          .Rows("ARRAY"),
      ElementsAre(ElementsAre("Name=", "Size= a\n", "Free= 1\n", "NumDisks=", "NumVols=: 3\n",
                              "WriteCache=")));
}

TEST(IntelArrays, AreNotCommittedWhenTheBlockIsCut) {
  EXPECT_THAT(Report("ARRAY INFORMATION\n\nName: a\nSize: 1\nFree: 2\nNum Disks: 3\nNum Vols: 4\n")
                  .Rows("ARRAY"),
              IsEmpty());
}

TEST(IntelArrays, StartAgainAtAMarkerInsideABlock) {
  EXPECT_THAT(Report(std::string("ARRAY INFORMATION\n\nName: lost\n") + kArray).Rows("ARRAY")[0],
              Contains("Name=         Array_0000\n"));
}

TEST(IntelVolumes, AreReadByPosition) {
  EXPECT_THAT(
      Report(kVolume).Rows("VOLUME"),
      ElementsAre(ElementsAre(
          "Name=              Vol1\n", "RaidLevel=        1\n", "Size=              932 GB\n",
          "StripeSize=        64 KB\n", "NumDisks=         2\n", "State=             Normal\n",
          "System=            True\n", "Initialized=       True\n", "CachePolicy=      Off\n")));
}

TEST(IntelVolumes, AndArraysComeFromOneReport) {
  const Collected collected = Report(std::string(kVolume) + "\n\n" + kArray);
  EXPECT_THAT(collected.Rows("ARRAY"), SizeIs(1));
  EXPECT_THAT(collected.Rows("VOLUME"), SizeIs(1));
  EXPECT_THAT(collected.opened, Contains(R"(C:\\Halyard\\logs\\rstcli64.txt)").Times(1));
}

TEST(IntelVolumes, GiveAnEmptyValueWhereALineIsShort) {
  EXPECT_THAT(Report("VOLUME INFORMATION\n\na\nb\nc\nd\ne\nf\ng\nh\ni").Rows("VOLUME"),
              ElementsAre(ElementsAre("Name=", "RaidLevel=", "Size=", "StripeSize=", "NumDisks=",
                                      "State=", "System=", "Initialized=", "CachePolicy=")));
}

TEST(IntelDevices, ComeFromRstWhenItEndsWell) {
  const Collected collected = Report(kArray);
  EXPECT_THAT(collected.commandLines, Not(Contains(HasSubstr("IntelVROCCli"))));
  EXPECT_THAT(collected.LogTexts(), Contains("4 rstcli64 -I command error level: 0").Times(1));
}

TEST(IntelDevices, ComeFromVrocWhenRstFails) {
  const Collected collected = RaidTools()
                                  .Answer("rstcli64_5.exe", "-I", "no driver\n", 3)
                                  .Answer("IntelVROCCli.exe", "-I", kArray)
                                  .Collect();
  EXPECT_THAT(collected.Rows("ARRAY"), SizeIs(1));
  EXPECT_THAT(collected.LogTexts(), AllOf(Contains("4 rstcli64 -I command error level: 3"),
                                          Contains("4 rstcli64 -I command error level: 0")));
}

TEST(IntelDevices, AreNoneWhenBothToolsFail) {
  const Collected collected = RaidTools().Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 rstcli64 -I command error level: 1").Times(2));
  EXPECT_THAT(collected.opened, Not(Contains(HasSubstr("rstcli64.txt"))));
  EXPECT_THAT(collected.trace, Not(HasSubstr(R"("class":"ARRAY")")));
}

TEST(IntelDevices, LogTheCommandAndThePathAsDetails) {
  EXPECT_THAT(
      Report("").LogTexts(),
      AllOf(
          Contains(
              R"(4 rstcli raw path:/c ""C:\Halyard\pq_tools\rstcli64_5.exe" -I > "C:\Halyard\logs\rstcli64.txt"")"),
          Contains(R"(4 rstcli log path:C:\\Halyard\\logs\\rstcli64.txt)")));
}

TEST(IntelDevices, AreNoneWhenTheToolCannotStart) {
  const Collected collected = RaidTools().RefuseStart("rstcli64_5.exe", "-I", 5).Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (5)"));
  EXPECT_THAT(collected.commandLines, Not(Contains(HasSubstr("IntelVROCCli"))));
  EXPECT_THAT(collected.trace, Not(HasSubstr(R"("class":"ARRAY")")));
}

TEST(IntelDevices, AreNoneWhenTheSecondToolCannotStart) {
  const Collected collected = RaidTools().RefuseStart("IntelVROCCli.exe", "-I", 5).Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (5)"));
  EXPECT_THAT(collected.trace, Not(HasSubstr(R"("class":"ARRAY")")));
}

TEST(IntelDevices, AreNoneWhenTheExitCodeCannotBeRead) {
  const Collected collected = RaidTools().HideExitCode("rstcli64_5.exe", "-I", 6).Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 GetExitCodeProcess() failed: "));
  EXPECT_THAT(collected.commandLines, Not(Contains(HasSubstr("IntelVROCCli"))));
  EXPECT_THAT(collected.trace, Not(HasSubstr(R"("class":"ARRAY")")));
}

TEST(IntelDevices, AreNoneWhenTheReportCannotBeOpened) {
  // Every tool ends well here, and no file can be opened.
  test::FakePlatform platform;
  const pq::MachineInUse inUse(platform);
  const host::LogFolderInUse folder("C:\\Halyard\\logs\\");
  const test::LogLines lines;
  halyard::repository::RRepository repository;
  constexpr pq::ModuleLog log("pqmodules/rsamplemodule2");
  pq::CollectIntelDevices({repository, log, "C:\\Halyard"});
  EXPECT_EQ(lines.texts.back(), "4 [repo] Failed to open raid log file");
  EXPECT_THAT(host::TablesOf(repository), IsEmpty());
}

}  // namespace
