// What holds for every text that storcli may print, whole, cut off or garbled.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/storcli_drives.h"
#include "host/answers/parts/storcli_events.h"
#include "host/answers/parts/storcli_show.h"
#include "tests/answers/parts/lsi_report.h"
#include "tests/support/random_recording.h"
#include "tests/support/samples.h"

namespace {

using host::Parts;

/// Texts by the key of their report.
using Reports = std::map<std::string, std::string>;

/// What the samples' tools print, by the end of the command.
std::vector<Reports> ListSampleReports() {
  const std::map<std::string, std::string> keys{{" show", "lsishowall"},
                                                {"/eall/sall show all", "pdlist"},
                                                {" show events", "lsieventlog"},
                                                {" show termlog", "lsifwtermlog"}};
  std::map<std::string, Reports> reports;
  for (const auto& [name, recording] : test::LoadSamples()) {
    for (const host::RecordedCommand& command : recording.commands) {
      if (!command.tool.starts_with("storcli") || !command.arguments.starts_with("/c")) continue;
      const auto key = keys.find(command.arguments.substr(3));
      if (key == keys.end()) continue;
      reports[name + command.arguments.substr(0, 3)][key->second] = command.standardOutput.Text();
    }
  }
  std::vector<Reports> list;
  for (auto& [name, texts] : reports) list.push_back(std::move(texts));
  return list;
}

Parts Read(const Reports& reports) {
  Parts parts;
  const auto read = [&](const char* key, void (*reader)(const host::Report&, Parts&)) {
    const auto found = reports.find(key);
    if (found != reports.end()) reader(test::LsiReport(found->second, key), parts);
  };
  read("lsishowall", host::ReadStorcliShow);
  read("pdlist", host::ReadStorcliDrives);
  read("lsieventlog", host::ReadStorcliEvents);
  read("lsifwtermlog", host::ReadStorcliTermLog);
  return parts;
}

using Lines = std::map<std::string, std::vector<std::string_view>>;

Lines SplitLines(const Reports& reports) {
  Lines lines;
  for (const auto& [key, text] : reports) {
    host::ReportLines rest(text);
    for (host::ReportLine line; rest.Next(line);) lines[key].push_back(line.text);
  }
  return lines;
}

/// The line of a place; in the event log all lines of the record that begins there.
std::string FindText(const Lines& lines, const host::Place& place) {
  const std::vector<std::string_view>& all = lines.at(place.key);
  const auto first = static_cast<std::size_t>(place.line) - 1;
  std::string text(all.at(first));
  for (std::size_t i = first + 1; place.key == "lsieventlog" && i < all.size(); ++i) {
    const auto split = host::SplitLabel(all[i], ':');
    if (split && split->label == "seqNum") break;
    text += '\n';
    text += all[i];
  }
  return text;
}

/// Columns whose values are words or whole numbers of the line that they were read from; the others
/// are made of them.
const std::set<std::string_view> kColumnsAsPrinted{"model",
                                                   "serial",
                                                   "firmware",
                                                   "status",
                                                   "interface",
                                                   "media",
                                                   "name",
                                                   "level",
                                                   "access",
                                                   "consistent",
                                                   "cache",
                                                   "smart_alert",
                                                   "answer",
                                                   "product",
                                                   "text",
                                                   "sense",
                                                   "device_id",
                                                   "media_errors",
                                                   "busy",
                                                   "other_errors",
                                                   "shield",
                                                   "slots",
                                                   "predictive_failures",
                                                   "fans",
                                                   "volumes_declared",
                                                   "drives_declared",
                                                   "power_supplies"};

/// A state of two columns is joined by a slash.
bool ContainsState(std::string_view line, std::string_view state) {
  const std::size_t slash = std::min(state.find('/'), state.size());
  return line.find(state) != std::string_view::npos ||
         (line.find(state.substr(0, slash)) != std::string_view::npos &&
          line.find(state.substr(std::min(slash + 1, state.size()))) != std::string_view::npos);
}

void ExpectCellInItsLine(const Lines& lines, const host::Part& part,
                         const host::PartColumn& column) {
  const host::PartValue value = column.get(part);
  if (value.index() == 0) return;
  if (column.name != "state" && column.name != "temperature" &&
      !kColumnsAsPrinted.contains(column.name)) {
    return;
  }
  const std::string line = FindText(lines, host::FindPlace(part, column.name));
  if (column.name == "state") {
    EXPECT_TRUE(ContainsState(line, std::get<std::string_view>(value))) << part.id << ": " << line;
  }
  if (column.name == "temperature") {
    const auto whole = static_cast<long>(std::floor(std::abs(std::get<double>(value))));
    EXPECT_NE(line.find(std::to_string(whole)), std::string_view::npos) << part.id << ": " << line;
  }
  if (!kColumnsAsPrinted.contains(column.name)) return;
  const auto* number = std::get_if<std::int64_t>(&value);
  const std::string text =
      number != nullptr ? std::to_string(*number) : std::string(std::get<std::string_view>(value));
  EXPECT_NE(line.find(text), std::string_view::npos)
      << part.id << " " << column.name << " " << text << ": " << line;
}

void ExpectSoundParts(const Reports& reports) {
  const Parts parts = Read(reports);
  const Lines lines = SplitLines(reports);
  std::size_t count = 0;
  for (const host::PartTable& table : host::GetPartTables()) {
    count += table.count(parts);
    for (std::size_t i = 0; i < table.count(parts); ++i) {
      const host::Part& part = table.at(parts, i);
      EXPECT_GT(part.readAt.line, 0) << part.id;
      for (const host::PartColumn& column : table.columns) {
        ExpectCellInItsLine(lines, part, column);
      }
    }
  }
  std::size_t lineCount = 0;
  for (const auto& [key, text] : lines) lineCount += text.size();
  // The controller is made of several lines, and has none of its own.
  EXPECT_LE(count, lineCount + 1);
}

// Otherwise the properties below hold of nothing.
TEST(LsiParts, AreReadFromTheSamples) {
  std::size_t drives = 0;
  std::size_t events = 0;
  for (const Reports& reports : ListSampleReports()) {
    const Parts parts = Read(reports);
    drives += parts.drives.size();
    events += parts.events.size();
    EXPECT_TRUE(parts.unread.empty()) << parts.unread[0].text;
    for (const host::Controller& controller : parts.controllers) {
      const auto volumes = static_cast<std::int64_t>(parts.volumes.size());
      const auto listed = static_cast<std::int64_t>(parts.drives.size());
      EXPECT_EQ(controller.volumesDeclared.value_or(volumes), volumes) << controller.model;
      EXPECT_EQ(controller.drivesDeclared.value_or(listed), listed) << controller.model;
    }
  }
  EXPECT_EQ(drives, 29U);
  EXPECT_GT(events, 100U);
}

TEST(LsiParts, AreFoundAgainInTheirLines) {
  for (const Reports& reports : ListSampleReports()) ExpectSoundParts(reports);
}

TEST(LsiParts, OfGarbledReportsAreFoundAgainInTheirLines) {
  test::RandomNumbers random(1);
  const std::vector<Reports> samples = ListSampleReports();
  for (int round = 0; round < 200; ++round) {
    Reports reports = random.DrawFrom(samples);
    for (auto& [key, text] : reports) {
      if (key == "lsieventlog" || key == "lsifwtermlog")
        text.resize(std::min<std::size_t>(text.size(), 4000));
      text = test::GarbleReport(text, random);
    }
    ExpectSoundParts(reports);
  }
}

TEST(LsiParts, OfCutReportsAreFoundAgainInTheirLines) {
  test::RandomNumbers random(2);
  for (const Reports& whole : ListSampleReports()) {
    for (int round = 0; round < 20; ++round) {
      Reports reports = whole;
      for (auto& [key, text] : reports) text.resize(random.DrawBelow(text.size() + 1) / 4);
      ExpectSoundParts(reports);
    }
  }
}

// A drive whose line was taken away is not there; it is never made up from the lines around it.
TEST(LsiParts, AreNoMoreThanTheLinesThatNameThem) {
  for (const Reports& whole : ListSampleReports()) {
    const Parts parts = Read(whole);
    if (parts.drives.empty() || whole.find("lsishowall") == whole.end()) continue;
    Reports reports{{"lsishowall", whole.at("lsishowall")}};
    std::string& text = reports["lsishowall"];
    const std::string start = "\n" + parts.drives.back().place + " ";
    for (std::size_t at = text.find(start); at != std::string::npos; at = text.find(start)) {
      text.erase(at, text.find('\n', at + 1) - at);
    }
    EXPECT_EQ(Read(reports).drives.size(), parts.drives.size() - 1);
  }
}

}  // namespace
