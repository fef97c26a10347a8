// Findings and their evidence as tables, like those of parts: all that a writer of rows needs to
// know of them.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "host/answers/health/health.h"
#include "host/answers/parts/part_tables.h"

namespace host {

struct FindingRow {
  const HealthFinding& finding;
  const HealthHit& hit;   ///< of the finding; in the table of findings its title
  std::int64_t position;  ///< from 1: of the finding, or of the hit in it
};

struct FindingColumn {
  std::string_view name;  ///< in snake case
  PartType type;
  std::string_view description;
  PartValue (*get)(const FindingRow& row);  ///< a text is a view of the finding's own
};

struct FindingTable {
  std::string_view name;
  std::string_view description;
  bool hasEachHit;  ///< otherwise each finding has one row
  std::vector<FindingColumn> columns;
};

/// "findings", then "evidence".
std::span<const FindingTable> GetFindingTables();

/// The rows refer to `health`.
std::vector<FindingRow> ListRows(const FindingTable& table, const Health& health);

}  // namespace host
