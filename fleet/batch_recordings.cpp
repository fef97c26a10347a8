#include "fleet/batch_recordings.h"

#include "fleet/copy_text.h"
#include "fleet/database.h"

namespace fleet {

bool IsUsable(const WorkedRecording& one) {
  return one.failure.empty() && one.parsed.refusal.empty();
}

SplitTables SplitRows(const Parsed& parsed) {
  SplitTables split;
  for (const ParsedTable& table : parsed.tables) {
    SplitTable& added = split[table.table];
    added.rows = SplitCheckedRows(table.rows);
    for (const std::string_view row : added.rows) added.hashes.push_back(HashRow(row));
  }
  return split;
}

std::string WriteObjects(const UsableRecordings& usable) {
  std::vector<std::int64_t> objects;
  for (const auto& [object, one] : usable) objects.push_back(object);
  return WriteNumbers(objects);
}

}  // namespace fleet
