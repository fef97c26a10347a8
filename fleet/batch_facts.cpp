#include "fleet/batch_facts.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>

#include "fleet/copy_text.h"
#include "host/files/sha256.h"

namespace fleet {
namespace {

/// The recording's row of `result`; returns its hash.
std::string WriteResult(const UsableRecording& one, const RowTables& tables, const Schema& schema,
                        std::string& result) {
  const Parsed& parsed = one.worked->parsed;
  std::size_t rows = 0;
  std::string digested = parsed.driveErrors;
  for (const auto& [table, split] : one.tables) {
    rows += split.rows.size();
    digested += fmt::format("{}:{}\n", tables.At(table).name, split.rows.size());
    digested.append(reinterpret_cast<const char*>(split.hashes.data()),
                    split.hashes.size() * sizeof(split.hashes[0]));
  }
  const FindingCounts& found = parsed.counts;
  std::string cells = fmt::format("{}\t{}\t", rows, parsed.problems);
  AppendCopyCell(cells, parsed.statuses);
  cells += '\t';
  AppendCopyCell(cells, parsed.verdict);
  cells +=
      fmt::format("\t{}\t{}\t{}\t{}\t", found.critical, found.warning, found.unknown, found.notice);
  AppendCopyCell(cells, WriteTexts(parsed.reasons));
  std::string hash = host::ComputeSha256(digested + cells);
  result = fmt::format("{}\t{}\t{}\t\\\\x{}\t{}\n", one.worked->object, schema.parser, cells, hash,
                       one.worked->cpuMicroseconds);
  return hash;
}

}  // namespace

void CompareFacts(const UsableRecordings& usable, const RowTables& tables, const Schema& schema,
                  Connection& connection, BatchChanges& changes) {
  const Answer before = connection.Ask(
      "select object, encode(hash, 'hex'), parser from result "
      "where object = any($1::bigint[])",
      {WriteObjects(usable)});
  std::map<std::int64_t, std::pair<std::string, std::string>> known;
  for (std::size_t row = 0; row < before.RowCount(); ++row) {
    known[before.NumberAt(row, 0)] = {std::string(before.At(row, 1)),
                                      std::string(before.At(row, 2))};
  }
  for (const auto& [object, one] : usable) {
    std::string result;
    const std::string hash = WriteResult(one, tables, schema, result);
    const auto found = known.find(object);
    if (found != known.end() && found->second == std::pair(hash, schema.parser)) continue;
    if (found != known.end()) {
      changes.factObjects.push_back(object);
      ++changes.rows;
    }
    changes.results += result;
    ++changes.rows;
    for (const std::string_view row :
         SplitCopyRows(one.worked->parsed.driveErrors, kDriveErrorColumns.size())) {
      changes.driveErrors += fmt::format("{}\t{}\n", object, row);
      ++changes.rows;
    }
  }
}

}  // namespace fleet
