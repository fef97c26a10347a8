// What changed on a machine between two collections of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/answers/assessment.h"
#include "host/answers/difference/difference_options.h"
#include "host/answers/health/health.h"
#include "host/answers/parts/part_tables.h"
#include "host/collect/collection.h"

namespace host {

/// A value as FormatPartValue writes it; none when nothing is told.
using OptionalText = std::optional<std::string>;

struct ChangedColumn {
  std::string column;
  PartType type = PartType::kText;
  OptionalText before;
  OptionalText after;
};

enum class PartChange {
  kChanged,
  kMoved,     ///< the same serial number in another place
  kReplaced,  ///< another serial number, or model, in the same place
  kAdded,
  kRemoved,
};
/// "changed", "moved", "replaced", "added", "removed".
const char* GetWord(PartChange change);

struct PartDifference {
  std::string table;
  std::string id;      ///< by its controller's name in the second collection
  std::string serial;  ///< the newer; empty when not known
  PartChange change = PartChange::kChanged;
  std::string state;                   ///< of what was added or removed
  std::vector<ChangedColumn> columns;  ///< of what is on both sides
};

/// A cell, or a row, of a table that no part covers.
struct CellDifference {
  std::string className;
  std::string key;     ///< the row; of tables with one row its only cell
  std::string column;  ///< label; empty when `key` says all, or when the whole row came or went
  OptionalText before;
  OptionalText after;
};

/// A tool's report; only when these are to be compared.
struct ReportDifference {
  std::string className;
  std::string key;                ///< the row's controller and the property
  std::size_t linesOfBefore = 0;  ///< that are not in the second
  std::size_t linesOfAfter = 0;   ///< that are not in the first
};

struct NewEntry {
  Integer number;
  std::string time;
  Integer level;  ///< as in the part table `events`
  std::string text;
};

struct LogDifference {
  std::string log;          ///< "SEL", "LSI lsi0"
  bool wasCleared = false;  ///< or wrapped around: no entry is in both collections
  std::vector<NewEntry> entries;
};

/// From a warning on.
bool IsSerious(const NewEntry& entry);

enum class FindingChange { kNew, kGone, kChanged, kNotCheckedBefore, kNotCheckedAnyMore };
/// "new", "gone", "changed", "not checked before", "not checked any more".
const char* GetWord(FindingChange change);

/// A hit of one of the rules of health; notices count as none.
struct FindingDifference {
  std::string rule;
  std::string part;
  std::string id;
  std::string serial;
  FindingChange change = FindingChange::kNew;
  std::optional<Severity> before;
  std::optional<Severity> after;
  std::string observed;  ///< the newer
  std::string text;
};

enum class DifferenceSide { kBefore, kAfter };

/// What only one of the collections tells, since the other could not read it.
struct NotCompared {
  std::string what;
  DifferenceSide side = DifferenceSide::kAfter;  ///< that could not read it
  std::string why;
};

struct ComparedSide {
  std::string asOf;
  std::string asOfFrom;
  std::string verdict;  ///< in lower case
  bool isDated = true;  ///< otherwise `asOf` is when it was judged
};

struct Difference {
  ComparedSide before;
  ComparedSide after;
  bool isOlder = false;                     ///< the second collection is the older one
  bool otherMachine = false;                ///< both tell serial numbers, and have none in common
  std::vector<FindingDifference> findings;  ///< the worst first
  std::vector<PartDifference> parts;
  std::vector<CellDifference> cells;
  std::vector<ReportDifference> reports;
  std::vector<LogDifference> logs;
  std::vector<NotCompared> notCompared;

  bool IsNone() const;
};

std::size_t CountNewEntries(const Difference& difference);

/// A collection of a known machine, and what follows from it.
struct AssessedCollection {
  const Collection& collection;
  const Assessment& assessment;
};

/// Compares `before` with `after`.
Difference FindDifference(const AssessedCollection& before, const AssessedCollection& after,
                          const DifferenceOptions& options = {});

}  // namespace host
