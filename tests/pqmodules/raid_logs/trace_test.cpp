// Whole collections of the RAID logs module, call by call.
#include <gtest/gtest.h>

#include <string>

#include "host/recording/recording_reader.h"
#include "tests/support/raid_tools.h"

namespace {

using test::Collected;
using test::RaidTools;

std::string TraceOfSample(const std::string& name) {
  const auto recording = host::LoadRecording(test::SamplesFolder() + "/" + name);
  return test::Collect(recording, "sampleModule2", {"LSILINK", "S2TABLE1"}).trace;
}

/// Two controllers and a little of everything that the module reads.
RaidTools Everything() {
  RaidTools tools("CLI Version = 1\r\nController Count = 2\r\n");
  tools.Storcli("/c0 show",
                "Drive Groups = 1\r\n"
                "\r\n"
                "TOPOLOGY :\r\n"
                "========\r\n"
                "\r\n"
                "-----------------------------------------------------------------------------\r\n"
                "DG Arr Row EID:Slot DID Type  State BT       Size PDC  PI SED DS3  FSpace TR\r\n"
                "-----------------------------------------------------------------------------\r\n"
                " 0 -   -   -        -   RAID1 Optl  N  446.625 GB dflt N  N   dflt N      N\r\n"
                " 0 0   0   69:0     12  DRIVE Onln  N  446.625 GB dflt N  N   dflt -      N\r\n"
                "-----------------------------------------------------------------------------\r\n"
                "\r\n"
                "VD LIST :\r\n"
                "=======\r\n"
                "\r\n"
                "---------------------------------------------------------------\r\n"
                "DG/VD TYPE  State Access Consist Cache Cac sCC       Size Name\r\n"
                "---------------------------------------------------------------\r\n"
                "0/0   RAID1 Optl  RW     Yes     NRWTD -   ON  446.625 GB boot\r\n"
                "---------------------------------------------------------------\r\n"
                "\r\n"
                "PD LIST :\r\n"
                "=======\r\n"
                "\r\n"
                "------------------------------------------------------------------------\r\n"
                "EID:Slt DID State DG       Size Intf Med SED PI SeSz Model        Sp Type\r\n"
                "------------------------------------------------------------------------\r\n"
                "69:0     12 Onln   0 446.625 GB SATA SSD N   N  512B NS480M2      U  -\r\n"
                "------------------------------------------------------------------------\r\n");
  tools.Storcli("/c0 show events",
                "Controller = 0\r\n"
                "Status = Success\r\n"
                "\r\n"
                "\r\n"
                "seqNum: 0x00000001\r\n"
                "Seconds since last reboot: 3\r\n"
                "\r\n"
                "Code: 0x00000000\r\n"
                "Class: 0\r\n"
                "Locale: 0x20\r\n"
                "Event Description: Firmware initialization started\r\n"
                "Event Data:\r\n"
                "===========\r\n"
                "PCI Vendor ID: 0x1000\r\n"
                "PCI Device ID: 0x10e2\r\n"
                "\r\n"
                "seqNum: 0x00000002\r\n"
                "Time: Wed Nov 18 09:36:06 2026\r\n"
                "\r\n"
                "Code: 0x00000015\r\n"
                "Class: -1\r\n"
                "Locale: 0x02\r\n"
                "Event Description: Enclosure discovery complete\r\n"
                "Event Data:\r\n"
                "===========\r\n"
                "None\r\n"
                "Controller = 0\r\n"
                "Status = Success\r\n");
  tools.Storcli("/c0 show termlog",
                "Controller = 0\r\n"
                "\r\n"
                "Firmware Term Log Information on controller 0:\r\n"
                "T10: C0:DM_DeviceInserted: tempdevId[51]\r\n");
  tools.Storcli("/c0/eall/sall show all",
                "Drive /c0/e69/s0 State :\r\n"
                "Shield Counter = 0\r\n"
                "Drive Temperature =  24C (75.20 F)\r\n"
                "SN = S4K002C6EB5\r\n"
                "Coerced size = 446.625 GB [0x37d40000 Sectors]\r\n"
                "Non Coerced size = 447.125 GB [0x37e40000 Sectors]\r\n"
                "Needs EKM Attention = No\r\n"
                "PI Eligible = No\r\n"
                "SN = S4K002C6EC7\r\n"
                "Needs EKM Attention = No\r\n");
  tools.Storcli("/c1 show", "second controller\r\n");
  tools.Answer("eventslog_convert.exe", R"("C:\Halyard\logs\raidevents.txt")", "2 events\r\n");
  tools.Answer("sas2ircu.exe", "0 logir upload", "uploaded\r\n");
  tools.Answer("SAS2IR_windows_x64.exe", "logir.log",
               "Time: 0d 00:07:13\r\n"
               "LogSequence: 1\r\n"
               "vf_id: 4\r\n"
               "Locale: 0x20\r\n");
  tools.Answer("rstcli64_5.exe", "-I", "ERROR\r\n", 4);
  tools.Answer("IntelVROCCli.exe", "-I",
               "--ARRAY INFORMATION--\r\n"
               "\r\n"
               "Name:                   Array_0000\r\n"
               "Size:                   5589 GB\r\n"
               "Free:                   1863 GB\r\n"
               "Num Disks:              3\r\n"
               "Num Vols:               1\r\n"
               "Write Cache:            False\r\n"
               "\r\n"
               "--VOLUME INFORMATION--\r\n"
               "\r\n"
               "Name:                   Tank\r\n"
               "Raid Level:             5\r\n"
               "Size:                   2484 GB\r\n"
               "StripeSize:             64 KB\r\n"
               "Num Disks:              3\r\n"
               "State:                  Degraded\r\n"
               "System:                 False\r\n"
               "Initialized:            True\r\n"
               "Cache Policy:           Off\r\n"
               "\r\n"
               "--END DEVICE INFORMATION--\r\n"
               "\r\n"
               "ID:                     0-4-0-0\r\n"
               "Type:                   Disk\r\n"
               "Disk Type:              PCIE SSD\r\n"
               "State:                  Normal\r\n"
               "Size:                   1863 GB\r\n"
               "System Disk:            False\r\n"
               "Usage:                  Array member\r\n"
               "Serial Number:          PV71C0A03\r\n"
               "Model:                  KORVA_PX2000_NVME\r\n");
  return tools;
}

TEST(RaidLogsTrace, OfEverythingIsAsExpected) {
  EXPECT_EQ(Everything().Collect().trace, test::TestData("raid2/everything.trace"));
}

TEST(RaidLogsTrace, WithoutAnyToolIsAsExpected) {
  RaidTools tools;
  tools.recording.commands.clear();
  EXPECT_EQ(tools.Collect().trace, test::TestData("raid2/no_tools.trace"));
}

TEST(RaidLogsTrace, WithEveryCollectorRefusedIsAsExpected) {
  RaidTools tools("Controller Count = 2\n");
  tools.RefuseStart("storcli.exe", "/c0 show", 5)
      .RefuseStart("storcli.exe", "/c1 show", 8)
      .RefuseStart("storcli.exe", "/c0 show events", 1450)
      .RefuseStart("storcli.exe", "/c0 show termlog", 1455)
      .RefuseStart("storcli.exe", "/c0/eall/sall show all", 2)
      .RefuseStart("SAS2IR_windows_x64.exe", "logir.log", 3)
      .RefuseStart("rstcli64_5.exe", "-I", 4294967295U);
  EXPECT_EQ(tools.Collect().trace, test::TestData("raid2/refused.trace"));
}

TEST(RaidLogsTrace, OfAnAdapterWithoutRaidIsAsExpected) {
  EXPECT_EQ(TraceOfSample("hba-only"), test::TestData("raid2/hba_only.trace"));
}

TEST(RaidLogsTrace, OfDrivesOnVrocIsAsExpected) {
  EXPECT_EQ(TraceOfSample("vroc"), test::TestData("raid2/vroc.trace"));
}

}  // namespace
