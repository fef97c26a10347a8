#include "host/answers/parts/intel.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/answers/parts/collected_rows.h"
#include "host/answers/parts/read_parts.h"
#include "host/collect/collect.h"

namespace {

using host::FindPlace;
using host::Integer;
using host::Parts;
using host::Place;

std::string Drive(const std::string& id, const std::string& state = "Normal") {
  return "ID:                     " + id +
         "\nType:                   Disk\nDisk Type:              SATA Disk\nState:                "
         "  " +
         state +
         "\nSize:                   2 GB\nFree Size:              1 GB\nSystem Disk:            "
         "False\n"
         "Usage:                  Array member\nSerial Number:          QX " +
         id + "\nModel:                  HALCYON HN2\n\n";
}
std::string Volume(const std::string& name, const std::string& state) {
  return "--VOLUME INFORMATION--\n\nName:                   " + name +
         "\nRaid Level:             5\nSize:                   4 GB\nStripeSize:             64 "
         "KB\n"
         "Num Disks:              3\nState:                  " +
         state +
         "\nSystem:                 False\nInitialized:            True\nCache Policy:           "
         "Off\n\n\n";
}
std::string Array(const std::string& name) {
  return "--ARRAY INFORMATION--\n\nName:                   " + name +
         "\nSize:                   6 GB\nFree:                   0 GB\nNum Disks:              3\n"
         "Num Vols:               1\nWrite Cache:            False\n\n\n";
}
constexpr char kController[] =
    "--CONTROLLER INFORMATION--\n\nName:                   Intel(R) VROC\nType:                   "
    "VMD\n"
    "Supported RAID:         0, 1\nMax Disks/Array:        8\nHW Information:\n"
    "Vendor ID:              0x8086\nDevice ID:              0x28C0\nHW Revision:            "
    "7\n\n\n";
constexpr char kDrives[] = "--END DEVICE INFORMATION--\n\n";

Parts ReadText(const std::string& text) {
  Parts parts;
  host::ReadIntelReport({text, {{}, 0, {}, 0, "rstcli64 -I"}, "intel"}, parts);
  return parts;
}

host::Recording MakeIntelMachine(const std::string& report) {
  host::Recording machine;
  machine.commands.push_back({"rstcli64_5.exe", "-I", report, ""});
  return machine;
}
Parts ReadIntel(const host::Recording& machine) {
  return host::ReadParts(host::Collect(machine, {}));
}

std::string FindIntelSource(const Parts& parts) {
  const auto source = std::find_if(parts.sources.begin(), parts.sources.end(),
                                   [](const auto& one) { return one.id == "intel"; });
  return source == parts.sources.end() ? "" : source->state + ": " + source->observed;
}

/// The number of the line with `words`, from 1.
std::int64_t FindLine(const std::string& text, const std::string& words) {
  return std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(text.find(words)),
                    '\n') +
         1;
}

TEST(IntelParts, AreAsManyDrivesAsTheArraysTell) {
  const std::string report = kController + Array("A0") + Array("A1") + kDrives + Drive("0-4-0-0");
  const Parts parts = ReadText(report);
  ASSERT_EQ(parts.controllers.size(), 1U);
  EXPECT_EQ(parts.controllers[0].drivesDeclared, Integer(6));
  EXPECT_FALSE(ReadText(std::string(kController) + kDrives).controllers[0].drivesDeclared);
}

// The lines of one that is left out are about no other one.
TEST(IntelParts, AreLeftOutBehindTheMostOfAnotherVendor) {
  Parts parts;
  for (std::size_t i = 0; i < host::kMostParts; ++i) parts.drives.emplace_back();
  host::Recording machine = MakeIntelMachine(std::string(kController) + kDrives +
                                             Drive("0-4-0-0", "Failed") + Drive("0-4-0-0"));
  const host::Collection collection = host::Collect(machine, {});
  host::ReadIntel(host::CollectedRows(collection), parts);
  EXPECT_EQ(parts.drives.CountLeft(), 1U);
  EXPECT_EQ(parts.drives.back().state, "");
  EXPECT_EQ(parts.drives.Newest().state, "Failed");
}

TEST(IntelParts, AreReadByLabels) {
  const std::string report = kController + Array("A0") + Volume("Tank", "Degraded") + kDrives +
                             Drive("0-4-0-0") + Drive("1-4-0-0", "Failed");
  const Parts parts = ReadText(report);
  ASSERT_EQ(parts.controllers.size(), 1U);
  EXPECT_EQ(parts.controllers[0].id, "intel");
  EXPECT_EQ(parts.controllers[0].model, "Intel(R) VROC");
  ASSERT_EQ(parts.groups.size(), 1U);
  EXPECT_EQ(parts.groups[0].id, "intel A0");
  EXPECT_EQ(parts.groups[0].number, "A0");
  ASSERT_EQ(parts.volumes.size(), 1U);
  EXPECT_EQ(parts.volumes[0].id, "intel Tank");
  EXPECT_EQ(parts.volumes[0].level, "5");
  EXPECT_EQ(parts.volumes[0].size, Integer(4294967296));
  EXPECT_EQ(parts.volumes[0].state, "Degraded");
  EXPECT_EQ(parts.volumes[0].initialized, "True");
  EXPECT_EQ(parts.volumes[0].cache, "Off");
  EXPECT_EQ(parts.volumes[0].group, "intel A0");
  ASSERT_EQ(parts.drives.size(), 2U);
  const host::Drive& drive = parts.drives[1];
  EXPECT_EQ(drive.id, "intel 1-4-0-0");
  EXPECT_EQ(drive.place, "1-4-0-0");
  EXPECT_EQ(drive.media, "SATA Disk");
  EXPECT_EQ(drive.state, "Failed");
  EXPECT_EQ(drive.size, Integer(2147483648));  // Not the free one.
  EXPECT_EQ(drive.serial, "QX 1-4-0-0");
  EXPECT_EQ(drive.model, "HALCYON HN2");
  EXPECT_EQ(drive.group, "intel A0");
  EXPECT_EQ(drive.member, Integer(1));
  EXPECT_EQ(FindPlace(drive, "state"),
            (Place{"", 0, "", FindLine(report, "Failed"), "rstcli64 -I"}));
}

TEST(IntelParts, AreNotTiedToOneOfSeveralArrays) {
  const Parts parts = ReadText(kController + Array("A0") + Array("A1") + Volume("One", "Normal") +
                               Volume("Two", "Degraded") + kDrives + Drive("0-0"));
  EXPECT_EQ(parts.volumes.at(0).group, "intel One");
  EXPECT_EQ(parts.volumes.at(1).group, "intel Two");
  EXPECT_EQ(parts.drives.at(0).group, "");
}

TEST(IntelParts, BelongToTheVolumeThatListsThem) {
  const Parts parts = ReadText(Volume("One", "Normal") + "--DISKS IN VOLUME: One --\n\n" +
                               Drive("0-0") + kDrives + Drive("0-0") + Drive("0-1"));
  ASSERT_EQ(parts.drives.size(), 2U);
  EXPECT_EQ(parts.drives[0].group, "intel One");
  EXPECT_EQ(parts.volumes.at(0).group, "intel One");
  EXPECT_EQ(parts.drives[1].group, "");
}

TEST(IntelParts, AreWhereTheTablesShowThem) {
  const std::string report =
      kController + Volume("Tank", "Normal") + kDrives + Drive("0-0") + Drive("0-1");
  const Parts parts = ReadIntel(MakeIntelMachine(report));
  EXPECT_EQ(FindIntelSource(parts), "read: ");
  ASSERT_EQ(parts.drives.size(), 2U);
  EXPECT_EQ(parts.drives[1].readAt, (Place{"ENDDEVICEINFO", 2, "ID", 0, "rstcli64 -I"}));
  EXPECT_EQ(FindPlace(parts.drives[1], "state").key, "State");
  // The table shows the free size there.
  EXPECT_EQ(FindPlace(parts.drives[1], "size").className, "");
  EXPECT_EQ(FindPlace(parts.drives[1], "size").line, FindLine(report, "0-1") + 4);
  EXPECT_EQ(FindPlace(parts.volumes.at(0), "state"),
            (Place{"VOLUME", 1, "State", 0, "rstcli64 -I"}));
  EXPECT_EQ(parts.controllers.at(0).readAt, (Place{"CONTROLLER", 1, "Name", 0, "rstcli64 -I"}));
}

TEST(IntelSource, IsNoneWithoutToolOrController) {
  EXPECT_EQ(FindIntelSource(ReadIntel({})),
            "none: rstcli64_5.exe and IntelVROCCli.exe are not on this machine");
  EXPECT_EQ(FindIntelSource(ReadIntel(
                MakeIntelMachine("rstcli64 ERROR: No Intel(R) RST controller was found.\n"))),
            "none: rstcli64_5.exe finds no Intel RST controller");
}

TEST(IntelSource, FailsWhenTheReportIsNotUnderstood) {
  EXPECT_THAT(FindIntelSource(ReadIntel(MakeIntelMachine("Something else\n"))),
              testing::StartsWith("failed: "));
}

}  // namespace
