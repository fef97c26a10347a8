#include "pqmodules/rsamplemodule1/microchip_archive.h"

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
#include "tests/support/refused_allocation.h"

namespace {

constexpr pq::ModuleLog kArchiveLog{"pqmodules/rsamplemodule1"};

using test::Collected;
using test::RaidTools;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const std::string kFirmware = "C:\\Support\\Firmware\\";
const std::string kArchive = "savesupportarchive c:\\";

/// A machine on which arcconf has left the file with the text.
struct Archive : RaidTools {
  Archive() { Answer("arcconf.exe", kArchive, ""); }
  Archive& File(const std::string& name, const std::string& text) {
    recording.files[kFirmware + name] = text;
    return *this;
  }
  Archive& Config(const std::string& text) { return File("Controller_1_Config.txt", text); }
};

Collected CollectArchive(const RaidTools& tools) {
  return test::Collect(tools.recording, "sampleModule1", {"PMCINFO"});
}

std::vector<std::vector<std::string>> ArchiveRowsOf(const std::string& config,
                                                    const std::string& table = "PMCINFO") {
  return CollectArchive(Archive().Config(config)).Rows(table);
}

/// `label` padded so that its value begins 45 characters behind the label's start.
std::string Line(const std::string& label, const std::string& value) {
  return "   " + label + std::string(43 - label.size(), ' ') + ": " + value + "\n";
}

/// "key=value" of the fact in one line; empty when there is none.
std::string ArchiveFactIn(const std::string& line) {
  const pq::LabelledFact fact = pq::ReadMicrochipConfigFact(line);
  return fact ? std::string(fact.source->column.key) + "=" + std::string(fact.value) : "";
}

TEST(MicrochipConfig, FindsEveryLabel) {
  EXPECT_EQ(ArchiveFactIn(Line("Controller Status", "v")), "Status=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Controller Mode", "v")), "Mode=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Channel description", "v")), "description=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Controller Serial Number", "v")), "SerialNumber=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Controller World Wide Name", "v")), "WorldWideName=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Physical Slot", "v")), "Physical_slot=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Temperature", "v")), "Temperature=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Host bus type", "v")), "type=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Host bus speed", "v")), "speed=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Host bus link width", "v")), "width=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Defunct disk drive count", "v")), "Defunct_disk=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("NCQ status", "v")), "NCQ=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Statistics data collection mode", "v")), "Statistics=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Driver Name", "v")), "Driver_Name=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Driver Supports SSD I/O Bypass", "v")), "Bypass=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("NVMe Supported", "v")), "NVMe_Supported=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Manufacturing Part Number", "v")), "ManPN=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Logical devices/Failed/Degraded", "v")), "Logical=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Firmware", "v")), "Firmware=v\n");
  EXPECT_EQ(ArchiveFactIn(Line("Driver", "v")), "Driver=v\n");
}

TEST(MicrochipConfig, ShowsEveryLabelAsItStandsInTheReport) {
  for (const char* label : {"Controller Status",
                            "Controller Mode",
                            "Controller Model",
                            "Channel description",
                            "Controller Serial Number",
                            "Controller World Wide Name",
                            "Physical Slot",
                            "Temperature",
                            "Host bus type",
                            "Host bus speed",
                            "Host bus link width",
                            "Defunct disk drive count",
                            "NCQ status",
                            "Statistics data collection mode",
                            "Driver Name",
                            "Driver Supports SSD I/O Bypass",
                            "NVMe Supported",
                            "Manufacturing Part Number",
                            "Logical devices/Failed/Degraded",
                            "Firmware",
                            "Driver"}) {
    const pq::LabelledFact fact = pq::ReadMicrochipConfigFact(label);
    ASSERT_TRUE(fact) << label;
    EXPECT_EQ(fact.source->column.label, label);
  }
}

TEST(MicrochipConfig, TellsTheModelFromTheMode) {
  EXPECT_EQ(ArchiveFactIn(Line("Controller Model", "HBA")), "Model=HBA\n");
}

TEST(MicrochipConfig, TakesALineWithModeAndModelAsTheModel) {
  EXPECT_EQ(ArchiveFactIn("Controller Mode, not the Controller Model       value"),
            "Model=   value");
}

TEST(MicrochipConfig, CountsAValuesStartFromItsLabel) {
  EXPECT_EQ(ArchiveFactIn("Controller Status                            Optimal\n"),
            "Status=Optimal\n");
  EXPECT_EQ(ArchiveFactIn("      Controller Status                            Optimal\n"),
            "Status=Optimal\n");
}

TEST(MicrochipConfig, HasAnEmptyValueWhereTheLineEndsEarly) {
  EXPECT_EQ(ArchiveFactIn("   Physical Slot                        : 7\n"), "Physical_slot=");
}

TEST(MicrochipConfig, LosesTheHeadOfAValueInANarrowerReport) {
  EXPECT_EQ(ArchiveFactIn("   Controller Status                        : Optimal\n"),
            "Status=timal\n");
}

TEST(MicrochipConfig, KnowsNothingOfOtherLines) {
  EXPECT_EQ(ArchiveFactIn("   Queue Depth                                : Automatic\n"), "");
  EXPECT_EQ(ArchiveFactIn(""), "");
}

TEST(MicrochipArchive, PutsVersionsIntoARowOfTheirOwn) {
  const Collected collected = CollectArchive(Archive().Config(
      Line("Controller Status", "Optimal") + Line("Firmware", "3.2") + Line("Driver", "1010")));
  EXPECT_THAT(collected.Rows("PMCINFO"), ElementsAre(ElementsAre("Status=Optimal\n")));
  EXPECT_THAT(collected.Rows("PMCVER"),
              ElementsAre(ElementsAre("Firmware=3.2\n", "Driver=1010\n")));
}

TEST(MicrochipArchive, GoesOnBehindTheDriversName) {
  EXPECT_THAT(ArchiveRowsOf(Line("Driver Name", "pqi") + Line("NCQ status", "on")),
              ElementsAre(ElementsAre("Driver_Name=pqi\n", "NCQ=on\n")));
}

TEST(MicrochipArchive, EndsTheScanAtTheDriver) {
  EXPECT_THAT(
      ArchiveRowsOf(Line("NCQ status", "on") + Line("Driver", "1") + Line("Temperature", "29 C")),
      ElementsAre(ElementsAre("NCQ=on\n")));
}

TEST(MicrochipArchive, LetsALaterLineReplaceAnEarlierOne) {
  EXPECT_THAT(ArchiveRowsOf(Line("Temperature", "41 C") + Line("Temperature", "19 C")),
              ElementsAre(ElementsAre("Temperature=19 C\n")));
}

TEST(MicrochipArchive, GivesEmptyRowsForAReportWithoutLabels) {
  const Collected collected = CollectArchive(Archive().Config("Controllers found: 0\r\n"));
  EXPECT_THAT(collected.Rows("PMCINFO"), ElementsAre(IsEmpty()));
  EXPECT_THAT(collected.Rows("PMCVER"), ElementsAre(IsEmpty()));
  EXPECT_THAT(collected.Rows("PMCLINK"),
              ElementsAre(ElementsAre("Controller_Config=Controllers found: 0\n")));
}

TEST(MicrochipArchive, GivesNoRowsWithoutAConfigurationReport) {
  const Collected collected = CollectArchive(Archive().File("Controller_1_Log.txt", "log\n"));
  EXPECT_THAT(collected.LogTexts(), Contains("4 Failed to open PMC Controller file"));
  for (const char* table : {"PMCINFO", "PMCVER", "PMCLINK"}) {
    EXPECT_THAT(collected.Rows(table), IsEmpty()) << table;
  }
}

TEST(MicrochipArchive, RunsItsThreeCommands) {
  const Collected collected = CollectArchive(Archive().Config(""));
  const std::vector<std::string> last(collected.commandLines.end() - 3,
                                      collected.commandLines.end());
  EXPECT_THAT(
      last,
      ElementsAre("/c \"C:\\Halyard\\utilities\\arcconf\\arcconf.exe savesupportarchive c:\\\"",
                  "/c \"md \"C:\\Halyard\\logs\\Firmware\"\"",
                  "/c \"copy \"c:\\Support\\Firmware\" \"C:\\Halyard\\logs\\Firmware\"\""));
}

TEST(MicrochipArchive, CopiesTheWholeFolderIntoTheLogFolder) {
  const Collected collected = CollectArchive(
      Archive().Config("c").File("Controller_2_Log.txt", "two").File("notes.bin", "n"));
  const std::string folder = "C:\\Halyard\\logs\\Firmware\\";
  EXPECT_THAT(collected.files, Contains(testing::Pair(folder + "Controller_1_Config.txt", "c")));
  EXPECT_THAT(collected.files, Contains(testing::Pair(folder + "Controller_2_Log.txt", "two")));
  EXPECT_THAT(collected.files, Contains(testing::Pair(folder + "notes.bin", "n")));
}

TEST(MicrochipArchive, CopiesNothingWithoutTheFolderAndGoesOn) {
  const Collected collected = CollectArchive(Archive());
  EXPECT_THAT(collected.commandLines, Not(Contains(HasSubstr("copy"))));
  EXPECT_THAT(collected.commandLines, Contains(HasSubstr("\"md ")));
  EXPECT_THAT(collected.LogTexts(), Contains("4 Failed to open PMC Controller file"));
}

TEST(MicrochipArchive, GoesOnWhenTheFolderInTheLogFolderIsThere) {
  Archive archive;
  archive.recording.files["C:\\Halyard\\logs\\Firmware\\old.txt"] = "old";
  EXPECT_THAT(CollectArchive(archive.Config(Line("Controller Status", "Optimal"))).Rows("PMCINFO"),
              SizeIs(1));
}

TEST(MicrochipArchive, EndsWhenArcconfCannotBeStarted) {
  RaidTools tools;
  tools.recording.files[kFirmware + "Controller_1_Config.txt"] = "x";
  const Collected collected = CollectArchive(tools.RefuseStart("arcconf.exe", kArchive, 5));
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (5)"));
  EXPECT_THAT(collected.commandLines.back(), HasSubstr("arcconf.exe"));
  EXPECT_THAT(collected.Rows("PMCINFO"), IsEmpty());
}

TEST(MicrochipArchive, EndsWhenTheFolderCannotBeMade) {
  Archive archive;
  archive.Config("x").RefuseStart("md", "\"C:\\Halyard\\logs\\Firmware\"", 8);
  const Collected collected = CollectArchive(archive);
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (8)"));
  EXPECT_THAT(collected.commandLines.back(), HasSubstr("\"md "));
  EXPECT_THAT(collected.Rows("PMCINFO"), IsEmpty());
}

TEST(MicrochipArchive, EndsWhenTheCopyCannotBeStarted) {
  Archive archive;
  archive.Config("x").RefuseStart("copy",
                                  "\"c:\\Support\\Firmware\" \"C:\\Halyard\\logs\\Firmware\"", 14);
  const Collected collected = CollectArchive(archive);
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (14)"));
  EXPECT_THAT(collected.opened, Not(Contains(HasSubstr("Controller_1_Config"))));
  EXPECT_THAT(collected.Rows("PMCINFO"), IsEmpty());
}

TEST(MicrochipArchive, AttachesItsFiveReports) {
  const Collected collected = CollectArchive(Archive()
                                                 .Config("c\r\n")
                                                 .File("Controller_1_Debug_Log.txt", "d\r\n")
                                                 .File("Controller_1_Event_Log.txt", "e\r\n")
                                                 .File("Controller_1_Log.txt", "l\r\n")
                                                 .File("Controller_1_SmartStats.xml", "s\r\n"));
  EXPECT_THAT(collected.Rows("PMCLINK"),
              ElementsAre(ElementsAre("Controller_Config=c\n", "Controller_Debug_Log=d\n",
                                      "Controller_Event_Log=e\n", "Controller_Log=l\n",
                                      "Controller_SmartStats=s\n")));
}

TEST(MicrochipArchive, LeavesOtherControllersAlone) {
  const Collected collected =
      CollectArchive(Archive().Config("c\n").File("Controller_2_Config.txt", "other\n"));
  EXPECT_THAT(collected.opened, Not(Contains(HasSubstr("Controller_2"))));
}

TEST(MicrochipArchive, SaysWhichReportsAreMissing) {
  std::vector<std::string> failures;
  for (const std::string& line : CollectArchive(Archive().Config("c\n")).LogTexts()) {
    if (line.find("file!") != std::string::npos) failures.push_back(line);
  }
  EXPECT_THAT(failures, ElementsAre("4 Failed to open Controller_1_Debug_Log.txt file!",
                                    "4 Failed to open Controller_1_Event_Log.txt file!",
                                    "4 Failed to open Controller_1_Log.txt file!",
                                    "4 Failed to open Controller_1_SmartStats.xml file!"));
}

// The configuration report is open already; it is gone before it is opened a second time.
TEST(MicrochipArchive, SaysWhenTheConfigurationReportIsGone) {
  class Vanishing final : public test::FakePlatform {
   public:
    std::unique_ptr<pq::TextFile> OpenText(const std::string& path) override {
      class Empty final : public pq::TextFile {
       public:
        bool ReadLine(char* /*buffer*/, std::size_t /*size*/) override { return false; }
        void Rewind() override {}
        std::uint64_t SizeAndRewind() override { return 0; }
      };
      if (++opened == 1) return std::make_unique<Empty>();
      return test::FakePlatform::OpenText(path);
    }
    int opened = 0;
  } machine;
  const pq::MachineInUse inUse(machine);
  const test::LogLines log;
  halyard::repository::RRepository repository;
  pq::CollectMicrochipArchive({repository, kArchiveLog, pq::GetExeFolder()});
  EXPECT_THAT(log.texts, Contains("4 [repo] Failed to open Controller_1_Config.txt file!"));
  EXPECT_THAT(log.texts, SizeIs(5));
}

TEST(MicrochipArchive, AttachesAnEmptyReport) {
  const Collected collected =
      CollectArchive(Archive().Config("c\n").File("Controller_1_Log.txt", ""));
  EXPECT_THAT(collected.LogTexts(), Contains("4 Size:0"));
  EXPECT_THAT(collected.Rows("PMCLINK").at(0), Contains("Controller_Log="));
  EXPECT_THAT(collected.Tables().at("PMCLINK").rows[0].shape->attributes,
              Contains(host::Attribute{"Controller_Log", "filename", "Controller_1_Log"}));
}

TEST(MicrochipArchive, MarksAReportAsARawFile) {
  const Collected collected = CollectArchive(Archive().Config("c\n"));
  EXPECT_THAT(collected.Tables().at("PMCLINK").rows[0].shape->attributes,
              ElementsAre(host::Attribute{"Controller_Config", "raw", "true"},
                          host::Attribute{"Controller_Config", "filename", "Controller_1_Config"}));
}

TEST(MicrochipArchive, LogsTheSizeOfTheStoredBytes) {
  EXPECT_THAT(CollectArchive(Archive().Config("one\r\ntwo\r\n")).LogTexts(), Contains("4 Size:10"));
}

TEST(MicrochipArchive, AttachesAReportWithLongLinesWhole) {
  const std::string text = std::string(2000, 'x') + "\nend\n";
  EXPECT_THAT(CollectArchive(Archive().Config(text)).Rows("PMCLINK").at(0),
              ElementsAre("Controller_Config=" + text));
}

TEST(MicrochipArchive, GoesOnWithTheNextReportWhenThereIsNoMemory) {
  const Archive archive = Archive()
                              .Config("c\n")
                              .File("Controller_1_Event_Log.txt", std::string(54320, 'e'))
                              .File("Controller_1_Log.txt", "l\n");
  const test::RefusedAllocation refused(54321);
  const Collected collected = CollectArchive(archive);
  EXPECT_THAT(collected.LogTexts(), Contains("4 Malloc failed!").Times(1));
  EXPECT_THAT(collected.Rows("PMCLINK"),
              ElementsAre(ElementsAre("Controller_Config=c\n", "Controller_Log=l\n")));
  EXPECT_EQ(collected.openHandles, 1);
}

TEST(MicrochipArchive, EndsTheProcessWhenTheHostsFolderFillsTheCommand) {
  test::FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  machine.hostExecutable = "C:\\" + std::string(505, 'h') + "\\halyard.exe";
  halyard::repository::RRepository repository;
  EXPECT_THROW(pq::CollectMicrochipArchive({repository, kArchiveLog, pq::GetExeFolder()}),
               test::RangeCheckFailed);
}

TEST(MicrochipArchive, StartsNothingWhenTheCommandDoesNotFit) {
  test::FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  const test::LogLines log;
  machine.hostExecutable = "C:\\" + std::string(504, 'h') + "\\halyard.exe";
  halyard::repository::RRepository repository;
  pq::CollectMicrochipArchive({repository, kArchiveLog, pq::GetExeFolder()});
  EXPECT_THAT(log.texts, ElementsAre("4 [repo] CreateProcess failed (206)"));
}

}  // namespace
