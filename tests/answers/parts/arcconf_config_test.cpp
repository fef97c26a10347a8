#include "host/answers/parts/arcconf_config.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using host::Drive;
using host::FindPlace;
using host::Integer;
using host::Parts;
using host::Real;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kRule[] = "----------------------------------------------------------------------\n";
constexpr char kInnerRule[] = "   --------------------------------------------------------\n";

std::string Section(const std::string& title, const std::string& lines) {
  return kRule + title + "\n" + kRule + lines;
}
std::string Heading(const std::string& title) {
  return kInnerRule + ("   " + title + "\n") + kInnerRule;
}

std::string Controller(const std::string& lines) {
  return Section("Controller information",
                 "   Controller Status                        : Optimal\n" + lines);
}

/// A drive in a slot, with more of its lines.
std::string DriveLines(int device, const std::string& state, const std::string& more = {}) {
  const std::string number = std::to_string(device);
  return "      Device #" + number + "\n         Device is a Hard drive\n" +
         "         State                              : " + state + "\n" +
         "         Reported Channel,Device(T:L)       : 0," + number + "(" + number + ":0)\n" +
         "         Reported Location                  : Enclosure 1, Slot " + number +
         "(Connector 0)\n" + more;
}
std::string Drives(const std::string& lines) {
  return Section("Physical Device information", lines);
}

constexpr char kEnclosure[] = "      Device #9\n         Device is an Enclosure services device\n";

std::string Volume(int number, const std::string& segments) {
  return "Logical Device number " + std::to_string(number) +
         "\n   Logical Device name                      : Vault\n"
         "   RAID level                               : 1\n"
         "   Status of Logical Device                 : Degraded\n"
         "   Size                                     : 1024 MB\n" +
         Heading("Logical Device segment information") + segments;
}
std::string Volumes(const std::string& lines) {
  return Section("Logical device information", lines);
}

Parts ReadConfig(const std::string& text) {
  Parts parts;
  host::ReadArcconfConfig({text, {"PMCLINK", 1, "Controller_Config", 0, "arcconf"}, "mchp1"},
                          parts);
  return parts;
}

std::vector<std::string> ListIds(const auto& table) {
  std::vector<std::string> ids;
  for (const auto& part : table) ids.push_back(part.id);
  return ids;
}

TEST(ArcconfConfig, HasTheControllerByItsLabels) {
  const Parts parts =
      ReadConfig("Controllers found: 1\n" +
                 Controller("   Controller Model                         : Orvane 3254\n"
                            "   Controller Serial Number                 : OV41F\n"
                            "   Temperature                              : 41 C/ 105 F (Normal)\n"
                            "   Defunct disk drive count                 : 2\n"
                            "   Logical devices/Failed/Degraded          : 4/1/2\n" +
                            Heading("Controller Version Information") +
                            "   Firmware                                 : 3.21[0]\n" +
                            Heading("Temperature Sensors Information") +
                            "   Current Value                            : 77 deg C\n"));
  ASSERT_EQ(parts.controllers.size(), 1U);
  const host::Controller& controller = parts.controllers[0];
  EXPECT_EQ(controller.id, "mchp1");
  EXPECT_EQ(controller.number, "1");
  EXPECT_EQ(controller.vendor, "Microchip");
  EXPECT_EQ(controller.status, "Optimal");
  EXPECT_EQ(controller.model, "Orvane 3254");
  EXPECT_EQ(controller.serial, "OV41F");
  EXPECT_EQ(controller.firmware, "3.21[0]");
  EXPECT_EQ(controller.temperature, Real(41));
  EXPECT_EQ(controller.temperatureWord, "Normal");
  EXPECT_EQ(controller.drivesDefunct, Integer(2));
  EXPECT_EQ(controller.volumesDeclared, Integer(4));
  EXPECT_EQ(controller.volumesFailed, Integer(1));
  EXPECT_EQ(controller.volumesDegraded, Integer(2));
  EXPECT_EQ(controller.readAt.line, 3);
  EXPECT_EQ(FindPlace(controller, "serial").line, 7);
}

TEST(ArcconfConfig, FindsValuesInAnyColumnAndWithEmptyLinesBetween) {
  const Parts parts =
      ReadConfig(std::string(kRule) + "\r\n\r\nController information\r\n\r\n" + kRule +
                 "\r\n   Controller Status : Optimal\r\n\r\n"
                 "   PCI Address (Domain:Bus:Device:Function)   : 0:af:0:0\r\n\r\n"
                 "   Controller Serial Number       :    A: 1\r\n");
  ASSERT_EQ(parts.controllers.size(), 1U);
  EXPECT_EQ(parts.controllers[0].status, "Optimal");
  EXPECT_EQ(parts.controllers[0].serial, "A: 1");
}

TEST(ArcconfConfig, PartsALabelThatHoldsColons) {
  EXPECT_EQ(host::SplitPaddedLabel("   Link: width and speed   : 8: 16")->label,
            "Link: width and speed");
  EXPECT_EQ(host::SplitPaddedLabel("   Write Cache Policy: Drive Specific")->value,
            "Drive Specific");
  EXPECT_EQ(host::SplitPaddedLabel("   Firmware             : ")->value, "");
  EXPECT_FALSE(host::SplitPaddedLabel("Controller 0:CN0"));
}

TEST(ArcconfConfig, HasNoPartsWithoutAController) {
  const Parts parts = ReadConfig("Controllers found: 0\n\nCommand completed successfully.\n");
  EXPECT_THAT(parts.controllers, IsEmpty());
  EXPECT_THAT(parts.unread, IsEmpty());
}

TEST(ArcconfConfig, HasADriveWithItsCountersAtTheirHighest) {
  const Parts parts = ReadConfig(
      Drives(DriveLines(3, "Online",
                        "         Transfer Speed                     : SAS 12.0 Gb/s\n"
                        "         Vendor                             :\n"
                        "         Model                              : HN4000NX-1\n"
                        "         Firmware                           : HN11\n"
                        "         Serial number                      : QX-70\n"
                        "         Total Size                         : 1024 MB\n"
                        "         Size                               : 7 MB\n"
                        "         S.M.A.R.T.                         : No\n"
                        "         S.M.A.R.T. warnings                : 4\n"
                        "         SSD                                : No\n"
                        "         Temperature                        : 44 C/ 111 F \n"
                        "         Threshold Temperature              : 65 deg C\n"
                        "         Usage Remaining                    : 93 percent\n"
                        "         Last Failure Reason                : Fail Drive Command\n"
                        "      ----------------------------------------------------------------\n"
                        "      Device Error Counters                 \n"
                        "      ----------------------------------------------------------------\n"
                        "         Medium Error Count                 : 7\n"
                        "         Hardware Errors                    : 5\n"
                        "         Predictive Failures                : 0\n")));
  ASSERT_EQ(parts.drives.size(), 1U);
  const Drive& drive = parts.drives[0];
  EXPECT_EQ(drive.id, "mchp1 0,3");
  EXPECT_EQ(drive.controller, "mchp1");
  EXPECT_EQ(drive.location, "Enclosure 1, Slot 3(Connector 0)");
  EXPECT_EQ(drive.state, "Online");
  EXPECT_EQ(drive.interfaceName, "SAS");
  EXPECT_EQ(drive.linkSpeed, Real(12));
  EXPECT_EQ(drive.model, "HN4000NX-1");
  EXPECT_EQ(drive.firmware, "HN11");
  EXPECT_EQ(drive.serial, "QX-70");
  EXPECT_EQ(drive.media, "HDD");
  EXPECT_EQ(drive.size, Integer(1073741824));
  EXPECT_EQ(drive.smartAlert, "No");
  EXPECT_EQ(drive.predictiveFailures, Integer(4));
  EXPECT_EQ(drive.mediaErrors, Integer(7));
  EXPECT_EQ(drive.otherErrors, Integer(5));
  EXPECT_EQ(drive.temperature, Real(44));
  EXPECT_EQ(drive.temperatureLimit, Real(65));
  EXPECT_EQ(drive.wearLeft, Integer(93));
  EXPECT_EQ(drive.failureReason, "Fail Drive Command");
  EXPECT_EQ(drive.member, Integer(0));
  EXPECT_EQ(drive.readAt.line, 4);
  EXPECT_EQ(FindPlace(drive, "state").line, 6);
}

TEST(ArcconfConfig, CallsADriveAsTheToolDoes) {
  // The list's own number is the drive's only where no other is told.
  const Parts parts = ReadConfig(
      Drives("   Channel #1:\n      Transfer Speed : Ultra320\n"
             "      Device #4\n         Device is a Hard drive\n         State : Online\n"
             "      Device #5\n         Device is a Hard drive\n"
             "         Reported Channel,Device(T:L)       : 0,40(40:0)\n"));
  EXPECT_THAT(ListIds(parts.drives), ElementsAre("mchp1 1,4", "mchp1 0,40"));
  EXPECT_EQ(parts.drives[0].interfaceName, "");
}

TEST(ArcconfConfig, TakesNoFailureReasonWhereThereWasNoFailure) {
  const Parts parts =
      ReadConfig(Drives(DriveLines(0, "Online", "         Last Failure Reason : No Failure\n")));
  EXPECT_EQ(parts.drives.at(0).failureReason, "");
}

// Between two drives a report without the tool's own words ends as a whole one does.
TEST(ArcconfConfig, BreaksOffWithFewerDrivesThanItsVolumesHave) {
  const std::string volumes =
      Volumes(Volume(0, "   Segment 0 : Present (0,0) A\n   Segment 1 : Present (0,1) B\n") +
              Volume(1, "   Segment 0 : Present (0,0) A\n   Segment 1 : Missing\n"));
  const auto tell = [&](const std::string& drives) {
    Parts parts;
    return host::ReadArcconfConfig({Controller("") + volumes + Drives(drives), {}, "mchp1"}, parts);
  };
  EXPECT_EQ(tell(DriveLines(0, "Online")),
            "breaks off: it tells of 1 of the 2 drives of its volumes");
  EXPECT_EQ(tell(DriveLines(0, "Online") + DriveLines(1, "Online") + kEnclosure), "");
}

// Without the tool's own words nothing but what follows the drives says that none is missing.
TEST(ArcconfConfig, MayLackDrivesWhereNothingFollowsThem) {
  const std::string drives = DriveLines(0, "Online") + DriveLines(1, "Online");
  const auto tell = [&](const std::string& report) {
    Parts parts;
    return host::ReadArcconfConfig({report, {}, "mchp1"}, parts);
  };
  const std::string bare = Controller("") + Drives(drives);
  const std::string doubt =
      "has neither its first nor its last line and ends with a drive, so that others may be "
      "missing";
  EXPECT_EQ(tell(bare), doubt);
  EXPECT_EQ(tell(bare + "\n\n"), doubt);
  EXPECT_EQ(tell(bare + "   Channel #1:\n"), "");
  EXPECT_EQ(tell(bare + kEnclosure), "");
  EXPECT_EQ(tell(bare + Section("Connector information", "")), "");
  EXPECT_EQ(tell(bare + "Command completed successfully.\n"), "");
  EXPECT_EQ(tell("Controllers found: 1\n" + bare),
            "breaks off: it does not say that the command completed");
}

TEST(ArcconfConfig, KnowsMembersBySerialNumberThenAddressThenSlot) {
  const Parts parts = ReadConfig(
      Volumes(Volume(0,
                     "   Segment 0 : Present (512MB, SATA, HDD, Enclosure:9, Slot:9)   qx-A\n"
                     "   Segment 1 : Present (0,1) MASKED\n"
                     "   Segment 2 : Rebuilding (Controller:1,Enclosure:1,Slot:2)   MASKED\n")) +
      Drives(DriveLines(0, "Online", "         Serial number : QX-A\n") +
             DriveLines(1, "Online", "         Serial number : xxxx\n") +
             DriveLines(2, "Rebuilding") + DriveLines(7, "Ready")));
  ASSERT_EQ(parts.drives.size(), 4U);
  EXPECT_EQ(parts.volumes.at(0).id, "mchp1 v0");
  EXPECT_EQ(parts.volumes[0].name, "Vault");
  EXPECT_EQ(parts.volumes[0].level, "1");
  EXPECT_EQ(parts.volumes[0].state, "Degraded");
  EXPECT_EQ(parts.volumes[0].size, Integer(1073741824));
  EXPECT_EQ(parts.volumes[0].group, "mchp1 v0");
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(parts.drives[i].group, "mchp1 v0") << i;
    EXPECT_EQ(parts.drives[i].member, Integer(1)) << i;
  }
  EXPECT_EQ(parts.drives[0].memberState, "Present");
  EXPECT_EQ(parts.drives[2].memberState, "Rebuilding");
  EXPECT_EQ(FindPlace(parts.drives[2], "member_state").line, 14);
  EXPECT_EQ(parts.drives[3].group, "");
  EXPECT_EQ(parts.drives[3].member, Integer(0));
  EXPECT_THAT(parts.missingDrives, IsEmpty());
}

TEST(ArcconfConfig, TakesNoSerialNumberThatTwoDrivesHave) {
  const Parts parts = ReadConfig(
      Volumes(Volume(0, "   Segment 0 : Present (Controller:1,Enclosure:1,Slot:1) xxxx\n")) +
      Drives(DriveLines(0, "Online", "         Serial number : xxxx\n") +
             DriveLines(1, "Online", "         Serial number : xxxx\n")));
  EXPECT_EQ(parts.drives.at(0).group, "");
  EXPECT_EQ(parts.drives.at(1).group, "mchp1 v0");
}

TEST(ArcconfConfig, TakesNoSlotThatTwoDrivesClaim) {
  std::string drives = DriveLines(0, "Online") + DriveLines(1, "Online");
  drives.replace(drives.find("Slot 1"), 6, "Slot 0");
  const Parts parts = ReadConfig(
      Volumes(Volume(0, "   Segment 0 : Present (Enclosure:1,Slot:0)  MASKED\n")) + Drives(drives));
  EXPECT_EQ(parts.drives.at(0).group, "");
  EXPECT_EQ(parts.drives.at(1).group, "");
}

TEST(ArcconfConfig, JoinsVolumesThatShareADrive) {
  const auto segment = [](const char* serial) {
    return std::string("   Segment 0 : Present (0,99) ") + serial + "\n";
  };
  const Parts parts =
      ReadConfig(Volumes(Volume(0, segment("A")) + Volume(1, segment("B")) +
                         Volume(2, segment("B") + segment("A")) + Volume(3, segment("C"))) +
                 Drives(DriveLines(0, "Online", "   Serial number : A\n") +
                        DriveLines(1, "Online", "   Serial number : B\n") +
                        DriveLines(2, "Online", "   Serial number : C\n")));
  std::vector<std::string> groups;
  for (const auto& volume : parts.volumes) groups.push_back(volume.group);
  EXPECT_THAT(groups, ElementsAre("mchp1 v0", "mchp1 v0", "mchp1 v0", "mchp1 v3"));
  EXPECT_EQ(parts.drives.at(1).group, "mchp1 v0");
  EXPECT_EQ(parts.drives.at(2).group, "mchp1 v3");
}

TEST(ArcconfConfig, HasArraysAsGroups) {
  const Parts parts = ReadConfig(
      Section("Array Information",
              "Array Number 2\n   Name : A\n   Status : Has Failed Logical Device\n" +
                  Heading("Array Logical Device Information") +
                  "   Logical 0 : Failed (1, Data, 228902 MB) OS\n   Status : of another kind\n") +
      Volumes("Logical Device number 0\n   Array : 2\n   Status of Logical Device : Failed\n") +
      Drives(DriveLines(0, "Online", "         Array : 2\n")));
  ASSERT_THAT(ListIds(parts.groups), ElementsAre("mchp1 a2"));
  EXPECT_EQ(parts.groups[0].number, "2");
  EXPECT_EQ(parts.groups[0].state, "Has Failed Logical Device");
  EXPECT_EQ(parts.volumes.at(0).group, "mchp1 a2");
  EXPECT_EQ(parts.drives.at(0).group, "mchp1 a2");
  EXPECT_EQ(parts.drives[0].member, Integer(1));
}

TEST(ArcconfConfig, MissesADriveThatNobodyNames) {
  const Parts parts = ReadConfig(Volumes(Volume(0, "   Group 0, Segment 1 : Missing\n")) +
                                 Drives(DriveLines(0, "Online") + DriveLines(1, "Failed")));
  ASSERT_THAT(ListIds(parts.missingDrives), ElementsAre("mchp1 v0 group 0, segment 1"));
  EXPECT_EQ(parts.missingDrives[0].state, "Missing");
  EXPECT_EQ(parts.missingDrives[0].group, "mchp1 v0");
  EXPECT_EQ(parts.missingDrives[0].readAt.line, 12);
  // The only failed drive that belongs nowhere is it.
  EXPECT_EQ(parts.drives.at(1).group, "mchp1 v0");
  EXPECT_EQ(parts.drives[1].memberState, "Missing");
  EXPECT_EQ(parts.drives[0].group, "");
}

TEST(ArcconfConfig, DoesNotGuessWhichOfTwoFailedDrivesIsMissed) {
  const Parts parts = ReadConfig(Volumes(Volume(0, "   Segment 1 : Missing\n")) +
                                 Drives(DriveLines(0, "Failed") + DriveLines(1, "Failed")));
  EXPECT_EQ(parts.missingDrives.size(), 1U);
  EXPECT_EQ(parts.drives.at(0).group, "");
  EXPECT_EQ(parts.drives.at(1).group, "");
}

TEST(ArcconfConfig, ReadsSectionsBetweenRulesOfAnyWidth) {
  const std::string rule = "--------------------------------------------------------\n";
  const Parts parts = ReadConfig(
      rule + "Logical device information\n" + rule +
      "Logical Device number 0\n   RAID level : 0\n" + rule +
      "   Array Physical Device Information\n" + rule +
      "   Device ID   : Availability (SizeMB, Protocol) Serial Number\n" + rule +
      "   Device 4    : Present (572325MB, SAS, HDD, Connector:CN2, Backplane:0, Slot:1) 63M0A\n" +
      Drives(DriveLines(4, "Online", "   Serial number : 63M0A\n")));
  EXPECT_EQ(parts.drives.at(0).group, "mchp1 v0");
}

TEST(ArcconfConfig, HasTheCacheOfSolidStateDrivesAsAVolume) {
  const Parts parts = ReadConfig(Section("maxCache 3.0 information",
                                         "maxCache device number 100\n"
                                         "   maxCache device name : Fast\n"
                                         "   Status of maxCache   : Degraded\n"));
  ASSERT_THAT(ListIds(parts.volumes), ElementsAre("mchp1 v100"));
  EXPECT_EQ(parts.volumes[0].name, "Fast");
  EXPECT_EQ(parts.volumes[0].state, "Degraded");
}

TEST(ArcconfConfig, KnowsTheWordsOfOtherVersionsForAVolume) {
  const Parts parts = ReadConfig(Section("Logical drive information",
                                         "Logical drive number 2\n"
                                         "   Logical drive name           : Vault\n"
                                         "   Status of logical drive      : Optimal\n"
                                         "   Caching                      : Enabled\n"
                                         "   Parity Initialization Status : Completed\n"
                                         "   Defunct stripes              : Yes\n"));
  ASSERT_THAT(ListIds(parts.volumes), ElementsAre("mchp1 v2"));
  const auto& volume = parts.volumes[0];
  EXPECT_EQ(volume.name, "Vault");
  EXPECT_EQ(volume.state, "Optimal");
  EXPECT_EQ(volume.cache, "Enabled");
  EXPECT_EQ(volume.initialized, "Completed");
  EXPECT_EQ(volume.failedStripes, "Yes");
}

TEST(ArcconfConfig, TakesAFailurePredictionOnlyWhereThereIsOne) {
  const Parts parts = ReadConfig(Drives(DriveLines(0, "Online", "         PFA : Yes (2)\n") +
                                        DriveLines(1, "Online", "         PFA : No\n")));
  EXPECT_EQ(parts.drives.at(0).smartAlert, "Yes (2)");
  EXPECT_EQ(parts.drives.at(1).smartAlert, "");
}

/// "ID: STATE" of each cache backup of a controller with these lines.
std::vector<std::string> ListBackups(const std::string& lines) {
  std::vector<std::string> backups;
  for (const auto& backup : ReadConfig(Controller(lines)).cacheBackups) {
    backups.push_back(backup.id + ": " + backup.state);
  }
  return backups;
}

TEST(ArcconfConfig, HasWhateverBacksTheCacheUp) {
  EXPECT_THAT(ListBackups(Heading("Controller Battery Information") + "   Status : Failed\n"),
              ElementsAre("mchp1 BBU: Failed"));
  EXPECT_THAT(ListBackups(Heading("Controller ZMM Information") + "   Status : ZMM Optimal\n"),
              ElementsAre("mchp1 ZMM: ZMM Optimal"));
  EXPECT_THAT(ListBackups(Heading("Cache Properties") + "   Cache Status : Temporarily Disabled\n" +
                          Heading("Green Backup Information") +
                          "   Backup Power Status : Not Fully Charged\n" +
                          Heading("RAID Properties") + "   Status : of something else\n"),
              ElementsAre("mchp1 cache backup: Not Fully Charged"));
  EXPECT_THAT(ListBackups("   Status : of no module\n"), IsEmpty());
}

TEST(ArcconfConfig, TellsTheCacheApartFromWhatBacksItUp) {
  const Parts parts = ReadConfig(
      Controller(Heading("Cache Properties") + "   Cache Status : Temporarily Disabled\n" +
                 "   Cache State : Disabled Charge Is Low\n" +
                 "   Cache State Details : Temporarily Disabled(Reason: Too little charge)\n"));
  ASSERT_EQ(parts.controllers.size(), 1U);
  EXPECT_THAT(parts.cacheBackups, IsEmpty());
  EXPECT_EQ(parts.controllers[0].cacheStatus, "Temporarily Disabled");
  EXPECT_EQ(parts.controllers[0].cacheReason, "Too little charge");
  const Parts word = ReadConfig(Controller("   Cache Status : Ok\n   Cache State : Enabled\n"));
  EXPECT_EQ(word.controllers.at(0).cacheReason, "Enabled");
}

/// Whether a volume with these lines writes to the cache.
Integer ReadWriteBack(const std::string& lines) {
  return ReadConfig(Section("Logical device information", "Logical device number 0\n" + lines))
      .volumes.at(0)
      .writeBack;
}

TEST(ArcconfConfig, KnowsWhetherWritingEndsInTheCache) {
  constexpr char kSetting[] = "   Write-cache setting : Enabled (write-back) when protected\n";
  EXPECT_EQ(ReadWriteBack("   Write-cache status : On\n"), Integer(1));
  EXPECT_EQ(ReadWriteBack(std::string(kSetting) + "   Write-cache status : Off\n"), Integer(0));
  EXPECT_EQ(ReadWriteBack("   Write-cache mode : Enabled (write-back)\n"), Integer(1));
  EXPECT_EQ(
      ReadWriteBack(std::string("   Write-cache mode : Disabled (write-through)\n") + kSetting),
      Integer(0));
  EXPECT_EQ(ReadWriteBack(kSetting), Integer());
}

TEST(ArcconfConfig, EndsTheModuleWithItsSection) {
  const Parts parts =
      ReadConfig(Controller(Heading("Controller Battery Information") + "   Status : Failed\n") +
                 Controller("   Controller Model                         : Orvane 3254\n"));
  EXPECT_EQ(parts.controllers.at(0).model, "Orvane 3254");
}

TEST(ArcconfConfig, ReadsTheModulesOwnPartsBelowIt) {
  const Parts parts = ReadConfig(
      Controller(Heading("Controller Cache Backup Unit Information") +
                 "\n    Overall Backup Unit Status              : Ready\n\n"
                 "         Backup Unit Type                   : AFM-7\n"
                 "         Supercap Status                    : Replace\n"
                 "         -----------------------------------\n         Supercap Information\n"
                 "         -----------------------------------\n"
                 "         Current Temperature                : 31 deg C\n"));
  ASSERT_EQ(parts.cacheBackups.size(), 1U);
  EXPECT_EQ(parts.cacheBackups[0].state, "Ready");
  EXPECT_EQ(parts.cacheBackups[0].model, "AFM-7");
  EXPECT_EQ(parts.cacheBackups[0].temperature, Real(31));
}

TEST(ArcconfConfig, TellsAnEnclosuresElementsThatAreNotWell) {
  const std::string begin =
      "      Device #4\n         Device is an Enclosure services device\n"
      "         Reported Channel,Device(T:L)       : 2,0(0:0)\n"
      "         Model                              : SAS2X\n"
      "         Status of Enclosure services device\n"
      "            Speaker status                  : On\n";
  EXPECT_EQ(ReadConfig(Drives(begin)).enclosures.at(0).state, "");
  const std::string well = begin +
                           "            Fan 1 status                    : 0 rpm (Not Installed)\n"
                           "            Fan 2 status                    : 4100 rpm (Optimal)\n";
  EXPECT_EQ(ReadConfig(Drives(well)).enclosures.at(0).state, "OK");
  const Parts parts = ReadConfig(
      Drives(well + "            Power supply 1 status           : Failed\n"
                    "            Temperature Sensor Status 1     : 46 C/ 114 F (Abnormal)\n"));
  const host::Enclosure& enclosure = parts.enclosures.at(0);
  EXPECT_EQ(enclosure.id, "mchp1 e2,0");
  EXPECT_EQ(enclosure.product, "SAS2X");
  EXPECT_EQ(FindPlace(enclosure, "product").line, enclosure.readAt.line + 3);
  EXPECT_EQ(enclosure.fans, Integer(1));
  EXPECT_EQ(enclosure.powerSupplies, Integer(1));
  EXPECT_EQ(enclosure.state,
            "Power supply 1 status: Failed; Temperature Sensor Status 1: 46 C/ 114 F (Abnormal)");
  EXPECT_EQ(FindPlace(enclosure, "state").line, 12);
}

TEST(ArcconfConfig, LeavesADeviceUnreadThatIsCutOff) {
  const Parts parts = ReadConfig(Drives(DriveLines(0, "Online") + "      Device #1\n"));
  EXPECT_EQ(parts.drives.size(), 1U);
  ASSERT_EQ(parts.unread.size(), 1U);
  EXPECT_EQ(parts.unread[0].text, "Device #1");
  EXPECT_EQ(parts.unread[0].readAt.line, 9);
}

TEST(ArcconfConfig, PassesOverOtherDevices) {
  const Parts parts =
      ReadConfig(Drives("     Backplane:\n      Device #0\n         Device is an UBM Controller\n"
                        "         Firmware : 0.2\n"));
  EXPECT_THAT(parts.drives, IsEmpty());
  EXPECT_THAT(parts.enclosures, IsEmpty());
  EXPECT_THAT(parts.unread, IsEmpty());
}

}  // namespace
