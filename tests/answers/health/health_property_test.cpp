// What holds for the verdict on every machine: the samples, and machines made at random of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/answers/parts/collected_rows.h"
#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/read_parts.h"
#include "host/answers/parts/report_lines.h"
#include "tests/answers/health/judged.h"
#include "tests/support/collected.h"
#include "tests/support/random_recording.h"
#include "tests/support/samples.h"
#include "tests/support/sanitizers.h"

namespace {

using namespace test;
using host::Collection;
using host::Parts;

constexpr int kRandomMachines = PQ_HAS_ADDRESS_SANITIZER ? 4 : 40;

/// Severity and key of each finding, and the verdict.
std::vector<std::string> ListFindings(const host::Health& health) {
  std::vector<std::string> list{host::GetVerdict(health)};
  for (const host::HealthFinding& finding : health.findings) {
    list.push_back(std::string(host::GetWord(finding.severity)) + " " + finding.key);
  }
  return list;
}

/// The same without notices.
std::vector<std::string> ListAlarms(const host::Health& health) {
  std::vector<std::string> list = ListFindings(health);
  std::erase_if(list, [](const std::string& one) { return one.starts_with("notice"); });
  return list;
}

/// Calls `check` with the name, the collection and the parts of each machine.
template <typename Check>
void ForEachMachine(const Check& check) {
  const auto pass = [&](const std::string& name, const host::Recording& machine) {
    const Collection collection = host::Collect(machine);
    check(name, collection, host::ReadParts(collection));
  };
  for (const auto& [name, machine] : test::LoadSamples()) pass(name, machine);
  for (int seed = 1; seed <= kRandomMachines; ++seed) {
    pass("seed " + std::to_string(seed),
         test::MakeRandomRecording(static_cast<std::uint64_t>(seed)));
  }
}

// --- order ---

template <typename Table>
void Shuffle(Table& table, std::mt19937& random) {
  std::shuffle(table.begin(), table.end(), random);
}

TEST(HealthOfAnyMachine, DoesNotDependOnTheOrderOfRows) {
  std::mt19937 random(3);
  host::HealthJudge judge;
  ForEachMachine([&](const std::string& name, const Collection& collection, Parts parts) {
    const std::vector<std::string> expected = ListFindings(judge.Judge(collection, parts));
    Shuffle(parts.controllers, random);
    Shuffle(parts.drives, random);
    Shuffle(parts.volumes, random);
    Shuffle(parts.groups, random);
    Shuffle(parts.missingDrives, random);
    Shuffle(parts.cacheBackups, random);
    Shuffle(parts.enclosures, random);
    Shuffle(parts.sensors, random);
    test::ShuffleEvents(parts, random);
    Shuffle(parts.powerSupplies, random);
    Shuffle(parts.leds, random);
    Shuffle(parts.selfTests, random);
    Shuffle(parts.sources, random);
    Shuffle(parts.unread, random);
    EXPECT_EQ(ListFindings(judge.Judge(collection, parts)), expected) << name;
  });
}

// --- age ---

/// Entries of every kind about every part, all of them older than those that are there.
void AddOldEntries(Parts& parts) {
  struct Named {
    const char* table;
    std::string id;
  };
  std::vector<Named> named{{"controllers", "lsi0"}};
  for (const host::Drive& one : parts.drives) named.push_back({"drives", one.id});
  for (const host::Volume& one : parts.volumes) named.push_back({"volumes", one.id});
  for (const host::CacheBackup& one : parts.cacheBackups)
    named.push_back({"cache_backups", one.id});
  const std::size_t first = parts.events.size();
  for (const Named& one : named) {
    for (int code = 0; code < 0x200; ++code) {
      test::AddedEvent event = AddLsiEvent(parts, code, one.table, one.id, kLongAgo);
      event.level = 4;
      event.sense = "3/11/00";
    }
  }
  for (const host::Sensor& sensor : host::PartList<host::Sensor>(parts.sensors)) {
    for (int bit = 0; bit < 16; ++bit) {
      const auto type = static_cast<int>(sensor.type.value_or(0));
      AddSelEvent(parts, sensor.id, type, 0x6f, bit, true, kLongAgo).level = 3;
      AddSelEvent(parts, sensor.id, type, 0x6f, bit, false, kLongAgo);
    }
  }
  for (const char* source : {"AMT", "Microchip"}) AddOtherEvent(parts, source, 3, "old", kLongAgo);
  std::vector<host::Event> events(parts.events.begin(), parts.events.end());
  for (std::size_t i = first; i < events.size(); ++i) {
    events[i].id = "old " + std::to_string(i);
    events[i].number = static_cast<std::int64_t>(i) - 10'000'000;
  }
  parts.events = host::Events(events);
}

TEST(HealthOfAnyMachine, IsNotChangedByWhatIsOld) {
  host::HealthOptions options;
  options.asOf = kNow;
  host::HealthJudge judge(options);
  ForEachMachine([&](const std::string& name, const Collection& collection, Parts parts) {
    const std::vector<std::string> expected = ListAlarms(judge.Judge(collection, parts));
    if (parts.drives.empty() && parts.sensors.empty()) return;  // else it is the log that is there
    AddOldEntries(parts);
    EXPECT_EQ(ListAlarms(judge.Judge(collection, parts)), expected) << name;
  });
}

// --- evidence ---

/// Why the place of a hit is none; empty when it is one.
std::string FindFault(const Collection& collection, const host::Place& place) {
  if (place.className.empty() || place.row == 0) return {};  // of no cell
  const host::CollectedRows all(collection);
  const auto rows = all.ListRows(place.className);
  if (static_cast<std::size_t>(place.row) > rows.size()) return "no such row";
  const auto text = rows[static_cast<std::size_t>(place.row) - 1].FindText(place.key);
  if (!text) return "no such key " + place.key;
  if (place.line == 0) return {};
  host::ReportLine line;
  for (host::ReportLines lines(text->View()); lines.Next(line);) {
    if (line.number == place.line) return host::Trim(line.text).empty() ? "an empty line" : "";
  }
  return "no such line";
}

TEST(HealthOfAnyMachine, HasEvidenceWhereItSays) {
  // Of what was not there nothing can be shown.
  const std::set<std::string> kWithoutPlace{"collection.nothing"};
  host::HealthJudge judge;
  std::size_t count = 0;
  ForEachMachine([&](const std::string& name, const Collection& collection, const Parts& parts) {
    for (const host::HealthFinding& finding : judge.Judge(collection, parts).findings) {
      for (const host::HealthHit& hit : finding.hits) {
        const std::string what = name + ": " + hit.rule + " " + hit.id;
        EXPECT_EQ(FindFault(collection, hit.place), "") << what;
        const bool hasPlace = !hit.place.className.empty() || !hit.place.tool.empty();
        EXPECT_TRUE(hasPlace || kWithoutPlace.contains(hit.rule)) << what;
        count += hit.place.line > 0 ? 1 : 0;
      }
    }
  });
  EXPECT_GT(count, PQ_HAS_ADDRESS_SANITIZER ? 15U : 50U);
}

// --- sources ---

/// Takes the tools' answers of a source away, and the files that they left.
void Blank(host::Recording& machine, std::string_view source) {
  struct Answer {
    std::string_view source;
    std::string_view tool;       ///< how it begins
    std::string_view arguments;  ///< how they end
  };
  constexpr Answer kAnswers[] = {
      {"lsi", "storcli", ""},
      {"microchip", "arcconf", ""},
      {"intel", "rstcli", ""},
      {"sensors", "ipmiutil", "sensor -s -q"},
      {"sensors", "ipmiutil", "sensor"},
      {"sel", "ipmiutil", "sel"},
      {"power supplies", "ipmiutil", "psu"},
      {"leds", "ipmiutil", "led"},
      {"self-test", "ipmiutil", "selftest"},
      {"amt", "amt_log", ""},
      {"sas2", "SAS2IR", ""},
  };
  for (host::RecordedCommand& command : machine.commands) {
    for (const Answer& answer : kAnswers) {
      if (answer.source == source && command.tool.starts_with(answer.tool) &&
          command.arguments.ends_with(answer.arguments)) {
        command.standardOutput = "";
      }
    }
  }
  if (source != "microchip") return;
  for (auto& [path, text] : machine.files) {
    if (path.find("Controller_") != std::string::npos) text = "";
  }
}

TEST(HealthOfAnyMachine, IsNeverOkWithoutASourceThatItHad) {
  // Neither says whether the machine is well: the serial numbers of its boards, and a log that is
  // empty when all is well.
  const std::set<std::string> kOthers{"fru", "sas2"};
  int count = 0;
  for (const auto& [name, machine] : test::LoadSamples()) {
    const Parts parts = host::ReadParts(host::Collect(machine));
    for (const host::PartSource& source : parts.sources) {
      if (source.state != "read" || kOthers.contains(source.id)) continue;
      host::Recording without = machine;
      Blank(without, source.id);
      const Collection collection = host::Collect(without);
      const host::Health health =
          host::JudgeCollection(collection, host::ReadParts(collection), {});
      EXPECT_STRNE(host::GetVerdict(health), "OK") << name << " without " << source.id;
      ++count;
    }
  }
  EXPECT_EQ(count, 16);
}

// --- cut reports ---

/// The same text with one line end or another after each line.
std::string MixLineEnds(std::string_view text, test::RandomNumbers& random) {
  const std::vector<std::string> kEnds{"\n", "\r\n", "\r"};
  std::string mixed;
  host::ReportLine line;
  for (host::ReportLines lines(text); lines.Next(line);) {
    mixed.append(line.text).append(random.DrawFrom(kEnds));
  }
  return mixed;
}

/// The machine on which only `tool` answers.
host::Recording KeepTool(host::Recording machine, std::string_view tool) {
  std::erase_if(machine.commands, [&](const host::RecordedCommand& command) {
    return !command.tool.starts_with(tool);
  });
  return machine;
}

// A trouble beyond the cut is not seen, so that a verdict can be better than that of the whole
// report: of a critical entry of a log only "unknown" is left. But OK it never is where it was not,
// as long as a tool tells how much it prints. rstcli does not: it has no last line, and counts only
// the drives of arrays. Nor do storcli's and arcconf's logs, the last of all reports.
TEST(HealthOfAnyMachine, IsNeverOkOfACutReportWhenTheWholeIsNot) {
  constexpr int kCuts = PQ_HAS_ADDRESS_SANITIZER ? 1 : 6;  // of each report
  test::RandomNumbers random(5);
  host::HealthJudge judge;
  const auto findVerdict = [&](const host::Recording& machine) -> std::string {
    const Collection collection = host::Collect(machine);
    return host::GetVerdict(judge.Judge(collection, host::ReadParts(collection)));
  };
  int count = 0;
  for (const auto& [sampleName, sample] : test::LoadSamples()) {
    const std::string& name = sampleName;
    for (const char* tool : {"storcli", "arcconf", "IntelVROC", "ipmiutil", "amt_log"}) {
      const host::Recording machine = KeepTool(sample, tool);
      if (findVerdict(machine) == "OK") continue;
      const auto check = [&](host::Recording& cut, host::Bytes& text, const std::string& what) {
        const std::string whole(text.Text());
        for (int i = 0; i < kCuts && !whole.empty(); ++i) {
          text = MixLineEnds(whole.substr(0, random.DrawBelow(whole.size())), random);
          EXPECT_NE(findVerdict(cut), "OK") << name << ", " << what << ": " << text.size();
          ++count;
        }
        text = whole;
      };
      host::Recording cut = machine;
      for (host::RecordedCommand& command : cut.commands) {
        check(cut, command.standardOutput, command.tool + " " + command.arguments);
      }
      for (auto& [path, text] : cut.files) check(cut, text, path);
    }
  }
  EXPECT_GT(count, kCuts * 40);
}

}  // namespace
