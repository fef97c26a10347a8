// What holds for every two machines.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/answers/difference/compared.h"
#include "host/answers/parts/part_tables.h"
#include "host/catalogue/table_sources.h"
#include "tests/answers/difference/compared_machines.h"
#include "tests/support/random_recording.h"
#include "tests/support/samples.h"
#include "tests/support/sanitizers.h"

namespace {

using host::Difference;
using host::DifferenceSide;
using host::FindingChange;
using host::PartChange;
using host::RecordedCommand;
using host::Recording;
using test::AssessedMachine;
using test::ListLines;
using testing::IsEmpty;

constexpr std::uint64_t kRandomMachines = PQ_HAS_ADDRESS_SANITIZER ? 10 : 40;
constexpr int kGarbledReports = PQ_HAS_ADDRESS_SANITIZER ? 8 : 25;

host::DifferenceOptions CompareAll() {
  host::DifferenceOptions options;
  for (const host::ComparedTable& table : host::ListComparedTables()) {
    if (table.form != host::TableForm::kNone) options.tables.emplace_back(table.className);
  }
  options.comparesReports = true;
  return options;
}

TEST(Difference, OfASampleToItselfIsNone) {
  for (const auto& [name, recording] : test::LoadSamples()) {
    const Difference difference = test::Compare(recording, recording, CompareAll());
    EXPECT_TRUE(difference.IsNone()) << name;
    EXPECT_THAT(ListLines(difference), IsEmpty()) << name;
  }
}

TEST(Difference, OfARandomMachineToItselfIsNone) {
  for (std::uint64_t seed = 0; seed < kRandomMachines; ++seed) {
    const AssessedMachine machine(test::MakeRandomRecording(seed));
    const Difference difference = host::FindDifference(machine.Get(), machine.Get(), CompareAll());
    EXPECT_TRUE(difference.IsNone()) << seed;
    EXPECT_THAT(ListLines(difference), IsEmpty()) << seed;
  }
}

// --- mirror ---

/// All but the logs, whose new entries have no mirror; `isMirror`: as the other comparison has it.
std::vector<std::string> Describe(const Difference& difference, bool isMirror) {
  constexpr PartChange kMirroredParts[] = {PartChange::kChanged, PartChange::kMoved,
                                           PartChange::kReplaced, PartChange::kRemoved,
                                           PartChange::kAdded};
  constexpr FindingChange kMirroredFindings[] = {
      FindingChange::kGone, FindingChange::kNew, FindingChange::kChanged,
      FindingChange::kNotCheckedAnyMore, FindingChange::kNotCheckedBefore};
  std::vector<std::string> lines;
  const auto add = [&](auto... texts) {
    std::string line;
    ((line += std::string(texts) + "|"), ...);
    lines.push_back(line);
  };
  const auto addValues = [&](std::string name, const host::OptionalText& before,
                             const host::OptionalText& after) {
    const auto& [first, second] = isMirror ? std::tie(after, before) : std::tie(before, after);
    add(name, first.value_or("-"), second.value_or("-"));
  };
  for (const host::PartDifference& part : difference.parts) {
    const auto change = static_cast<std::size_t>(part.change);
    // What moved has another id on each side.
    const std::string& name = part.change == PartChange::kMoved ? part.serial : part.id;
    add(part.table, name, GetWord(isMirror ? kMirroredParts[change] : part.change), part.state);
    for (const host::ChangedColumn& column : part.columns) {
      addValues(name + "." + column.column, column.before, column.after);
    }
  }
  for (const host::CellDifference& cell : difference.cells) {
    addValues(cell.className + cell.key + cell.column, cell.before, cell.after);
  }
  for (const host::FindingDifference& one : difference.findings) {
    const auto change = static_cast<std::size_t>(one.change);
    add(one.rule, one.id, GetWord(isMirror ? kMirroredFindings[change] : one.change));
  }
  for (const host::NotCompared& one : difference.notCompared) {
    add(one.what, (one.side == DifferenceSide::kBefore) != isMirror ? "first" : "second", one.why);
  }
  std::ranges::sort(lines);
  return lines;
}

void ExpectMirror(const AssessedMachine& one, const AssessedMachine& other) {
  EXPECT_EQ(Describe(host::FindDifference(one.Get(), other.Get()), /*isMirror=*/false),
            Describe(host::FindDifference(other.Get(), one.Get()), /*isMirror=*/true));
}

TEST(Difference, MirrorsThatOfTheOtherOrder) {
  std::vector<AssessedMachine> machines;
  for (const auto& [name, recording] : test::LoadSamples()) machines.emplace_back(recording);
  for (const AssessedMachine& one : machines) {
    for (const AssessedMachine& other : machines) ExpectMirror(one, other);
  }
}

TEST(Difference, MirrorsThatOfTheOtherOrderForGarbledReports) {
  test::RandomNumbers random(20261122);
  const AssessedMachine whole(test::LoadSample("two-socket-server"));
  for (int round = 0; round < kGarbledReports; ++round) {
    Recording machine = test::LoadSample("two-socket-server");
    for (RecordedCommand& command : machine.commands) {
      command.standardOutput = test::GarbleReport(command.standardOutput.Text(), random);
    }
    ExpectMirror(whole, AssessedMachine(machine));
  }
}

// --- order ---

template <typename List>
void Shuffle(List& list, test::RandomNumbers& random) {
  for (std::size_t i = list.size(); i > 1; --i) std::swap(list[i - 1], list[random.DrawBelow(i)]);
}

/// The lines of what a tool printed in another order.
void ShuffleLines(Recording& machine, const std::string& arguments, test::RandomNumbers& random) {
  for (RecordedCommand& command : machine.commands) {
    if (command.arguments != arguments) continue;
    std::vector<std::string> lines;
    std::istringstream text{std::string(command.standardOutput.Text())};
    for (std::string line; std::getline(text, line);) lines.push_back(line + '\n');
    Shuffle(lines, random);
    std::string shuffled;
    for (const std::string& line : lines) shuffled += line;
    command.standardOutput = shuffled;
  }
}

TEST(Difference, HeedsNoOrder) {
  test::RandomNumbers random(14);
  const AssessedMachine before(test::LoadSample("two-socket-server"));
  Recording machine = test::LoadSample("two-socket-server");
  for (const char* arguments : {"korvaxoem fru", "korvaxoem led", "sel", "-a"}) {
    ShuffleLines(machine, arguments, random);
  }
  AssessedMachine after(machine);
  host::Parts& parts = after.assessment.parts;
  Shuffle(parts.controllers, random);
  Shuffle(parts.drives, random);
  Shuffle(parts.volumes, random);
  Shuffle(parts.groups, random);
  Shuffle(parts.sensors, random);
  std::vector<host::Event> events(parts.events.begin(), parts.events.end());
  Shuffle(events, random);
  parts.events = host::Events(events);
  Shuffle(parts.sources, random);
  EXPECT_THAT(ListLines(host::FindDifference(before.Get(), after.Get(), CompareAll())), IsEmpty());
}

// --- what cannot be read ---

struct Fault {
  const char* name;
  std::function<void(RecordedCommand&)> make;
};
const Fault kFaults[] = {
    {"prints nothing", [](RecordedCommand& command) { command.standardOutput.clear(); }},
    {"cannot be started", [](RecordedCommand& command) { command.startError = 5; }},
    {"has no pipe", [](RecordedCommand& command) { command.pipeError = 8; }},
    {"fails silently",
     [](RecordedCommand& command) {
       command.standardOutput.clear();
       command.exitCode = 1;
     }},
    {"says why not",
     [](RecordedCommand& command) {
       command.standardOutput = "Cannot open the device: access denied\r\n";
       command.exitCode = 1;
     }},
};

/// Nothing of the machine changed: nothing may be gone, and nothing may have come.
void ExpectNothingGone(const AssessedMachine& whole, const Recording& unreadable,
                       const std::string& what) {
  const AssessedMachine machine(unreadable);
  const Difference difference = host::FindDifference(whole.Get(), machine.Get());
  for (const host::PartDifference& part : difference.parts) {
    EXPECT_NE(part.change, PartChange::kRemoved) << what << ": " << part.table << " " << part.id;
  }
  for (const host::FindingDifference& one : difference.findings) {
    EXPECT_NE(one.change, FindingChange::kGone) << what << ": " << one.rule << " " << one.id;
  }
  for (const host::CellDifference& cell : difference.cells) {
    EXPECT_TRUE(cell.after) << what << ": " << cell.className << " " << cell.key;
  }
  for (const host::PartDifference& part : host::FindDifference(machine.Get(), whole.Get()).parts) {
    EXPECT_NE(part.change, PartChange::kAdded) << what << ": " << part.table << " " << part.id;
  }
}

class UnreadableSources : public testing::TestWithParam<const char*> {};

TEST_P(UnreadableSources, LeaveNothingRemovedOrGone) {
  const Recording sample = test::LoadSample(GetParam());
  const AssessedMachine whole(sample);
  for (std::size_t i = 0; i < sample.commands.size(); ++i) {
    for (const Fault& fault : kFaults) {
      if (PQ_HAS_ADDRESS_SANITIZER && &fault != &kFaults[i % std::size(kFaults)]) continue;
      Recording machine = sample;
      fault.make(machine.commands[i]);
      const RecordedCommand& command = machine.commands[i];
      ExpectNothingGone(whole, machine, command.tool + " " + command.arguments + " " + fault.name);
    }
  }
}

TEST_P(UnreadableSources, MayBeToolsThatAreMissing) {
  const Recording sample = test::LoadSample(GetParam());
  const AssessedMachine whole(sample);
  std::set<std::string> tools;
  for (const RecordedCommand& command : sample.commands) tools.insert(command.tool);
  for (const std::string& tool : tools) {
    Recording machine = sample;
    std::erase_if(machine.commands,
                  [&](const RecordedCommand& command) { return command.tool == tool; });
    ExpectNothingGone(whole, machine, tool + " is missing");
  }
}

TEST_P(UnreadableSources, MayBeFilesThatAreMissing) {
  const Recording sample = test::LoadSample(GetParam());
  const AssessedMachine whole(sample);
  for (const auto& [path, bytes] : sample.files) {
    Recording machine = sample;
    machine.files.erase(path);
    ExpectNothingGone(whole, machine, path + " is missing");
    machine.files[path] = "";
    ExpectNothingGone(whole, machine, path + " is empty");
  }
}

INSTANTIATE_TEST_SUITE_P(OfSamples, UnreadableSources,
                         testing::Values("two-socket-server", "vroc", "hba-only", "blade",
                                         "amt-desktop"));

// --- what is compared ---

TEST(ComparedParts, NameEachColumnOnce) {
  const std::set<std::string_view> kElsewhere{"events", "sources", "unread"};
  const std::set<std::string_view> kOfAll{"id", "class", "row", "key", "line", "tool"};
  for (const host::PartTable& table : host::GetPartTables()) {
    if (kElsewhere.contains(table.name)) continue;
    const host::ComparedPart* compared = host::FindComparedPart(table.name);
    ASSERT_NE(compared, nullptr) << table.name;
    std::multiset<std::string_view> named;
    for (const host::ComparedColumn& column : compared->columns) {
      named.insert(column.name);
      EXPECT_EQ(column.use == host::ColumnUse::kLeftOut, !column.why.empty()) << column.name;
    }
    std::multiset<std::string_view> columns;
    for (const host::PartColumn& column : table.columns) {
      if (!kOfAll.contains(column.name)) columns.insert(column.name);
    }
    EXPECT_EQ(named, columns) << table.name;
  }
}

TEST(ComparedTables, NameEachClassOnce) {
  std::multiset<std::string> named;
  for (const host::ComparedTable& table : host::ListComparedTables()) {
    named.emplace(table.className);
  }
  std::multiset<std::string> classes;
  for (const auto& module : host::GetModuleDescriptions()) {
    for (const auto& table : module.tables) classes.insert(table.className);
  }
  EXPECT_EQ(named, classes);
}

TEST(ComparedTables, NameColumnsThatThereAre) {
  for (const host::ComparedTable& table : host::ListComparedTables()) {
    const pq::TableDescription* described = host::FindTableDescription(table.className);
    ASSERT_NE(described, nullptr);
    const auto isKnown = [&](std::string_view key) {
      return std::ranges::find(described->columns, key, &pq::ColumnDescription::key) !=
             described->columns.end();
    };
    for (const std::string_view key : table.keys) EXPECT_TRUE(isKnown(key)) << key;
    for (const std::string_view key : table.leftOut) EXPECT_TRUE(isKnown(key)) << key;
    EXPECT_EQ(table.form == host::TableForm::kRows, !table.keys.empty()) << table.className;
    EXPECT_EQ(table.form == host::TableForm::kNone, !table.why.empty()) << table.className;
  }
}

}  // namespace
