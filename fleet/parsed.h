// What a process that parses a recording hands to the one that writes it into the database, as one
// text for a pipe.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fleet/row_tables.h"

namespace fleet {

struct ParsedTable {
  std::uint32_t table = 0;  ///< its place in RowTables
  std::string rows;         ///< as COPY has them, without server and number
};

/// Numbers of findings by severity.
struct FindingCounts {
  std::uint32_t critical = 0;
  std::uint32_t warning = 0;
  std::uint32_t unknown = 0;
  std::uint32_t notice = 0;
};

/// Texts are UTF-8.
struct Parsed {
  /// Why the recording cannot be used; empty when it can. Nothing else is there otherwise.
  std::string refusal;
  std::vector<ParsedTable> tables;  ///< those with rows
  std::uint32_t problems = 0;
  std::string statuses;  ///< JSON: the outcome of each class that has no rows
  std::string verdict;   ///< "ok", "warning", "critical" or "unknown"
  FindingCounts counts;
  std::vector<std::string> reasons;  ///< the titles of alarms, the worst first
  std::string driveErrors;  ///< rows of drive_error as COPY has them, without the recording
};

/// The columns of drive_error after the recording.
inline constexpr std::array kDriveErrorColumns = {
    "drive",        "controller",          "serial",     "model", "firmware", "media_errors",
    "other_errors", "predictive_failures", "smart_alert"};

std::string Pack(const Parsed& parsed);
/// Throws std::runtime_error when `bytes` are not what Pack() makes.
Parsed Unpack(std::string_view bytes);

}  // namespace fleet
