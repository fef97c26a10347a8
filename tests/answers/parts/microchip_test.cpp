#include "host/answers/parts/microchip.h"

#include <gmock/gmock.h>

#include <algorithm>
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

host::Recording MakeMachine(const std::string& printed, std::uint32_t exitCode = 0) {
  host::Recording machine;
  machine.commands.push_back({"arcconf.exe", "savesupportarchive c:\\", printed, "", exitCode});
  return machine;
}

Parts Read(const host::Recording& machine) {
  return host::ReadParts(host::Collect(machine, host::Selection{{"sampleModule1"}, {}}));
}

std::string FindSource(const Parts& parts) {
  const auto source = std::find_if(parts.sources.begin(), parts.sources.end(),
                                   [](const auto& one) { return one.id == "microchip"; });
  return source == parts.sources.end() ? "" : source->state + ": " + source->observed;
}

TEST(MicrochipParts, AreInTheAttachedReports) {
  host::Recording machine = MakeMachine("");
  machine.files["c:\\Support\\Firmware\\Controller_1_Config.txt"] = kConfig;
  machine.files["c:\\Support\\Firmware\\Controller_1_Event_Log.txt"] =
      "2026-11-14 17:22:08  WARNING  Charge low (14 \xb0\x43)\n";
  const Parts parts = Read(machine);
  EXPECT_EQ(FindSource(parts), "read: ");
  ASSERT_EQ(parts.controllers.size(), 1U);
  EXPECT_EQ(parts.controllers[0].id, "mchp1");
  EXPECT_EQ(FindPlace(parts.controllers[0], "status"),
            (Place{"PMCLINK", 1, "Controller_Config", 4, "arcconf savesupportarchive"}));
  ASSERT_EQ(parts.events.size(), 1U);
  EXPECT_EQ(parts.events[0].text, "Charge low (14 °C)");
  EXPECT_EQ(parts.events[0].readAt.key, "Controller_Event_Log");
}

host::Recording MakeMachineOfTwoControllers() {
  host::Recording machine = MakeMachine("");
  machine.files["c:\\Support\\Firmware\\Controller_1_Config.txt"] = kConfig;
  machine.files["C:\\support\\Firmware\\Controller_2_Config.txt"] =
      std::string(kConfig) + "   Controller Serial Number                   : OV2\n";
  machine.files["c:\\Support\\Firmware\\Controller_2_Event_Log.txt"] =
      "2026-11-14 17:22:08  WARNING  Cable lost\n";
  return machine;
}

TEST(MicrochipParts, AreThoseOfAllControllers) {
  const Parts parts = Read(MakeMachineOfTwoControllers());
  EXPECT_EQ(FindSource(parts), "read: ");
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
  EXPECT_EQ(FindSource(parts), "failed: the report of the second controller was not read");
}

TEST(MicrochipSource, IsNoneWithoutToolOrController) {
  EXPECT_EQ(FindSource(Read({})), "none: arcconf.exe is not on this machine");
  EXPECT_EQ(FindSource(Read(MakeMachine("Controllers found: 0\n"))),
            "none: arcconf finds no controller");
  // It writes an archive only where there is a controller.
  EXPECT_EQ(FindSource(Read(MakeMachine("Done.\n"))), "none: arcconf finds no controller");
}

TEST(MicrochipSource, FailsWithTheTool) {
  EXPECT_THAT(FindSource(Read(MakeMachine("Error\n", 3))), testing::StartsWith("failed: "));
}

TEST(MicrochipSource, FailsWhenTheReportIsNotUnderstood) {
  host::Recording machine = MakeMachine("");
  machine.files["c:\\Support\\Firmware\\Controller_1_Config.txt"] = "<html></html>\n";
  EXPECT_EQ(FindSource(Read(machine)), "failed: no controller in the report");
}

}  // namespace
