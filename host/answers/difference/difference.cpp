#include "host/answers/difference/difference.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <unordered_set>

#include "host/answers/difference/cells_comparison.h"
#include "host/answers/difference/compared.h"
#include "host/answers/difference/findings_comparison.h"
#include "host/answers/difference/logs_comparison.h"
#include "host/answers/difference/parts_comparison.h"
#include "host/answers/difference/side.h"
#include "host/answers/health/wall_time.h"
#include "host/answers/machine_identity.h"
#include "host/text/ascii.h"

namespace host {
namespace {

using Serials = std::unordered_set<std::string>;

/// The numbers that tell the machine, its controllers and its drives from others.
std::array<Serials, 3> ListSerials(const AssessedCollection& assessed) {
  std::array<Serials, 3> serials;
  const auto add = [](Serials& kind, const std::string& serial) {
    if (IsUsableSerial(serial)) kind.insert(serial);
  };
  auto& [ofMachine, ofControllers, ofDrives] = serials;
  for (const std::string& serial : ListMachineSerials(assessed.collection)) add(ofMachine, serial);
  for (const Controller& one : assessed.assessment.parts.controllers)
    add(ofControllers, one.serial);
  for (const Drive& one : assessed.assessment.parts.drives) add(ofDrives, one.serial);
  return serials;
}

/// What tells of controllers on one side and of drives on the other says nothing of the machines.
bool AreOtherMachines(const AssessedCollection& before, const AssessedCollection& after) {
  const auto old = ListSerials(before);
  const auto now = ListSerials(after);
  bool isComparable = false;
  for (std::size_t kind = 0; kind < old.size(); ++kind) {
    if (std::ranges::any_of(now[kind],
                            [&](const std::string& serial) { return old[kind].contains(serial); }))
      return false;
    isComparable = isComparable || (!old[kind].empty() && !now[kind].empty());
  }
  return isComparable;
}

/// When the tools answered; a time that was not known is none.
std::optional<std::int64_t> FindTime(const AssessedCollection& assessed) {
  const std::optional<LocalTime>& recordedAt = assessed.collection.machine.recordedAt;
  if (recordedAt) {
    return std::chrono::duration_cast<std::chrono::seconds>(recordedAt->time.time_since_epoch())
        .count();
  }
  return std::nullopt;
}

bool IsOlder(const AssessedCollection& before, const AssessedCollection& after) {
  const auto old = FindTime(before);
  const auto now = FindTime(after);
  if (old && now) return *now < *old;
  // The machine's own clock, or that of its logs, then tells of both.
  const Health& oldHealth = before.assessment.health;
  const Health& newHealth = after.assessment.health;
  const auto oldTime = ReadWallTime(oldHealth.asOf);
  const auto newTime = ReadWallTime(newHealth.asOf);
  return oldHealth.asOfFrom == newHealth.asOfFrom && oldTime && newTime && *newTime < *oldTime;
}

ComparedSide Describe(const AssessedCollection& assessed) {
  const Health& health = assessed.assessment.health;
  return {health.asOf, health.asOfFrom, LowerCase(GetVerdict(health)), health.isDated};
}

bool IsWanted(const DifferenceOptions& options, std::string_view table) {
  return options.parts.empty() || std::ranges::find(options.parts, table) != options.parts.end();
}

}  // namespace

const char* GetWord(PartChange change) {
  constexpr std::array<const char*, 5> kWords{"changed", "moved", "replaced", "added", "removed"};
  return kWords[static_cast<std::size_t>(change)];
}

const char* GetWord(FindingChange change) {
  constexpr std::array<const char*, 5> kWords{"new", "gone", "changed", "not checked before",
                                              "not checked any more"};
  return kWords[static_cast<std::size_t>(change)];
}

bool Difference::IsNone() const {
  return !otherMachine && findings.empty() && parts.empty() && cells.empty() && reports.empty() &&
         logs.empty() && notCompared.empty();
}

Difference FindDifference(const AssessedCollection& before, const AssessedCollection& after,
                          const DifferenceOptions& options) {
  const Side old(before, DifferenceSide::kBefore);
  const Side now(after, DifferenceSide::kAfter);
  const Renaming renaming(before.assessment.parts, after.assessment.parts);
  const Renaming restoring(after.assessment.parts, before.assessment.parts);
  const Sides sides{old, now, renaming, restoring};
  Difference difference;
  difference.before = Describe(before);
  difference.after = Describe(after);
  difference.isOlder = IsOlder(before, after);
  difference.otherMachine = AreOtherMachines(before, after);
  CompareFindings(sides, options, difference);
  CompareParts(sides, options, difference);
  CompareCells(sides, options, difference);
  if (options.comparesReports) CompareReports(sides, difference);
  if (IsWanted(options, "events")) CompareLogs(sides, difference);
  return difference;
}

}  // namespace host
