// What holds for whatever arcconf, rstcli, ipmiutil and amt_log print, whole, cut off or garbled.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "host/answers/parts/read_parts.h"
#include "host/collect/collect.h"
#include "tests/support/machine_part_checks.h"
#include "tests/support/random_recording.h"
#include "tests/support/samples.h"

namespace {

using host::Parts;

/// The samples without storcli's answers, which have more to hold.
std::vector<host::Recording> ListMachines() {
  std::vector<host::Recording> machines;
  for (auto& [name, recording] : test::LoadSamples()) {
    std::erase_if(recording.commands, [](const host::RecordedCommand& command) {
      return command.tool.starts_with("storcli");
    });
    machines.push_back(std::move(recording));
  }
  return machines;
}

// Otherwise the properties below hold of nothing.
TEST(PartsOfSamples, AreThere) {
  Parts all;
  for (const host::Recording& machine : ListMachines()) {
    const Parts parts = host::ReadParts(host::Collect(machine, {}));
    const auto add = [](auto& to, const auto& from) {
      to.insert(to.end(), from.begin(), from.end());
    };
    add(all.controllers, parts.controllers);
    add(all.drives, parts.drives);
    add(all.volumes, parts.volumes);
    add(all.sensors, parts.sensors);
    for (const host::Event& event : parts.events) all.events.push_back(event);
    add(all.powerSupplies, parts.powerSupplies);
    add(all.leds, parts.leds);
    add(all.selfTests, parts.selfTests);
  }
  EXPECT_EQ(all.controllers.size(), 5U);
  EXPECT_EQ(all.drives.size(), 10U);
  EXPECT_EQ(all.volumes.size(), 4U);
  EXPECT_EQ(all.sensors.size(), 66U);
  EXPECT_GE(all.events.size(), 30U);
  EXPECT_EQ(all.powerSupplies.size(), 2U);
  EXPECT_EQ(all.leds.size(), 6U);
  EXPECT_EQ(all.selfTests.size(), 2U);
}

TEST(PartsOfSamples, AreFoundAgainWhereTheyWereRead) {
  for (const host::Recording& machine : ListMachines()) {
    EXPECT_EQ(test::FindUnsoundPart(machine), "");
  }
}

TEST(PartsOfGarbledReports, AreFoundAgainWhereTheyWereRead) {
  test::RandomNumbers random(1);
  const std::vector<host::Recording> machines = ListMachines();
  for (int round = 0; round < 100; ++round) {
    host::Recording machine = random.DrawFrom(machines);
    for (host::RecordedCommand& command : machine.commands) {
      command.standardOutput = test::GarbleReport(command.standardOutput, random);
    }
    for (auto& [path, text] : machine.files) text = test::GarbleReport(text, random);
    EXPECT_EQ(test::FindUnsoundPart(machine), "");
  }
}

/// With a byte that is no UTF-8 by itself at the start of the values of every `step`th line.
std::string SpoilValues(std::string_view report, std::size_t first, std::size_t step) {
  std::string spoilt;
  std::size_t line = 0;
  for (std::size_t at = 0; at < report.size(); ++at) {
    spoilt += report[at];
    if (report[at] == '\n') ++line;
    if (report[at] == ':' && line % step == first) spoilt += " \x81";
  }
  return spoilt;
}

TEST(PartsOfReportsBeyondAscii, AreUtf8) {
  constexpr std::size_t kSteps = 3;
  for (std::size_t first = 0; first < kSteps; ++first) {
    for (host::Recording machine : ListMachines()) {
      for (host::RecordedCommand& command : machine.commands) {
        command.standardOutput = SpoilValues(command.standardOutput, first, kSteps);
      }
      for (auto& [path, text] : machine.files) text = SpoilValues(text, first, kSteps);
      EXPECT_EQ(test::FindUnsoundPart(machine), "");
    }
  }
}

TEST(PartsOfCutReports, AreFoundAgainWhereTheyWereRead) {
  test::RandomNumbers random(2);
  const auto cut = [&](std::string_view text) {
    return std::string(text.substr(0, random.DrawBelow(text.size() + 1)));
  };
  for (host::Recording machine : ListMachines()) {
    for (host::RecordedCommand& command : machine.commands) {
      command.standardOutput = cut(command.standardOutput);
    }
    for (auto& [path, text] : machine.files) text = cut(text);
    EXPECT_EQ(test::FindUnsoundPart(machine), "");
  }
}

}  // namespace
