// What holds for every text that storcli may print, whole, cut off or garbled.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/answers/parts/parts.h"
#include "tests/support/part_checks.h"
#include "tests/support/random_recording.h"
#include "tests/support/samples.h"

namespace {

using host::Parts;
using test::Reports;

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

Parts ReadMachine(const Reports& reports) { return test::ReadLsiReports(reports); }

void ExpectSoundParts(const Reports& reports) {
  EXPECT_EQ(test::FindUnsoundPart(reports, ReadMachine(reports)), "");
}

// Otherwise the properties below hold of nothing.
TEST(LsiParts, AreReadFromTheSamples) {
  std::size_t drives = 0;
  std::size_t events = 0;
  for (const Reports& reports : ListSampleReports()) {
    const Parts parts = ReadMachine(reports);
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
    const Parts parts = ReadMachine(whole);
    if (parts.drives.empty() || whole.find("lsishowall") == whole.end()) continue;
    Reports reports{{"lsishowall", whole.at("lsishowall")}};
    std::string& text = reports["lsishowall"];
    const std::string start = "\n" + parts.drives.back().place + " ";
    for (std::size_t at = text.find(start); at != std::string::npos; at = text.find(start)) {
      text.erase(at, text.find('\n', at + 1) - at);
    }
    EXPECT_EQ(ReadMachine(reports).drives.size(), parts.drives.size() - 1);
  }
}

}  // namespace
