#include "host/answers/intel_columns.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/collect/collect.h"

namespace {

constexpr char kReport[] =
    "--CONTROLLER INFORMATION--\n\n"
    "Name:                   Intel(R) VROC\nType:                   VMD\n"
    "Supported RAID:         0, 1\nMax Disks/Array:        8\nHW Information:\n"
    "Vendor ID:              0x8086\nDevice ID:              0x28C0\nHW Revision:            "
    "7\n\n\n"
    "--ARRAY INFORMATION--\n\n"
    "Name:                   A0\nSize:                   6 GB\nFree:                   0 GB\n"
    "Num Disks:              3\nNum Vols:               1\nWrite Cache:            False\n\n\n"
    "--VOLUME INFORMATION--\n\n"
    "Name:                   Tank\nRaid Level:             5\nSize:                   4 GB\n"
    "StripeSize:             64 KB\nNum Disks:              3\nState:                  Normal\n"
    "System:                 False\nInitialized:            True\nCache Policy:           Off\n\n\n"
    "--END DEVICE INFORMATION--\n\n"
    "ID:                     0-4-0-0\nType:                   Disk\nDisk Type:              PCIE "
    "SSD\n"
    "State:                  Normal\nSize:                   2 GB\nSystem Disk:            False\n"
    "Usage:                  Array member\nSerial Number:          PV7\nModel:                  "
    "PX2\n";

std::string Replace(std::string text, const std::string& words, const std::string& by) {
  return text.replace(text.find(words), words.size(), by);
}

std::vector<std::string> ListIntelNotes(const std::string& report, const std::string& className) {
  host::Recording machine;
  machine.commands.push_back({"rstcli64_5.exe", "-I", report, ""});
  host::Collection collection = host::Collect(machine, {});
  for (host::CollectedTable& table : collection.tables) table.status.notes.clear();
  host::NoteUnfitColumns(collection);
  for (const host::CollectedTable& table : collection.tables) {
    if (table.className == className) return table.status.notes;
  }
  return {"no such table"};
}

using Notes = std::vector<std::string>;

Notes IntelNote(const std::string& reason) {
  return {"columns do not fit this report: " + reason +
          "; the report itself: rstcli64.txt in the log folder"};
}

// Lines are taken by their number; where some are left out, what follows is taken for them.
TEST(IntelColumns, TellWhatTheReportDoesNotSay) {
  const std::string shorter =
      Replace(kReport,
              "Max Disks/Array:        8\nHW Information:\nVendor ID:              0x8086\n"
              "Device ID:              0x28C0\nHW Revision:            7\n\n\n",
              "...\n\n");
  const std::vector<std::string> notes = ListIntelNotes(shorter, "CONTROLLER");
  ASSERT_EQ(notes.size(), 1U);
  EXPECT_NE(notes[0].find("row 1: Vendor ID is \"FORMATION--\", the report has no such line"),
            std::string::npos)
      << notes[0];
}

TEST(IntelColumns, FitTheirReport) {
  for (const char* table : {"CONTROLLER", "ARRAY", "VOLUME", "ENDDEVICEINFO"}) {
    EXPECT_EQ(ListIntelNotes(kReport, table), Notes()) << table;
  }
}

TEST(IntelColumns, AreShiftedByALineMore) {
  EXPECT_EQ(
      ListIntelNotes(Replace(kReport, "StripeSize:", "Encrypted:              No\nStripeSize:"),
                     "VOLUME"),
      IntelNote("row 1: StripeSize is \"No\", the report has \"64 KB\""));
  EXPECT_EQ(ListIntelNotes(Replace(kReport, "Vendor ID:", "Driver:                 9\nVendor ID:"),
                           "CONTROLLER"),
            IntelNote("row 1: Vendor ID is \"9\", the report has \"0x8086\""));
}

TEST(IntelColumns, AreOfOtherSectionsWhereTheirOwnIsMissing) {
  const std::string report = std::string(kReport).substr(std::string(kReport).find("--VOLUME"));
  EXPECT_EQ(ListIntelNotes(report, "CONTROLLER"),
            IntelNote("it has no heading \"--CONTROLLER INFORMATION--\""));
  EXPECT_EQ(ListIntelNotes(report, "VOLUME"), Notes());
  EXPECT_EQ(ListIntelNotes("--DISKS IN VOLUME: Tank --\n\nID: 0-4-0-0\n", "ENDDEVICEINFO"),
            IntelNote("it has no heading \"--END DEVICE INFORMATION--\""));
}

TEST(IntelColumns, HaveNoRowForARecordThatIsShorter) {
  EXPECT_EQ(ListIntelNotes(Replace(kReport, "Model:                  PX2\n", ""), "ENDDEVICEINFO"),
            IntelNote("1 of 1 end devices are not in the table"));
}

}  // namespace
