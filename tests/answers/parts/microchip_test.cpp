#include "host/answers/parts/microchip.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <string>

#include "host/answers/parts/read_parts.h"
#include "host/collect/collect.h"
#include "host/recording/recording_reader.h"
#include "tests/support/collected.h"

namespace {

using host::Parts;
using host::Place;

constexpr char kConfig[] =
    "----------------------------------------------------------------------\n"
    "Controller information\n"
    "----------------------------------------------------------------------\n"
    "   Controller Status                          : Optimal\n";
constexpr char kDevices[] =
    "----------------------------------------------------------------------\n"
    "Physical Device information\n"
    "----------------------------------------------------------------------\n"
    "   No physical drives attached\n";

host::Recording MakeMicrochipMachine(const std::string& printed, std::uint32_t exitCode = 0) {
  host::Recording machine;
  machine.commands.push_back({"arcconf.exe", "savesupportarchive c:\\", printed, "", exitCode});
  return machine;
}

Parts ReadMicrochip(const host::Recording& machine) {
  return host::ReadParts(host::Collect(machine, host::Selection{{"sampleModule1"}, {}}));
}

std::string FindMicrochipSource(const Parts& parts) {
  const auto source = std::find_if(parts.sources.begin(), parts.sources.end(),
                                   [](const auto& one) { return one.id == "microchip"; });
  return source == parts.sources.end() ? "" : source->state + ": " + source->observed;
}

TEST(MicrochipParts, AreInTheAttachedReports) {
  host::Recording machine = MakeMicrochipMachine("");
  machine.files["c:\\Support\\Firmware\\Controller_1_Config.txt"] = std::string(kConfig) + kDevices;
  machine.files["c:\\Support\\Firmware\\Controller_1_Event_Log.txt"] =
      "2026-11-14 17:22:08  WARNING  Charge low (14 \xb0\x43)\n";
  const Parts parts = ReadMicrochip(machine);
  EXPECT_EQ(FindMicrochipSource(parts), "read: ");
  ASSERT_EQ(parts.controllers.size(), 1U);
  EXPECT_EQ(parts.controllers[0].id, "mchp1");
  EXPECT_EQ(FindPlace(parts.controllers[0], "status"),
            (Place{"PMCLINK", 1, "Controller_Config", 4, "arcconf savesupportarchive"}));
  ASSERT_EQ(parts.events.size(), 1U);
  EXPECT_EQ(parts.events[0].text, "Charge low (14 °C)");
  EXPECT_EQ(parts.events[0].readAt.key, "Controller_Event_Log");
}

host::Recording MakeMachineOfTwoControllers() {
  host::Recording machine = MakeMicrochipMachine("");
  machine.files["c:\\Support\\Firmware\\Controller_1_Config.txt"] = std::string(kConfig) + kDevices;
  machine.files["C:\\support\\Firmware\\Controller_2_Config.txt"] =
      std::string(kConfig) + "   Controller Serial Number                   : OV2\n" + kDevices;
  machine.files["c:\\Support\\Firmware\\Controller_2_Event_Log.txt"] =
      "2026-11-14 17:22:08  WARNING  Cable lost\n";
  return machine;
}

TEST(MicrochipParts, AreThoseOfAllControllers) {
  const Parts parts = ReadMicrochip(MakeMachineOfTwoControllers());
  EXPECT_EQ(FindMicrochipSource(parts), "read: ");
  ASSERT_EQ(parts.controllers.size(), 2U);
  EXPECT_EQ(parts.controllers[1].id, "mchp2");
  EXPECT_EQ(parts.controllers[1].number, "2");
  EXPECT_EQ(parts.controllers[1].serial, "OV2");
  // No class has that report.
  EXPECT_EQ(FindPlace(parts.controllers[1], "serial"),
            (Place{"", 0, "", 5, "arcconf savesupportarchive, Controller_2_Config.txt"}));
  ASSERT_EQ(parts.events.size(), 1U);
  EXPECT_EQ(parts.events[0].partId, "mchp2");
}

// On a live machine the archive stays where it is.
TEST(MicrochipSource, FailsWhenAFurtherControllerIsNotRead) {
  host::Collection collection =
      host::Collect(MakeMachineOfTwoControllers(), host::Selection{{"sampleModule1"}, {}});
  collection.files.clear();
  const Parts parts = host::ReadParts(collection);
  EXPECT_EQ(parts.controllers.size(), 1U);
  EXPECT_EQ(FindMicrochipSource(parts), "failed: the report of the second controller was not read");
}

// Each report begins with how many the tool finds.
TEST(MicrochipSource, FailsWithFewerControllersThanTheToolCounts) {
  host::Recording machine = MakeMicrochipMachine("");
  const std::string report =
      std::string(kConfig) + kDevices + "\nCommand completed successfully.\n";
  auto& file = machine.files["c:\\Support\\Firmware\\Controller_1_Config.txt"];
  file = "Controllers found: 1\n" + report;
  EXPECT_EQ(FindMicrochipSource(ReadMicrochip(machine)), "read: ");
  file = "Controllers found: 2\n" + report;
  EXPECT_EQ(FindMicrochipSource(ReadMicrochip(machine)),
            "failed: arcconf counts 2 controllers, of which 1 was read");
  machine.files["c:\\Support\\Firmware\\Controller_2_Config.txt"] =
      "Controllers found: 2\n" + report;
  EXPECT_EQ(FindMicrochipSource(ReadMicrochip(machine)), "read: ");
}

TEST(MicrochipSource, CountsControllersBehindAByteOrderMark) {
  host::Recording machine = MakeMicrochipMachine("");
  machine.files["c:\\Support\\Firmware\\Controller_1_Config.txt"] =
      "\xEF\xBB\xBF"
      "Controllers found: 2\n" +
      std::string(kConfig) + kDevices + "\nCommand completed successfully.\n";
  EXPECT_EQ(FindMicrochipSource(ReadMicrochip(machine)),
            "failed: arcconf counts 2 controllers, of which 1 was read");
}

// An array that was whole yesterday may have lost a drive since.
TEST(MicrochipSource, FailsWithFilesOfAnotherDay) {
  host::Recording machine;
  machine.files["c:\\Support\\Firmware\\Controller_1_Config.txt"] = std::string(kConfig) + kDevices;
  const Parts parts = ReadMicrochip(machine);
  EXPECT_EQ(parts.controllers.size(), 1U);
  EXPECT_EQ(FindMicrochipSource(parts),
            "failed: what there is comes from files of an unknown time; arcconf.exe is not on this "
            "machine");
}

TEST(MicrochipSource, IsNoneWithoutToolOrController) {
  EXPECT_EQ(FindMicrochipSource(ReadMicrochip({})), "none: arcconf.exe is not on this machine");
  EXPECT_EQ(FindMicrochipSource(ReadMicrochip(MakeMicrochipMachine("Controllers found: 0\n"))),
            "none: arcconf finds no controller");
  // A live machine's console is not heard, and there is an archive only where there is a
  // controller.
  EXPECT_EQ(FindMicrochipSource(ReadMicrochip(MakeMicrochipMachine(""))),
            "none: arcconf finds no controller");
}

TEST(MicrochipSource, FailsWhereNothingSaysThatThereIsNoController) {
  for (const char* printed : {"Done.\n", "Controllers found: 1\n"}) {
    EXPECT_THAT(FindMicrochipSource(ReadMicrochip(MakeMicrochipMachine(printed))),
                testing::StartsWith("failed: arcconf.exe: Failed to open "))
        << printed;
  }
}

TEST(MicrochipSource, FailsWithTheTool) {
  EXPECT_THAT(FindMicrochipSource(ReadMicrochip(MakeMicrochipMachine("Error\n", 3))),
              testing::StartsWith("failed: "));
}

TEST(MicrochipSource, FailsWhenTheReportIsNotUnderstood) {
  host::Recording machine = MakeMicrochipMachine("");
  machine.files["c:\\Support\\Firmware\\Controller_1_Config.txt"] = "<html></html>\n";
  EXPECT_EQ(FindMicrochipSource(ReadMicrochip(machine)),
            "failed: Controller_1_Config.txt tells of no controller");
}

/// What is told of the source when the first controller's files are these.
std::string TellOf(const std::string& config, const std::optional<std::string>& eventLog = {}) {
  host::Recording machine = MakeMicrochipMachine("");
  machine.files["c:\\Support\\Firmware\\Controller_1_Config.txt"] = config;
  if (eventLog) machine.files["c:\\Support\\Firmware\\Controller_1_Event_Log.txt"] = *eventLog;
  return FindMicrochipSource(ReadMicrochip(machine));
}

TEST(MicrochipSource, FailsWhereTheConfigurationBreaksOff) {
  const std::string whole = "Controllers found: 1\n" + std::string(kConfig) + kDevices +
                            "\nCommand completed successfully.\n";
  EXPECT_EQ(TellOf(whole), "read: ");
  for (std::size_t end = whole.find("Status") + 40; end < whole.rfind("Command"); ++end) {
    EXPECT_THAT(TellOf(whole.substr(0, end)),
                testing::StartsWith("failed: Controller_1_Config.txt breaks off: "))
        << end;
  }
  // An archive may lack the tool's own words.
  const std::string bare = std::string(kConfig) + kDevices;
  EXPECT_EQ(TellOf(bare), "read: ");
  EXPECT_EQ(TellOf(bare.substr(0, bare.size() - 5)),
            "failed: Controller_1_Config.txt breaks off within a line");
  EXPECT_EQ(TellOf(kConfig), "failed: Controller_1_Config.txt breaks off before its drives");
}

TEST(MicrochipSource, FailsWhereAFileIsEmpty) {
  EXPECT_EQ(TellOf(""), "failed: Controller_1_Config.txt is empty");
  const std::string adapter = std::string(kConfig) + kDevices;
  const std::string raid =
      std::string(kConfig) + "   Logical devices/Failed/Degraded            : 0/0/0\n" + kDevices;
  EXPECT_EQ(TellOf(raid, ""), "failed: Controller_1_Event_Log.txt is empty");
  EXPECT_EQ(TellOf(raid), "read: ");
  EXPECT_EQ(TellOf(adapter, ""), "read: ");
}

TEST(MicrochipSource, FailsWithTheToolAlthoughItLeftFiles) {
  host::Recording machine = MakeMicrochipMachine("", 3);
  machine.files["c:\\Support\\Firmware\\Controller_1_Config.txt"] = std::string(kConfig) + kDevices;
  EXPECT_EQ(FindMicrochipSource(ReadMicrochip(machine)),
            "failed: arcconf savesupportarchive ended with code 3");
}

}  // namespace
