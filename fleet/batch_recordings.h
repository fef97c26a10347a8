// The recordings of a batch that can be used, ready to be compared with what the database has.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "fleet/batch.h"
#include "fleet/parsed.h"

namespace fleet {

/// Rows of a recording, ready to be compared and copied.
struct SplitTable {
  std::vector<std::string_view> rows;
  std::vector<std::uint64_t> hashes;
};
using SplitTables = std::map<std::size_t, SplitTable>;  ///< by their places in RowTables

struct UsableRecording {
  const WorkedRecording* worked;
  SplitTables tables;  ///< of its rows
};
using UsableRecordings = std::map<std::int64_t, UsableRecording>;  ///< by object

/// Something was parsed, and the recording can be used.
bool IsUsable(const WorkedRecording& one);

/// Splits the recording's rows, which the result refers to. They were looked at when they came
/// (FindMisfit).
SplitTables SplitRows(const Parsed& parsed);

/// Their objects, as PostgreSQL reads an array.
std::string WriteObjects(const UsableRecordings& usable);

}  // namespace fleet
