// What holds for whatever arcconf, rstcli, ipmiutil and amt_log print, whole, cut off or garbled.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/answers/parts/collected_rows.h"
#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/read_parts.h"
#include "host/answers/parts/report_lines.h"
#include "host/collect/collect.h"
#include "host/text/ascii.h"
#include "host/text/decoder.h"
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

std::string GetLine(std::string_view text, std::int64_t number) {
  host::ReportLines lines(text);
  for (host::ReportLine line; lines.Next(line);) {
    if (line.number == number) return std::string(line.text);
  }
  return {};
}

/// All that is printed at `place`: its cell or a line of it; of a text that no cell has, that line
/// of every answer.
std::vector<std::string> ListTexts(const host::Collection& collection, const host::Place& place) {
  const host::TextDecoder decode(collection.machine.codePage);
  std::vector<std::string> texts;
  if (place.className.empty()) {
    for (const host::CollectedAnswer& answer : collection.answers) {
      texts.push_back(GetLine(decode(answer.output), place.line));
      texts.push_back(GetLine(decode(answer.fileText), place.line));
    }
    return texts;
  }
  const host::CollectedRows all(collection);
  const auto rows = all.ListRows(place.className);
  const auto text = rows.at(static_cast<std::size_t>(place.row) - 1).FindText(place.key);
  if (text) {
    texts.push_back(place.line == 0 ? std::string(text->View())
                                    : GetLine(text->View(), place.line));
  }
  return texts;
}

/// Columns whose values are printed as they are, or in other case; the others are made of what is
/// printed, and so are these of some tables.
const std::set<std::string_view> kColumnsAsPrinted{
    "model",
    "serial",
    "firmware",
    "status",
    "interface",
    "name",
    "level",
    "cache",
    "initialized",
    "product",
    "location",
    "failed_stripes",
    "smart_alert",
    "failure_reason",
    "member_state",
    "state",
    "text",
    "colour",
    "media_errors",
    "temperature_word",
    "predictive_failures",
    "other_errors",
    "drives_defunct",
    "temperature",
};
bool IsAsPrinted(std::string_view table, std::string_view column) {
  if (table == "sources") return false;
  if (table == "events" && column == "level") return false;         // of a word
  if (table == "enclosures" && column == "state") return false;     // of several lines
  if (table == "power_supplies" && column == "text") return false;  // of several lines
  if (table == "self_tests" && column == "text") return false;      // of several lines
  if (table == "sensors") return column == "status";
  return kColumnsAsPrinted.contains(column);
}

std::string Print(const host::PartValue& value) {
  if (const auto* text = std::get_if<std::string_view>(&value)) return std::string(*text);
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  const double number = std::get<double>(value);
  return std::to_string(static_cast<long>(std::floor(std::abs(number))));
}

/// One blank between words, in lower case.
std::string Simplify(std::string_view text) {
  std::string simple;
  for (const std::string_view word : host::ListWords(text)) simple.append(word).append(" ");
  return host::LowerCase(simple.substr(0, simple.empty() ? 0 : simple.size() - 1));
}

void ExpectCellWhereItWasRead(const host::Collection& collection, const host::PartTable& table,
                              const host::Part& part, const host::PartColumn& column) {
  const host::PartValue value = column.get(part);
  if (value.index() == 0 || !IsAsPrinted(table.name, column.name)) return;
  const std::string text = Simplify(Print(value));
  const auto texts = ListTexts(collection, host::FindPlace(part, column.name));
  const bool isThere = std::any_of(texts.begin(), texts.end(), [&](const std::string& one) {
    return Simplify(one).find(text) != std::string::npos;
  });
  EXPECT_TRUE(isThere) << table.name << " " << part.id << " " << column.name << ": " << text;
}

std::size_t CountLines(const host::Collection& collection) {
  std::size_t count = 0;
  const auto add = [&](std::string_view text) {
    host::ReportLines lines(text);
    for (host::ReportLine line; lines.Next(line);) ++count;
  };
  for (const host::CollectedAnswer& answer : collection.answers) {
    add(answer.output);
    add(answer.fileText);
  }
  for (const auto& [path, text] : collection.files) add(text);
  return count;
}

void ExpectSoundParts(const host::Recording& machine) {
  const host::Collection collection = host::Collect(machine, {});
  const Parts parts = host::ReadParts(collection);
  std::size_t count = 0;
  for (const host::PartTable& table : host::GetPartTables()) {
    if (table.name != "sources") count += table.count(parts);
    std::set<std::string_view> ids;
    for (std::size_t i = 0; i < table.count(parts); ++i) {
      const host::Part& part = table.at(parts, i);
      EXPECT_TRUE(ids.insert(part.id).second) << table.name << " " << part.id;
      for (const host::PartColumn& column : table.columns) {
        ExpectCellWhereItWasRead(collection, table, part, column);
      }
    }
  }
  EXPECT_LE(count, CountLines(collection));
  EXPECT_EQ(parts.sources.size(), 10U);
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
    add(all.events, parts.events);
    add(all.powerSupplies, parts.powerSupplies);
    add(all.leds, parts.leds);
    add(all.selfTests, parts.selfTests);
  }
  EXPECT_EQ(all.controllers.size(), 4U);
  EXPECT_EQ(all.drives.size(), 10U);
  EXPECT_EQ(all.volumes.size(), 4U);
  EXPECT_EQ(all.sensors.size(), 66U);
  EXPECT_GE(all.events.size(), 30U);
  EXPECT_EQ(all.powerSupplies.size(), 2U);
  EXPECT_EQ(all.leds.size(), 6U);
  EXPECT_EQ(all.selfTests.size(), 2U);
}

TEST(PartsOfSamples, AreFoundAgainWhereTheyWereRead) {
  for (const host::Recording& machine : ListMachines()) ExpectSoundParts(machine);
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
    ExpectSoundParts(machine);
  }
}

TEST(PartsOfCutReports, AreFoundAgainWhereTheyWereRead) {
  test::RandomNumbers random(2);
  const auto cut = [&](const std::string& text) {
    return text.substr(0, random.DrawBelow(text.size() + 1));
  };
  for (host::Recording machine : ListMachines()) {
    for (host::RecordedCommand& command : machine.commands) {
      command.standardOutput = cut(command.standardOutput);
    }
    for (auto& [path, text] : machine.files) text = cut(text);
    ExpectSoundParts(machine);
  }
}

}  // namespace
