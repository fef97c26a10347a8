#include "host/answers/parts/storcli_show.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/answers/parts/lsi_report.h"

namespace {

using host::Integer;
using host::Parts;
using host::Real;

Parts ReadShow(std::string_view text) {
  Parts parts;
  host::ReadStorcliShow(test::LsiReport(text), parts);
  return parts;
}

constexpr char kRaid[] =
    "Product Name = KORVA MR-8i\n"
    "Serial Number = KV0341\n"
    "System Time = 11/18/2026 09:41:07\n"
    "FW Package Build = 52.27.0-5233\n"
    "\n"
    "TOPOLOGY :\n"
    "========\n"
    "\n"
    "-----------------------------------------------------------------------------\n"
    "DG Arr Row EID:Slot DID Type  State BT       Size PDC  PI SED DS3  FSpace TR\n"
    "-----------------------------------------------------------------------------\n"
    " 0 -   -   -        -   RAID1 Dgrd  Y  446.625 GB dflt N  N   dflt N      N\n"
    " 0 0   -   -        -   RAID1 Dgrd  Y  446.625 GB dflt N  N   dflt N      N\n"
    " 0 0   0   69:0     12  DRIVE Onln  N  446.625 GB dflt N  N   dflt -      N\n"
    " 0 0   1   -        -   DRIVE Msng  -  446.625 GB -    -  -   -    -      N\n"
    "-----------------------------------------------------------------------------\n"
    "\n"
    "Virtual Drives = 1\n"
    "\n"
    "VD LIST :\n"
    "=======\n"
    "\n"
    "---------------------------------------------------------------\n"
    "DG/VD TYPE  State Access Consist Cache Cac sCC       Size Name\n"
    "---------------------------------------------------------------\n"
    "0/3   RAID1 Dgrd  RW     Yes     NRWTD -   ON  446.625 GB Boot disk\n"
    "---------------------------------------------------------------\n"
    "\n"
    "Physical Drives = 2\n"
    "\n"
    "PD LIST :\n"
    "=======\n"
    "\n"
    "----------------------------------------------------------------------------\n"
    "EID:Slt DID State DG       Size Intf Med SED PI SeSz Model           Sp Type\n"
    "----------------------------------------------------------------------------\n"
    "69:0     12 Onln   0 446.625 GB SATA SSD N   N  4 KB KORVA  NS480 M2 U  -\n"
    " :7      13 UGood  F   0 KB SATA SSD N   N  512B KORVA D  -\n"
    "----------------------------------------------------------------------------\n"
    "\n"
    "BBU_Info :\n"
    "========\n"
    "\n"
    "--------------------------------------------------------------------------------\n"
    "Model  State                 RetentionTime Temp Mode MfgDate    Next Learn\n"
    "--------------------------------------------------------------------------------\n"
    "iBBU-9 Dgd (Needs Attention) 48 hours +    37C  5    2012/12/20 2026/12/10  21:01:26\n"
    "--------------------------------------------------------------------------------\n";

TEST(StorcliShow, TellsTheController) {
  const Parts parts = ReadShow(kRaid);
  ASSERT_EQ(parts.controllers.size(), 1U);
  const host::Controller& controller = parts.controllers[0];
  EXPECT_EQ(controller.id, "lsi0");
  EXPECT_EQ(controller.number, "0");
  EXPECT_EQ(controller.model, "KORVA MR-8i");
  EXPECT_EQ(controller.serial, "KV0341");
  EXPECT_EQ(controller.firmware, "52.27.0-5233");
  EXPECT_EQ(controller.systemTime, "2026-11-18T09:41:07");
  EXPECT_EQ(controller.volumesDeclared, Integer(1));
  EXPECT_EQ(controller.drivesDeclared, Integer(2));
  EXPECT_EQ(host::FindPlace(controller, "drives_declared").line, 29);
}

TEST(StorcliShow, ReadsDrivesWhoseCellsHaveBlanks) {
  const Parts parts = ReadShow(kRaid);
  ASSERT_EQ(parts.drives.size(), 2U);
  const host::Drive& drive = parts.drives[0];
  EXPECT_EQ(drive.id, "lsi0 69:0");
  EXPECT_EQ(drive.place, "69:0");
  EXPECT_EQ(drive.deviceId, Integer(12));
  EXPECT_EQ(drive.state, "Onln");
  EXPECT_EQ(drive.group, "lsi0 g0");
  EXPECT_EQ(drive.member, Integer(1));
  EXPECT_EQ(drive.size, Integer(479559942144));
  EXPECT_EQ(drive.interfaceName, "SATA");
  EXPECT_EQ(drive.media, "SSD");
  EXPECT_EQ(drive.model, "KORVA  NS480 M2");
  EXPECT_EQ(drive.readAt, (host::Place{"LSILINK", 1, "lsishowall", 37, "storcli"}));
  EXPECT_EQ(parts.drives[1].id, "lsi0 :7");
  EXPECT_EQ(parts.drives[1].group, "F");
  EXPECT_EQ(parts.drives[1].member, Integer(0));
  EXPECT_TRUE(parts.unread.empty());
}

TEST(StorcliShow, ReadsVolumesGroupsAndWhatTheyMiss) {
  const Parts parts = ReadShow(kRaid);
  ASSERT_EQ(parts.volumes.size(), 1U);
  EXPECT_EQ(parts.volumes[0].id, "lsi0 v3");
  EXPECT_EQ(parts.volumes[0].name, "Boot disk");
  EXPECT_EQ(parts.volumes[0].state, "Dgrd");
  EXPECT_EQ(parts.volumes[0].cache, "NRWTD");
  EXPECT_EQ(parts.volumes[0].group, "lsi0 g0");
  ASSERT_EQ(parts.groups.size(), 1U);
  EXPECT_EQ(parts.groups[0].id, "lsi0 g0");
  EXPECT_EQ(parts.groups[0].busy, "Y");
  ASSERT_EQ(parts.missingDrives.size(), 1U);
  EXPECT_EQ(parts.missingDrives[0].id, "lsi0 g0 row 1");
  EXPECT_EQ(parts.missingDrives[0].state, "Msng");
}

TEST(StorcliShow, ReadsACacheBackupWhoseStateHasBlanks) {
  const Parts parts = ReadShow(kRaid);
  ASSERT_EQ(parts.cacheBackups.size(), 1U);
  EXPECT_EQ(parts.cacheBackups[0].id, "lsi0 BBU");
  EXPECT_EQ(parts.cacheBackups[0].model, "iBBU-9");
  EXPECT_EQ(parts.cacheBackups[0].state, "Dgd (Needs Attention)");
  EXPECT_EQ(parts.cacheBackups[0].temperature, Real(37));
}

// Its columns are others, in another order, and the state has two of them.
TEST(StorcliShow, ReadsTheSecondGenerationOfTheTool) {
  const Parts parts = ReadShow(
      "Product Name = KORVA eHBA\n"
      "Package Version = 8.17.1.0\n"
      "System Time(LocalTime yyyy/mm/dd hh:mm:sec) = 2026/08/14 18:20:59\n"
      "VD LIST :\n"
      "------------------------------------------------------------------------------\n"
      "DG/VD TYPE  State Access CurrentCache DefaultCache      Size Name\n"
      "------------------------------------------------------------------------------\n"
      "0/1   RAID5 Optl  RW     NR,WT        NR,WB        1.745 TiB VM store\n"
      "------------------------------------------------------------------------------\n"
      "PD LIST :\n"
      "------------------------------------------------------------------------------\n"
      "EID:Slt PID State Status DG      Size Intf Med SED_Type SeSz Model Sp LU/NS Count Alt-EID\n"
      "------------------------------------------------------------------------------\n"
      "52:0     27 Conf  Online  0 7.277 TiB SATA HDD -        4 KiB KO 8  -           1 -\n"
      "------------------------------------------------------------------------------\n"
      "Enclosure List :\n"
      "------------------------------------------------------------------------------\n"
      "EID State DeviceType        Slots PD Partner-EID Multipath PS Fans ProdID\n"
      "------------------------------------------------------------------------------\n"
      " 52 OK    Logical Enclosure    24 10 -           No         0    2 VirtualSES\n");
  EXPECT_EQ(parts.controllers.at(0).firmware, "8.17.1.0");
  EXPECT_EQ(parts.controllers.at(0).systemTime, "2026-08-14T18:20:59");
  EXPECT_EQ(parts.volumes.at(0).id, "lsi0 v1");
  EXPECT_EQ(parts.volumes.at(0).cache, "NR,WT");
  EXPECT_EQ(parts.volumes.at(0).name, "VM store");
  EXPECT_EQ(parts.drives.at(0).id, "lsi0 52:0");
  EXPECT_EQ(parts.drives.at(0).deviceId, Integer(27));
  EXPECT_EQ(parts.drives.at(0).state, "Conf/Online");
  EXPECT_EQ(parts.drives.at(0).model, "KO 8");
  EXPECT_EQ(parts.enclosures.at(0).id, "lsi0 e52");
  EXPECT_EQ(parts.enclosures.at(0).slots, Integer(24));
  EXPECT_EQ(parts.enclosures.at(0).drives, Integer(10));
  EXPECT_EQ(parts.enclosures.at(0).fans, Integer(2));
  EXPECT_EQ(parts.enclosures.at(0).product, "VirtualSES");
}

TEST(StorcliShow, ReadsTheControllersOwnStateFromTheFullReport) {
  const Parts parts = ReadShow(
      "Basics :\n======\nModel = KORVA 9286\nSerial Number = KV1\n"
      "Current System Date/time = 06/02/2015, 18:03:22\n"
      "Status :\n======\nController Status = Needs Attention\n"
      "HwCfg :\n=====\nROC temperature(Degree Celsius) = 67\nSerial Number = of something else\n");
  EXPECT_EQ(parts.controllers.at(0).model, "KORVA 9286");
  EXPECT_EQ(parts.controllers.at(0).serial, "KV1");
  EXPECT_EQ(parts.controllers.at(0).status, "Needs Attention");
  EXPECT_EQ(parts.controllers.at(0).temperature, Real(67));
}

TEST(StorcliShow, KeepsWhatItCannotReadAsAPart) {
  std::string text = kRaid;
  const std::string drive = "69:0     12 Onln   0 446.625 GB SATA";
  text.replace(text.find(drive), drive.size(), "69:0     12 Onln  ?? 446 SATA");
  const std::string volume = "0/3   RAID1 Dgrd  RW     Yes     NRWTD -   ON  446.625 GB Boot";
  text.replace(text.find(volume), volume.size(), "0/3   RAID1 Boot");
  const Parts parts = ReadShow(text);
  EXPECT_EQ(parts.drives.size(), 1U);
  EXPECT_TRUE(parts.volumes.empty());
  ASSERT_EQ(parts.unread.size(), 2U);
  EXPECT_EQ(parts.unread[0].text, "0/3   RAID1 Boot disk");
  EXPECT_EQ(parts.unread[1].readAt.line, 37);
}

TEST(StorcliShow, ReadsADriveOfTwoListsOnce) {
  const std::string list =
      "-----------------------------\n"
      "EID:Slt DID State DG Size Model\n"
      "-----------------------------\n"
      "252:3 20 JBOD - 3.638 TB KORVA 4\n"
      "-----------------------------\n";
  const Parts parts = ReadShow("JBOD LIST :\n=====\n" + list + "PD LIST :\n=====\n" + list);
  EXPECT_EQ(parts.drives.size(), 1U);
  EXPECT_EQ(parts.controllers.size(), 1U);
}

TEST(StorcliShow, FindsNoControllerInOtherTexts) {
  for (const char* text : {"", "'storcli.exe' is not recognized", "Status = Failure\n",
                           "CLI Version = 7\nController Count = 0\n"}) {
    const Parts parts = ReadShow(text);
    EXPECT_TRUE(parts.controllers.empty()) << text;
    EXPECT_TRUE(parts.unread.empty()) << text;
  }
}

TEST(StorcliShow, TellsWhyItFailed) {
  EXPECT_EQ(host::FindStorcliFailure("Controller = 0\nStatus = Failure\nDescription = No such\n"),
            "No such");
  EXPECT_FALSE(host::FindStorcliFailure("Status = Success\nDescription = None\n"));
  EXPECT_TRUE(host::TellsNoController("Controller Count = 0\n"));
  EXPECT_FALSE(host::TellsNoController("Controller Count = 1\n"));
}

}  // namespace
